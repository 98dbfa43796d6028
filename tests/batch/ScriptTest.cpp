#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "batch/BatchRun.h"
#include "batch/Script.h"
#include "batch/Step.h"

namespace gravlin {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

using Lines = std::vector<std::vector<std::string>>;

Lines linesOf(const std::string& path) {
  Lines lines;
  readScript(path, [&](std::vector<std::string> words) { lines.push_back(std::move(words)); });
  return lines;
}

template <class Error>
std::string complaintAbout(const std::string& path) {
  try {
    linesOf(path);
  } catch (const Error& error) {
    return error.what();
  }
  return "";
}

TEST(WordsOf, SplitsAtBlanksOutsideQuotesUpToAComment) {
  EXPECT_THAT(wordsOf("  a\tb  "), ElementsAre("a", "b"));
  EXPECT_THAT(wordsOf(R"(--method "Laplacian Flow" 'it "is"')"),
              ElementsAre("--method", "Laplacian Flow", "it \"is\""));
  EXPECT_THAT(wordsOf("a '' b"), ElementsAre("a", "", "b"));
  EXPECT_THAT(wordsOf("pre'fix ed'#no # yes"), ElementsAre("prefix ed#no"));
  EXPECT_THAT(wordsOf("#"), IsEmpty());
  EXPECT_THAT(wordsOf(""), IsEmpty());
  EXPECT_THROW(wordsOf("'open"), UsageError);
}

TEST(Script, LineEndsOfEverySystemAndAMissingOneAreTheSame) {
  const test::TemporaryFolder folder;
  const Lines expected = {{"open", "a b"}, {}, {"points"}};
  for (const std::string text : {"open 'a b'\n\npoints\n", "open 'a b'\r\n\r\npoints\r\n",
                                 "open 'a b'\n# nothing\npoints", "open 'a b'\n\npoints\r"}) {
    EXPECT_EQ(linesOf(folder.write("chain.txt", text)), expected) << text;
  }
  EXPECT_THAT(linesOf(folder.write("empty.txt", "")), IsEmpty());
}

TEST(Script, AByteOrderMarkIsSkippedAtTheBeginningAlone) {
  const test::TemporaryFolder folder;
  const std::string mark = "\xEF\xBB\xBF";
  const Lines expected = {{"points"}, {mark + "undo"}};
  EXPECT_EQ(linesOf(folder.write("chain.txt", mark + "points\n" + mark + "undo\n")), expected);
  EXPECT_THAT(linesOf(folder.write("mark.txt", mark)), IsEmpty());
}

TEST(Script, ControlCharactersAreRefusedWithTheirLine) {
  const test::TemporaryFolder folder;
  for (const auto& [text, shown] : {std::pair("points\nopen a\0b\n"s, R"(\x00)"),
                                    {"points\nopen \x1b[31m\n", R"(\x1b)"},
                                    {"points\nundo\rsave x.ply2\n", R"(\r)"},
                                    {"points\nundo # \x7f\n", R"(\x7f)"},
                                    {"points\nopen 'a\fb'\n", R"(\x0c)"}}) {
    const std::string path = folder.write("chain.txt", text);
    EXPECT_THAT(complaintAbout<UsageError>(path),
                StartsWith(path + ":2: there is a control character, " + shown + ";"));
  }
  // "points" in the two bytes a letter that some editors write, with the mark that goes with them.
  std::string wide = "\xFF\xFE";
  for (const char c : "points\n"s) wide += std::string{c, '\0'};
  EXPECT_THAT(complaintAbout<UsageError>(folder.write("wide.txt", wide)), HasSubstr("UTF-8"));
}

TEST(Script, BytesBeyondAsciiPass) {
  const test::TemporaryFolder folder;
  const Lines expected = {{"open", "Gr\u00fc\u00dfe.ply2"}, {"open", "gr\xfc\xdf"}};
  EXPECT_EQ(linesOf(folder.write("chain.txt", "open Gr\u00fc\u00dfe.ply2\nopen gr\xfc\xdf\n")),
            expected);
}

TEST(Script, EndsWithAMessageWhereItPassesItsLargestLength) {
  const test::TemporaryFolder folder;
  const std::string longest(longestScript, '#');
  EXPECT_EQ(complaintAbout<StepFailure>(folder.write("long.txt", longest)), "");
  EXPECT_THAT(complaintAbout<StepFailure>(folder.write("longer.txt", longest + "#")),
              HasSubstr("longer.txt could not be read: a script has at most 64 MiB"));
  EXPECT_THAT(complaintAbout<StepFailure>("/dev/zero"), HasSubstr("64 MiB"));
}

TEST(Script, TellsWhyItCannotBeRead) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(complaintAbout<StepFailure>("/no/such/file"),
            "/no/such/file could not be read: No such file or directory.");
  EXPECT_THAT(complaintAbout<StepFailure>(folder.file("")), HasSubstr("Is a directory"));
}

}  // namespace
}  // namespace gravlin
