// A single ridge of 200,000 vertices through all stages, none of which may be as deep in recursion
// or as quadratic in time as the line is long.

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "features/ExtremaExtraction.h"
#include "features/GapFilling.h"
#include "features/LineConnection.h"
#include "features/LineExport.h"
#include "features/LineGraph.h"
#include "features/MarkedMeshes.h"
#include "features/RidgeLineSmoother.h"
#include "features/RidgeThresholds.h"
#include "features/SilhouetteLines.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using namespace gravlin::test;

constexpr int ridgeVertices = 200000;
constexpr int columns = ridgeVertices + 1;  // the first and the last column are boundary
constexpr int dentEvery = 50000;
constexpr int dents = 3;

/// A strip two squares wide whose middle row is a ridge of curvature 30 with three dents, where it
/// is below the rows beside it, and yet the cheapest way on. Principal directions as in a trough
/// along x, turned by a hair from the mesh's edges so that no section plane holds a ring vertex.
TriangleMesh stripWithRidge() {
  constexpr double hair = 1e-6;
  TriangleMesh mesh = grid(columns, 2);
  prepareLines(mesh, 30.0, -1.0);
  const GridIndex at{columns};
  for (int c = 0; c <= columns; ++c) {
    for (const int r : {0, 2}) mesh.maxCurvature[static_cast<std::size_t>(at(c, r))] = 27.0;
    if (c % dentEvery == 0 && c < ridgeVertices)
      mesh.maxCurvature[static_cast<std::size_t>(at(c, 1))] = 26.9;
  }
  for (int i = 0; i < mesh.vertexCount; ++i) {
    mesh.maxDirection.insert(mesh.maxDirection.end(), {-hair, 1.0, 0.0});
    mesh.minDirection.insert(mesh.minDirection.end(), {1.0, hair, 0.0});
  }
  return mesh;
}

int markCount(const TriangleMesh& mesh) {
  return static_cast<int>(std::count(mesh.ridgeMarks.begin(), mesh.ridgeMarks.end(), 1));
}

TEST(LongLine, PassesThroughEveryStage) {
  TriangleMesh mesh = stripWithRidge();
  extractExtrema(mesh);
  constexpr float threshold = 20.0F;
  thresholdConstant(mesh, threshold);
  compareAbsoluteValues(mesh);
  fillGaps(mesh);
  EXPECT_EQ(markCount(mesh), ridgeVertices - dents);

  buildLineGraph(mesh);
  EXPECT_EQ(chainLinks(mesh.ridgeLinks).size(), static_cast<std::size_t>(dents) + 1);
  connectLines(mesh, 200.0F, {threshold, -threshold});
  EXPECT_EQ(chainLinks(mesh.ridgeLinks).size(), 1U);

  RidgeLineSmoother smoother;
  smoother.attach(&mesh);
  smoother.smooth(2, 0.1F);
  for (int c = 2; c < columns - 1; ++c) {
    const int v = GridIndex{columns}(c, 1);
    ASSERT_EQ(mesh.position(v), (Vec3{static_cast<double>(c), 1.0, 0.0})) << "straight already";
  }

  const auto lines = linesToExport(mesh, LineOrigin::RidgesAndValleys).lines;
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].line.vertices.size(), static_cast<std::size_t>(ridgeVertices));
  const std::string obj = linesAsObj(mesh, lines);
  EXPECT_EQ(std::count(obj.begin(), obj.end(), '\n'), ridgeVertices + 2);
  EXPECT_NE(linesAsVtk(mesh, lines).find("LINES 1 200001\n200000 "), std::string::npos);
  EXPECT_EQ(selectSilhouetteLines(mesh, {2.0F, {threshold, -threshold}}).ridges.size(), 1U);
}

}  // namespace
}  // namespace gravlin
