#pragma once

#include <string>

#include "batch/Step.h"

namespace gravlin {

/// What `gravlin-batch --help` prints: the form of a command line and every step.
std::string helpText();
/// What `gravlin-batch STEP --help` prints: the step's options with their ranges and defaults.
std::string helpText(const Step& step);
/// What `gravlin-batch --version` prints.
std::string versionText();
/// The manual page in roff, made of the same steps.
std::string manPage();

}  // namespace gravlin
