#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "features/CreasesByAngle.h"
#include "features/LineChains.h"
#include "numeric/Index.h"
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

/// Each vertex's links of both kinds, sorted.
std::vector<std::vector<int>> together(const TriangleMesh& mesh) {
  std::vector<std::vector<int>> all;
  for (std::size_t v = 0; v < mesh.ridgeLinks.size(); ++v) {
    all.emplace_back(mesh.ridgeLinks[v].begin(), mesh.ridgeLinks[v].end());
    all[v].insert(all[v].end(), mesh.valleyLinks[v].begin(), mesh.valleyLinks[v].end());
    std::sort(all[v].begin(), all[v].end());
  }
  return all;
}

TEST(CreasesByAngle, CreasesAreTheConvexAndTheConcaveOnes) {
  for (const double angle : {0.0, 150.0, 165.0, 180.0}) {
    TriangleMesh mesh = jittered(bumpyGrid(9, 8), 0.2);
    std::vector<std::vector<int>> sorted;
    for (const IndexList& list : detectCreasesByAngle(mesh, cosThreshold(angle))) {
      sorted.emplace_back(list.begin(), list.end());
      std::sort(sorted.back().begin(), sorted.back().end());
    }
    EXPECT_EQ(sorted, together(mesh)) << angle;
    EXPECT_EQ(linkCount(mesh.valleyLinks) > 0, angle > 0.0) << angle;
  }
}

TEST(CreasesByAngle, ZeroLinksTheBoundaryOnly) {
  TriangleMesh mesh = jittered(bumpyGrid(9, 8), 0.2);
  detectCreasesByAngle(mesh, cosThreshold(0.0));
  EXPECT_EQ(linkCount(mesh.ridgeLinks), 2 * (9 + 8));
  EXPECT_EQ(linkCount(mesh.valleyLinks), 0);
}

// A mesh of 9 x 8 squares has 3 x 72 + 9 + 8 edges; none of those inside is flat.
TEST(CreasesByAngle, AStraightAngleLinksEveryEdgeThatIsNotFlat) {
  TriangleMesh mesh = jittered(bumpyGrid(9, 8), 0.2);
  detectCreasesByAngle(mesh, cosThreshold(180.0));
  EXPECT_EQ(linkCount(mesh.ridgeLinks) + linkCount(mesh.valleyLinks), 3 * 72 + 9 + 8);
  TriangleMesh flat = cube();
  detectCreasesByAngle(flat, cosThreshold(180.0));
  EXPECT_EQ(linkCount(flat.ridgeLinks), 12) << "not the diagonals of its sides";
}

std::vector<Polyline> loopsOf(const std::vector<IndexList>& links, std::size_t length) {
  std::vector<Polyline> loops = chainLinks(links);
  for (const Polyline& loop : loops) {
    EXPECT_TRUE(loop.closed);
    EXPECT_EQ(loop.vertices.size(), length);
  }
  return loops;
}

// The right angles of the section are the two rims of the disc, the upper rim of the bore, and the
// three corners of the recess, the innermost of which is hollow. The fillets turn by 10 degrees and
// the walls, at 64 vertices to a circle, by 5.6 degrees from face to face: less than 15.
TEST(CreasesByAngle, AFilletedMachinePartHasALoopForEachSharpCorner) {
  TriangleMesh mesh = flangedHub(64);
  detectCreasesByAngle(mesh, cosThreshold(165.0));
  EXPECT_EQ(loopsOf(mesh.ridgeLinks, 64).size(), 5U);
  EXPECT_EQ(loopsOf(mesh.valleyLinks, 64).size(), 1U);
}

// At 172 degrees every turn of more than 8 counts: the eight lines within each fillet as well, but
// not the two where it begins and ends, which turn by 5.
TEST(CreasesByAngle, AWiderAngleAddsTheLinesOfTheFillets) {
  TriangleMesh mesh = flangedHub(64);
  detectCreasesByAngle(mesh, cosThreshold(172.0));
  EXPECT_EQ(loopsOf(mesh.ridgeLinks, 64).size(), 5U + 8U);
  EXPECT_EQ(loopsOf(mesh.valleyLinks, 64).size(), 1U + 8U);
}

/// How many sides of valid faces lie between the two vertices and have no face beside them.
int openSides(const TriangleMesh& mesh, int a, int b) {
  int count = 0;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto c = mesh.corners(f);
    for (std::size_t k = 0; k < 3; ++k) {
      const bool between = std::minmax(c[k], c[(k + 1) % 3]) == std::minmax(a, b);
      if (between && mesh.faceAdjacency[3 * toIndex(f) + k] < 0) ++count;
    }
  }
  return count;
}

// Below the cosine -2 there is no fold, so only what counts without one remains.
TEST(CreasesByAngle, OfHostileMeshesAreTheSidesWithoutANeighbourWhenNoFoldIsSharpEnough) {
  for (auto& [name, mesh] : hostileMeshes()) {
    SCOPED_TRACE(name);
    const auto creases = detectCreasesByAngle(mesh, -2.0F);
    ASSERT_EQ(static_cast<int>(creases.size()), mesh.vertexCount);
    EXPECT_EQ(creases, mesh.ridgeLinks);
    EXPECT_THAT(mesh.valleyLinks, Each(IsEmpty()));
    for (int a = 0; a < mesh.vertexCount; ++a) {
      for (int b = 0; b < mesh.vertexCount; ++b) {
        if (a == b) continue;
        EXPECT_EQ(std::ranges::count(creases[toIndex(a)], b), openSides(mesh, a, b));
      }
    }
  }
}

TEST(CreasesByAngle, OfHostileMeshesAreRidgesAndValleysTogether) {
  for (auto& [name, mesh] : hostileMeshes()) {
    SCOPED_TRACE(name);
    const TriangleMesh before = mesh;
    const auto creases = detectCreasesByAngle(mesh, cosThreshold(180.0));
    EXPECT_EQ(linkCount(creases), linkCount(mesh.ridgeLinks) + linkCount(mesh.valleyLinks));
    for (std::size_t v = 0; v < creases.size(); ++v) {
      std::vector<int> both(mesh.ridgeLinks[v].begin(), mesh.ridgeLinks[v].end());
      both.insert(both.end(), mesh.valleyLinks[v].begin(), mesh.valleyLinks[v].end());
      EXPECT_THAT(creases[v], ::testing::UnorderedElementsAreArray(both));
    }
    EXPECT_EQ(mesh.faces, before.faces);
  }
}

}  // namespace
}  // namespace gravlin
