#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

#include "batch/BatchRun.h"
#include "batch/Step.h"

namespace gravlin {
namespace {

namespace fs = std::filesystem;

const fs::path source = GRAVLIN_SOURCE_DIR;

/// The shell commands of the page, the contents of its fences marked "sh".
std::vector<std::string> commandBlocks() {
  std::istringstream page(test::contentOf(source / "docs/guide/08-batch.md"));
  std::vector<std::string> blocks;
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line == "```sh") {
      inside = true;
      blocks.emplace_back();
    } else if (line == "```") {
      inside = false;
    } else if (inside) {
      blocks.back() += line + "\n";
    }
  }
  return blocks;
}

/// The words after "> " and after the steps that write files.
std::vector<std::string> filesWrittenBy(const std::string& block) {
  std::istringstream words(block);
  const std::set<std::string> writers = {"save", "dump", "render", "render-histogram", ">"};
  std::vector<std::string> files;
  std::string before;
  for (std::string word; words >> word; before = word) {
    const bool literal = word.find_first_of("$-{") == std::string::npos;
    if (writers.contains(before) && literal) files.push_back(word);
  }
  return files;
}

class GuideCommands : public ::testing::TestWithParam<int> {};

TEST_P(GuideCommands, DoWhatTheySayOnTheExampleMeshes) {
  const std::string block = commandBlocks().at(static_cast<std::size_t>(GetParam()));
  const test::TemporaryFolder folder;
  for (const fs::directory_entry& entry : fs::directory_iterator(source / "examples")) {
    if (entry.path().extension() == ".ply2") {
      fs::copy_file(entry.path(), folder.file(entry.path().filename()));
    }
  }
  const fs::path program = GRAVLIN_BATCH_PROGRAM;
  const test::RunResult result =
      test::runShell("set -e\ncd '" + folder.file("") + "'\nPATH='" +
                     program.parent_path().string() + "':$PATH\nunset DISPLAY\n" + block);
  EXPECT_EQ(result.status, 0) << block << result.errors;
  for (const std::string& name : filesWrittenBy(block)) {
    EXPECT_TRUE(fs::exists(folder.file(name))) << name << " of\n" << block;
  }
}

INSTANTIATE_TEST_SUITE_P(Guide, GuideCommands,
                         ::testing::Range(0, static_cast<int>(commandBlocks().size())));

TEST(Guide, HasAtLeastTenChainsAndTellsOfSetsOfMeshes) {
  const std::vector<std::string> blocks = commandBlocks();
  EXPECT_GE(blocks.size(), 10U);
  const std::string page = test::contentOf(source / "docs/guide/08-batch.md");
  for (const char* tool : {"xargs", "parallel", "SLURM_ARRAY_TASK_ID"}) {
    EXPECT_THAT(page, ::testing::HasSubstr(tool));
  }
}

}  // namespace
}  // namespace gravlin
