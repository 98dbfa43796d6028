#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

#include "batch/Dump.h"
#include "batch/Help.h"
#include "batch/Session.h"

namespace gravlin {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TEST(Help, ListsEveryStepWithItsOperands) {
  const std::string text = helpText();
  for (const Step& step : allSteps()) {
    std::string usage = "\n  " + step.name;
    for (const std::string& operand : step.operands) usage += " " + operand;
    EXPECT_THAT(text, HasSubstr(usage));
    EXPECT_THAT(text, HasSubstr(step.summary));
  }
  for (const char* option : {"--quiet", "--script FILE", "--help", "--version"}) {
    EXPECT_THAT(text, HasSubstr(option));
  }
}

TEST(Help, FitsATerminal) {
  std::string all = helpText();
  for (const Step& step : allSteps()) all += helpText(step);
  std::istringstream lines(all);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 100U) << line;
}

/// The number as people write it.
std::string plainly(double number) {
  std::ostringstream text;
  text.precision(7);  // of single precision
  text << number;
  return text.str();
}

/// What the help of a step says of one option, all in one line: from the line that begins with the
/// option to the next such line.
std::string paragraphOf(const std::string& help, const std::string& option) {
  std::string paragraph;
  bool inside = false;
  std::istringstream lines(help);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("  --") || line.empty()) {
      inside = line == option || line.starts_with(option + " ");
    }
    if (!inside) continue;
    paragraph += line.substr(std::min(line.find_first_not_of(' '), line.size())) + " ";
  }
  return paragraph;
}

/// The value that a script writes to leave the field as it stands.
std::string wordOf(const Field& field, const std::string& name) {
  if (const auto* flag = std::get_if<bool*>(&field.value)) return (**flag ? "--" : "--no-") + name;
  if (const auto* text = std::get_if<std::string*>(&field.value)) return **text;
  if (const auto* real = std::get_if<float*>(&field.value)) return plainly(**real);
  const int number = *std::get<int*>(field.value);
  if (field.choices.empty()) return std::to_string(number);
  return std::string(field.choices[static_cast<std::size_t>(number)].word);
}

TEST(Help, NamesEveryOptionOfAStepWithRangeAndDefault) {
  int options = 0;
  int ranges = 0;
  for (const Step& step : allSteps()) {
    const std::string text = helpText(step);
    if (step.form == nullptr) {
      EXPECT_THAT(text, Not(HasSubstr("  --"))) << step.name;
      continue;
    }
    Session session;
    for (const Field& field : step.form(session).fields) {
      SCOPED_TRACE(step.name + " " + std::string(field.name));
      const std::string name = kebabCase(field.name);
      const bool isSwitch = std::holds_alternative<bool*>(field.value);
      const std::string option = (isSwitch ? "  --[no-]" : "  --") + name;
      EXPECT_EQ(text.find(option) != std::string::npos, field.enabled);
      ++options;
      if (!field.enabled) continue;
      const std::string paragraph = paragraphOf(text, option);
      const std::string standard = wordOf(field, name);
      if (!standard.empty()) {
        EXPECT_THAT(paragraph, HasSubstr("(default " + standard + ")"));
      }
      if (field.range) {
        ++ranges;
        EXPECT_THAT(paragraph, HasSubstr(": " + plainly(field.range->least) + " to " +
                                         plainly(field.range->largest) + " "));
      }
      for (const Choice& choice : field.choices) {
        EXPECT_THAT(text, HasSubstr(choice.word.empty() ? choice.text.substr(0, 5) : choice.word));
      }
    }
  }
  EXPECT_GT(options, 50);
  EXPECT_GT(ranges, 5);
}

TEST(Help, OfAStepReadsWell) {
  const auto steps = allSteps();
  const auto step = std::ranges::find(steps, "visualization", &Step::name);
  ASSERT_NE(step, steps.end());
  EXPECT_EQ(helpText(*step),
            "Usage: gravlin-batch ... visualization [OPTIONS] ...\n"
            "\n"
            "Option > Visualization\n"
            "\n"
            "  --line-width X\n"
            "          Line width: 0 to 100 (default 1)\n"
            "  --point-size X\n"
            "          Point size: 0 to 100 (default 3)\n"
            "  --[no-]gray-scale\n"
            "          Gray-Scale (default --no-gray-scale)\n");
}

const Step& stepCalled(std::string_view name) {
  const auto steps = allSteps();
  return *std::find_if(steps.begin(), steps.end(),
                       [&](const Step& step) { return step.name == name; });
}

TEST(Help, TellsThatAComboBoxTakesAnyTextAndNoOtherStepDoes) {
  for (const Step& step : allSteps()) {
    if (step.form == nullptr) continue;
    const bool expected = step.name == "smooth-shape" || step.name == "subdivision";
    EXPECT_EQ(helpText(step).find("\n  --any-text\n") != std::string::npos, expected) << step.name;
  }
  EXPECT_THAT(manPage(), HasSubstr("\n.B \\-\\-any\\-text\n"));
}

TEST(Help, OfDumpListsItsFields) {
  std::string help = helpText(stepCalled("dump"));
  std::replace(help.begin(), help.end(), '\n', ' ');  // lines may end anywhere
  for (const std::string_view name : dumpFieldNames()) {
    for (const std::string& text : {help, manPage()}) {
      EXPECT_TRUE(text.find(" " + std::string(name) + ",") != std::string::npos ||
                  text.find(" " + std::string(name) + ".") != std::string::npos)
          << name;
    }
  }
}

/// A text with hyphens that are typed.
std::string asRoff(std::string text) {
  for (std::size_t at = 0; (at = text.find('-', at)) != std::string::npos; at += 2) {
    text.insert(at, "\\");
  }
  return text;
}

TEST(ManPage, NamesEveryStepAndOption) {
  const std::string page = manPage();
  EXPECT_TRUE(page.starts_with(".TH GRAVLIN\\-BATCH 1"));
  int options = 0;
  for (const Step& step : allSteps()) {
    const std::string entry = "\n.B " + asRoff(step.name);
    const std::size_t begin = page.find(entry);
    ASSERT_NE(begin, std::string::npos) << step.name;
    if (step.form == nullptr) continue;
    // Options are indented below their step.
    const std::string below = page.substr(begin, page.find("\n.RE\n", begin) - begin);
    Session session;
    for (const Field& field : step.form(session).fields) {
      SCOPED_TRACE(step.name + " " + std::string(field.name));
      const bool isSwitch = std::holds_alternative<bool*>(field.value);
      const std::string option =
          "\n.B " + asRoff((isSwitch ? "--[no-]" : "--") + kebabCase(field.name));
      const bool isThere = below.find(option + "\n") != std::string::npos ||
                           below.find(option + " ") != std::string::npos;
      EXPECT_EQ(isThere, field.enabled);
      ++options;
    }
  }
  EXPECT_GT(options, 50);
}

TEST(ManPage, HasNoLineThatRoffWouldTakeForAnUnknownRequest) {
  std::istringstream lines(manPage());
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with('.') && !line.starts_with('\'')) continue;
    const std::string request = line.substr(0, line.find(' '));
    EXPECT_TRUE(request == ".TH" || request == ".SH" || request == ".SS" || request == ".TP" ||
                request == ".PP" || request == ".B" || request == ".BR" || request == ".RS" ||
                request == ".RE")
        << line;
  }
}

}  // namespace
}  // namespace gravlin
