#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "doc/CGravlinDoc.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"
#include "support/ScriptedOutside.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Handler = void (CGravlinDoc::*)();

class ViewCommands : public ::testing::Test {
 protected:
  void load(TriangleMesh mesh) { test::setMesh(doc, std::move(mesh)); }

  test::ScriptedOutside outside;
  CGravlinDoc doc{outside};
};

TEST_F(ViewCommands, ShowTheirModeWithOneRedraw) {
  load(test::cube());
  for (const auto& [handler, mode] : {std::pair<Handler, int>{&CGravlinDoc::OnSmoothShading, 1},
                                      {&CGravlinDoc::OnFlatShading, 2},
                                      {&CGravlinDoc::OnWireFrame, 3},
                                      {&CGravlinDoc::OnNonManifoldPoints, 21},
                                      {&CGravlinDoc::OnPoints, 26}}) {
    outside.forget();
    (doc.*handler)();
    EXPECT_EQ(doc.displayMode, mode);
    EXPECT_THAT(outside.calls, ElementsAre("redraw"));
  }
}

TEST_F(ViewCommands, WireFrameTellsWhyTheLinesOfAnInsideOutMeshAreHidden) {
  load(test::insideOutCube());
  doc.OnWireFrame();
  ASSERT_THAT(outside.statuses, ::testing::SizeIs(1));
  EXPECT_THAT(outside.statuses[0], ::testing::HasSubstr("inside out"));
  doc.OnPoints();
  EXPECT_EQ(outside.statuses.back(), "") << "other pictures are right";
  for (TriangleMesh mesh : {test::cube(), test::grid(2, 2), test::emptyMesh()}) {
    load(std::move(mesh));
    outside.forget();
    doc.OnWireFrame();
    EXPECT_THAT(outside.statuses, IsEmpty());
  }
}

TEST_F(ViewCommands, UndoInWireFrameTellsItAgain) {
  load(test::insideOutCube());
  doc.OnWireFrame();
  doc.keepUndoCopy();
  outside.forget();
  doc.OnEditUndo();
  EXPECT_THAT(outside.statuses.back(), ::testing::HasSubstr("inside out"));
}

TEST_F(ViewCommands, PointsAndTheShadingsDoNothingWithoutAMesh) {
  const int before = doc.displayMode;
  for (const Handler handler : {&CGravlinDoc::OnPoints, &CGravlinDoc::OnFlatShading,
                                &CGravlinDoc::OnSmoothShading, &CGravlinDoc::OnWireFrame}) {
    (doc.*handler)();
    EXPECT_EQ(doc.displayMode, before);
    EXPECT_THAT(outside.calls, IsEmpty());
  }
}

TEST_F(ViewCommands, NonManifoldPointsIsChosenAlsoWithoutAMesh) {
  doc.OnNonManifoldPoints();
  EXPECT_EQ(doc.displayMode, NonManifoldPoints);
  EXPECT_THAT(outside.calls, ElementsAre("redraw"));
}

TEST_F(ViewCommands, EdgeOnlyRedrawsAndEnhancementDoesNothing) {
  load(test::cube());
  doc.displayMode = Points;
  doc.OnEnhancement();
  EXPECT_THAT(outside.calls, IsEmpty());
  doc.OnEdge();
  EXPECT_THAT(outside.calls, ElementsAre("redraw"));
  EXPECT_EQ(doc.displayMode, Points);
}

TEST_F(ViewCommands, ShadingsBringTheNormalsThatTheyDraw) {
  const TriangleMesh cube = test::cube();
  TriangleMesh bare = cube;
  bare.faceNormals.clear();
  bare.vertexNormals.clear();

  load(bare);
  doc.OnFlatShading();
  EXPECT_EQ(doc.mesh()->faceNormals, cube.faceNormals);
  EXPECT_THAT(doc.mesh()->vertexNormals, IsEmpty());

  load(bare);
  doc.OnSmoothShading();
  EXPECT_EQ(doc.mesh()->vertexNormals, cube.vertexNormals);

  load(bare);
  doc.OnWireFrame();
  EXPECT_EQ(doc.mesh()->faceNormals, cube.faceNormals);
  EXPECT_EQ(doc.mesh()->vertexNormals, cube.vertexNormals);
}

TEST_F(ViewCommands, SmoothShadingKeepsVertexNormalsThatAreThere) {
  load(test::cube());
  test::meshOf(doc).vertexNormals[0] = 7.0F;
  doc.OnSmoothShading();
  EXPECT_EQ(doc.mesh()->vertexNormals[0], 7.0F);
}

TEST_F(ViewCommands, LightingGoesToTheViewAndKeepsTheMode) {
  load(test::cube());
  doc.displayMode = WireFrame;
  for (const auto& [handler, call] :
       {std::pair<Handler, std::string>{&CGravlinDoc::OnLightingRgb, "lighting 0"},
        {&CGravlinDoc::OnLightingRed, "lighting 1"},
        {&CGravlinDoc::OnLightingGreen, "lighting 2"},
        {&CGravlinDoc::OnLightingBlue, "lighting 3"}}) {
    outside.forget();
    (doc.*handler)();
    EXPECT_THAT(outside.calls, ElementsAre(call, "redraw"));
    EXPECT_EQ(doc.displayMode, WireFrame);
  }
}

TEST_F(ViewCommands, ColourLegendIsOffUntilChosenAndOffAgainTheSecondTime) {
  EXPECT_FALSE(doc.showsColourLegend);
  doc.OnColourLegend();
  EXPECT_TRUE(doc.showsColourLegend);
  EXPECT_THAT(outside.calls, ElementsAre("redraw"));
  doc.OnColourLegend();
  EXPECT_FALSE(doc.showsColourLegend);
}

TEST_F(ViewCommands, LightingDoesNotTouchTheValuesOfTheVisualizationDialog) {
  doc.visualizationParameters.lineWidth = 4.0F;
  doc.OnLightingRed();
  EXPECT_EQ(doc.visualizationParameters.lineWidth, 4.0F);
}

TEST_F(ViewCommands, VisualizationPassesWidthAndSizeOnAndRemembersThem) {
  outside.dialogAnswers = {
      test::okWith({{"lineWidth", "2.5"}, {"pointSize", "0"}, {"grayScale", "1"}}), test::ok()};
  doc.OnOptionVisualization();
  EXPECT_THAT(outside.calls,
              ElementsAre("dialog CVisualizationDlg", "line width 2.5 point size 0", "redraw"));
  EXPECT_TRUE(doc.visualizationParameters.grayScale);
  outside.forget();
  doc.OnOptionVisualization();
  EXPECT_THAT(outside.calls,
              ElementsAre("dialog CVisualizationDlg", "line width 2.5 point size 0", "redraw"));
}

TEST_F(ViewCommands, VisualizationHasItsDefaultsAndRanges) {
  outside.dialogAnswers = {[](const Form& form) {
    EXPECT_EQ(form.title, "Visualization");
    EXPECT_THAT(form.fields, ::testing::SizeIs(3));
    const std::vector<std::string_view> labels = {"Line width", "Point size", "Gray-Scale"};
    const std::vector<std::string> defaults = {"1", "3", "0"};
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_EQ(form.fields[k].label, labels[k]);
      EXPECT_EQ(textOf(form.fields[k]), defaults[k]);
    }
    for (std::size_t k = 0; k < 2; ++k) {
      EXPECT_EQ(storeText(form.fields[k], "100.5"), "Enter a number between 0 and 100.");
    }
    return false;
  }};
  doc.OnOptionVisualization();
  EXPECT_TRUE(outside.finished()) << "the dialog came";
}

TEST_F(ViewCommands, CancelledOptionDialogsChangeNothing) {
  load(test::cube());
  outside.angles = {1.0F, 2.0F, 3.0F};
  outside.dialogAnswers = {test::cancel(), test::cancel()};
  doc.OnOptionVisualization();
  EXPECT_THAT(outside.calls, ElementsAre("dialog CVisualizationDlg"));
  outside.forget();
  doc.OnOptionViewDirection();
  EXPECT_THAT(outside.calls, ElementsAre("counts 8 12", "dialog CViewAngleDlg"));
  EXPECT_EQ(outside.angles.rz, 3.0F);
}

TEST_F(ViewCommands, ViewDirectionShowsTheAnglesOfTheViewAndSetsThem) {
  load(test::cube());
  outside.angles = {10.0F, -20.0F, 30.5F};
  outside.dialogAnswers = {[](const Form& form) {
    EXPECT_EQ(form.title, "View Angle");
    const std::vector<std::string_view> labels = {"Rx", "Ry", "Rz"};
    const std::vector<std::string> shown = {"10", "-20", "30.5"};
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_EQ(form.fields[k].label, labels[k]);
      EXPECT_EQ(textOf(form.fields[k]), shown[k]);
    }
    EXPECT_EQ(storeText(form.fields[1], "725"), "");  // no range: more than one turn is a value too
    return true;
  }};
  doc.OnOptionViewDirection();
  EXPECT_THAT(outside.calls,
              ElementsAre("counts 8 12", "dialog CViewAngleDlg", "angles 10 725 30.5", "redraw"));
}

TEST_F(ViewCommands, ViewDirectionCountsUsedVerticesAndValidFacesOnly) {
  load(test::makeMesh({{9, 9, 9}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{1, 2, 3}, {1, 1, 2}}));
  outside.dialogAnswers = {test::cancel(), test::cancel()};
  doc.OnOptionViewDirection();
  test::dropMesh(doc);
  doc.OnOptionViewDirection();
  EXPECT_EQ(outside.count("counts 3 1"), 1);
  EXPECT_EQ(outside.count("counts 0 0"), 1);
}

TEST_F(ViewCommands, ChangeNothingOfAHostileMeshButTheMode) {
  const std::pair<Handler, DisplayMode> modes[] = {
      {&CGravlinDoc::OnPoints, Points},
      {&CGravlinDoc::OnFlatShading, FlatShading},
      {&CGravlinDoc::OnSmoothShading, SmoothShading},
      {&CGravlinDoc::OnWireFrame, WireFrame},
      {&CGravlinDoc::OnNonManifoldPoints, NonManifoldPoints}};
  for (const test::NamedMesh& hostile : test::hostileMeshes()) {
    SCOPED_TRACE(hostile.name);
    load(hostile.mesh);
    for (const auto& [handler, mode] : modes) {
      outside.forget();
      (doc.*handler)();
      EXPECT_THAT(outside.calls, ElementsAre("redraw"));
      EXPECT_EQ(doc.displayMode, mode);
    }
    EXPECT_TRUE(test::sameVertices(*doc.mesh(), hostile.mesh));
    EXPECT_EQ(doc.mesh()->faces, hostile.mesh.faces);
    EXPECT_FALSE(doc.modified);
  }
}

}  // namespace
}  // namespace gravlin
