#include "batch/CommandLine.h"

#include <algorithm>
#include <cerrno>
#include <CLI/CLI.hpp>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>

#include "batch/Help.h"
#include "batch/Session.h"

namespace gravlin {
namespace {

using Words = std::vector<std::string>;

/// Thrown out of the parser when help is asked for; a step's, or the program's when null.
struct HelpRequest {
  const Step* step;
};
struct VersionRequest {};
struct ManPageRequest {};

/// Reads words up to the first one that its parser does not know.
class WordReader {
 public:
  explicit WordReader(std::string beginningOfErrors) : beginning(std::move(beginningOfErrors)) {
    app.set_help_flag();
    app.prefix_command();
  }
  WordReader(const WordReader&) = delete;
  WordReader& operator=(const WordReader&) = delete;

  CLI::App app;

  /// An option that has something printed instead of anything run.
  template <class Request>
  void addRequest(const std::string& option, Request request) {
    app.add_flag_callback(option, [request] { throw Request(request); });
  }

  /// Takes what is for this reader from the front of the words.
  void read(Words& words) {
    const Words all = words;
    std::reverse(words.begin(), words.end());
    try {
      app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
      throw UsageError(beginning + error.what());
    } catch (const std::logic_error&) {  // --switch=word, where the parser expects a number
      throw UsageError(beginning + firstSwitchWithValue(all) + ": a switch takes no value");
    }
    words = app.remaining();
    if (!words.empty() && words.front() == "--") words.erase(words.begin());
    if (!words.empty() && words.front().starts_with('-')) {
      throw UsageError(beginning + "unknown option " + words.front());
    }
  }

 private:
  std::string firstSwitchWithValue(const Words& words) const {
    for (const std::string& word : words) {
      const CLI::Option* option = app.get_option_no_throw(word.substr(0, word.find('=')));
      if (option != nullptr && option->get_expected_max() == 0) return word;
    }
    return {};
  }

  std::string beginning;
};

/// The step of this name, or null.
const Step* stepCalled(const std::string& name) {
  const auto steps = allSteps();
  const auto step =
      std::find_if(steps.begin(), steps.end(), [&](const Step& each) { return each.name == name; });
  return step == steps.end() ? nullptr : &*step;
}

/// Reads the operands and options of one step.
class StepReader {
 public:
  StepReader(const Step& step, Session& trial) : name(step.name), reader(step.name + ": ") {
    reader.addRequest("--help,-h", HelpRequest{&step});
    for (const std::string& operand : step.operands) {
      const auto note = [this](const std::string& text) { call.operands.push_back(text); };
      reader.app.add_option_function<std::string>(operand, note)->required();
    }
    if (!step.form) return;
    for (const Field& field : step.form(trial).fields) {
      if (field.enabled) addOption(field);
    }
  }

  StepCall read(Words& words) {
    call = {};
    const Words all = words;
    reader.read(words);
    const std::size_t taken = all.size() - words.size();
    if (!words.empty() && taken > 0) refuseValue(all[taken - 1], words.front());
    return std::move(call);
  }

 private:
  /// A word behind a switch that is no step was meant as its value.
  void refuseValue(const std::string& option, const std::string& word) const {
    const auto named = std::find_if(switches.begin(), switches.end(), [&](const auto& each) {
      return option == "--" + each || option == "--no-" + each;
    });
    if (named == switches.end() || stepCalled(word) != nullptr) return;
    throw UsageError(name + ": " + option + " takes no value such as " + word + "; choose --" +
                     *named + " or --no-" + *named);
  }

  void addOption(const Field& field) {
    const std::string option = kebabCase(field.name);
    const auto note = [this, member = std::string(field.name)](const std::string& text) {
      call.settings.push_back({member, text});
    };
    if (std::holds_alternative<bool*>(field.value)) {
      switches.push_back(option);
      reader.app.add_flag_function("--" + option + ",!--no-" + option,
                                   [note](std::int64_t count) { note(count > 0 ? "1" : "0"); });
    } else {
      reader.app.add_option_function<std::string>("--" + option, note)
          ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    }
  }

  std::string name;
  WordReader reader;
  StepCall call;
  Words switches;  ///< without "--" and "--no-"
};

/// Reads chains of steps. What a step takes is looked up when it is first named.
class ChainReader {
 public:
  ChainReader() {
    program.addRequest("--help,-h", HelpRequest{nullptr});
    program.addRequest("--version", VersionRequest{});
    program.addRequest("--man", ManPageRequest{});
    program.app.add_flag_callback("--quiet", [this] { quiet = true; });
  }

  bool quiet = false;
  std::vector<StepCall> calls;

  /// Appends the calls that the words ask for.
  void read(Words words) {
    program.read(words);
    while (!words.empty()) {
      const Step& step = takeStep(words);
      StepCall call = readerOf(step).read(words);
      if (step.subject != Subject::None) {
        const Step& subject = takeSubject(step, words);
        if (step.subject == Subject::WithOptions) call = readerOf(subject).read(words);
        call.subject = &subject;
      }
      call.step = &step;
      calls.push_back(std::move(call));
    }
  }

 private:
  static const Step& takeStep(Words& words) {
    const std::string word = words.front();
    const Step* step = stepCalled(word);
    if (step == nullptr) {
      throw UsageError((word.starts_with('-') ? "unknown option " : "unknown step ") + word);
    }
    words.erase(words.begin());
    return *step;
  }

  static const Step& takeSubject(const Step& step, Words& words) {
    if (words.empty()) throw UsageError(step.name + ": the name of a step is missing");
    const Step& subject = takeStep(words);
    if (!subject.hasDialog) throw UsageError(step.name + ": " + subject.name + " has no dialog");
    return subject;
  }

  StepReader& readerOf(const Step& step) {
    std::unique_ptr<StepReader>& reader = readers[&step];
    if (!reader) reader = std::make_unique<StepReader>(step, trial);
    return *reader;
  }

  WordReader program{""};
  Session trial;  ///< for the names of the options
  std::map<const Step*, std::unique_ptr<StepReader>> readers;
};

constexpr std::string_view blanks = " \t\r";

void readScript(const std::string& path, ChainReader& chain) {
  std::ifstream file;
  if (path != "-") file.open(path);
  std::istream& script = path == "-" ? std::cin : file;
  if (!script) throw StepFailure(path + " could not be read: " + std::strerror(errno) + ".");
  std::string text;
  for (int number = 1; std::getline(script, text); ++number) {
    try {
      chain.read(wordsOf(text));
    } catch (const UsageError& error) {
      throw UsageError(path + ":" + std::to_string(number) + ": " + error.what());
    }
  }
  if (script.bad()) throw StepFailure(path + " could not be read: " + std::strerror(errno) + ".");
}

}  // namespace

std::vector<std::string> wordsOf(std::string_view line) {
  std::vector<std::string> words;
  std::size_t at = line.find_first_not_of(blanks);
  while (at < line.size() && line[at] != '#') {
    std::string word;
    while (at < line.size() && blanks.find(line[at]) == std::string_view::npos) {
      const char c = line[at++];
      if (c != '"' && c != '\'') {
        word += c;
        continue;
      }
      const std::size_t close = line.find(c, at);
      if (close == std::string_view::npos) throw UsageError("a quote is not closed");
      word += line.substr(at, close - at);
      at = close + 1;
    }
    words.push_back(word);
    at = line.find_first_not_of(blanks, at);
  }
  return words;
}

CommandLine readCommandLine(std::span<const std::string> arguments) {
  CommandLine line;
  try {
    ChainReader chain;
    constexpr std::string_view scriptOption = "--script";
    auto start = arguments.begin();
    for (auto end = start; true; start = end + 2) {
      end = std::find(start, arguments.end(), scriptOption);
      chain.read({start, end});
      if (end == arguments.end()) break;
      if (end + 1 == arguments.end()) throw UsageError("--script: the name of a file is missing");
      readScript(end[1], chain);
    }
    if (chain.calls.empty()) throw UsageError("there is no step to run; --help lists them");
    line.quiet = chain.quiet;
    line.calls = std::move(chain.calls);
  } catch (const HelpRequest& request) {
    line.answer = request.step == nullptr ? helpText() : helpText(*request.step);
  } catch (const VersionRequest&) {
    line.answer = versionText();
  } catch (const ManPageRequest&) {
    line.answer = manPage();
  }
  return line;
}

}  // namespace gravlin
