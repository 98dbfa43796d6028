#include <cmath>
#include <gtest/gtest.h>

#include "smoothing/DenseLaplacians.h"
#include "smoothing/MeanCurvatureFlow.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

/// x_i -= dt K_i with K = -4 / (ring area) x (cotangent matrix).
void denseStep(TriangleMesh& mesh, double dt) {
  test::moveBy(mesh, 4.0 * dt, test::cotangentMatrix(mesh), test::ringAreas(mesh));
}

TEST(MeanCurvatureFlow, IsTheCotangentMatrixOverTheRingAreaRenewedEveryIteration) {
  for (const auto& family : {test::closedMeshes(), test::openMeshes()}) {
    for (const test::NamedMesh& named : family) {
      TriangleMesh flowed = named.mesh;
      TriangleMesh expected = named.mesh;
      meanCurvatureFlow(flowed, {.iterations = 3, .step = 0.01F});
      for (int step = 0; step < 3; ++step) denseStep(expected, static_cast<double>(0.01F));
      // Single rounding of coordinates up to 10, three times.
      EXPECT_LE(test::largestDifference(expected, flowed), 3e-6) << named.name;
    }
  }
}

TEST(MeanCurvatureFlow, ShrinksASphereByTheInverseOfItsRadius) {
  // The sum of (cot alpha + cot beta) (x_i - x_j) is 4 / r times the vertex's share of the area,
  // which is a third of its ring: K = 4 x 4 / (3 r) along the outward normal.
  constexpr double dt = 0.001;
  for (const double radius : {1.0, 2.0, 5.0}) {
    TriangleMesh sphere = test::icosphere(4, radius);
    meanCurvatureFlow(sphere, {.iterations = 1, .step = static_cast<float>(dt)});
    double mean = 0.0;
    for (int i = 0; i < sphere.vertexCount; ++i) mean += length(sphere.position(i));
    mean /= sphere.vertexCount;
    // 1 % for the polyhedron in the sphere's place.
    EXPECT_NEAR((radius - mean) / dt, 16.0 / 3.0 / radius, 0.054 / radius) << radius;
  }
}

TEST(MeanCurvatureFlow, LeavesAVertexWithoutRingAreaWhereItIs) {
  // Vertex 0 lies on a line with its whole ring.
  TriangleMesh mesh =
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {-1, 0, 0}, {0, 3, 3}},
                     {{0, 1, 2}, {0, 2, 3}, {0, 3, 1}, {1, 3, 4}, {3, 2, 4}, {2, 1, 4}});
  ASSERT_EQ(mesh.vertexKind[0], InteriorVertex);
  const TriangleMesh before = mesh;
  meanCurvatureFlow(mesh, {.iterations = 1, .step = 0.5F});
  EXPECT_EQ(mesh.position(0), before.position(0));
  EXPECT_NE(mesh.position(4), before.position(4));
}

TEST(MeanCurvatureFlow, SkipsTrianglesWithoutArea) {
  // The three triangles around vertex 0 lie on the line through its neighbours, which take their
  // normals from the other three alone.
  TriangleMesh mesh =
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {-1, 0, 0}, {0, 3, 3}},
                     {{0, 1, 2}, {0, 2, 3}, {0, 3, 1}, {1, 3, 4}, {3, 2, 4}, {2, 1, 4}});
  constexpr double dt = 0.5;
  meanCurvatureFlow(mesh, {.iterations = 1, .step = static_cast<float>(dt)});
  // K = -4 / (sum of areas) x sum of (cot of the angle at b) (a - x) + (cot at a) (b - x).
  const Vec3 ofFirst = {0, -4.0 / 3, -4.0 / 3};
  const Vec3 ofSecond = {4, 0, 0};
  const Vec3 ofThird = {-3.2, -0.8, -0.8};
  // Positions of size 3 are rounded to 2.4e-7.
  EXPECT_LE(length(mesh.position(1) - (Vec3{1, 0, 0} - dt * ofFirst)), 5e-7);
  EXPECT_LE(length(mesh.position(2) - (Vec3{2, 0, 0} - dt * ofSecond)), 5e-7);
  EXPECT_LE(length(mesh.position(3) - (Vec3{-1, 0, 0} - dt * ofThird)), 5e-7);
}

TEST(MeanCurvatureFlow, MovesNothingForACountBelowOne) {
  for (const int iterations : {0, -1}) {
    TriangleMesh mesh = test::octahedron();
    meanCurvatureFlow(mesh, {.iterations = iterations, .step = 0.5F});
    EXPECT_EQ(mesh.vertices, test::octahedron().vertices);
  }
}

}  // namespace
}  // namespace gravlin
