#include <filesystem>
#include <gtest/gtest.h>
#include <random>

#include "batch/BatchRun.h"
#include "batch/Session.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

/// Chains of random steps with random values, all of them such that the program takes them. Made of
/// the steps that there are, so a new command joins by its row in the command table.
class ChainMaker {
 public:
  ChainMaker(unsigned seed, std::vector<std::string> meshFiles,
             const test::TemporaryFolder& results)
      : random(seed), meshes(std::move(meshFiles)), folder(results) {}

  int below(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }

  template <class Items>
  auto anyOf(const Items& items) {
    return items[static_cast<std::size_t>(below(static_cast<int>(items.size())))];
  }

  std::vector<std::string> chain() {
    std::vector<std::string> words = {"open", anyOf(meshes)};
    const int length = 1 + below(8);
    for (int k = 0; k < length; ++k) addStep(words);
    words.insert(words.end(), {"report", "dump", folder.file("end.json")});
    return words;
  }

 private:
  void addStep(std::vector<std::string>& words) {
    const Step step = anyOf(allSteps());
    words.push_back(step.name);
    if (step.subject != Subject::None) {
      Step subject;
      while (!subject.hasDialog) subject = anyOf(allSteps());
      words.push_back(subject.name);
      if (step.subject == Subject::WithOptions) addOptions(subject, words);
      return;
    }
    for (const std::string& operand : step.operands) words.push_back(operandOf(step, operand));
    addOptions(step, words);
  }

  std::string operandOf(const Step& step, const std::string& operand) {
    if (operand != "FILE") return std::to_string(below(900) - 50);
    if (step.name == "open") return anyOf(meshes);
    if (step.name.starts_with("render")) return folder.file("last.png");
    return folder.file(anyOf(
        std::vector<std::string>{"a.ply2", "b.plyR", "c.obj", "d", "lines.vtk", "lines.svg"}));
  }

  void addOptions(const Step& step, std::vector<std::string>& words) {
    if (!step.form) return;
    Session session;
    for (const Field& field : step.form(session).fields) {
      if (!field.enabled || below(2) == 0) continue;
      const std::string name = kebabCase(field.name);
      if (std::holds_alternative<bool*>(field.value)) {
        words.push_back((below(2) == 0 ? "--" : "--no-") + name);
      } else if (const std::optional<std::string> text = valueOf(step, field, session)) {
        if (isComboBox(field)) words.push_back(anyTextOption);
        words.push_back("--" + name);
        words.push_back(*text);
      }
    }
  }

  /// A text that the field takes and that costs little time, however large numbers may be. Nothing
  /// where none is found.
  std::optional<std::string> valueOf(const Step& step, const Field& field, Session& session) {
    std::vector<std::string> texts = {
        "0",    "1",      "2",  "3",     "-1", "7",    "0.5",    "-0.25", "0.001",
        "1e30", "-1e-30", "90", "179.5", "",   "none", "1,-2,3", "40x30", "vertices,view"};
    for (const Choice& choice : field.choices) texts.emplace_back(choice.text);
    for (const Choice& choice : field.choices) texts.emplace_back(choice.word);
    for (int attempt = 0; attempt < 30; ++attempt) {
      const std::string text = anyOf(texts);
      if (!storeText(field, text).empty()) continue;
      try {
        if (step.check) step.check(session, {.step = &step, .operands = {"0", "0"}});
        return text;
      } catch (const UsageError&) {
        storeText(field, "");
      }
    }
    return std::nullopt;
  }

  std::minstd_rand random;
  std::vector<std::string> meshes;
  const test::TemporaryFolder& folder;
};

TEST(RandomChains, NeitherCrashNorHangNorGetRefusedOnHostileMeshes) {
  const test::TemporaryFolder folder;
  std::vector<std::string> meshes;
  for (const test::NamedMesh& named : test::hostileMeshes()) {
    meshes.push_back(test::writeMeshFile(
        folder, "hostile" + std::to_string(meshes.size()) + ".ply2", named.mesh));
  }
  meshes.push_back(test::writeMeshFile(folder, "sphere.ply2", test::icosphere(1)));
  meshes.push_back(folder.write("cut.plyR", "3 1 0 0 0 1 0 0 0 1 0 3 0 1 2 5 1 0 9"));
  for (unsigned seed = 0; seed < 200; ++seed) {
    const std::vector<std::string> words = ChainMaker(seed, meshes, folder).chain();
    std::string line;
    for (const std::string& word : words) line += " '" + word + "'";
    SCOPED_TRACE("seed " + std::to_string(seed) + ":" + line);
    const test::RunResult result = test::runBatchHere(words);
    EXPECT_TRUE(result.status == 0 || result.status == 1) << result.errors;
    // Only the last step of the chain writes this file.
    EXPECT_EQ(std::filesystem::remove(folder.file("end.json")), result.status == 0)
        << result.errors;
  }
}

}  // namespace
}  // namespace gravlin
