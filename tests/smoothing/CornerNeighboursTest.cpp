#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

#include "numeric/Index.h"
#include "smoothing/CornerNeighbours.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The row of face f as its definition reads, from the rings.
std::vector<int> rowByDefinition(const TriangleMesh& mesh, int f) {
  std::vector<int> row;
  for (int corner = 0; corner < 3 && mesh.validFace(f); ++corner) {
    const int vertex = mesh.corners(f)[toIndex(corner)];
    const auto fan = mesh.vertexFaces[vertex];
    std::vector<int> seen(fan.begin(), fan.end());
    if (mesh.vertexKind[toIndex(vertex)] != InteriorVertex) seen.pop_back();
    for (const int g : seen) {
      bool adjacent = g == f;
      for (std::size_t j = 0; j < 3; ++j) {
        adjacent = adjacent || g == mesh.faceAdjacency[3 * toIndex(f) + j];
      }
      if (!adjacent) row.push_back(g);
    }
  }
  return row;
}

TEST(CornerNeighbours, OfEveryMeshAreTheFacesOfTheCornersWithoutItselfAndItsEdgeNeighbours) {
  for (const auto& family : {test::closedMeshes(), test::openMeshes(), test::hostileMeshes()}) {
    for (auto [name, mesh] : family) {
      SCOPED_TRACE(name);
      buildCornerNeighbourFaces(mesh);
      ASSERT_EQ(mesh.cornerNeighbourFaces.rowCount(), mesh.faceCount);
      for (int f = 0; f < mesh.faceCount; ++f) {
        EXPECT_THAT(mesh.cornerNeighbourFaces[f],
                    ::testing::ElementsAreArray(rowByDefinition(mesh, f)));
      }
    }
  }
}

TEST(CornerNeighbours, AroundAnInteriorVertexAreAllFacesButTheEdgeNeighbours) {
  TriangleMesh mesh = test::hexagonFan();
  buildCornerNeighbourFaces(mesh);
  // Face 0's own two neighbours are 1 and 5. Its rim corners are used by edge neighbours only.
  EXPECT_THAT(mesh.cornerNeighbourFaces[0], ElementsAre(2, 3, 4));
}

TEST(CornerNeighbours, AtABoundaryVertexTheLastFaceOfTheFanIsNotSeen) {
  //   3 --- 2 --- 4    the open fan of vertex 2, from its first edge to its last:
  //    \ 0 / \ 2 /     faces 0, 1, 2
  //     \ / 1 \ /
  //      0 --- 1
  TriangleMesh mesh = test::makeMesh({{0, 0, 0}, {2, 0, 0}, {1, 2, 0}, {-1, 2, 0}, {3, 2, 0}},
                                     {{0, 2, 3}, {0, 1, 2}, {1, 4, 2}});
  ASSERT_THAT(mesh.vertexFaces[2], ElementsAre(0, 1, 2));
  buildCornerNeighbourFaces(mesh);
  EXPECT_THAT(mesh.cornerNeighbourFaces[0], IsEmpty()) << "face 2 is the last of the fan";
  EXPECT_THAT(mesh.cornerNeighbourFaces[2], ElementsAre(0));
}

TEST(CornerNeighbours, FacesThatShareAVertexOnlyMeetThereWhenNotLastInItsFan) {
  TriangleMesh mesh = test::bowTie();
  buildCornerNeighbourFaces(mesh);
  ASSERT_THAT(mesh.vertexFaces[0], ElementsAre(1, 0));
  EXPECT_THAT(mesh.cornerNeighbourFaces[0], ElementsAre(1));
  EXPECT_THAT(mesh.cornerNeighbourFaces[1], IsEmpty());
}

TEST(CornerNeighbours, OnceBuiltAreLeftAlone) {
  TriangleMesh mesh = test::cube();
  mesh.cornerNeighbourFaces = {{0, 1}, {7}};
  buildCornerNeighbourFaces(mesh);
  EXPECT_THAT(mesh.cornerNeighbourFaces.items, ElementsAre(7));
}

TEST(CornerNeighbours, OfAVertexWithSoManyFacesThatTheRowsPassAnIntAreRefused) {
  // A closed fan of 50,000 faces: their rows would hold 2.5e9 entries.
  constexpr int valence = 50000;
  std::vector<std::array<float, 3>> points = {{0, 0, 0}};
  std::vector<std::array<int, 3>> faces;
  for (int k = 0; k < valence; ++k) {
    points.push_back({static_cast<float>(k), 1, 0});
    faces.push_back({0, 1 + k, 1 + (k + 1) % valence});
  }
  TriangleMesh mesh = test::makeMesh(points, faces);
  EXPECT_THROW(buildCornerNeighbourFaces(mesh), std::length_error);
  EXPECT_FALSE(mesh.cornerNeighbourFaces.built());
}

}  // namespace
}  // namespace gravlin
