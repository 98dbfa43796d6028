#include <cmath>
#include <gtest/gtest.h>

#include "numeric/Random.h"
#include "smoothing/Noise.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

/// n vertices at the origin of a plane, all with the normal (0, 0, 1), and no faces.
TriangleMesh pointsWithNormals(int n) {
  TriangleMesh mesh;
  mesh.setVertexCount(n);
  for (int i = 0; i < n; ++i) mesh.vertexNormals.insert(mesh.vertexNormals.end(), {0, 0, 1});
  return mesh;
}

std::vector<double> heightsAfterNoise(int n, float size) {
  TriangleMesh mesh = pointsWithNormals(n);
  addNoise(mesh, size);
  std::vector<double> heights;
  for (int i = 0; i < n; ++i) heights.push_back(mesh.position(i).z);
  return heights;
}

TEST(Noise, MovesTheFirstPairByTheFirstPointDrawnInsideTheUnitDisc) {
  Random random(100);
  double u = 0.0;
  double v = 0.0;
  double s = 2.0;
  while (s >= 1.0 || s == 0.0) {
    u = random.rand() * 2.0 / 32767.0 - 1.0;
    v = random.rand() * 2.0 / 32767.0 - 1.0;
    s = u * u + v * v;
  }
  const std::vector<double> heights = heightsAfterNoise(3, 0.5F);
  const double radius = 0.5 * std::sqrt(-2.0 * std::log(s)) / std::sqrt(s);
  // Stored in single precision.
  EXPECT_NEAR(heights[0], radius * u, 1e-7);
  EXPECT_NEAR(heights[1], radius * v, 1e-7);
}

TEST(Noise, IsNormallyDistributedWithTheGivenDeviation) {
  constexpr int n = 200000;
  constexpr double size = 0.25;
  double sums[4] = {};
  for (const double height : heightsAfterNoise(n, static_cast<float>(size))) {
    const double deviate = height / size;
    for (int power = 0; power < 4; ++power) sums[power] += std::pow(deviate, power + 1);
  }
  // Moments 0, 1, 0, 3 with standard errors sqrt(1, 2, 15, 96) / sqrt(n); five of each.
  const double error = 5.0 / std::sqrt(n);
  EXPECT_NEAR(sums[0] / n, 0.0, error);
  EXPECT_NEAR(sums[1] / n, 1.0, error * std::sqrt(2.0));
  EXPECT_NEAR(sums[2] / n, 0.0, error * std::sqrt(15.0));
  EXPECT_NEAR(sums[3] / n, 3.0, error * std::sqrt(96.0));
}

TEST(Noise, GivesAVertexTheSameAmountHoweverManyFollow) {
  const std::vector<double> many = heightsAfterNoise(10, 0.5F);
  for (int n = 1; n < 10; ++n) {
    const std::vector<double> few = heightsAfterNoise(n, 0.5F);
    for (std::size_t i = 0; i < few.size(); ++i) EXPECT_EQ(few[i], many[i]) << n << ' ' << i;
  }
}

TEST(Noise, FollowsTheVertexNormals) {
  for (const test::NamedMesh& named : test::closedMeshes()) {
    TriangleMesh mesh = named.mesh;
    addNoise(mesh, 0.1F);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const Vec3 moved = mesh.position(i) - named.mesh.position(i);
      EXPECT_GT(length(moved), 0.0);
      EXPECT_LE(length(cross(moved, named.mesh.vertexNormal(i))), 1e-6) << named.name;
    }
  }
}

TEST(Noise, MovesBoundaryVerticesAndLeavesThoseWithoutANormal) {
  TriangleMesh mesh = test::makeMesh({{9, 9, 9}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{1, 2, 3}});
  const TriangleMesh before = mesh;
  addNoise(mesh, 0.5F);
  EXPECT_EQ(mesh.position(0), before.position(0));
  for (int i = 1; i < 4; ++i) EXPECT_NE(mesh.vertices[3 * static_cast<std::size_t>(i) + 2], 0.0F);
}

TEST(Noise, OfSizeZeroChangesNothing) {
  TriangleMesh mesh = test::torus(8, 6);
  const TriangleMesh before = mesh;
  addNoise(mesh, 0.0F);
  EXPECT_EQ(mesh.vertices, before.vertices);
}

TEST(Noise, OfNegativeSizeIsMirrored) {
  const std::vector<double> positive = heightsAfterNoise(7, 0.5F);
  const std::vector<double> negative = heightsAfterNoise(7, -0.5F);
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(negative[i], -positive[i]);
}

TEST(Noise, RunTwiceAddsTheSamePatternTwice) {
  TriangleMesh mesh = pointsWithNormals(5);
  addNoise(mesh, 0.5F);
  addNoise(mesh, 0.5F);
  const std::vector<double> once = heightsAfterNoise(5, 0.5F);
  // Each amount is rounded to single precision twice.
  for (int i = 0; i < 5; ++i)
    EXPECT_NEAR(mesh.position(i).z, 2.0 * once[static_cast<std::size_t>(i)], 2e-7);
}

TEST(Noise, TakesAnyMeshAndAnySize) {
  for (const test::NamedMesh& named : test::hostileMeshes()) {
    for (const float size : {0.05F, std::nanf(""), HUGE_VALF, -3e38F}) {
      TriangleMesh mesh = named.mesh;
      SCOPED_TRACE(::testing::Message() << named.name << ' ' << size);
      addNoise(mesh, size);
      ASSERT_EQ(mesh.vertices.size(), named.mesh.vertices.size());
      EXPECT_EQ(mesh.faces, named.mesh.faces);
      EXPECT_EQ(mesh.vertexKind, named.mesh.vertexKind);
      if (named.name == "not a number" || named.name == "infinite" || !std::isfinite(size))
        continue;
      for (int i = 0; i < mesh.vertexCount; ++i) {
        const Vec3 moved = mesh.position(i) - named.mesh.position(i);
        if (mesh.vertexNormal(i) == Vec3{}) {
          EXPECT_EQ(moved, Vec3{});
        } else if (size == 0.05F && named.name == "very large") {
          EXPECT_EQ(moved, Vec3{}) << "less than the rounding of its coordinates";
        } else if (size == 0.05F) {
          EXPECT_GT(length(moved), 0.0);
          EXPECT_LT(length(moved), 5.0 * 0.05);  // five standard deviations
          EXPECT_LT(length(cross(moved, mesh.vertexNormal(i))), 2e-6);
        }
      }
    }
  }
}

}  // namespace
}  // namespace gravlin
