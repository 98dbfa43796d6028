#include <gtest/gtest.h>

#include "mesh/MeshMeasures.h"
#include "smoothing/DenseLaplacians.h"
#include "smoothing/LaplacianFlow.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

// Positions are rounded to single precision after every step: 3e-7 for coordinates up to 10.
constexpr double singleRounding = 3e-6;

TEST(LaplacianFlow, IsTheUmbrellaMatrixAppliedOncePerIteration) {
  for (const auto& family : {test::closedMeshes(), test::openMeshes()}) {
    for (const test::NamedMesh& named : family) {
      TriangleMesh flowed = named.mesh;
      TriangleMesh expected = named.mesh;
      laplacianFlow(flowed, {.iterations = 4, .step = 0.25F});
      const test::DenseMatrix umbrella = test::umbrellaMatrix(named.mesh);
      for (int step = 0; step < 4; ++step) test::moveBy(expected, 0.25, umbrella);
      EXPECT_LE(test::largestDifference(expected, flowed), singleRounding) << named.name;
    }
  }
}

TEST(LaplacianFlow, HalvesTheHeightOfAPyramidsApexWithStepOneHalf) {
  TriangleMesh pyramid = test::hexagonFan();
  pyramid.setPosition(0, {0, 0, 8});
  laplacianFlow(pyramid, {.iterations = 3, .step = 0.5F});
  EXPECT_EQ(pyramid.vertices[2], 1.0F);
}

TEST(LaplacianFlow, MovesNothingForACountBelowOne) {
  for (const int iterations : {0, -1, -2147483647}) {
    TriangleMesh mesh = test::octahedron();
    laplacianFlow(mesh, {.iterations = iterations, .step = 0.5F});
    EXPECT_EQ(mesh.vertices, test::octahedron().vertices);
  }
}

TEST(LaplacianFlow, ShrinksClosedSurfaces) {
  for (test::NamedMesh& named : test::closedMeshes()) {
    const double before = enclosedVolume(named.mesh);
    laplacianFlow(named.mesh, {.iterations = 1, .step = 0.5F});
    EXPECT_LT(enclosedVolume(named.mesh), before) << named.name;
  }
}

TEST(LaplacianFlow, RunInPartsGivesTheSameBits) {
  TriangleMesh whole = test::torus(12, 8);
  TriangleMesh parts = whole;
  laplacianFlow(whole, {.iterations = 7, .step = 0.3F});
  laplacianFlow(parts, {.iterations = 3, .step = 0.3F});
  laplacianFlow(parts, {.iterations = 4, .step = 0.3F});
  EXPECT_EQ(whole.vertices, parts.vertices);
}

}  // namespace
}  // namespace gravlin
