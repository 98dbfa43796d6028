#pragma once

#include <iosfwd>
#include <span>
#include <string>
#include <vector>

#include "batch/Step.h"

namespace gravlin {

/// What stands on a command line.
struct CommandLine {
  bool quiet = false;
  std::vector<StepCall> calls;
  std::string answer;  ///< help or version: to be printed instead of running anything
};

/// Reads `[--quiet] STEP [OPTIONS] STEP [OPTIONS] ...`, with the steps of `--script FILE` in the
/// place where it stands. Nothing is run. Throws UsageError when something cannot be understood and
/// StepFailure when a script cannot be read; whether the values are in range is not looked at.
CommandLine readCommandLine(std::span<const std::string> arguments);

/// The words of one line of a script: separated by blanks, in single or double quotes when they
/// contain some, and up to a # that begins a word. Throws UsageError when a quote is not closed.
std::vector<std::string> wordsOf(std::string_view line);

}  // namespace gravlin
