#include "batch/Help.h"

#include <algorithm>

#include "batch/Session.h"

namespace gravlin {
namespace {

constexpr std::string_view purpose =
    "run the commands of the Gravlin mesh workbench without a window";

/// An option as help shows it.
struct OptionHelp {
  std::string flags;     ///< "--iteration-count N"
  std::string meaning;   ///< "Iteration, 1 to 10000"
  std::string standard;  ///< the value without the option
};

std::string joined(std::initializer_list<std::string_view> parts) {
  std::string whole;
  for (const std::string_view part : parts) whole += part;
  return whole;
}

/// What stands between a text and the next: nothing while the text is empty.
std::string_view between(const std::string& text, std::string_view separator) {
  return text.empty() ? std::string_view() : separator;
}

bool isSwitch(const Field& field) {
  return std::holds_alternative<bool*>(field.value);
}
bool isRadio(const Field& field) {
  return std::holds_alternative<int*>(field.value) && !field.choices.empty();
}

/// What stands behind the option: a kind of number, words, or text.
std::string valueName(const Field& field) {
  if (isRadio(field)) {
    std::string words;
    for (const Choice& choice : field.choices) {
      words += joined({between(words, "|"), choice.word});
    }
    return words;
  }
  if (std::holds_alternative<int*>(field.value)) return "N";
  return std::holds_alternative<float*>(field.value) ? "X" : "TEXT";
}

/// The label of the field in its dialog, with the box around it.
std::string labelOf(const Field& field) {
  std::string label(field.group);
  if (!field.label.empty() && field.label != field.group) {
    label += joined({between(label, ", "), field.label});
  }
  if (!field.unit.empty()) label += joined({between(label, " "), field.unit});
  return label;
}

std::string rangeOf(const Field& field) {
  if (field.range) {
    const RangeTexts ends = rangeTexts(field);
    return ends.least + " to " + ends.largest;
  }
  std::string texts;
  if (!isRadio(field)) {
    for (const Choice& choice : field.choices) {
      texts += joined({texts.empty() ? "one of \"" : ", \"", choice.text, "\""});
    }
  }
  return texts;
}

std::string standardOf(const Field& field) {
  std::string text = textOf(field);
  if (isSwitch(field)) return joined({text == "1" ? "--" : "--no-", kebabCase(field.name)});
  if (isRadio(field)) return std::string(field.choices[std::stoul(text)].word);
  return text;
}

OptionHelp describe(const Field& field) {
  OptionHelp help;
  const std::string name = kebabCase(field.name);
  help.flags =
      isSwitch(field) ? joined({"--[no-]", name}) : joined({"--", name, " ", valueName(field)});
  help.meaning = labelOf(field);
  const std::string range = rangeOf(field);
  if (!range.empty()) help.meaning += joined({between(help.meaning, ": "), range});
  help.standard = standardOf(field);
  return help;
}

/// Of the option that belongs to a combo box.
OptionHelp describeAnyText(const Field& field) {
  return {.flags = anyTextOption,
          .meaning = joined({"pass on a text for --", kebabCase(field.name),
                             " that is none of its entries, as typed into the dialog"}),
          .standard = {}};
}

std::vector<OptionHelp> optionsOf(const Step& step) {
  std::vector<OptionHelp> options;
  if (step.form == nullptr) return options;
  Session session;
  for (const Field& field : step.form(session).fields) {
    if (!field.enabled) continue;
    options.push_back(describe(field));
    if (isComboBox(field)) options.push_back(describeAnyText(field));
  }
  return options;
}

/// "open FILE", "smooth-shape [OPTIONS]".
std::string usageOf(const Step& step) {
  std::string usage = step.name;
  if (step.subject != Subject::None) usage += " STEP";
  for (const std::string& operand : step.operands) usage += " " + operand;
  if (step.form != nullptr || step.subject == Subject::WithOptions) usage += " [OPTIONS]";
  return usage;
}

std::string meaningOf(const OptionHelp& option) {
  if (option.standard.empty()) return option.meaning;
  return joined({option.meaning, between(option.meaning, " "), "(default ", option.standard, ")"});
}

/// The steps' headings in the order of their first steps.
std::vector<std::string> menus() {
  std::vector<std::string> names;
  for (const Step& step : allSteps()) {
    if (std::find(names.begin(), names.end(), step.menu) == names.end()) names.push_back(step.menu);
  }
  return names;
}

/// Two columns, the first as wide as `width` says; a longer entry gets a line of its own.
std::string columns(const std::string& left, const std::string& right, std::size_t width) {
  const std::string gap = left.size() + 2 > width ? joined({"\n", std::string(width + 2, ' ')})
                                                  : std::string(width - left.size(), ' ');
  return joined({"  ", left, right.empty() ? "" : gap, right, "\n"});
}

/// Text as roff takes it: a hyphen that is typed, and no line that looks like a request.
std::string roff(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '-' || c == '\\') escaped += '\\';
    escaped += c;
  }
  const bool request = escaped.starts_with('.') || escaped.starts_with('\'');
  return joined({request ? "\\&" : "", escaped});
}

constexpr std::string_view form = "gravlin-batch [--quiet] STEP [OPTIONS] [STEP [OPTIONS]]...";

struct Paragraph {
  std::string_view name;
  std::string_view text;
};

constexpr Paragraph generalOptions[] = {
    {"--quiet", "drop the lines that solvers print on standard output"},
    {"--script FILE", "steps from a text file in this place, one a line; # begins a comment"},
    {"--help", "this text, or behind a step alone its options with ranges and defaults"},
    {"--version", "the version"},
    {"--", "ends the options of a step, for a FILE that begins with a hyphen, as in -- -a.ply2"},
};

constexpr Paragraph notes[] = {
    {"Steps",
     "run from left to right on one document, each as often as it is named. A step with a dialog "
     "remembers its values: an option changes one of them, the others stay as they are. Nothing "
     "runs before every word has been understood and every value is in its range."},
    {"Files",
     "are opened and saved by their extension: data, ply, ply2 and plyR are read, ply2 and plyR "
     "are written. A file with any other extension opens as an empty mesh and is saved as an empty "
     "file, each with a warning. A damaged file opens up to the damage, with a warning. The file "
     "that a mesh was opened from is not overwritten when that would lose what could not be read "
     "or written. Lengths in options are those of the mesh in memory, whose largest extent is "
     "20."},
    {"Names",
     "that begin with a hyphen are written behind --, which ends the options of a step, or with ./ "
     "in front, as in ./-a.ply2. The name - is standard output for dump, and standard input, once, "
     "for --script."},
    {"Scripts", "are plain text in UTF-8 of at most 64 MiB, without control characters."},
    {"Threads",
     "are as many as there are processors where a step can use them, or as the environment "
     "variable GRAVLIN_THREADS says. Results are the same with any number."},
    {"Exit status",
     "0 when all is well, 1 when a file could not be read or written (later steps do not run), 2 "
     "when something could not be understood."},
};

/// Fills lines up to a column that fits a terminal.
std::string wrapped(std::string_view text, std::size_t indent) {
  constexpr std::size_t lineLength = 80;
  std::string lines(indent, ' ');
  std::size_t column = indent;
  while (!text.empty()) {
    const std::size_t blank = std::min(text.find(' '), text.size());
    if (column > indent && column + 1 + blank > lineLength) {
      lines += joined({"\n", std::string(indent, ' ')});
      column = indent;
    }
    if (column > indent) {
      lines += ' ';
      ++column;
    }
    lines += text.substr(0, blank);
    column += blank;
    text.remove_prefix(std::min(blank + 1, text.size()));
  }
  return lines + "\n";
}

}  // namespace

std::string helpText() {
  std::string text = joined({"Usage: ", form, "\n\n", wrapped(purpose, 0)});
  for (const std::string& menu : menus()) {
    text += joined({"\n", menu, ":\n"});
    for (const Step& step : allSteps()) {
      if (step.menu == menu) text += columns(usageOf(step), step.summary, 32);
    }
  }
  text += "\nOptions:\n";
  for (const Paragraph& option : generalOptions) {
    text += columns(std::string(option.name), std::string(option.text), 16);
  }
  for (const Paragraph& note : notes) {
    text += joined({"\n", note.name, ":\n", wrapped(note.text, 2)});
  }
  return text;
}

std::string helpText(const Step& step) {
  std::string text =
      joined({"Usage: gravlin-batch ... ", usageOf(step), " ...\n\n", step.summary, "\n"});
  const std::vector<OptionHelp> options = optionsOf(step);
  if (!options.empty()) text += "\n";
  for (const OptionHelp& option : options) {
    text += joined({"  ", option.flags, "\n", wrapped(meaningOf(option), 10)});
  }
  if (!step.remark.empty()) text += joined({"\n", wrapped(step.remark, 0)});
  return text;
}

std::string versionText() {
  return "gravlin-batch " GRAVLIN_VERSION "\n";
}

std::string manPage() {
  std::string page = ".TH GRAVLIN\\-BATCH 1 \"\" \"Gravlin " GRAVLIN_VERSION "\"\n.SH NAME\n";
  page += joined({"gravlin\\-batch \\- ", roff(purpose), "\n"});
  page += joined({".SH SYNOPSIS\n.B ", roff(form), "\n.SH DESCRIPTION\n"});
  for (const Paragraph& note : notes) {
    page += joined({".PP\n.B ", roff(note.name), "\n", roff(note.text), "\n"});
  }
  page += ".SH OPTIONS\n";
  for (const Paragraph& option : generalOptions) {
    page += joined({".TP\n.B ", roff(option.name), "\n", roff(option.text), "\n"});
  }
  page += ".SH STEPS\n";
  for (const std::string& menu : menus()) {
    page += joined({".SS ", roff(menu), "\n"});
    for (const Step& step : allSteps()) {
      if (step.menu != menu) continue;
      page += joined({".TP\n.B ", roff(usageOf(step)), "\n", roff(step.summary), "\n"});
      const std::vector<OptionHelp> options = optionsOf(step);
      if (options.empty() && step.remark.empty()) continue;
      page += ".RS\n";
      for (const OptionHelp& option : options) {
        page += joined({".TP\n.B ", roff(option.flags), "\n"});
        page += joined({roff(meaningOf(option)), "\n"});
      }
      if (!step.remark.empty()) page += joined({".PP\n", roff(step.remark), "\n"});
      page += ".RE\n";
    }
  }
  page += ".SH SEE ALSO\n.BR gravlin (1)\n";
  return page;
}

}  // namespace gravlin
