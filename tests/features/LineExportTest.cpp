#include <gtest/gtest.h>
#include <limits>

#include "features/LineExport.h"
#include "features/LinkGrowth.h"
#include "features/MarkedMeshes.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

/// A unit square whose boundary is a closed ridge and whose diagonal is a valley, in a file whose
/// unit is half a unit in memory and whose centre is (10, 0, 0).
TriangleMesh squareWithLines() {
  TriangleMesh mesh = test::twoTriangles();
  test::prepareLines(mesh, 3.0, -1.0);
  for (int v = 0; v < 4; ++v) link(mesh.ridgeLinks, v, (v + 1) % 4);
  link(mesh.valleyLinks, 0, 2);
  mesh.boxMin = {5.0F, -5.0F, -5.0F};
  mesh.boxMax = {15.0F, 5.0F, 5.0F};
  mesh.extentTolerance = 0.5;
  mesh.curvatureOrigin.unit = 0.5;
  return mesh;
}

TEST(LineExport, ObjHasFileUnitsOneRecordPerLineAndClosedLoops) {
  const TriangleMesh mesh = squareWithLines();
  EXPECT_EQ(linesAsObj(mesh, linesToExport(mesh, LineOrigin::RidgesAndValleys).lines),
            "v 10 0 0\nv 10.5 0 0\nv 10.5 0.5 0\nv 10 0.5 0\n"
            "g ridge\nl 1 2 3 4 1\ng valley\nl 1 3\n");
}

TEST(LineExport, VtkTellsKindAndMeanCurvatureInFileUnits) {
  const TriangleMesh mesh = squareWithLines();
  EXPECT_EQ(linesAsVtk(mesh, linesToExport(mesh, LineOrigin::RidgesAndValleys).lines),
            "# vtk DataFile Version 3.0\nFeature lines\nASCII\nDATASET POLYDATA\n"
            "POINTS 4 float\n10 0 0\n10.5 0 0\n10.5 0.5 0\n10 0.5 0\n"
            "LINES 2 9\n5 0 1 2 3 0\n2 0 2\n"
            "CELL_DATA 2\nSCALARS kind int 1\nLOOKUP_TABLE default\n0\n1\n"
            "SCALARS meanCurvature double 1\nLOOKUP_TABLE default\n6\n-2\n");
}

TEST(LineExport, MeanCurvatureKeepsTheScaleThatItWasEstimatedAt) {
  TriangleMesh mesh = squareWithLines();
  const double before = linesToExport(mesh, LineOrigin::RidgesAndValleys).lines[0].meanCurvature;
  EXPECT_EQ(before, 3.0 / 0.5);
  mesh.extentTolerance = 0.125;  // scaled anew: four times as large in memory
  EXPECT_EQ(linesToExport(mesh, LineOrigin::RidgesAndValleys).lines[0].meanCurvature, before);
}

TEST(LineExport, LinesOfTheCreaseDetectionAreConvexAndConcaveCreases) {
  const TriangleMesh mesh = squareWithLines();
  const auto lines = linesToExport(mesh, LineOrigin::Creases).lines;
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].kind, "convex_crease");
  EXPECT_EQ(lines[1].kind, "concave_crease");
}

// A hexagon of ridges around, and a valley through vertices 0 2 4 6 8 of a row beside it.
TEST(LineExport, LinesBreakAtPositionsThatAreNotFinite) {
  TriangleMesh mesh = test::twoTriangles();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  mesh.vertices.clear();
  for (int v = 0; v < 12; ++v) {
    for (const float x : {static_cast<float>(v), 0.0F, 0.0F}) mesh.vertices.push_back(x);
  }
  mesh.vertexCount = 12;
  mesh.boxMin = mesh.boxMax = {0.0F, 0.0F, 0.0F};
  mesh.extentTolerance = 1.0;
  test::prepareLines(mesh, 3.0, -1.0);
  for (int v = 0; v < 6; ++v) link(mesh.ridgeLinks, v, (v + 1) % 6);
  for (int v = 6; v < 11; ++v) link(mesh.valleyLinks, v, v + 1);
  mesh.vertices[3 * 2 + 1] = nan;                                      // in the ring
  mesh.vertices[3 * 7 + 2] = -std::numeric_limits<float>::infinity();  // leaves vertex 6 alone
  mesh.vertices[27] = std::numeric_limits<float>::max();  // of vertex 9, finite in memory only
  mesh.extentTolerance = 2.0;
  const auto [lines, broken] = linesToExport(mesh, LineOrigin::RidgesAndValleys);
  EXPECT_TRUE(broken);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].line, (Polyline{{3, 4, 5, 0, 1}, false}));
  EXPECT_EQ(lines[1].line, (Polyline{{10, 11}, false}));
  for (const std::string& text : {linesAsObj(mesh, lines), linesAsVtk(mesh, lines)}) {
    EXPECT_EQ(text.find("nan"), std::string::npos) << text;
    EXPECT_EQ(text.find("inf"), std::string::npos) << text;
  }
  const SilhouetteLines drawing = {{{{0, 1, 2, 3}, false}}, {{{6, 7, 8}, true}}};
  const auto penned = linesToExport(mesh, drawing).lines;
  ASSERT_EQ(penned.size(), 2U);
  EXPECT_EQ(penned[0].line, (Polyline{{0, 1}, false}));
  EXPECT_EQ(penned[1].line, (Polyline{{8, 6}, false})) << "across the former end";
}

// An end that is lost, a line that is lost altogether, and vertices that no line runs through.
TEST(LineExport, LinesAreBrokenOnlyWhereTheyMeetPositionsThatAreNotFinite) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const auto isBroken = [nan](int brokenVertex, const SilhouetteLines& drawing) {
    TriangleMesh mesh = test::bumpyGrid(3, 3);
    mesh.extentTolerance = 1.0;
    mesh.vertices[3 * static_cast<std::size_t>(brokenVertex) + 1] = nan;
    return linesToExport(mesh, drawing).broken;
  };
  const SilhouetteLines drawing = {{{{0, 1, 2}, false}}, {{{4, 5}, false}, {{6, 7, 8}, true}}};
  EXPECT_FALSE(isBroken(3, drawing));
  for (const int v : {0, 1, 2, 4, 5, 6, 7, 8}) EXPECT_TRUE(isBroken(v, drawing)) << v;
}

TEST(LineExport, WithoutLinesTheFilesAreEmptyButValid) {
  const TriangleMesh mesh = test::emptyMesh();
  EXPECT_EQ(linesAsObj(mesh, {}), "");
  EXPECT_NE(linesAsVtk(mesh, {}).find("LINES 0 0\n"), std::string::npos);
}

}  // namespace
}  // namespace gravlin
