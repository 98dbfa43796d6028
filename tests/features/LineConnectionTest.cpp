#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "features/LineConnection.h"
#include "features/LineGraph.h"
#include "features/LinkLaws.h"
#include "features/MarkedMeshes.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using namespace gravlin::test;

constexpr float defaultThreshold = 200.0F;

/// Two chains on row 2 of a flat grid, columns 1-3 and `resume`-8, at curvature `k`; the row
/// between them reaches `between`, the rest of the surface is flat.
struct TwoChains {
  TriangleMesh mesh = grid(9, 4);
  GridIndex at{9};

  TwoChains(int resume, double k, double between) {
    prepareLines(mesh, 0.0, 0.0);
    for (int c = 1; c <= 8; ++c) curvature(c) = c <= 3 || c >= resume ? k : between;
    for (int c = 1; c <= 8; ++c) {
      if (c <= 3 || c >= resume) markRidge(mesh, {at(c, 2)});
    }
    buildLineGraph(mesh);
  }

  double& curvature(int column) {
    return mesh.maxCurvature[static_cast<std::size_t>(at(column, 2))];
  }
  int mark(int column) { return mesh.ridgeMarks[static_cast<std::size_t>(at(column, 2))]; }
  const IndexList& links(int column) {
    return mesh.ridgeLinks[static_cast<std::size_t>(at(column, 2))];
  }
};

TEST(LineConnection, AnUnlinkedMarkIsCleared) {
  TriangleMesh mesh = grid(4, 4);
  prepareLines(mesh, 1.0, 0.0);
  const int lone = GridIndex{4}(2, 2);
  markRidge(mesh, {lone});
  buildLineGraph(mesh);
  connectLines(mesh, defaultThreshold, {0.5, -0.5});
  EXPECT_EQ(mesh.ridgeMarks[static_cast<std::size_t>(lone)], 0);
}

TEST(LineConnection, AGapOfOneVertexThatReachesTheLowThresholdIsJoined) {
  TwoChains chains(5, 30.0, 29.0);
  connectLines(chains.mesh, defaultThreshold, {10.0, -10.0});
  EXPECT_EQ(chains.mark(4), 1);
  EXPECT_THAT(chains.links(4), UnorderedElementsAre(chains.at(3, 2), chains.at(5, 2)));
  EXPECT_EQ(chains.links(3).size(), 2);
  EXPECT_EQ(chains.links(5).size(), 2);
}

TEST(LineConnection, AGapBelowTheLowThresholdStaysOpen) {
  TwoChains chains(5, 30.0, 9.0);
  connectLines(chains.mesh, defaultThreshold, {10.0, -10.0});
  EXPECT_EQ(chains.mark(4), 0);
  EXPECT_THAT(chains.links(4), IsEmpty());
}

TEST(LineConnection, AGapWhereTheOtherCurvatureDominatesStaysOpen) {
  TwoChains chains(5, 30.0, 29.0);
  chains.mesh.minCurvature[static_cast<std::size_t>(chains.at(4, 2))] = -29.5;
  connectLines(chains.mesh, defaultThreshold, {10.0, -10.0});
  EXPECT_EQ(chains.mark(4), 0);
}

// Curvature 2 costs (28^2 + 28^2) / 2 = 784 an edge of length 1.
TEST(LineConnection, TheDefaultThresholdJoinsNothingOnACoarseMesh) {
  TwoChains chains(5, 2.0, 2.0);
  connectLines(chains.mesh, defaultThreshold, {1.0, -1.0});
  EXPECT_EQ(chains.mark(4), 0);
}

TEST(LineConnection, TheLastStepMayExceedTheThreshold) {
  TwoChains chains(5, 2.0, 2.0);
  connectLines(chains.mesh, 784.0F, {1.0, -1.0});
  EXPECT_EQ(chains.mark(4), 1) << "784 to the gap is not above 784; the next step ends the way";
}

TEST(LineConnection, TwoEndsOfOneLineAreNeverJoined) {
  // A horseshoe around (3, 2) whose ends (2, 2) and (4, 2) are two edges apart.
  TriangleMesh mesh = grid(6, 5);
  prepareLines(mesh, 30.0, 0.0);
  const GridIndex at{6};
  for (const auto& [c, r] : {std::pair{2, 2},
                             {1, 2},
                             {1, 3},
                             {1, 4},
                             {2, 4},
                             {3, 4},
                             {4, 4},
                             {5, 4},
                             {5, 3},
                             {5, 2},
                             {4, 2}}) {
    markRidge(mesh, {at(c, r)});
  }
  buildLineGraph(mesh);
  const auto links = mesh.ridgeLinks;
  connectLines(mesh, defaultThreshold, {10.0, -10.0});
  EXPECT_EQ(mesh.ridgeLinks, links);
}

// The way from (3, 2) crosses the gap to the middle of the line along column 5 and follows it to
// its end (5, 1): the side from (5, 1) to (5, 2) is linked a second time. The other end of that
// line is farther away, through curvature 28.
TEST(LineConnection, AWayAlongAnotherLineLinksItsSidesAgain) {
  TriangleMesh mesh = grid(9, 6);
  prepareLines(mesh, 0.0, 0.0);
  const GridIndex at{9};
  const auto set = [&](int column, int row, double k) {
    mesh.maxCurvature[static_cast<std::size_t>(at(column, row))] = k;
  };
  for (int c = 1; c <= 3; ++c) {
    markRidge(mesh, {at(c, 2)});
    set(c, 2, 30.0);
  }
  for (int r = 1; r <= 5; ++r) {
    markRidge(mesh, {at(5, r)});
    set(5, r, r <= 2 ? 30.0 : 28.0);
  }
  set(4, 2, 29.0);
  buildLineGraph(mesh);
  const auto links = [&](int c, int r) -> const IndexList& {
    return mesh.ridgeLinks[static_cast<std::size_t>(at(c, r))];
  };
  EXPECT_THAT(links(5, 1), ::testing::ElementsAre(at(5, 2)));
  connectLines(mesh, defaultThreshold, {10.0, -10.0});
  EXPECT_THAT(links(5, 1), ::testing::ElementsAre(at(5, 2), at(5, 2)));
  EXPECT_THAT(links(5, 2), UnorderedElementsAre(at(5, 1), at(5, 1), at(5, 3), at(4, 2)));
  EXPECT_THAT(links(4, 2), UnorderedElementsAre(at(5, 2), at(3, 2)));
}

TEST(LineConnection, ALoopOfMarksIsNotClosed) {
  TriangleMesh mesh = grid(6, 6);
  prepareLines(mesh, 30.0, 0.0);
  for (const int v : mesh.getNeighbours(GridIndex{6}(3, 3))) markRidge(mesh, {v});
  buildLineGraph(mesh);
  const auto links = mesh.ridgeLinks;
  connectLines(mesh, defaultThreshold, {10.0, -10.0});
  EXPECT_EQ(mesh.ridgeLinks, links) << "its two ends belong to one line";
}

TEST(LineConnection, TheWayIsTheCheapestOne) {
  // From (3, 2) to (6, 2): straight along the row at curvature 10, or round by row 3 at
  // curvature 30.
  TwoChains chains(6, 30.0, 10.0);
  for (int c = 3; c <= 6; ++c) {
    chains.mesh.maxCurvature[static_cast<std::size_t>(chains.at(c, 3))] = 30.0;
  }
  connectLines(chains.mesh, 1e9F, {5.0, -5.0});
  EXPECT_EQ(chains.mark(4), 0);
  EXPECT_EQ(chains.mark(5), 0);
  int marked = 0;
  for (int c = 0; c <= 9; ++c) {
    marked += chains.mesh.ridgeMarks[static_cast<std::size_t>(chains.at(c, 3))];
  }
  EXPECT_GT(marked, 0);
}

TEST(LineConnection, LinksStaySymmetricAndAlongMeshEdges) {
  std::mt19937 random(11);
  for (int round = 0; round < 50; ++round) {
    TriangleMesh mesh = grid(14, 12);
    prepareLines(mesh, 0.0, 0.0);
    for (std::size_t i = 0; i < mesh.maxCurvature.size(); ++i) {
      mesh.maxCurvature[i] = 20.0 + static_cast<double>(random() % 20);
      mesh.minCurvature[i] = -mesh.maxCurvature[i];
      mesh.ridgeMarks[i] = random() % 3 == 0 ? 1 : 0;
      mesh.valleyMarks[i] = random() % 3 == 0 ? 1 : 0;
    }
    buildLineGraph(mesh);
    connectLines(mesh, 300.0F, {25.0, -25.0});
    for (const auto* links : {&mesh.ridgeLinks, &mesh.valleyLinks}) {
      for (int v = 0; v < mesh.vertexCount; ++v) {
        const IndexList& list = (*links)[static_cast<std::size_t>(v)];
        const auto ring = mesh.getNeighbours(v);
        for (const int w : list) {
          const IndexList& back = (*links)[static_cast<std::size_t>(w)];
          EXPECT_EQ(std::count(list.begin(), list.end(), w),
                    std::count(back.begin(), back.end(), v));
          EXPECT_NE(std::find(ring.begin(), ring.end(), w), ring.end());
        }
      }
    }
  }
}

TEST(LineConnection, ValleysMirrorRidges) {
  TwoChains chains(6, 28.0, 27.0);
  TriangleMesh valleys = chains.mesh;
  mirrorKinds(valleys);
  connectLines(chains.mesh, defaultThreshold, {10.0, -10.0});
  connectLines(valleys, defaultThreshold, {10.0, -10.0});
  EXPECT_EQ(chains.mesh.ridgeLinks, valleys.valleyLinks);
  EXPECT_EQ(chains.mesh.ridgeMarks, valleys.valleyMarks);
}

TEST(LineConnection, ALongDashedLineIsJoinedDashByDash) {
  constexpr int columns = 30000;
  TriangleMesh mesh = grid(columns, 2);
  prepareLines(mesh, 0.0, 0.0);
  const GridIndex at{columns};
  for (int c = 0; c <= columns; ++c) {
    mesh.maxCurvature[static_cast<std::size_t>(at(c, 1))] = 30.0;
    if (c % 5 != 4) markRidge(mesh, {at(c, 1)});
  }
  buildLineGraph(mesh);
  connectLines(mesh, defaultThreshold, {10.0, -10.0});
  int ends = 0;
  for (int c = 0; c <= columns; ++c) {
    ends += mesh.ridgeLinks[static_cast<std::size_t>(at(c, 1))].size() == 1 ? 1 : 0;
  }
  EXPECT_EQ(ends, 2);
}

/// Whether all links of `before` are among those of `after`, in the same order and ahead of others.
bool onlyAdds(const std::vector<IndexList>& before, const std::vector<IndexList>& after) {
  for (std::size_t v = 0; v < before.size(); ++v) {
    if (after[v].size() < before[v].size()) return false;
    if (!std::equal(before[v].begin(), before[v].end(), after[v].begin())) return false;
  }
  return true;
}

TEST(LineConnection, OfHostileMeshesAndCurvaturesOnlyAddsLinksAndMarksWhatHasSome) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  for (const double k : {0.0, 30.0, nan, inf, -inf}) {
    for (const double limit : {0.0, nan, 1e30}) {
      for (auto& [name, mesh] : hostileMeshes()) {
        SCOPED_TRACE(name + " at " + std::to_string(k) + " within " + std::to_string(limit));
        prepareLines(mesh, k, -k);
        for (std::size_t i = 0; i < mesh.ridgeMarks.size(); i += 2) mesh.ridgeMarks[i] = 1;
        mesh.valleyMarks = mesh.ridgeMarks;
        buildLineGraph(mesh);
        const TriangleMesh before = mesh;
        connectLines(mesh, static_cast<float>(limit), {limit, -limit});
        for (const bool ridges : {true, false}) {
          const auto& links = ridges ? mesh.ridgeLinks : mesh.valleyLinks;
          const auto& marks = ridges ? mesh.ridgeMarks : mesh.valleyMarks;
          expectLinksAlongEdges(mesh, links);
          EXPECT_TRUE(onlyAdds(ridges ? before.ridgeLinks : before.valleyLinks, links));
          for (std::size_t i = 0; i < links.size(); ++i) {
            EXPECT_EQ(marks[i], links[i].empty() ? 0 : 1) << i;
          }
        }
        EXPECT_EQ(mesh.faces, before.faces);
      }
    }
  }
}

}  // namespace
}  // namespace gravlin
