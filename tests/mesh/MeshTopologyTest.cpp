#include <gtest/gtest.h>

#include "mesh/MeshTopology.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

TEST(MeshTopology, CountsTheEdgesAndTheHoleOfAnOpenSquare) {
  const MeshTopology square = measureTopology(test::twoTriangles());
  EXPECT_EQ(square.usedVertices, 4);
  EXPECT_EQ(square.validFaces, 2);
  EXPECT_EQ(square.edges, 5);
  EXPECT_EQ(square.boundaryEdges, 4);
  EXPECT_EQ(square.nonManifoldEdges, 0);
  EXPECT_EQ(square.boundaryLoops, 1);
  EXPECT_EQ(square.components, 1);
  EXPECT_EQ(square.eulerCharacteristic(), 1);
}

TEST(MeshTopology, FindsNoBoundaryOnClosedMeshesAndThreeSidesForTwoEdges) {
  for (const test::NamedMesh& closed : test::closedMeshes()) {
    SCOPED_TRACE(closed.name);
    const MeshTopology topology = measureTopology(closed.mesh);
    EXPECT_EQ(2 * topology.edges, 3 * topology.validFaces);
    EXPECT_EQ(topology.boundaryEdges, 0);
    EXPECT_EQ(topology.boundaryLoops, 0);
    EXPECT_EQ(topology.components, 1);
    EXPECT_EQ(topology.eulerCharacteristic(), closed.name == "torus" ? 0 : 2);
  }
}

TEST(MeshTopology, AgreesWithCountingOverSets) {
  for (const auto& family : {test::closedMeshes(), test::openMeshes(), test::hostileMeshes()}) {
    for (const test::NamedMesh& named : family) {
      EXPECT_EQ(measureTopology(named.mesh).eulerCharacteristic(),
                test::eulerCharacteristic(named.mesh))
          << named.name;
    }
  }
}

TEST(MeshTopology, CountsPartsThatShareNoVertexAndLoopsThatDoNotTouch) {
  // Two triangles apart, a third that touches the first in vertex 0 only, and an unused vertex.
  const TriangleMesh mesh = test::makeMesh({{0, 0, 0},
                                            {1, 0, 0},
                                            {0, 1, 0},
                                            {5, 0, 0},
                                            {6, 0, 0},
                                            {5, 1, 0},
                                            {-1, 0, 0},
                                            {0, -1, 0},
                                            {9, 9, 9}},
                                           {{0, 1, 2}, {3, 4, 5}, {0, 6, 7}});
  const MeshTopology topology = measureTopology(mesh);
  EXPECT_EQ(topology.usedVertices, 8);
  EXPECT_EQ(topology.components, 2);
  EXPECT_EQ(topology.boundaryLoops, 2);
  EXPECT_EQ(topology.boundaryEdges, 9);
}

TEST(MeshTopology, CountsTwoLoopsOnATube) {
  const int around = 6;
  std::vector<std::array<float, 3>> points;
  std::vector<std::array<int, 3>> faces;
  for (int k = 0; k < around; ++k) {
    const auto x = static_cast<float>(k < 3 ? k : 6 - k);
    const auto y = static_cast<float>(k < 3 ? 0 : 1);
    points.push_back({x, y, 0});
    points.push_back({x, y, 1});
    const int a = 2 * k;
    const int b = 2 * ((k + 1) % around);
    faces.push_back({a, b, b + 1});
    faces.push_back({a, b + 1, a + 1});
  }
  const MeshTopology tube = measureTopology(test::makeMesh(points, faces));
  EXPECT_EQ(tube.boundaryLoops, 2);
  EXPECT_EQ(tube.boundaryEdges, 2 * around);
  EXPECT_EQ(tube.eulerCharacteristic(), 0);
}

TEST(MeshTopology, CountsAnEdgeOfThreeFacesOnce) {
  const MeshTopology topology = measureTopology(test::threeFacesOnAnEdge());
  EXPECT_EQ(topology.edges, 7);
  EXPECT_EQ(topology.nonManifoldEdges, 1);
  EXPECT_EQ(topology.boundaryEdges, 6);
}

TEST(MeshTopology, IsZeroForAnEmptyMesh) {
  const MeshTopology topology = measureTopology(test::emptyMesh());
  EXPECT_EQ(topology.edges, 0);
  EXPECT_EQ(topology.components, 0);
  EXPECT_EQ(topology.boundaryLoops, 0);
}

}  // namespace
}  // namespace gravlin
