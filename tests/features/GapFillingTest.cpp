#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "features/GapFilling.h"
#include "features/MarkedMeshes.h"
#include "numeric/Index.h"
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

/// Two octahedra that meet in vertex 0, and three entries of its ring, a pair of each octahedron's
/// following the other's: `between` comes after `before` and ahead of `after`, which is not joined
/// to it. No other ring holds such a sequence.
struct MeetingOctahedra {
  TriangleMesh mesh = touchingOctahedra();
  int before = -1;
  int between = -1;
  int after = -1;

  MeetingOctahedra() {
    prepareLines(mesh, 1.0, -1.0);
    const auto ring = mesh.getNeighbours(0);
    const std::size_t n = ring.size();
    for (std::size_t k = 0; k < n && before < 0; ++k) {
      const auto joined = mesh.getNeighbours(ring[(k + 1) % n]);
      if (ring[k] == ring[(k + 1) % n]) continue;
      if (std::ranges::find(joined, ring[(k + 2) % n]) != joined.end()) continue;
      if (ring[(k + 1) % n] == ring[(k + 2) % n]) continue;
      before = ring[k];
      between = ring[(k + 1) % n];
      after = ring[(k + 2) % n];
    }
  }
};

TEST(GapFilling, TheRingOfANonManifoldVertexIsSearchedAsWell) {
  for (const bool ridges : {true, false}) {
    MeetingOctahedra meeting;
    ASSERT_EQ(meeting.mesh.vertexKind[0], NonManifoldVertex);
    ASSERT_GE(meeting.before, 0);
    markRidge(meeting.mesh, {meeting.before, meeting.after});
    meeting.mesh.maxCurvature[0] = 2.0;
    if (!ridges) mirrorKinds(meeting.mesh);
    fillGaps(meeting.mesh);
    const auto& marks = ridges ? meeting.mesh.ridgeMarks : meeting.mesh.valleyMarks;
    EXPECT_EQ(marks[0], 1);
    EXPECT_EQ(std::ranges::count(marks, 1), 3);
  }
}

TEST(GapFilling, AStrongerNeighbourOfANonManifoldVertexIsMarkedInstead) {
  MeetingOctahedra meeting;
  markRidge(meeting.mesh, {meeting.before, meeting.after});
  fillGaps(meeting.mesh);
  EXPECT_EQ(meeting.mesh.ridgeMarks[0], 0);
  EXPECT_EQ(meeting.mesh.ridgeMarks[toIndex(meeting.between)], 1);
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

/// Whether some ring holds the vertex between two marked ones.
bool liesBetweenMarks(const TriangleMesh& mesh, const std::vector<int>& marks, int vertex) {
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const auto ring = mesh.getNeighbours(i);
    const std::size_t n = ring.size();
    for (std::size_t k = 0; k < n; ++k) {
      const bool here = ring[(k + 1) % n] == vertex;
      if (here && marks[toIndex(ring[k])] == 1 && marks[toIndex(ring[(k + 2) % n])] == 1) {
        return true;
      }
    }
  }
  return false;
}

// At equal strength it is always the vertex in the gap that is marked.
TEST(GapFilling, OnHostileMeshesMarksStayAndNewOnesLieBetweenTwo) {
  for (auto& [name, mesh] : hostileMeshes()) {
    SCOPED_TRACE(name);
    prepareLines(mesh, 1.0, -1.0);
    for (std::size_t i = 0; i < mesh.ridgeMarks.size(); i += 2) mesh.ridgeMarks[i] = 1;
    mesh.valleyMarks = mesh.ridgeMarks;
    const std::vector<int> before = mesh.ridgeMarks;
    fillGaps(mesh);
    EXPECT_EQ(mesh.valleyMarks, mesh.ridgeMarks) << "the kinds are mirror images";
    for (int v = 0; v < mesh.vertexCount; ++v) {
      const int mark = mesh.ridgeMarks[toIndex(v)];
      if (before[toIndex(v)] == 1) {
        EXPECT_EQ(mark, 1);
      } else if (mark != 0) {
        EXPECT_EQ(mark, 1);
        EXPECT_TRUE(liesBetweenMarks(mesh, mesh.ridgeMarks, v)) << v;
      }
    }
  }
}

}  // namespace
}  // namespace gravlin
