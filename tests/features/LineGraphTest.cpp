#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

#include "features/LineGraph.h"
#include "features/LinkLaws.h"
#include "features/MarkedMeshes.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using namespace gravlin::test;

IndexList& ridge(TriangleMesh& mesh, int v) {
  return mesh.ridgeLinks[static_cast<std::size_t>(v)];
}

double& curvature(TriangleMesh& mesh, int v) {
  return mesh.maxCurvature[static_cast<std::size_t>(v)];
}

bool adjacent(const TriangleMesh& mesh, int a, int b) {
  const auto ring = mesh.getNeighbours(a);
  return std::find(ring.begin(), ring.end(), b) != ring.end();
}

TEST(LineGraph, AStraightChainBecomesOnePathAndNothingIsPruned) {
  TriangleMesh mesh = grid(6, 2);
  prepareLines(mesh, 1.0, 0.0);
  const GridIndex at{6};
  for (int c = 1; c <= 5; ++c) markRidge(mesh, {at(c, 1)});
  buildLineGraph(mesh);
  EXPECT_THAT(ridge(mesh, at(1, 1)), ElementsAre(at(2, 1)));
  for (int c = 2; c <= 4; ++c) {
    EXPECT_THAT(ridge(mesh, at(c, 1)), UnorderedElementsAre(at(c - 1, 1), at(c + 1, 1)));
  }
  EXPECT_THAT(ridge(mesh, at(5, 1)), ElementsAre(at(4, 1)));
}

TEST(LineGraph, ALoneMarkedVertexGetsNoLinksAndKeepsItsMark) {
  TriangleMesh mesh = grid(4, 4);
  prepareLines(mesh, 1.0, 0.0);
  const int lone = GridIndex{4}(2, 2);
  markRidge(mesh, {lone});
  buildLineGraph(mesh);
  EXPECT_THAT(ridge(mesh, lone), IsEmpty());
  EXPECT_EQ(mesh.ridgeMarks[static_cast<std::size_t>(lone)], 1);
}

// The chain runs along row 3; the spur at (4, 4) is reached from (3, 3), the first of its marked
// neighbours that the tree serves when it starts at the left end.
TEST(LineGraph, ASpurOfOneVertexAtAJunctionIsCutOffAndKeepsItsMark) {
  TriangleMesh mesh = grid(8, 6);
  prepareLines(mesh, 1.0, 0.0);
  const GridIndex at{8};
  for (int c = 0; c <= 8; ++c) markRidge(mesh, {at(c, 3)});
  const int spur = at(4, 4);
  markRidge(mesh, {spur});
  curvature(mesh, at(0, 3)) = 2.0;
  buildLineGraph(mesh);
  EXPECT_THAT(ridge(mesh, spur), IsEmpty());
  EXPECT_EQ(mesh.ridgeMarks[static_cast<std::size_t>(spur)], 1);
  EXPECT_THAT(ridge(mesh, at(3, 3)), ElementsAre(at(2, 3), at(4, 3)));
}

// The spurs (5, 4) and (4, 2) hang at (4, 3), the first of their marked neighbours that the tree
// serves from the left, beside the long branch to the right.
TEST(LineGraph, TwoSpursAtOneJunctionAreBothCutOffAndTheLongBranchStays) {
  TriangleMesh mesh = grid(8, 6);
  prepareLines(mesh, 1.0, 0.0);
  const GridIndex at{8};
  for (int c = 0; c <= 8; ++c) markRidge(mesh, {at(c, 3)});
  markRidge(mesh, {at(5, 4), at(4, 2)});
  curvature(mesh, at(0, 3)) = 2.0;
  buildLineGraph(mesh);
  EXPECT_THAT(ridge(mesh, at(5, 4)), IsEmpty());
  EXPECT_THAT(ridge(mesh, at(4, 2)), IsEmpty());
  EXPECT_THAT(ridge(mesh, at(4, 3)), ElementsAre(at(3, 3), at(5, 3)));
}

// From the seed the tree grows both ways round and meets between the third vertices.
TEST(LineGraph, ALoopStaysOpenOppositeItsSeed) {
  TriangleMesh mesh = grid(6, 6);
  prepareLines(mesh, 1.0, 0.0);
  const auto ring = mesh.getNeighbours(GridIndex{6}(3, 3));
  ASSERT_EQ(ring.size(), 6U);
  for (const int v : ring) markRidge(mesh, {v});
  curvature(mesh, ring[0]) = 2.0;
  buildLineGraph(mesh);
  int links = 0;
  for (const int v : ring) links += ridge(mesh, v).size();
  EXPECT_EQ(links, 2 * 5);
  EXPECT_THAT(ridge(mesh, ring[0]), UnorderedElementsAre(ring[1], ring[5]));
  EXPECT_THAT(ridge(mesh, ring[3]), ElementsAre(::testing::AnyOf(ring[2], ring[4])));
}

// A branch of two vertices, (4,4) and (4,5), is shorter than 2.5 edges and goes as a whole.
TEST(LineGraph, ASpurOfTwoVerticesIsCutOff) {
  TriangleMesh mesh = grid(8, 8);
  prepareLines(mesh, 1.0, 0.0);
  const GridIndex at{8};
  for (int c = 0; c <= 8; ++c) markRidge(mesh, {at(c, 3)});
  markRidge(mesh, {at(4, 4), at(4, 5)});
  curvature(mesh, at(0, 3)) = 2.0;
  buildLineGraph(mesh);
  EXPECT_THAT(ridge(mesh, at(3, 3)), ElementsAre(at(2, 3), at(4, 3)));
  EXPECT_THAT(ridge(mesh, at(4, 4)), IsEmpty());
  EXPECT_THAT(ridge(mesh, at(4, 5)), IsEmpty());
}

// A branch of three vertices, (4,4) (4,5) (4,6), is longer than 2.5 edges.
TEST(LineGraph, ABranchOfThreeVerticesStays) {
  TriangleMesh mesh = grid(8, 8);
  prepareLines(mesh, 1.0, 0.0);
  const GridIndex at{8};
  for (int c = 0; c <= 8; ++c) markRidge(mesh, {at(c, 3)});
  markRidge(mesh, {at(4, 4), at(4, 5), at(4, 6)});
  curvature(mesh, at(0, 3)) = 2.0;
  buildLineGraph(mesh);
  EXPECT_EQ(ridge(mesh, at(3, 3)).size(), 3);
  EXPECT_THAT(ridge(mesh, at(4, 6)), ElementsAre(at(4, 5)));
}

// The seed (4, 3) is strongest; its first child, whichever the ring gives first, is never cut.
TEST(LineGraph, TheFirstBranchOfTheSeedIsNeverCut) {
  TriangleMesh mesh = grid(8, 6);
  prepareLines(mesh, 1.0, 0.0);
  const GridIndex at{8};
  const int seed = at(4, 3);
  markRidge(mesh, {seed});
  curvature(mesh, seed) = 2.0;
  const auto ring = mesh.getNeighbours(seed);
  // Three of the six ring neighbours, none next to another: three spurs of one vertex each.
  markRidge(mesh, {ring[0], ring[2], ring[4]});
  buildLineGraph(mesh);
  EXPECT_THAT(ridge(mesh, seed), ElementsAre(ring[0], ring[4]))
      << "of positions 1 and 2 the shorter, at equality the smaller, is cut";
  EXPECT_THAT(ridge(mesh, ring[0]), ElementsAre(seed));
  EXPECT_THAT(ridge(mesh, ring[2]), IsEmpty());
}

TEST(LineGraph, ChildrenAreServedByHowLittleTheyDeviateFromTheSeed) {
  // Seed (1,1) has the marked children (2,1) and (1,2); both reach (2,2), as does the seed itself
  // by its diagonal, so (2,2) is left unmarked and (3,2) and (2,3) tell who was served first.
  TriangleMesh mesh = grid(5, 5);
  prepareLines(mesh, 1.0, 0.0);
  const GridIndex at{5};
  markRidge(mesh, {at(1, 1), at(2, 1), at(1, 2), at(3, 2), at(2, 3)});
  curvature(mesh, at(1, 1)) = 5.0;
  curvature(mesh, at(2, 1)) = 4.9;
  curvature(mesh, at(1, 2)) = 1.0;
  buildLineGraph(mesh);
  EXPECT_THAT(ridge(mesh, at(3, 2)), ElementsAre(at(2, 1)));
  EXPECT_THAT(ridge(mesh, at(2, 3)), ElementsAre(at(1, 2)));
}

TEST(LineGraph, LinksAreSymmetricRunAlongMeshEdgesAndFormAForest) {
  std::mt19937 random(7);
  for (int round = 0; round < 50; ++round) {
    TriangleMesh mesh = grid(12, 10);
    prepareLines(mesh, 0.0, 0.0);
    for (std::size_t i = 0; i < mesh.maxCurvature.size(); ++i) {
      mesh.maxCurvature[i] = static_cast<double>(random() % 1000);
      mesh.ridgeMarks[i] = random() % 3 != 0 ? 1 : 0;
    }
    buildLineGraph(mesh);
    int links = 0;
    int linkedVertices = 0;
    for (int v = 0; v < mesh.vertexCount; ++v) {
      links += ridge(mesh, v).size();
      linkedVertices += ridge(mesh, v).empty() ? 0 : 1;
      for (const int w : ridge(mesh, v)) {
        EXPECT_TRUE(adjacent(mesh, v, w));
        EXPECT_THAT(ridge(mesh, w), ::testing::Contains(v));
        EXPECT_EQ(mesh.ridgeMarks[static_cast<std::size_t>(w)], 1);
      }
    }
    EXPECT_TRUE(linkedVertices == 0 || links / 2 < linkedVertices) << "a forest has fewer edges";
  }
}

TEST(LineGraph, ValleysMirrorRidges) {
  TriangleMesh ridges = grid(8, 6);
  prepareLines(ridges, 1.0, 0.0);
  const GridIndex at{8};
  for (int c = 0; c <= 8; ++c) markRidge(ridges, {at(c, 3)});
  markRidge(ridges, {at(4, 4), at(5, 5)});
  curvature(ridges, at(6, 3)) = 3.0;
  TriangleMesh valleys = ridges;
  mirrorKinds(valleys);
  buildLineGraph(ridges);
  buildLineGraph(valleys);
  EXPECT_EQ(ridges.ridgeLinks, valleys.valleyLinks);
}

TEST(LineGraph, ASecondRunGivesTheSameLinks) {
  TriangleMesh mesh = grid(8, 6);
  prepareLines(mesh, 1.0, 0.0);
  for (int c = 0; c <= 8; ++c) markRidge(mesh, {GridIndex{8}(c, 3)});
  buildLineGraph(mesh);
  const auto first = mesh.ridgeLinks;
  buildLineGraph(mesh);
  EXPECT_EQ(mesh.ridgeLinks, first);
}

TEST(LineGraph, ALineOfTwoHundredThousandVerticesPassesWithoutDeepRecursion) {
  constexpr int columns = 200000;
  TriangleMesh mesh = grid(columns, 2);
  prepareLines(mesh, 1.0, 0.0);
  for (int c = 0; c <= columns; ++c) markRidge(mesh, {GridIndex{columns}(c, 1)});
  buildLineGraph(mesh);
  int ends = 0;
  for (int c = 0; c <= columns; ++c) {
    ends += ridge(mesh, GridIndex{columns}(c, 1)).size() == 1 ? 1 : 0;
  }
  EXPECT_EQ(ends, 2);
}

// A vertex that no valid face uses is marked as well and stays without links.
TEST(LineGraph, OfHostileMeshesIsAForestAlongTheEdgesTheSameForBothKinds) {
  int links = 0;
  for (auto& [name, mesh] : hostileMeshes()) {
    SCOPED_TRACE(name);
    prepareLines(mesh, 1.0, -1.0);
    std::fill(mesh.ridgeMarks.begin(), mesh.ridgeMarks.end(), 1);
    std::fill(mesh.valleyMarks.begin(), mesh.valleyMarks.end(), 1);
    const std::vector<int> marks = mesh.ridgeMarks;
    buildLineGraph(mesh);
    expectLinksAlongEdges(mesh, mesh.ridgeLinks);
    EXPECT_TRUE(isForest(mesh.ridgeLinks));
    EXPECT_EQ(mesh.valleyLinks, mesh.ridgeLinks);
    EXPECT_EQ(mesh.ridgeMarks, marks);
    EXPECT_EQ(mesh.valleyMarks, marks);
    for (const IndexList& list : mesh.ridgeLinks) links += list.size();
  }
  EXPECT_GT(links, 0);
}

/// A row of seven marked vertices about the seed in the middle, one and a half units apart. A drop
/// of the curvature by d from the seed to its neighbour costs d^2 (1/2 + 1/6) 1.5 = d^2; the outer
/// vertices lie lower still.
TriangleMesh rowAboutASeed(double dropToTheLeft, double dropToTheRight) {
  TriangleMesh mesh = grid(6, 2);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    mesh.setPosition(i, {1.5 * p.x, p.y, p.z});
  }
  prepareLines(mesh, -1e6, 0.0);
  const GridIndex at{6};
  for (int c = 0; c <= 6; ++c) markRidge(mesh, {at(c, 1)});
  curvature(mesh, at(3, 1)) = 0.0;
  curvature(mesh, at(2, 1)) = -dropToTheLeft;
  curvature(mesh, at(4, 1)) = -dropToTheRight;
  return mesh;
}

bool linked(TriangleMesh& mesh, int a, int b) {
  const IndexList& links = ridge(mesh, a);
  return std::find(links.begin(), links.end(), b) != links.end();
}

// A child that costs more than the mark of those queued already is never taken from the list: the
// cheap one is queued again in its place, and what lies behind it grows from a seed of its own.
TEST(LineGraph, AChildDearerThanTheQueuedMarkIsNotServed) {
  const GridIndex at{6};
  TriangleMesh mesh = rowAboutASeed(20000.0, 100.0);
  buildLineGraph(mesh);
  EXPECT_TRUE(linked(mesh, at(3, 1), at(2, 1))) << "a child all the same";
  EXPECT_FALSE(linked(mesh, at(2, 1), at(1, 1)));
  EXPECT_TRUE(linked(mesh, at(1, 1), at(0, 1)));
  EXPECT_TRUE(linked(mesh, at(4, 1), at(5, 1)));
}

TEST(LineGraph, OfChildrenThatAreAllDearTheCheapestIsServed) {
  const GridIndex at{6};
  TriangleMesh mesh = rowAboutASeed(20000.0, 30000.0);
  buildLineGraph(mesh);
  EXPECT_TRUE(linked(mesh, at(2, 1), at(1, 1)));
  EXPECT_FALSE(linked(mesh, at(4, 1), at(5, 1)));
}

TEST(LineGraph, AChildAsDearAsTheQueuedMarkIsServedWhenItWasFoundBeforeTheCheapOne) {
  const GridIndex at{6};
  constexpr double exactly = 10000.0;
  TriangleMesh left = rowAboutASeed(exactly, 100.0);
  TriangleMesh right = rowAboutASeed(100.0, exactly);
  buildLineGraph(left);
  buildLineGraph(right);
  const auto ring = left.getNeighbours(at(3, 1));
  const bool leftFoundFirst =
      std::find(ring.begin(), ring.end(), at(2, 1)) < std::find(ring.begin(), ring.end(), at(4, 1));
  EXPECT_EQ(linked(left, at(2, 1), at(1, 1)), leftFoundFirst);
  EXPECT_EQ(linked(right, at(4, 1), at(5, 1)), !leftFoundFirst);
}

}  // namespace
}  // namespace gravlin
