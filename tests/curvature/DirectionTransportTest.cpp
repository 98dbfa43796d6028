#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "curvature/DirectionTransport.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

/// Unit vectors in all octants, along axes and close to each other.
std::vector<Vec3> unitVectors() {
  std::vector<Vec3> result;
  for (int n = 0; n < 40; ++n) {
    const double z = 1.0 - (2.0 * n + 1.0) / 40.0;
    const double turn = n * std::numbers::pi * (3.0 - std::sqrt(5.0));
    const double r = std::sqrt(1.0 - z * z);
    result.push_back({r * std::cos(turn), r * std::sin(turn), z});
  }
  result.push_back({1, 0, 0});
  result.push_back({0, 1, 0});
  result.push_back({0, 0, -1});
  result.push_back(unitOrZero({1, 1e-4, 0}));
  return result;
}

TEST(DirectionTransport, TakesTheFirstNormalOntoTheSecond) {
  for (const Vec3& from : unitVectors()) {
    for (const Vec3& to : unitVectors()) {
      if (dot(from, to) < -0.999) continue;  // nearly opposite: the axis is ill defined
      EXPECT_LT(length(DirectionTransport(from, to)(from) - to), 1e-14);
    }
  }
}

TEST(DirectionTransport, KeepsTheAxisTheLengthAndTheHandedness) {
  const Vec3 a = {0.3, -0.4, 1.2};
  const Vec3 b = {-2.0, 0.1, 0.7};
  for (const Vec3& from : unitVectors()) {
    for (const Vec3& to : unitVectors()) {
      const DirectionTransport carry(from, to);
      const Vec3 axis = cross(from, to);
      EXPECT_LT(length(carry(axis) - axis), 1e-14);
      EXPECT_NEAR(length(carry(a)), length(a), 1e-13);
      EXPECT_LT(length(carry(cross(a, b)) - cross(carry(a), carry(b))), 1e-12);
    }
  }
}

TEST(DirectionTransport, BackAgainIsTheInverse) {
  const Vec3 v = {0.3, -0.4, 1.2};
  for (const Vec3& from : unitVectors()) {
    for (const Vec3& to : unitVectors()) {
      EXPECT_LT(length(DirectionTransport(to, from)(DirectionTransport(from, to)(v)) - v), 1e-13);
    }
  }
}

TEST(DirectionTransport, IsTheIdentityForParallelNormals) {
  const Vec3 v = {0.3, -0.4, 1.2};
  for (const Vec3& n : unitVectors()) {
    EXPECT_EQ(DirectionTransport(n, n)(v), v);
    EXPECT_EQ(DirectionTransport(n, -n)(v), v);
  }
  EXPECT_EQ(DirectionTransport({1, 0, 0}, {1, 9e-7, 0})(v), v);
  EXPECT_NE(DirectionTransport({1, 0, 0}, {1, 1.1e-6, 0})(v), v);
  EXPECT_EQ(DirectionTransport({0, 0, 0}, {1, 0, 0})(v), v);
}

TEST(DirectionTransport, RotatesOnlyByTheAngleWhenNormalsAreNotQuiteUnit) {
  const Vec3 from = {0, 0, 1.0000001};
  const Vec3 to = {0, 0.9999999 * std::sin(0.5), 0.9999999 * std::cos(0.5)};
  const Vec3 carried = DirectionTransport(from, to)({0, 1, 0});
  EXPECT_NEAR(carried.y, std::cos(0.5), 1e-14);
  EXPECT_NEAR(carried.z, -std::sin(0.5), 1e-14);
}

TEST(TransportDirection, CarriesFromTheSourceToTheTarget) {
  const TriangleMesh mesh = test::octahedron();  // normals along the axes
  const Vec3 carried = transportDirection(mesh, 0, 2, {0, 1, 0});
  EXPECT_LT(length(carried - Vec3{-1, 0, 0}), 1e-15);
}

}  // namespace
}  // namespace gravlin
