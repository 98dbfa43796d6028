#include <cmath>
#include <gtest/gtest.h>

#include "smoothing/DenseLaplacians.h"
#include "smoothing/MedianCurvatureFlow.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

void expectNear(const Vec3& actual, const Vec3& expected) {
  // A handful of roundings of numbers up to 10.
  EXPECT_LE(length(actual - expected), 1e-14);
}

TEST(MedianCurvatureFlow, FollowsTheUmbrellaSoFarThatThePartAlongTheNormalIsThatOfTheFlow) {
  const Vec3 umbrella = {3, 0, 4};
  const Vec3 inward = {0, 0, 2};
  // d = 8, h = 4: D = 0.5 x 4/8 x L, shorter than L; D . H / |H| = 0.5 x 2.
  expectNear(displacementAlongMedian(umbrella, inward, 0.5), {0.75, 0, 1});
}

TEST(MedianCurvatureFlow, GoesNoFartherThanTheUmbrella) {
  const Vec3 umbrella = {3, 0, 4};
  const Vec3 inward = {0, 0, 2};
  // Twice the umbrella's length would be needed.
  EXPECT_EQ(displacementAlongMedian(umbrella, inward, 4.0), umbrella);
  EXPECT_EQ(displacementAlongMedian(umbrella, inward, -4.0), umbrella);
}

TEST(MedianCurvatureFlow, FollowsTheMirroredUmbrellaWhereItPointsOutward) {
  const Vec3 umbrella = {3, 0, -4};
  const Vec3 inward = {0, 0, 2};
  // d = -8, h = 4: D = 0.5 x (2 H + 0.5 L); its part along H is again 0.5 x 2 ... 1 x dt x |H|.
  const Vec3 displacement = displacementAlongMedian(umbrella, inward, 0.5);
  expectNear(displacement, {0.75, 0, 1});
  // The same as with the umbrella mirrored at the plane across the normal.
  expectNear(displacement, displacementAlongMedian({3, 0, 4}, inward, 0.5));
}

TEST(MedianCurvatureFlow, GoesNoFartherThanTheMirroredUmbrella) {
  expectNear(displacementAlongMedian({3, 0, -4}, {0, 0, 2}, 4.0), {3, 0, 4});
}

TEST(MedianCurvatureFlow, FollowsTheUmbrellaWhereThereIsNoNormalPart) {
  const Vec3 umbrella = {3, 1, 0};
  for (const double step : {0.0, 0.5, 100.0}) {
    EXPECT_EQ(displacementAlongMedian(umbrella, {0, 0, 2}, step), umbrella);
    EXPECT_EQ(displacementAlongMedian(umbrella, {0, 0, 0}, step), umbrella);
  }
}

TEST(MedianCurvatureFlow, StaysWhereTheVectorsAreNotNumbers) {
  EXPECT_EQ(displacementAlongMedian({std::nan(""), 0, 0}, {1, 0, 0}, 0.5), (Vec3{0, 0, 0}));
}

TEST(MedianCurvatureFlow, MovesEveryInteriorVertexByItsOwnDisplacement) {
  for (const auto& family : {test::closedMeshes(), test::openMeshes()}) {
    for (const test::NamedMesh& named : family) {
      const TriangleMesh& mesh = named.mesh;
      TriangleMesh umbrellas = mesh;
      TriangleMesh normals = mesh;
      test::moveBy(umbrellas, 1.0, test::umbrellaMatrix(mesh));
      test::moveBy(normals, 4.0, test::cotangentMatrix(mesh), test::ringAreas(mesh));
      TriangleMesh flowed = mesh;
      medianCurvatureFlow(flowed, {.iterations = 1, .step = 0.02F});
      for (int i = 0; i < mesh.vertexCount; ++i) {
        const Vec3 before = mesh.position(i);
        const Vec3 inward = normals.position(i) - before;
        // Where the normal vanishes its direction is rounding error.
        if (length(inward) < 1e-4) continue;
        const Vec3 moved = displacementAlongMedian(umbrellas.position(i) - before, inward,
                                                   static_cast<double>(0.02F));
        // The vectors went through single precision; their quotient magnifies that up to 1e4.
        EXPECT_LE(length(flowed.position(i) - before - moved), 1e-3 * length(moved) + 1e-6)
            << named.name << ' ' << i;
      }
    }
  }
}

TEST(MedianCurvatureFlow, GoesTheWayOfTheFlowOrToTheMiddleOfTheRingOnAnOctahedron) {
  // At (1, 0, 0): L = (-1, 0, 0) and K = (16/3, 0, 0), so D = -16/3 dt, at most as long as L.
  TriangleMesh near = test::octahedron();
  medianCurvatureFlow(near, {.iterations = 1, .step = 0.125F});
  EXPECT_LE(length(near.position(0) - Vec3{1.0 / 3, 0, 0}), 1e-7);  // rounding to single
  TriangleMesh far = test::octahedron();
  medianCurvatureFlow(far, {.iterations = 1, .step = 0.5F});
  EXPECT_EQ(far.position(0), (Vec3{0, 0, 0}));
}

TEST(MedianCurvatureFlow, GoesAgainstTheUmbrellaWhereTheNormalPointsTheOtherWay) {
  // Four equal triangles of area sqrt(4.5) / 2 around a saddle, steep one way and wide the other:
  // L = (0, 0, 1/8), but the cotangents weigh the steep neighbours more and K = (0, 0, 8/9), H =
  // -K. D = dt (2 H - (h / d) L) = -8/9 dt along z, at most as long as L: mirrored L is (0, 0,
  // -1/8).
  const auto saddle = [] {
    return test::makeMesh({{0, 0, 0}, {1, 0, -0.25}, {0, 2, 0.5}, {-1, 0, -0.25}, {0, -2, 0.5}},
                          {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 1}});
  };
  TriangleMesh near = saddle();
  medianCurvatureFlow(near, {.iterations = 1, .step = 0.1F});
  EXPECT_LE(length(near.position(0) - Vec3{0, 0, -4.0 / 45}), 1e-7);  // rounding to single
  TriangleMesh far = saddle();
  medianCurvatureFlow(far, {.iterations = 1, .step = 0.5F});
  EXPECT_LE(length(far.position(0) - Vec3{0, 0, -0.125}), 1e-7);
}

TEST(MedianCurvatureFlow, SpreadsTheVerticesOfAFlatMeshEvenly) {
  // No normal part anywhere: every interior vertex goes to the centre of its ring.
  TriangleMesh fan = test::hexagonFan();
  fan.setPosition(0, {0.25, 0.5, 0});
  medianCurvatureFlow(fan, {.iterations = 1, .step = 0.1F});
  // The corners of the hexagon are rounded to single precision.
  EXPECT_LE(length(fan.position(0)), 1e-7);
}

TEST(MedianCurvatureFlow, MovesNothingForACountBelowOne) {
  for (const int iterations : {0, -1}) {
    TriangleMesh mesh = test::octahedron();
    medianCurvatureFlow(mesh, {.iterations = iterations, .step = 0.5F});
    EXPECT_EQ(mesh.vertices, test::octahedron().vertices);
  }
}

}  // namespace
}  // namespace gravlin
