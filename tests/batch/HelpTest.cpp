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

TEST(Help, NamesEveryOptionOfAStepWithRangeAndDefault) {
  int options = 0;
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
      for (const Choice& choice : field.choices) {
        EXPECT_THAT(text, HasSubstr(choice.word.empty() ? choice.text.substr(0, 5) : choice.word));
      }
    }
  }
  EXPECT_GT(options, 50);
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

TEST(ManPage, NamesEveryStepAndOption) {
  const std::string page = manPage();
  EXPECT_TRUE(page.starts_with(".TH GRAVLIN\\-BATCH 1"));
  for (const Step& step : allSteps()) {
    std::string typed = step.name;
    for (std::size_t at = 0; (at = typed.find('-', at)) != std::string::npos; at += 2) {
      typed.insert(at, "\\");
    }
    EXPECT_THAT(page, HasSubstr("\n.B " + typed));
  }
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
