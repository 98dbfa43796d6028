#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "batch/Session.h"
#include "batch/ViewSteps.h"
#include "doc/CommandTable.h"

namespace gravlin {
namespace {

const Step* stepNamed(std::string_view name) {
  for (const Step& step : allSteps()) {
    if (step.name == name) return &step;
  }
  return nullptr;
}

TEST(Steps, ContainEveryCommandThatHasAHandlerAndAName) {
  for (const Command& row : commandTable()) {
    if (row.step.empty()) continue;
    const Step* step = stepNamed(row.step);
    ASSERT_EQ(step != nullptr, row.handler != nullptr) << row.step;
    if (step == nullptr) continue;
    EXPECT_EQ(step->hasDialog, row.form != nullptr);
    EXPECT_EQ(step->operands.size(), row.file ? 1U : 0U);
  }
}

TEST(Steps, AreNamedOnce) {
  std::set<std::string> names;
  for (const Step& step : allSteps()) EXPECT_TRUE(names.insert(step.name).second) << step.name;
}

TEST(Steps, TellWhereInTheMenuTheyStand) {
  EXPECT_EQ(stepNamed("open")->summary, "File > Open...");
  EXPECT_EQ(stepNamed("save")->summary, "File > Save As...");
  EXPECT_EQ(stepNamed("lighting-red")->summary, "Visualization > Ligthing > Red");
}

TEST(Steps, ParseSizes) {
  ASSERT_TRUE(parseSize("800x600"));
  EXPECT_EQ(parseSize("800x600")->width, 800);
  EXPECT_EQ(parseSize("800x600")->height, 600);
  EXPECT_TRUE(parseSize("16384x1"));
  EXPECT_FALSE(parseSize("16385x1")) << "more than any driver draws into";
  for (const char* text : {"", "800", "800x", "x600", "0x600", "800x-1", "800x600x1", "8 x 6",
                           "8e2x600", "99999999999x600", "800X600"}) {
    EXPECT_FALSE(parseSize(text)) << text;
  }
}

TEST(Steps, RefusalsNameTheOption) {
  VisualizationParameters values;
  const std::vector<Setting> settings = {{"lineWidth", "101"}};
  try {
    applySettings(values.form(), settings);
    FAIL();
  } catch (const UsageError& error) {
    EXPECT_STREQ(error.what(), "--line-width: Enter a number between 0 and 100.");
  }
}

}  // namespace
}  // namespace gravlin
