#include "batch/CommandLine.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "batch/Help.h"
#include "batch/Script.h"
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

/// The words of a chain that are still to be read.
using Rest = std::span<const std::string>;

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
  std::function<void()> forget = [] {};  ///< drops what options have noted, for another attempt

  /// An option that has something printed instead of anything run.
  template <class Request>
  void addRequest(const std::string& option, Request request) {
    app.add_flag_callback(option, [request] { throw Request(request); });
  }

  /// Takes what is for this reader from the front of the words and returns the others.
  ///
  /// The parser copies all words that it gets, so a long chain comes in pieces: a longer one only
  /// where all of a piece was taken or something seemed to be missing at its end.
  Rest read(Rest words) {
    for (std::size_t size = 32; size < words.size(); size *= 2) {
      try {
        const std::size_t taken = parse(words.first(size));
        if (taken < size) return words.subspan(taken);
      } catch (const UsageError&) {
        // What is wrong with the whole is told below.
      }
    }
    return words.subspan(parse(words));
  }

 private:
  /// How many words at the front are for this reader.
  std::size_t parse(Rest piece) {
    forget();
    try {
      app.parse(Words(piece.rbegin(), piece.rend()));
    } catch (const CLI::ParseError& error) {
      throw UsageError(beginning + error.what());
    } catch (const std::logic_error&) {  // --switch=word, where the parser expects a number
      throw UsageError(beginning + firstSwitchWithValue(piece) + ": a switch takes no value");
    }
    // The parser keeps "--" among what it leaves, wherever it stood.
    const Words left = app.remaining();
    const bool separator = !left.empty() && left.front() == "--";
    const std::size_t taken = piece.size() - left.size() + (separator ? 1 : 0);
    if (taken < piece.size() && piece[taken].starts_with('-')) {
      throw UsageError(beginning + "unknown option " + piece[taken]);
    }
    return taken;
  }

  std::string firstSwitchWithValue(Rest words) const {
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
    reader.forget = [this] { call = {}; };
    reader.addRequest("--help,-h", HelpRequest{&step});
    for (const std::string& operand : step.operands) {
      const auto note = [this](const std::string& text) { call.operands.push_back(text); };
      reader.app.add_option_function<std::string>(operand, note)->required();
    }
    if (!step.form) return;
    bool anyText = false;
    for (const Field& field : step.form(trial).fields) {
      if (field.enabled) addOption(field);
      anyText = anyText || (field.enabled && isComboBox(field));
    }
    if (anyText) reader.app.add_flag_callback(anyTextOption, [this] { call.anyText = true; });
  }

  /// Takes the words of one call from the front.
  StepCall read(Rest& words) {
    const Rest all = words;
    words = reader.read(words);
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
  void read(Rest words) {
    words = program.read(words);
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
  static const Step& takeStep(Rest& words) {
    const std::string word = words.front();
    const Step* step = stepCalled(word);
    if (step == nullptr) {
      throw UsageError((word.starts_with('-') ? "unknown option " : "unknown step ") + word);
    }
    words = words.subspan(1);
    return *step;
  }

  static const Step& takeSubject(const Step& step, Rest& words) {
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

/// Reads the arguments and the scripts that stand among them.
class ArgumentReader {
 public:
  explicit ArgumentReader(Rest allArguments) : arguments(allArguments) {}

  ChainReader chain;

  void read() {
    Rest rest = arguments;
    while (true) {
      const std::size_t end = endOfChain(rest);
      chain.read(rest.first(end));
      if (end == rest.size()) break;
      if (end + 1 == rest.size()) throw UsageError("--script: the name of a file is missing");
      runScript(rest[end + 1]);
      rest = rest.subspan(end + 2);
    }
    if (chain.calls.empty()) throw UsageError("there is no step to run; --help lists them");
  }

  /// Why an answer to this request would pass for a success of a chain that did not run, if it
  /// would: other steps stand beside it, or what comes behind shows that --help was meant as the
  /// name of a file.
  std::string notRunFor(const Step* step) const {
    const bool last = arguments.back() == "--help" || arguments.back() == "-h";
    if (step == nullptr || (chain.calls.empty() && !scriptRead && last)) return {};
    return step->name +
           " --help: help is for a step alone, so nothing was run; a file of this name is ./--help";
  }

 private:
  static constexpr std::string_view scriptOption = "--script";

  /// Where the next script is asked for. Behind "--" the word is the name of a file.
  static std::size_t endOfChain(Rest words) {
    for (std::size_t k = 0; k < words.size(); ++k) {
      if (words[k] == scriptOption && (k == 0 || words[k - 1] != "--")) return k;
    }
    return words.size();
  }

  void runScript(const std::string& path) {
    if (path == "-" && std::exchange(standardInputRead, true)) {
      throw UsageError("--script -: standard input can be read only once");
    }
    scriptRead = true;
    readScript(path, [this](const Words& words) { chain.read(words); });
  }

  Rest arguments;
  bool scriptRead = false;
  bool standardInputRead = false;
};

}  // namespace

CommandLine readCommandLine(std::span<const std::string> arguments) {
  CommandLine line;
  ArgumentReader reader(arguments);
  try {
    reader.read();
    line.quiet = reader.chain.quiet;
    line.calls = std::move(reader.chain.calls);
  } catch (const HelpRequest& request) {
    line.answer = request.step == nullptr ? helpText() : helpText(*request.step);
    line.notRun = reader.notRunFor(request.step);
  } catch (const VersionRequest&) {
    line.answer = versionText();
  } catch (const ManPageRequest&) {
    line.answer = manPage();
  }
  return line;
}

}  // namespace gravlin
