#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

#include "features/CreasesByHistogram.h"
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
