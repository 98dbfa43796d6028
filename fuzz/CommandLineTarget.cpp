// Command lines and scripts of gravlin-batch, read and checked but not run. Up to the first NUL
// every line of the input is a word of the command line; behind it stands the script. The word
// behind "--script" is replaced by the script's path.

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "batch/CommandLine.h"
#include "batch/Program.h"
#include "batch/Script.h"
#include "fuzz/FuzzTarget.h"
#include "support/TemporaryFolder.h"

namespace gravlin::fuzz {
namespace {

const std::string scriptOption = "--script";

/// What became of a command line.
struct Outcome {
  CommandLine line;
  std::string refusal;
};

Outcome outcomeOf(const std::vector<std::string>& words) {
  static std::FILE* const nowhere = std::fopen("/dev/null", "w");
  Outcome outcome;
  try {
    outcome.line = readCommandLine(words);
    for (const StepCall& call : outcome.line.calls) {
      demand(call.step != nullptr, "every call has a step");
      demand((call.subject != nullptr) == (call.step->subject != Subject::None),
             "a step that speaks of another one names it");
      demand(call.operands.size() == (call.subject == nullptr ? call.step->operands.size() : 0),
             "every operand is there");
    }
    checkCalls(outcome.line.calls, {nowhere, nowhere});
  } catch (const UsageError& error) {
    outcome.refusal = error.what();
    demand(!outcome.refusal.empty(), "a refusal has its reason");
  } catch (const StepFailure& error) {
    outcome.refusal = error.what();
    demand(!outcome.refusal.empty(), "a refusal has its reason");
  }
  return outcome;
}

bool sameCalls(const StepCall& a, const StepCall& b) {
  const auto same = [](const Setting& s, const Setting& t) {
    return s.field == t.field && s.text == t.text;
  };
  return a.step == b.step && a.subject == b.subject && a.operands == b.operands &&
         std::equal(a.settings.begin(), a.settings.end(), b.settings.begin(), b.settings.end(),
                    same);
}

/// The word in quotes, each of its own quotes in quotes of the other kind.
std::string quoted(const std::string& word) {
  std::string text = "'";
  for (const char c : word) text += c == '\'' ? std::string("'\"'\"'") : std::string(1, c);
  return text + "'";
}

/// Whether a script may hold the word: it is refused for any other control character.
bool isPlain(const std::string& word) {
  return std::all_of(word.begin(), word.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 0x20U && byte != 0x7FU) || c == '\t';
  });
}

/// The same words on one line of a script mean the same.
void compareWithScript(const std::vector<std::string>& words, const Outcome& outcome,
                       const test::TemporaryFolder& folder) {
  std::string line;
  for (const std::string& word : words) line += quoted(word) + " ";
  demand(wordsOf(line) == words, "quoted words come back");
  const Outcome script = outcomeOf({scriptOption, folder.write("quoted", line)});
  demand(script.refusal.ends_with(outcome.refusal),
         "a script is refused for the same reason: " + script.refusal + " / " + outcome.refusal);
  demand(script.refusal.empty() == outcome.refusal.empty(), "a script is taken or refused alike");
  demand(script.line.quiet == outcome.line.quiet, "a script is as quiet");
  demand(script.line.answer == outcome.line.answer, "a script has the same answer");
  demand(std::equal(script.line.calls.begin(), script.line.calls.end(), outcome.line.calls.begin(),
                    outcome.line.calls.end(), sameCalls),
         "a script makes the same calls");
}

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    lines.emplace_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

void readBoth(std::string_view input) {
  static const test::TemporaryFolder folder;
  const std::size_t behindWords = std::min(input.find('\0'), input.size());
  std::vector<std::string> words = linesOf(input.substr(0, behindWords));
  if (std::find(words.begin(), words.end(), scriptOption) == words.end()) {
    const Outcome outcome = outcomeOf(words);
    if (std::all_of(words.begin(), words.end(), isPlain)) compareWithScript(words, outcome, folder);
    return;
  }
  input.remove_prefix(std::min(behindWords + 1, input.size()));
  const std::string script = folder.write("script", std::string(input));
  for (std::size_t k = 1; k < words.size(); ++k) {
    if (words[k - 1] == scriptOption) words[k] = script;
  }
  outcomeOf(words);
}

}  // namespace
}  // namespace gravlin::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  gravlin::fuzz::readBoth({reinterpret_cast<const char*>(data), size});
  return 0;
}
