#pragma once

#include <span>
#include <string>

#include "batch/Session.h"

namespace gravlin {

/// Looks at the values of all calls without running any. Throws UsageError.
void checkCalls(std::span<const StepCall> calls, BatchStreams streams);

/// The whole program: reads the arguments (without the program's name), checks every value, and
/// runs the steps. Returns the exit status: 0 when all is well, 1 when a step failed, 2 when the
/// arguments could not be understood; the reason has then been written to the stream for errors.
int runBatch(std::span<const std::string> arguments, BatchStreams streams = {});

}  // namespace gravlin
