#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "features/GapFilling.h"
#include "features/MarkedMeshes.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using namespace gravlin::test;

// The hexagon's centre is 0, its rim 1 .. 6; 1 and 3 are marked, 2 lies between them.
TriangleMesh hexagonWithGap(double centreCurvature, double gapCurvature) {
  TriangleMesh mesh = hexagonFan();
  prepareLines(mesh, 1.0, 0.0);
  mesh.maxCurvature[0] = centreCurvature;
  mesh.maxCurvature[2] = gapCurvature;
  markRidge(mesh, {1, 3});
  return mesh;
}

TEST(GapFilling, TheNeighbourInTheGapIsMarkedWhenItIsStronger) {
  TriangleMesh mesh = hexagonWithGap(1.0, -2.0);
  fillGaps(mesh);
  EXPECT_THAT(mesh.ridgeMarks, ElementsAre(0, 1, 1, 1, 0, 0, 0));
}

TEST(GapFilling, AtEqualStrengthTheNeighbourInTheGapIsMarked) {
  TriangleMesh mesh = hexagonWithGap(2.0, -2.0);
  fillGaps(mesh);
  EXPECT_THAT(mesh.ridgeMarks, ElementsAre(0, 1, 1, 1, 0, 0, 0));
}

TEST(GapFilling, TheVertexItselfIsMarkedWhenItIsStronger) {
  TriangleMesh mesh = hexagonWithGap(-3.0, 2.0);
  fillGaps(mesh);
  EXPECT_EQ(mesh.ridgeMarks[0], 1);
  EXPECT_EQ(mesh.ridgeMarks[2], 0);
}

TEST(GapFilling, TheScanGoesOnAfterTheVertexItselfWasMarked) {
  TriangleMesh mesh = hexagonWithGap(2.0, 1.0);
  markRidge(mesh, {5});
  mesh.maxCurvature[4] = 5.0;
  fillGaps(mesh);
  EXPECT_EQ(mesh.ridgeMarks[0], 1) << "2 loses against the centre";
  EXPECT_EQ(mesh.ridgeMarks[2], 0);
  EXPECT_EQ(mesh.ridgeMarks[4], 1) << "4 wins against the centre, which is marked by then";
}

// Boundary rings count as closed: around vertex 1 of the hexagon the ring is 2, 0, 6.
TEST(GapFilling, ABoundaryVertexMayBeMarked) {
  TriangleMesh mesh = hexagonFan();
  prepareLines(mesh, 1.0, 0.0);
  mesh.maxCurvature[1] = 9.0;
  markRidge(mesh, {2, 6});
  fillGaps(mesh);
  EXPECT_EQ(mesh.ridgeMarks[1], 1);
}

TEST(GapFilling, ValleysUseTheMagnitudeOfTheMinimumCurvature) {
  TriangleMesh mesh = hexagonFan();
  prepareLines(mesh, 0.0, -1.0);
  mesh.minCurvature[2] = -4.0;
  mesh.valleyMarks[1] = 1;
  mesh.valleyMarks[3] = 1;
  fillGaps(mesh);
  EXPECT_THAT(mesh.valleyMarks, ElementsAre(0, 1, 1, 1, 0, 0, 0));
  EXPECT_THAT(mesh.ridgeMarks, ::testing::Each(0));
}

TEST(GapFilling, HostileMeshesPassAndMarksStayZeroOrOne) {
  for (auto& [name, mesh] : hostileMeshes()) {
    SCOPED_TRACE(name);
    prepareLines(mesh, 1.0, -1.0);
    for (std::size_t i = 0; i < mesh.ridgeMarks.size(); i += 2) mesh.ridgeMarks[i] = 1;
    fillGaps(mesh);
    EXPECT_THAT(mesh.ridgeMarks, ::testing::Each(::testing::AnyOf(0, 1)));
  }
}

}  // namespace
}  // namespace gravlin
