#include <gtest/gtest.h>

#include "smoothing/BilaplacianFlow.h"
#include "smoothing/DenseLaplacians.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

/// x -= dt U(U x) / (1 + 1/n sum(1 / n_j)) for vertices whose neighbours are interior as well.
void denseStep(TriangleMesh& mesh, double dt) {
  const test::DenseMatrix umbrella = test::umbrellaMatrix(mesh);
  const std::vector<double> valence = test::valences(mesh);
  const std::vector<bool> interior = test::interiorVertices(mesh);
  const int n = mesh.vertexCount;
  test::DenseMatrix twice(n);
  std::vector<double> divisor(static_cast<std::size_t>(n), 1.0);
  for (int i = 0; i < n; ++i) {
    bool moves = interior[static_cast<std::size_t>(i)];
    double reciprocals = 0.0;
    for (int j = 0; j < n; ++j) {
      if (j == i || umbrella.at(i, j) == 0.0) continue;
      moves = moves && interior[static_cast<std::size_t>(j)];
      reciprocals += 1.0 / valence[static_cast<std::size_t>(j)];
    }
    divisor[static_cast<std::size_t>(i)] = 1.0 + reciprocals / valence[static_cast<std::size_t>(i)];
    for (int column = 0; moves && column < n; ++column) {
      for (int j = 0; j < n; ++j) twice.at(i, column) += umbrella.at(i, j) * umbrella.at(j, column);
    }
  }
  test::moveBy(mesh, -dt, twice, divisor);
}

TEST(BilaplacianFlow, IsTheSquaredUmbrellaMatrixOverItsDiagonal) {
  for (const auto& family : {test::closedMeshes(), test::openMeshes()}) {
    for (const test::NamedMesh& named : family) {
      TriangleMesh flowed = named.mesh;
      TriangleMesh expected = named.mesh;
      bilaplacianFlow(flowed, {.iterations = 3, .step = 0.5F});
      for (int step = 0; step < 3; ++step) denseStep(expected, 0.5);
      // Single rounding of coordinates up to 10 in three steps.
      EXPECT_LE(test::largestDifference(expected, flowed), 3e-6) << named.name;
    }
  }
}

TEST(BilaplacianFlow, FixesABandTwoVerticesWideAlongABoundary) {
  constexpr int size = 9;
  TriangleMesh mesh = test::bumpyGrid(size, size);
  const TriangleMesh before = mesh;
  bilaplacianFlow(mesh, {.iterations = 5, .step = 0.5F});
  for (int row = 0; row <= size; ++row) {
    for (int column = 0; column <= size; ++column) {
      const int i = row * (size + 1) + column;
      const bool inBand = row < 2 || column < 2 || row > size - 2 || column > size - 2;
      EXPECT_EQ(mesh.position(i) == before.position(i), inBand) << row << ' ' << column;
    }
  }
}

TEST(BilaplacianFlow, FixesTheNeighboursOfANonManifoldVertex) {
  TriangleMesh mesh = test::touchingOctahedra();
  ASSERT_EQ(mesh.vertexKind[0], NonManifoldVertex);
  mesh.setPosition(5, {0.5, 0.25, 3});
  const TriangleMesh before = mesh;
  bilaplacianFlow(mesh, {.iterations = 5, .step = 0.5F});
  for (const int tip : {5, 10}) {
    EXPECT_EQ(mesh.vertexKind[static_cast<std::size_t>(tip)], InteriorVertex);
    EXPECT_NE(mesh.position(tip), before.position(tip)) << tip;
  }
  for (const int fixed : {0, 1, 2, 3, 4, 6, 7, 8, 9}) {
    EXPECT_EQ(mesh.position(fixed), before.position(fixed)) << fixed;
  }
}

TEST(BilaplacianFlow, LeavesAPlaneEvenlyCoveredAsItIs) {
  TriangleMesh mesh = test::grid(8, 8);
  const TriangleMesh before = mesh;
  bilaplacianFlow(mesh, {.iterations = 10, .step = 0.5F});
  // 1/6 is not exact: residues of a few 1e-16, far below half a unit in the last place.
  EXPECT_EQ(mesh.vertices, before.vertices);
}

TEST(BilaplacianFlow, MovesNothingForACountBelowOne) {
  for (const int iterations : {0, -1}) {
    TriangleMesh mesh = test::torus(8, 6);
    bilaplacianFlow(mesh, {.iterations = iterations, .step = 0.5F});
    EXPECT_EQ(mesh.vertices, test::torus(8, 6).vertices);
  }
}

}  // namespace
}  // namespace gravlin
