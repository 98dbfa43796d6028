#include "batch/Program.h"

#include <algorithm>
#include <new>

#include "batch/CommandLine.h"
#include "batch/ViewSteps.h"
#include "numeric/PrintableText.h"
#include "numeric/TextSink.h"

namespace gravlin {
namespace {

enum ExitStatus : int { AllIsWell = 0, StepFailed = 1, NotUnderstood = 2 };

void checkOutput(BatchStreams streams) {
  if (!allWritten(streams.output)) throw StepFailure("Standard output could not be written.");
}

int runCalls(std::span<const StepCall> calls, BatchStreams streams) {
  Session session(streams);
  for (std::size_t k = 0; k < calls.size(); ++k) {
    if (k == 0 || calls[k - 1].step->name == "render") {
      session.outside.viewSize = sizeOfNextRender(calls.subspan(k));
    }
    calls[k].step->run(session, calls[k]);
    if (session.outside.failed) return StepFailed;
  }
  checkOutput(streams);
  return AllIsWell;
}

/// Standard output is for another program to read: nothing but the dump may go there.
bool dumpsToOutput(const StepCall& call) {
  return call.step->name == "dump" && call.operands[0] == "-";
}

TextSink textSink(BatchStreams streams, bool quiet) {
  return [streams, quiet](TextStream stream, std::string_view text) {
    if (stream == TextStream::Output && quiet) return;
    std::FILE* file = stream == TextStream::Output ? streams.output : streams.errors;
    std::fwrite(text.data(), 1, text.size(), file);
  };
}

}  // namespace

void checkCalls(std::span<const StepCall> calls, BatchStreams streams) {
  Session trial(streams);
  for (const StepCall& call : calls) {
    try {
      const Step& described = call.described();
      if (described.form) {
        const Form form = described.form(trial);
        applySettings(form, call.settings);
        checkEntries(form, call);
      }
      if (call.step->check) call.step->check(trial, call);
    } catch (const UsageError& error) {
      throw UsageError(call.described().name + " " + error.what());
    }
  }
}

int runBatch(std::span<const std::string> arguments, BatchStreams streams) {
  const auto fail = [&](const char* reason, ExitStatus status) {
    std::fprintf(streams.errors, "gravlin-batch: %s\n", printable(reason).c_str());
    return status;
  };
  try {
    const CommandLine line = readCommandLine(arguments);
    if (!line.answer.empty()) {
      std::fputs(line.answer.c_str(), streams.output);
      checkOutput(streams);
      if (!line.notRun.empty()) throw UsageError(line.notRun);
      return AllIsWell;
    }
    checkCalls(line.calls, streams);
    const bool quiet =
        line.quiet || std::any_of(line.calls.begin(), line.calls.end(), dumpsToOutput);
    const ScopedTextSink sink(textSink(streams, quiet));
    return runCalls(line.calls, streams);
  } catch (const UsageError& error) {
    return fail(error.what(), NotUnderstood);
  } catch (const StepFailure& error) {
    return fail(error.what(), StepFailed);
  } catch (const std::bad_alloc&) {
    return fail("There is not enough memory.", StepFailed);
  }
}

}  // namespace gravlin
