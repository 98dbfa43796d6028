#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

#include "doc/CommandTable.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"
#include "support/ScriptedOutside.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

// Commands that are not of the vocabulary below, which users and scripts know by its order and its
// texts, have later numbers and may stand anywhere among it.
constexpr int firstLaterId = 32900;
constexpr int lastLaterId = 32999;

TEST(CommandTable, HoldsEveryMenuItemWithItsExactTextInMenuOrder) {
  const std::vector<std::string> expected = {
      "File / &Open...\tCtrl+O",
      "File / &Save\tCtrl+S",
      "File / Save &As... ",
      "File / Import...",
      "File / Export...",
      "File / Export Lines...",
      "Edit / Undo (1 history only)",
      "Edit/Smoothing / Shape",
      "Edit/Smoothing / Shape(Adaptive)",
      "Edit/Smoothing / Curvature Tensor",
      "Edit/Smoothing / Noise",
      "Edit/Edge Detection / Local Max",
      "Edit/Edge Detection / Face Angle",
      "Edit / Subdivision",
      "Edit / Simplification (not yet)",
      "Edit / Enhancement (not yet)",
      "Edit / Edge Flip",
      "Visualization / Flat Shading",
      "Visualization / Smooth Shading",
      "Visualization / Wire Frame",
      "Visualization/Curvature/Direction / max",
      "Visualization/Curvature/Direction / min",
      "Visualization/Curvature/Curvature / max",
      "Visualization/Curvature/Curvature / min",
      "Visualization/Curvature/Curvature / mean",
      "Visualization/Curvature/Curvature / gauss",
      "Visualization/Curvature/Curvature / total",
      "Visualization/Curvature/Tensor / max",
      "Visualization/Curvature/Tensor / min",
      "Visualization/Curvature/Stroke / max",
      "Visualization/Curvature/Stroke / min",
      "Visualization / Edge Curvature",
      "Visualization/Local Property / Diffrences of Normals",
      "Visualization / Points",
      "Visualization / Non-Manifold Points",
      "Visualization / Edge (not yet)",
      "Visualization / Silhouette",
      "Visualization/Ligthing / RGB",
      "Visualization/Ligthing / Red",
      "Visualization/Ligthing / Green",
      "Visualization/Ligthing / Blue",
      "Visualization / Colour legend",
      "Option / Visualization",
      "Option / View Direction",
      "EXPERIMET / Show Vertex Error",
      "EXPERIMET / Show Face Error",
      "EXPERIMET / Set Ideal Mesh",
      "EXPERIMET / Error (Do not select this!!)",
  };
  std::vector<std::string> items;
  for (const Command& row : commandTable()) {
    if (row.id >= firstLaterId && row.id <= lastLaterId) continue;
    items.push_back(std::string(row.menuPath) + " / " + std::string(row.text));
  }
  EXPECT_THAT(items, ElementsAreArray(expected));
}

TEST(CommandTable, HasFiveMenusEachInOnePiece) {
  std::vector<std::string_view> menus;
  for (const Command& row : commandTable()) {
    const std::string_view menu = row.menuPath.substr(0, row.menuPath.find('/'));
    if (menus.empty() || menus.back() != menu) menus.push_back(menu);
  }
  EXPECT_THAT(menus, ElementsAre("File", "Edit", "Visualization", "Option", "EXPERIMET"));
}

TEST(CommandTable, NumbersEveryCommandOnceWithinItsRange) {
  std::set<int> ids;
  for (const Command& row : commandTable()) {
    EXPECT_TRUE(ids.insert(row.id).second) << row.text << " shares " << row.id;
    const bool own =
        (row.id >= 32771 && row.id <= 32830) || (row.id >= firstLaterId && row.id <= lastLaterId);
    const bool ofEveryDocument = row.id >= 57600 && row.id <= 57665;
    EXPECT_TRUE(own || ofEveryDocument) << row.text << " has " << row.id;
    EXPECT_EQ(findCommand(row.id), &row);
  }
  EXPECT_EQ(findCommand(0), nullptr);
}

TEST(CommandTable, KeepsTheNumbersThatScriptsAndHelpRelyOn) {
  const std::vector<std::pair<int, std::string_view>> known = {
      {32772, "smooth-shape"},  {32773, "smooth-adaptive"}, {32776, "local-max"},
      {32777, "face-angle"},    {32778, "subdivision"},     {32779, "simplification"},
      {32791, "smooth-tensor"}, {32794, "noise"},           {32803, "edge-curvature"},
      {32804, "silhouette"},    {32805, "stroke-max"},      {32806, "stroke-min"}};
  for (const auto& [id, step] : known) {
    ASSERT_NE(findCommand(id), nullptr) << step;
    EXPECT_EQ(findCommand(id)->step, step);
  }
}

TEST(CommandTable, NamesEveryStepOnceInKebabCase) {
  std::set<std::string_view> steps;
  for (const Command& row : commandTable()) {
    if (row.step.empty()) continue;
    EXPECT_TRUE(steps.insert(row.step).second) << row.step;
    EXPECT_EQ(row.step.find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string_view::npos)
        << row.step;
    EXPECT_EQ(findStep(row.step), &row);
  }
  EXPECT_EQ(findStep("no-such-step"), nullptr);
  EXPECT_EQ(findStep(""), nullptr);
}

TEST(CommandTable, FormsHaveDistinctOptionsDefaultsInRangeAndAWordForEveryRadioButton) {
  test::ScriptedOutside outside;
  CGravlinDoc doc(outside);
  for (const Command& row : commandTable()) {
    if (row.form == nullptr) continue;
    const Form form = row.form(doc);
    std::set<std::string> options;
    const Field* before = nullptr;
    for (const Field& field : form.fields) {
      SCOPED_TRACE(std::string(row.step) + " --" + kebabCase(field.name));
      EXPECT_TRUE(options.insert(kebabCase(field.name)).second);
      EXPECT_EQ(storeText(field, textOf(field)), "") << "the default is refused on OK";
      const bool radio = std::holds_alternative<int*>(field.value) && !field.choices.empty();
      const bool number = !radio && !std::holds_alternative<bool*>(field.value);
      const bool secondNumber = number && before != nullptr && before->group == field.group &&
                                before->value.index() == field.value.index();
      EXPECT_TRUE(radio || secondNumber || !field.label.empty())
          << "only buttons speak for themselves, and a number for the one behind it";
      before = &field;
      std::set<std::string_view> words;
      for (const Choice& choice : field.choices) {
        EXPECT_EQ(radio, !choice.word.empty());
        const bool isNew = words.insert(choice.word).second;
        EXPECT_TRUE(isNew || !radio) << choice.word;
      }
    }
  }
}

TEST(CommandTable, EveryHandlerIsSafeWithoutAMesh) {
  for (const Command& row : commandTable()) {
    if (row.handler == nullptr) continue;
    SCOPED_TRACE(row.text);
    for (const test::DialogAnswer& answer : {test::ok(), test::cancel()}) {
      test::ScriptedOutside outside;
      CGravlinDoc doc(outside);
      outside.dialogAnswers.assign(9, answer);
      outside.fileAnswers.assign(1, std::nullopt);
      (doc.*row.handler)();
      EXPECT_EQ(doc.mesh(), nullptr);
      EXPECT_EQ(doc.undoMesh, nullptr);
      EXPECT_FALSE(doc.modified);
    }
  }
}

TEST(CommandTable, CancellingTheDialogOfACommandChangesNothing) {
  for (const Command& row : commandTable()) {
    if (row.handler == nullptr || (row.form == nullptr && !row.file)) continue;
    // Strokes choose their mode before they ask, and keep it.
    const bool choosesModeFirst = row.step == "stroke-max" || row.step == "stroke-min";
    SCOPED_TRACE(row.text);
    test::ScriptedOutside outside;
    CGravlinDoc doc(outside);
    const TriangleMesh mesh = test::icosphere(1);
    test::setMesh(doc, mesh);
    doc.displayMode = WireFrame;
    outside.dialogAnswers = {test::cancel()};
    outside.fileAnswers = {std::nullopt};
    (doc.*row.handler)();
    EXPECT_EQ(doc.mesh()->vertices, mesh.vertices);
    EXPECT_EQ(doc.mesh()->faces, mesh.faces);
    EXPECT_EQ(doc.displayMode == WireFrame, !choosesModeFirst);
    EXPECT_EQ(doc.undoMesh, nullptr);
    EXPECT_FALSE(doc.modified);
    EXPECT_EQ(outside.count("redraw"), 0);
  }
}

/// The steps that change where vertices are or which faces there are.
bool changesShape(const Command& row) {
  constexpr std::string_view steps[] = {"smooth-shape", "smooth-adaptive", "noise", "subdivision",
                                        "simplification"};
  return std::ranges::find(steps, row.step) != std::end(steps);
}

/// Expects of a mesh that what is derived from its faces and positions belongs to them.
void expectUpToDate(const TriangleMesh& mesh) {
  TriangleMesh anew = mesh;
  anew.buildAdjacency();
  anew.buildFaceAdjacency();
  EXPECT_EQ(mesh.faces, anew.faces);
  EXPECT_EQ(mesh.vertexKind, anew.vertexKind);
  EXPECT_EQ(mesh.vertexNeighbours.items, anew.vertexNeighbours.items);
  EXPECT_EQ(mesh.faceAdjacency, anew.faceAdjacency);
  EXPECT_EQ(mesh.faceNormals.size(), mesh.faces.size());
  EXPECT_EQ(mesh.vertexNormals.size(), mesh.vertices.size());
}

TEST(CommandTable, EveryHandlerLeavesAnUpToDateMeshOfAHostileOne) {
  for (const Command& row : commandTable()) {
    if (row.handler == nullptr) continue;
    for (const test::NamedMesh& hostile : test::hostileMeshes()) {
      SCOPED_TRACE(std::string(row.text) + " on " + hostile.name);
      test::ScriptedOutside outside;
      CGravlinDoc doc(outside);
      test::setMesh(doc, hostile.mesh);
      outside.dialogAnswers.assign(9, test::ok());
      outside.fileAnswers.assign(1, std::nullopt);
      (doc.*row.handler)();
      ASSERT_NE(doc.mesh(), nullptr);
      EXPECT_FALSE(doc.needsRecompute && outside.count("redraw") > 0);
      expectUpToDate(*doc.mesh());
      EXPECT_EQ(doc.undoMesh != nullptr, changesShape(row));
      EXPECT_EQ(doc.modified, changesShape(row));
      if (test::isFinite(hostile.mesh)) {
        EXPECT_TRUE(test::isFinite(*doc.mesh()));
      }
      if (changesShape(row)) {
        EXPECT_TRUE(test::sameVertices(*doc.undoMesh, hostile.mesh));
        EXPECT_EQ(doc.undoMesh->faces, hostile.mesh.faces);
      } else {
        EXPECT_TRUE(test::sameVertices(*doc.mesh(), hostile.mesh));
        EXPECT_EQ(doc.mesh()->faces, hostile.mesh.faces);
      }
    }
  }
}

}  // namespace
}  // namespace gravlin
