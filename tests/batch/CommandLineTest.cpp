#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "batch/BatchRun.h"
#include "batch/CommandLine.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

CommandLine read(const std::vector<std::string>& words) {
  return readCommandLine(words);
}

/// A call as it would be typed again: "preset visualization lineWidth=2".
std::string textOfCall(const StepCall& call) {
  std::string text = call.step->name;
  if (call.subject != nullptr) text += " " + call.subject->name;
  for (const std::string& operand : call.operands) text += " " + operand;
  for (const Setting& setting : call.settings) text += " " + setting.field + "=" + setting.text;
  return text;
}

std::vector<std::string> callsOf(const std::vector<std::string>& words) {
  std::vector<std::string> texts;
  for (const StepCall& call : read(words).calls) texts.push_back(textOfCall(call));
  return texts;
}

std::string refusalOf(const std::vector<std::string>& words) {
  try {
    read(words);
  } catch (const UsageError& error) {
    return error.what();
  }
  return "";
}

TEST(CommandLine, KeepsTheOrderOfStepsThatStandSeveralTimes) {
  EXPECT_THAT(callsOf({"open", "a.ply2", "points", "open", "b.ply2", "points", "undo", "points",
                       "save", "c.ply2"}),
              ElementsAre("open a.ply2", "points", "open b.ply2", "points", "undo", "points",
                          "save c.ply2"));
}

TEST(CommandLine, GivesEveryStepItsOwnOptions) {
  EXPECT_THAT(callsOf({"visualization", "--line-width", "2", "points", "visualization",
                       "--point-size=5", "visualization"}),
              ElementsAre("visualization lineWidth=2", "points", "visualization pointSize=5",
                          "visualization"));
}

TEST(CommandLine, TakesACheckBoxBothWays) {
  EXPECT_THAT(callsOf({"visualization", "--gray-scale", "visualization", "--no-gray-scale"}),
              ElementsAre("visualization grayScale=1", "visualization grayScale=0"));
}

TEST(CommandLine, TakesNegativeValues) {
  EXPECT_THAT(
      callsOf({"view-direction", "--rx", "-30", "--rz=-1e-3", "camera", "--translate", "-1,0,-2",
               "pick", "-4", "5"}),
      ElementsAre("view-direction rx=-30 rz=-1e-3", "camera translate=-1,0,-2", "pick -4 5"));
}

TEST(CommandLine, PresetAndCancelSpeakOfAnotherStep) {
  EXPECT_THAT(
      callsOf({"preset", "visualization", "--line-width", "2", "visualization", "preset",
               "view-direction", "preset", "visualization", "cancel", "visualization",
               "visualization", "cancel", "visualization", "visualization", "visualization"}),
      ElementsAre("preset visualization lineWidth=2", "visualization", "preset view-direction",
                  "preset visualization", "cancel visualization", "visualization",
                  "cancel visualization", "visualization", "visualization"));
}

TEST(CommandLine, AFileMayBeCalledLikeAStepOrAnOption) {
  EXPECT_THAT(callsOf({"open", "points", "points", "save", "undo", "undo"}),
              ElementsAre("open points", "points", "save undo", "undo"));
  EXPECT_THAT(callsOf({"open", "--", "-x.ply2", "points", "save", "--", "--quiet", "points"}),
              ElementsAre("open -x.ply2", "points", "save --quiet", "points"));
}

TEST(CommandLine, KnowsQuiet) {
  EXPECT_FALSE(read({"points"}).quiet);
  EXPECT_TRUE(read({"--quiet", "points"}).quiet);
}

TEST(CommandLine, NamesWhatItDoesNotUnderstand) {
  EXPECT_EQ(refusalOf({"open", "a", "frobnicate"}), "unknown step frobnicate");
  EXPECT_EQ(refusalOf({"points", "--size", "3"}), "points: unknown option --size");
  EXPECT_EQ(refusalOf({"points", "undo", "points", "--colour"}), "points: unknown option --colour");
  EXPECT_EQ(refusalOf({"--loud", "points"}), "unknown option --loud");
  EXPECT_THAT(refusalOf({"points", "open"}), StartsWith("open: FILE is required"));
  EXPECT_THAT(refusalOf({"open", "a", "points", "open"}), StartsWith("open: FILE is required"));
  EXPECT_THAT(refusalOf({"visualization", "--line-width"}),
              StartsWith("visualization: --line-width"));
  EXPECT_THAT(refusalOf({"preset"}), HasSubstr("the name of a step is missing"));
  EXPECT_EQ(refusalOf({"preset", "points"}), "preset: points has no dialog");
  EXPECT_EQ(refusalOf({"cancel", "frobnicate"}), "unknown step frobnicate");
  EXPECT_THAT(refusalOf({"cancel", "visualization", "--line-width", "2"}),
              HasSubstr("unknown option --line-width"));
  EXPECT_THAT(refusalOf({}), HasSubstr("no step"));
  EXPECT_THAT(refusalOf({"--script"}), HasSubstr("--script"));
}

TEST(CommandLine, ASwitchIsToldThatItTakesNoValue) {
  EXPECT_EQ(
      refusalOf({"face-angle", "--pre-smoothing", "adaptive"}),
      "face-angle: --pre-smoothing takes no value such as adaptive; choose --pre-smoothing or "
      "--no-pre-smoothing");
  EXPECT_THAT(refusalOf({"preset", "face-angle", "--no-pre-smoothing", "1"}),
              StartsWith("face-angle: --no-pre-smoothing takes no value such as 1"));
  EXPECT_EQ(refusalOf({"face-angle", "--angle", "9", "--pre-smoothing=adaptive", "points"}),
            "face-angle: --pre-smoothing=adaptive: a switch takes no value");
  EXPECT_EQ(refusalOf({"smooth-shape", "--no-animate=99999999999999999999"}),
            "smooth-shape: --no-animate=99999999999999999999: a switch takes no value");
  EXPECT_THAT(callsOf({"face-angle", "--pre-smoothing", "points"}),
              ElementsAre(StartsWith("face-angle"), "points"));
  EXPECT_EQ(refusalOf({"face-angle", "--angle", "9", "frobnicate"}), "unknown step frobnicate");
}

TEST(CommandLine, AnswersHelpAndVersionInsteadOfCalls) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{"--help"},
                                                {"-h"},
                                                {"--version"},
                                                {"--man"},
                                                {"visualization", "--help"},
                                                {"open", "--help"},
                                                {"preset", "visualization", "--help"},
                                                {"open", "a", "points", "points", "--help"}}) {
    EXPECT_FALSE(read(words).answer.empty()) << words.back();
  }
  EXPECT_THAT(read({"preset", "visualization", "--help"}).answer, HasSubstr("--line-width"));
}

TEST(CommandLine, RunsAScriptInThePlaceWhereItStands) {
  const test::TemporaryFolder folder;
  const std::string script = folder.write("chain.txt",
                                          "# two steps\n"
                                          "\n"
                                          "  visualization --line-width 2   # wider\n"
                                          "points\r\n");
  EXPECT_THAT(callsOf({"open", "a", "--script", script, "undo", "--script", script}),
              ElementsAre("open a", "visualization lineWidth=2", "points", "undo",
                          "visualization lineWidth=2", "points"));
}

TEST(CommandLine, NamesTheLineOfAScriptThatItDoesNotUnderstand) {
  const test::TemporaryFolder folder;
  const std::string script = folder.write("chain.txt", "points\nfrobnicate\n");
  EXPECT_EQ(refusalOf({"--script", script}), script + ":2: unknown step frobnicate");
  const std::string open = folder.write("open.txt", "open \"a\n");
  EXPECT_EQ(refusalOf({"--script", open}), open + ":1: a quote is not closed");
}

TEST(CommandLine, AScriptThatCannotBeReadIsAFailureOfAFile) {
  EXPECT_THROW(read({"--script", "/no/such/file"}), StepFailure);
}

TEST(CommandLine, BehindTheSeparatorEveryWordIsAName) {
  EXPECT_THAT(callsOf({"open", "--", "--script", "save", "--", "--help"}),
              ElementsAre("open --script", "save --help"));
  EXPECT_THAT(callsOf({"points", "--", "undo"}), ElementsAre("points", "undo"));
  EXPECT_THAT(callsOf({"visualization", "--line-width", "2", "--", "undo"}),
              ElementsAre("visualization lineWidth=2", "undo"));
  EXPECT_THAT(callsOf({"open", "./-x", "render", "--size", "8x8", "--", "-y.png", "points"}),
              ElementsAre("open ./-x", "render -y.png size=8x8", "points"));
}

TEST(CommandLine, HelpBesideOtherStepsOrInTheirPlaceIsNoSuccess) {
  for (const std::vector<std::string>& alone : {std::vector<std::string>{"open", "--help"},
                                                {"open", "-h"},
                                                {"--quiet", "open", "--help"},
                                                {"open", "a", "--help"},
                                                {"visualization", "--line-width", "2", "--help"},
                                                {"preset", "visualization", "--help"},
                                                {"--help"},
                                                {"points", "--version"}}) {
    if (alone.back() == "--version") {
      EXPECT_EQ(refusalOf(alone), "points: unknown option --version");
      continue;
    }
    EXPECT_EQ(read(alone).notRun, "") << alone.front();
  }
  for (const std::vector<std::string>& chain :
       {std::vector<std::string>{"open", "--help", "save", "x.ply2"},
        {"open", "--help", "save"},
        {"open", "a", "save", "--help"},
        {"open", "a", "points", "points", "--help"},
        {"points", "--help", "undo"}}) {
    EXPECT_THAT(read(chain).answer, StartsWith("Usage: "));
    EXPECT_THAT(read(chain).notRun, HasSubstr("--help: help is for a step alone"));
    EXPECT_THAT(read(chain).notRun, HasSubstr("./--help"));
  }
  const test::TemporaryFolder folder;
  const std::string script = folder.write("chain.txt", "open --help\n");
  EXPECT_NE(read({"--script", script}).notRun, "");
  const std::string empty = folder.write("empty.txt", "\n");
  EXPECT_NE(read({"--script", empty, "open", "--help"}).notRun, "");
}

TEST(CommandLine, StandardInputIsOneScriptOnly) {
  const test::TemporaryFolder folder;
  const std::string steps = folder.write("steps.txt", "points\n");
  EXPECT_EQ(
      test::runShell(std::string(GRAVLIN_BATCH_PROGRAM) + " --script - < '" + steps + "'").status,
      0);
  const test::RunResult twice = test::runShell(std::string(GRAVLIN_BATCH_PROGRAM) +
                                               " --script - --script - < '" + steps + "'");
  EXPECT_EQ(twice.status, 2);
  EXPECT_EQ(twice.errors, "gravlin-batch: --script -: standard input can be read only once\n");
}

TEST(CommandLine, LongOptionListsAndLongChainsAreReadToTheirEnd) {
  std::vector<std::string> words = {"visualization"};
  for (int k = 0; k < 1000; ++k) {
    words.insert(words.end(), {"--line-width", std::to_string(k), "--gray-scale"});
  }
  words.push_back("points");
  EXPECT_THAT(callsOf(words), ElementsAre("visualization lineWidth=999 grayScale=1", "points"));
  words.back() = "--point-size";
  EXPECT_THAT(refusalOf(words), StartsWith("visualization: --point-size"));
  words.back() = "--colour";
  EXPECT_EQ(refusalOf(words), "visualization: unknown option --colour");
}

// Twice as many words take about twice as long; where every step copied all that follow it, these
// would be ten thousand million copies.
TEST(CommandLine, AChainOfAHundredThousandStepsOnOneLineIsReadAtOnce) {
  const std::vector<std::string> words(100000, "points");
  EXPECT_EQ(read(words).calls.size(), words.size());
}

}  // namespace
}  // namespace gravlin
