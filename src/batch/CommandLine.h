#pragma once

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
  std::string notRun;  ///< why the answer is no success all the same, or empty
};

/// Reads `[--quiet] STEP [OPTIONS] STEP [OPTIONS] ...`, with the steps of `--script FILE` in the
/// place where it stands, those of standard input for "-". Nothing is run. Throws UsageError when
/// something cannot be understood and StepFailure when a script cannot be read; whether the values
/// are in range is not looked at.
CommandLine readCommandLine(std::span<const std::string> arguments);

}  // namespace gravlin
