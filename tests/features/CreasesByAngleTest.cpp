#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numbers>

#include "features/CreasesByAngle.h"
#include "features/EdgeFold.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::IsEmpty;
using namespace gravlin::test;

int linkCount(const std::vector<IndexList>& links) {
  int ends = 0;
  for (const IndexList& list : links) ends += list.size();
  return ends / 2;
}

float cosThreshold(double degrees) {
  return static_cast<float>(-std::cos(degrees * std::numbers::pi / 180.0));
}

/// The cube seen from inside: every edge is concave.
TriangleMesh insideOutCube() {
  TriangleMesh mesh = cube();
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto at = 3 * static_cast<std::size_t>(f);
    std::swap(mesh.faces[at + 1], mesh.faces[at + 2]);
  }
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  mesh.computeFaceNormals();
  return mesh;
}

TEST(CreasesByAngle, AnyAngleAbove90LinksTheTwelveEdgesOfACube) {
  for (const double angle : {91.0, 120.0, 165.0, 179.0}) {
    TriangleMesh mesh = cube();
    const auto creases = detectCreasesByAngle(mesh, cosThreshold(angle));
    EXPECT_EQ(linkCount(mesh.ridgeLinks), 12) << angle;
    EXPECT_THAT(mesh.valleyLinks, Each(IsEmpty())) << angle;
    EXPECT_EQ(creases, mesh.ridgeLinks);
  }
}

TEST(CreasesByAngle, AnAngleBelow90LinksNoEdgeOfACube) {
  TriangleMesh mesh = cube();
  detectCreasesByAngle(mesh, cosThreshold(89.0));
  EXPECT_EQ(linkCount(mesh.ridgeLinks), 0);
}

TEST(CreasesByAngle, SeenFromInsideTheEdgesOfACubeAreConcave) {
  TriangleMesh mesh = insideOutCube();
  const auto creases = detectCreasesByAngle(mesh, cosThreshold(165.0));
  EXPECT_EQ(linkCount(mesh.valleyLinks), 12);
  EXPECT_THAT(mesh.ridgeLinks, Each(IsEmpty()));
  EXPECT_EQ(creases, mesh.valleyLinks);
}

TEST(CreasesByAngle, AFlatOpenGridHasItsBoundaryOnlyAndAllOfItConvex) {
  TriangleMesh mesh = grid(5, 4);
  const auto creases = detectCreasesByAngle(mesh, cosThreshold(165.0));
  EXPECT_EQ(linkCount(mesh.ridgeLinks), 2 * (5 + 4));
  EXPECT_THAT(mesh.valleyLinks, Each(IsEmpty()));
  EXPECT_EQ(creases, mesh.ridgeLinks);
}

// The centroids on both sides of an edge lie 2/3 from it, and at the same place along it or 2/3
// apart: each normal leans away by acos(-1 / sqrt 2) or acos(-1 / sqrt 3).
TEST(CreasesByAngle, TheFoldSumOfACubesEdgeIsAsFarAbovePiAsItIsBelowSeenFromInside) {
  const TriangleMesh outside = cube();
  const TriangleMesh inside = insideOutCube();
  const double level = 1.5 * std::numbers::pi;
  const double shifted = 2.0 * std::acos(-1.0 / std::sqrt(3.0));
  for (std::size_t e = 0; e < outside.faceAdjacency.size(); ++e) {
    const int f = static_cast<int>(e / 3);
    const int g = outside.faceAdjacency[e];
    if (std::abs(normalCosine(outside, f, g)) > 0.5F) continue;  // a diagonal within a side
    const double sum = edgeFold(outside, f, g).foldSum;
    // Centroids are rounded to single precision, six digits of angles below 5.
    EXPECT_LT(std::min(std::abs(sum - level), std::abs(sum - shifted)), 1e-5);
    EXPECT_NEAR(sum + edgeFold(inside, f, g).foldSum, 2.0 * std::numbers::pi, 1e-5);
  }
}

TEST(CreasesByAngle, HostileMeshesPass) {
  for (auto& [name, mesh] : hostileMeshes()) {
    SCOPED_TRACE(name);
    const auto creases = detectCreasesByAngle(mesh, cosThreshold(180.0));
    EXPECT_EQ(static_cast<int>(creases.size()), mesh.vertexCount);
  }
}

}  // namespace
}  // namespace gravlin
