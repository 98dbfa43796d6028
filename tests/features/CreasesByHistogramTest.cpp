#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

#include "features/CreasesByHistogram.h"
#include "features/EdgeFold.h"
#include "features/LineChains.h"
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

/// A sheet of `columns` x 8 squares, folded like a roof along column `columns / 2`: height rises by
/// `slope` per unit up to the fold, with a ripple that keeps other edges from being exactly flat.
TriangleMesh roof(int columns, double slope) {
  const int rows = 8;
  TriangleMesh mesh = grid(columns, rows);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    const double height = -slope * std::abs(p.x - columns / 2);
    mesh.setPosition(i, {p.x, p.y, height + 0.001 * std::sin(3.0 * p.x + 5.0 * p.y)});
  }
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  return mesh;
}

TEST(CreasesByHistogram, TheFoldOfARoofIsAConvexLineOfItsLength) {
  TriangleMesh mesh = roof(12, 1.0);
  detectCreasesByHistogram(mesh, {0.93F, 0.88F});
  EXPECT_THAT(mesh.valleyLinks, ::testing::SizeIs(mesh.ridgeLinks.size()));
  for (int r = 1; r + 1 < 8; ++r) {
    const int v = r * 13 + 6;
    EXPECT_THAT(mesh.ridgeLinks[static_cast<std::size_t>(v)],
                ::testing::UnorderedElementsAre(v - 13, v + 13));
  }
}

TEST(CreasesByHistogram, AFoldTheOtherWayIsConcave) {
  TriangleMesh mesh = roof(12, -1.0);
  detectCreasesByHistogram(mesh, {0.93F, 0.88F});
  const int v = 4 * 13 + 6;
  EXPECT_THAT(mesh.valleyLinks[static_cast<std::size_t>(v)],
              ::testing::UnorderedElementsAre(v - 13, v + 13));
  EXPECT_THAT(mesh.ridgeLinks[static_cast<std::size_t>(v)], IsEmpty());
}

TEST(CreasesByHistogram, BoundaryEdgesAreNeverLinked) {
  TriangleMesh mesh = roof(12, 1.0);
  detectCreasesByHistogram(mesh, {0.0F, 0.0F});
  for (std::size_t e = 0; e < mesh.faceAdjacency.size(); ++e) {
    if (mesh.faceAdjacency[e] >= 0) continue;
    const int a = mesh.faces[e];
    const int b = mesh.faces[e % 3 == 2 ? e - 2 : e + 1];
    EXPECT_THAT(mesh.ridgeLinks[static_cast<std::size_t>(a)],
                ::testing::Not(::testing::Contains(b)));
  }
}

// Of the two faces of this square neither has another neighbour.
TEST(CreasesByHistogram, AnEdgeWithoutFacesBeyondOnOneSideIsNeverLinked) {
  TriangleMesh mesh =
      makeMesh({{0, 0, 0}, {1, 0, 1}, {1, 1, 0}, {0, 1, 1}}, {{0, 1, 2}, {0, 2, 3}});
  detectCreasesByHistogram(mesh, {0.0F, 0.0F});
  EXPECT_THAT(mesh.ridgeLinks, Each(IsEmpty()));
  EXPECT_THAT(mesh.valleyLinks, Each(IsEmpty()));
}

TEST(CreasesByHistogram, WeakCreasesNeedAStrongOneToGrowFrom) {
  TriangleMesh mesh = roof(12, 1.0);
  detectCreasesByHistogram(mesh, {1.0F, 0.0F});
  EXPECT_EQ(linkCount(mesh.ridgeLinks), 0)
      << "at 1 the strong threshold is the sharpest edge itself, which is not below it";
}

TEST(CreasesByHistogram, AWeakerShareNeverLosesAnEdge) {
  TriangleMesh few = roof(12, 1.0);
  TriangleMesh many = few;
  detectCreasesByHistogram(few, {0.95F, 0.95F});
  detectCreasesByHistogram(many, {0.95F, 0.5F});
  for (std::size_t v = 0; v < few.ridgeLinks.size(); ++v) {
    for (const int w : few.ridgeLinks[v]) {
      EXPECT_THAT(many.ridgeLinks[v], ::testing::Contains(w));
    }
  }
}

enum class Side { Convex, Concave };

/// The share of one kind of edges that is less sharp than the `count` sharpest ones.
float shareBeyond(const TriangleMesh& mesh, int count, Side side) {
  int edges = 0;
  for (std::size_t e = 0; e < mesh.faceAdjacency.size(); ++e) {
    const int f = static_cast<int>(e / 3);
    const int g = mesh.faceAdjacency[e];
    if (g <= f) continue;
    const double sum = edgeFold(mesh, f, g).foldSum;
    edges += (side == Side::Convex ? sum > 3.14159265 : sum < 3.14159265) ? 1 : 0;
  }
  return static_cast<float>(1.0 - (count + 0.5) / edges);
}

/// The number of lines, all of which are closed loops of 64 vertices.
std::size_t loopCount(const std::vector<IndexList>& links) {
  const std::vector<Polyline> lines = chainLinks(links);
  for (const Polyline& line : lines) {
    EXPECT_TRUE(line.closed);
    EXPECT_EQ(line.vertices.size(), 64U);
  }
  return lines.size();
}

// Five corners of the section are sharp and convex, one is sharp and concave. The threshold is the
// sharpest edge of a fillet, and only what is below it is strong. Weak edges within a fillet touch
// no strong one. The shares hold for both kinds, which have different numbers of edges, so each
// kind gets a run of its own.
TEST(CreasesByHistogram, AFilletedMachinePartHasALoopForEachSharpCorner) {
  constexpr int around = 64;
  TriangleMesh mesh = flangedHub(around);
  const float ofConvex = shareBeyond(mesh, 5 * around, Side::Convex);
  detectCreasesByHistogram(mesh, {ofConvex, ofConvex});
  EXPECT_EQ(loopCount(mesh.ridgeLinks), 5U);
  const float ofConcave = shareBeyond(mesh, around, Side::Concave);
  detectCreasesByHistogram(mesh, {ofConcave, ofConcave});
  EXPECT_EQ(loopCount(mesh.valleyLinks), 1U);
}

TEST(CreasesByHistogram, TheResultDoesNotDependOnAnEarlierRun) {
  TriangleMesh mesh = roof(12, 1.0);
  detectCreasesByHistogram(mesh, {0.9F, 0.8F});
  const auto first = mesh.ridgeLinks;
  detectCreasesByHistogram(mesh, {0.9F, 0.8F});
  EXPECT_EQ(mesh.ridgeLinks, first);
}

TEST(CreasesByHistogram, HostileMeshesAndSharesPass) {
  for (const float share : {0.0F, 0.9F, 1.0F, -5.0F, 7.0F}) {
    for (auto& [name, mesh] : hostileMeshes()) {
      SCOPED_TRACE(name);
      detectCreasesByHistogram(mesh, {share, share});
      EXPECT_EQ(static_cast<int>(mesh.ridgeLinks.size()), mesh.vertexCount);
    }
  }
}

}  // namespace
}  // namespace gravlin
