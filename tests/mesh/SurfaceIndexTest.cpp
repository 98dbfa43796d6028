#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "mesh/SurfaceIndex.h"
#include "numeric/Random.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"

namespace gravlin {
namespace {

/// Points scattered through a cube of edge 2 x `reach`.
std::vector<Vec3> scattered(int count, double reach) {
  Random random(7);
  const auto next = [&] { return reach * (2.0 * random.rand() / Random::largest - 1.0); };
  std::vector<Vec3> points;
  for (int n = 0; n < count; ++n) {
    const double x = next();
    const double y = next();
    points.push_back({x, y, next()});
  }
  return points;
}

/// The least distance to points on a fine lattice over the triangle: an upper bound.
double latticeDistance(const Vec3& p, const Vec3& a, const Vec3& b, const Vec3& c) {
  constexpr int n = 60;
  double least = std::numeric_limits<double>::infinity();
  for (int i = 0; i <= n; ++i) {
    for (int j = 0; i + j <= n; ++j) {
      const double s = static_cast<double>(i) / n;
      const double t = static_cast<double>(j) / n;
      least = std::min(least, length((1.0 - s - t) * a + s * b + t * c - p));
    }
  }
  return least;
}

TEST(NearestPointOnTriangle, IsAsNearAsAnyPointOfTheTriangle) {
  const Vec3 a = {0, 0, 0};
  const Vec3 b = {1.5, 0.25, 0};
  const Vec3 c = {-0.5, 1, 0.75};
  for (const Vec3& p : scattered(200, 2.0)) {
    const Vec3 q = nearestPointOnTriangle(p, a, b, c);
    const double lattice = latticeDistance(p, a, b, c);
    EXPECT_LE(length(p - q), lattice + 1e-12);
    EXPECT_GE(length(p - q), lattice - 0.03);  // a cell of the lattice
    EXPECT_LT(length(nearestPointOnTriangle(q, a, b, c) - q), 1e-12);
  }
}

TEST(NearestPointOnTriangle, HandlesEveryRegionAndNoArea) {
  const Vec3 a = {0, 0, 0};
  const Vec3 b = {1, 0, 0};
  const Vec3 c = {0, 1, 0};
  EXPECT_EQ(nearestPointOnTriangle({0.25, 0.25, 3}, a, b, c), (Vec3{0.25, 0.25, 0}));
  EXPECT_EQ(nearestPointOnTriangle({-1, -1, 1}, a, b, c), a);
  EXPECT_EQ(nearestPointOnTriangle({3, -1, 1}, a, b, c), b);
  EXPECT_EQ(nearestPointOnTriangle({-1, 3, 1}, a, b, c), c);
  EXPECT_EQ(nearestPointOnTriangle({0.5, -2, 1}, a, b, c), (Vec3{0.5, 0, 0}));
  EXPECT_EQ(nearestPointOnTriangle({1, 1, 0}, a, b, c), (Vec3{0.5, 0.5, 0}));
  EXPECT_EQ(nearestPointOnTriangle({0.5, 1, 0}, a, b, {3, 0, 0}), (Vec3{0.5, 0, 0}));
  EXPECT_EQ(nearestPointOnTriangle({0.5, 1, 0}, b, b, b), b);
}

TEST(SurfaceIndex, FindsWhatASearchOfAllFacesFinds) {
  for (const test::NamedMesh& each : test::everyMesh()) {
    SCOPED_TRACE(each.name);
    const SurfaceIndex index(each.mesh);
    for (const Vec3& p : scattered(200, 4.0)) {
      double least = std::numeric_limits<double>::infinity();
      for (int f = 0; f < each.mesh.faceCount; ++f) {
        if (!each.mesh.validFace(f)) continue;
        const auto c = each.mesh.corners(f);
        const Vec3 sum =
            each.mesh.position(c[0]) + each.mesh.position(c[1]) + each.mesh.position(c[2]);
        if (!std::isfinite(dot(sum, sum))) continue;
        const Vec3 q = nearestPointOnTriangle(p, each.mesh.position(c[0]), each.mesh.position(c[1]),
                                              each.mesh.position(c[2]));
        if (length(p - q) < least) least = length(p - q);
      }
      const auto found = index.nearest(p);
      if (!found) {
        EXPECT_FALSE(std::isfinite(least));
        continue;
      }
      EXPECT_LE(found->distance, least + 1e-12);
      EXPECT_NEAR(length(p - found->position), found->distance, 1e-12);
      EXPECT_TRUE(each.mesh.validFace(found->face));
    }
  }
}

TEST(SurfaceIndex, FindsNothingForNothing) {
  EXPECT_FALSE(SurfaceIndex(test::emptyMesh()).nearest({0, 0, 0}).has_value());
  EXPECT_FALSE(SurfaceIndex(test::pointsOnly()).nearest({0, 0, 0}).has_value());
  const TriangleMesh cube = test::cube();
  const SurfaceIndex index(cube);
  EXPECT_FALSE(index.nearest({std::nan(""), 0, 0}).has_value());
  EXPECT_FALSE(index.nearest({0, std::numeric_limits<double>::infinity(), 0}).has_value());
}

TEST(SurfaceIndex, ManyFacesAtOnePlaceDoNotDeepenIt) {
  std::vector<std::array<int, 3>> faces(3000, {0, 1, 2});
  const TriangleMesh mesh = test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, faces);
  const auto found = SurfaceIndex(mesh).nearest({0.2, 0.2, 2.0});
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->distance, 2.0);
}

}  // namespace
}  // namespace gravlin
