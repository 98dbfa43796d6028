#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "curvature/CurvatureTensor.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"
#include "support/TiltedPlanes.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::Eq;

using test::everyMesh;
using test::NamedMesh;
using test::sameBits;

/// The estimate at one vertex, with the four results in a row: both curvatures, both directions.
using Estimate = std::array<double, 8>;

Estimate estimateOf(const TriangleMesh& mesh, int i) {
  const auto k = static_cast<std::size_t>(i);
  return {mesh.maxCurvature[k],         mesh.minCurvature[k],         mesh.maxDirection[3 * k],
          mesh.maxDirection[3 * k + 1], mesh.maxDirection[3 * k + 2], mesh.minDirection[3 * k],
          mesh.minDirection[3 * k + 1], mesh.minDirection[3 * k + 2]};
}

Vec3 maxDirectionOf(const TriangleMesh& mesh, int i) {
  return vectorAt(mesh.maxDirection, i);
}

Vec3 minDirectionOf(const TriangleMesh& mesh, int i) {
  return vectorAt(mesh.minDirection, i);
}

/// The definition written out term by term, with a full matrix and an array of weights.
Estimate plainEstimate(const TriangleMesh& mesh, int i) {
  const std::span<const int> ring = mesh.getNeighbours(i);
  const auto k = static_cast<int>(ring.size());
  if (k < 3) return {};
  const auto q = [&](int j) { return mesh.position(ring[static_cast<std::size_t>((j + k) % k)]); };
  const Vec3 p = mesh.position(i);
  const Vec3 N = mesh.vertexNormal(i);
  const auto fanArea = [&](int a, int b) { return 0.5 * length(cross(q(a) - p, q(b) - p)); };

  std::vector<double> weight(ring.size(), 0.0);
  double whole = 0.0;
  const bool closed = mesh.vertexKind[static_cast<std::size_t>(i)] == 0;
  for (int j = 0; j < k; ++j) {
    double& w = weight[static_cast<std::size_t>(j)];
    if (closed || j > 0) w += fanArea(j - 1, j);
    if (closed || j < k - 1) w += fanArea(j, j + 1);
    whole += w;
  }

  double M[3][3] = {};
  const double P[3][3] = {{1 - N.x * N.x, -(N.x * N.y), -(N.z * N.x)},
                          {-(N.x * N.y), 1 - N.y * N.y, -(N.y * N.z)},
                          {-(N.z * N.x), -(N.y * N.z), 1 - N.z * N.z}};
  for (int j = 0; j < k; ++j) {
    const Vec3 d = p - q(j);
    const Vec3 Nj = mesh.vertexNormal(ring[static_cast<std::size_t>(j)]);
    const double c = dot(N, Nj);
    double kappa = 0.0;
    if (c <= 1) kappa = -2 * std::sqrt((1 - c) / 2) / length(d);
    const Vec3 T = {P[0][0] * d.x + P[0][1] * d.y + P[0][2] * d.z,
                    P[1][0] * d.x + P[1][1] * d.y + P[1][2] * d.z,
                    P[2][0] * d.x + P[2][1] * d.y + P[2][2] * d.z};
    if (dot(Nj, T) < 0) kappa = -kappa;
    const double l = length(T);
    if (l == 0) continue;
    const double t[3] = {T.x / l, T.y / l, T.z / l};
    for (int r = 0; r < 3; ++r) {
      for (int s = 0; s < 3; ++s) {
        M[r][s] += kappa * weight[static_cast<std::size_t>(j)] * (t[r] * t[s]);
      }
    }
  }
  if (whole == 0) return {};
  for (auto& row : M) {
    for (double& entry : row) entry /= whole;
  }

  double h[3];
  if (N.x >= 0) {
    const double s = std::sqrt(2 * (1 + N.x));
    h[0] = (1 + N.x) / s, h[1] = N.y / s, h[2] = N.z / s;
  } else {
    const double s = std::sqrt(2 - 2 * N.x);
    h[0] = (1 - N.x) / s, h[1] = -N.y / s, h[2] = -N.z / s;
  }
  double axis[2][3];
  for (int column = 1; column < 3; ++column) {
    for (int r = 0; r < 3; ++r) {
      axis[column - 1][r] = r == column ? 1 - 2 * h[r] * h[r] : -2 * h[r] * h[column];
    }
  }
  double m[2][2];
  for (int a = 0; a < 2; ++a) {
    for (int b = 0; b < 2; ++b) {
      m[a][b] = 0;
      for (int s = 0; s < 3; ++s) {
        const double row = axis[a][0] * M[0][s] + axis[a][1] * M[1][s] + axis[a][2] * M[2][s];
        m[a][b] = s == 0 ? row * axis[b][s] : m[a][b] + row * axis[b][s];
      }
    }
  }
  const double theta = m[0][1] != 0 ? (m[1][1] - m[0][0]) / (2 * m[0][1]) : 0;
  double t = 1 / (std::fabs(theta) + std::sqrt(theta * theta + 1));
  if (theta < 0) t = -t;
  const double c = 1 / std::sqrt(t * t + 1);
  const double s = t * c;
  const double lambda[2] = {m[0][0] - t * m[0][1], m[1][1] + t * m[0][1]};
  const double kappa[2] = {3 * lambda[0] - lambda[1], 3 * lambda[1] - lambda[0]};
  double e[2][3];
  for (int r = 0; r < 3; ++r) {
    e[0][r] = c * axis[0][r] - s * axis[1][r];
    e[1][r] = s * axis[0][r] + c * axis[1][r];
  }
  const int max = kappa[0] <= kappa[1] ? 1 : 0;
  const int min = 1 - max;
  const Vec3 eMax = {e[max][0], e[max][1], e[max][2]};
  Vec3 eMin = {e[min][0], e[min][1], e[min][2]};
  if (dot(cross(N, eMax), eMin) < 0) eMin = {-eMin.x, -eMin.y, -eMin.z};
  return {kappa[max], kappa[min], eMax.x, eMax.y, eMax.z, eMin.x, eMin.y, eMin.z};
}

/// Vertex 0 at the origin of the parameter plane with `count` neighbours on a circle of radius
/// `step` around it. `surface` maps the plane to a position and its exact normal.
template <class Surface>
TriangleMesh evenRing(int count, double step, Surface surface) {
  std::vector<std::array<float, 3>> points;
  std::vector<float> normals;
  const auto add = [&](double u, double v) {
    const auto [position, normal] = surface(u, v);
    std::array<float, 3> p;
    std::array<float, 3> n;
    storeVec3(p.data(), position);
    storeVec3(n.data(), normal);
    points.push_back(p);
    normals.insert(normals.end(), n.begin(), n.end());
  };
  add(0.0, 0.0);
  std::vector<std::array<int, 3>> faces;
  for (int j = 0; j < count; ++j) {
    const double angle = 2.0 * std::numbers::pi * j / count;
    add(step * std::cos(angle), step * std::sin(angle));
    faces.push_back({0, 1 + j, 1 + (j + 1) % count});
  }
  TriangleMesh mesh = test::makeMesh(points, faces);
  mesh.vertexNormals = normals;
  computeCurvatureTensor(mesh);
  return mesh;
}

struct OnSurface {
  Vec3 position;
  Vec3 normal;
};

TEST(CurvatureTensor, EqualsTheDefinitionBitForBitOnEveryMesh) {
  for (NamedMesh& each : everyMesh()) {
    SCOPED_TRACE(each.name);
    computeCurvatureTensor(each.mesh);
    for (int i = 0; i < each.mesh.vertexCount; ++i) {
      const Estimate found = estimateOf(each.mesh, i);
      const Estimate expected = plainEstimate(each.mesh, i);
      for (std::size_t n = 0; n < found.size(); ++n) {
        EXPECT_TRUE(sameBits(found[n], expected[n]))
            << "vertex " << i << ", entry " << n << ": " << found[n] << " and " << expected[n];
      }
    }
  }
}

TEST(CurvatureTensor, GivesOneOverTheRadiusOnAnEvenPatchOfASphere) {
  for (const double r : {0.5, 2.0, 7.0}) {
    for (const int count : {3, 4, 6, 9}) {
      const TriangleMesh mesh = evenRing(count, 0.3, [r](double u, double v) -> OnSurface {
        const double polar = std::hypot(u, v);
        const double azimuth = std::atan2(v, u);
        const Vec3 n = {std::cos(polar), std::sin(polar) * std::cos(azimuth),
                        std::sin(polar) * std::sin(azimuth)};
        return {r * n, n};
      });
      // The cosine of 0.3 is rounded by some 1e-7 of the 0.045 that it lacks to 1.
      EXPECT_NEAR(mesh.maxCurvature[0] * r, 1.0, 5e-6) << r << ' ' << count;
      EXPECT_NEAR(mesh.minCurvature[0] * r, 1.0, 5e-6) << r << ' ' << count;
    }
  }
}

TEST(CurvatureTensor, TendsToItsTwoLimitsOnADenseEvenRingOfACylinder) {
  for (const double r : {1.0, 4.0}) {
    const TriangleMesh mesh = evenRing(720, 0.1 * r, [r](double u, double v) -> OnSurface {
      const Vec3 n = {std::cos(u / r), std::sin(u / r), 0.0};
      return {{r * n.x, r * n.y, v}, n};
    });
    // Every neighbour at angle a from the circumference counts |cos a| / r instead of the cos^2 a /
    // r of the surface. Float normals leave noise of some 1e-3 in the directions along the axis.
    EXPECT_NEAR(mesh.maxCurvature[0] * r, 10.0 / (3.0 * std::numbers::pi), 2e-3);
    EXPECT_NEAR(mesh.minCurvature[0] * r, 2.0 / (3.0 * std::numbers::pi), 2e-3);
    EXPECT_NEAR(std::abs(maxDirectionOf(mesh, 0).y), 1.0, 1e-5);
    EXPECT_NEAR(std::abs(minDirectionOf(mesh, 0).z), 1.0, 1e-5);
  }
}

TEST(CurvatureTensor, IsPositiveForOutwardNormalsAndNegativeForInwardOnes) {
  TriangleMesh sphere = test::icosphere(3, 2.0);
  for (int i = 0; i < sphere.vertexCount; ++i) {
    storeVectorAt(sphere.vertexNormals, i, 0.5 * sphere.position(i));
  }
  computeCurvatureTensor(sphere);
  const TriangleMesh outward = sphere;
  for (float& n : sphere.vertexNormals) n = -n;
  computeCurvatureTensor(sphere);
  for (std::size_t i = 0; i < outward.maxCurvature.size(); ++i) {
    // An uneven ring splits the two curvatures but not their mean, the trace of the tensor. Float
    // normals some 0.15 apart know their cosine's distance to 1 to some 1e-5.
    EXPECT_NEAR(0.5 * (outward.maxCurvature[i] + outward.minCurvature[i]), 0.5, 1e-5);
    EXPECT_GT(outward.minCurvature[i], 0.3);
    // The other tangent frame only changes the rounding.
    EXPECT_NEAR(sphere.maxCurvature[i], -outward.minCurvature[i], 1e-12);
    EXPECT_NEAR(sphere.minCurvature[i], -outward.maxCurvature[i], 1e-12);
  }
}

TEST(CurvatureTensor, TurnsTheTangentAxesBy45DegreesOnAFlatPatch) {
  TriangleMesh mesh = test::hexagonFan();
  computeCurvatureTensor(mesh);
  EXPECT_THAT(mesh.maxCurvature, Each(Eq(0.0)));
  EXPECT_THAT(mesh.minCurvature, Each(Eq(0.0)));
  // The reflection that takes x to z maps y to y and z to -x; the turned pair is the one below.
  const double s = std::sqrt(0.5);
  EXPECT_NEAR(length(maxDirectionOf(mesh, 0) - Vec3{-s, s, 0.0}), 0.0, 1e-15);
  EXPECT_NEAR(length(minDirectionOf(mesh, 0) - Vec3{-s, -s, 0.0}), 0.0, 1e-15);
}

/// The tangent axes that the reflection of the x axis onto N leaves, turned by 45 degrees: what
/// maximum and minimum are where the tensor vanishes.
std::array<Vec3, 2> turnedAxes(const Vec3& N) {
  const Vec3 h = unitOrZero(N.x >= 0.0 ? Vec3{1.0 + N.x, N.y, N.z} : Vec3{1.0 - N.x, -N.y, -N.z});
  const Vec3 y = Vec3{0, 1, 0} - 2.0 * h.y * h;
  const Vec3 z = Vec3{0, 0, 1} - 2.0 * h.z * h;
  return {std::sqrt(0.5) * (y + z), std::sqrt(0.5) * (y - z)};
}

TEST(CurvatureTensor, OfATiltedPlaneIsTheRoundingOfItsNormals) {
  int flat = 0;
  double largest = 0.0;
  for (NamedMesh& each : test::tiltedPlanes()) {
    SCOPED_TRACE(each.name);
    const TriangleMesh& mesh = each.mesh;
    computeCurvatureTensor(each.mesh);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const auto k = static_cast<std::size_t>(i);
      const auto ring = mesh.getNeighbours(i);
      if (ring.size() < 3) continue;
      double shortest = HUGE_VAL;
      for (const int j : ring) {
        shortest = std::min(shortest, length(mesh.position(j) - mesh.position(i)));
      }
      // 2 sin(theta / 2) over the distance for every neighbour; a principal curvature is three
      // times one eigenvalue less the other, each at most that large.
      const double bound = 4.0 * 2.0 * std::sqrt(test::cosineRounding / 2.0) / shortest;
      EXPECT_LE(std::abs(mesh.maxCurvature[k]), bound);
      EXPECT_LE(std::abs(mesh.minCurvature[k]), bound);
      largest = std::max(largest, std::abs(mesh.maxCurvature[k]) * shortest);
      if (mesh.maxCurvature[k] != 0.0 || mesh.minCurvature[k] != 0.0) continue;
      const auto [max, min] = turnedAxes(mesh.vertexNormal(i));
      EXPECT_LT(length(maxDirectionOf(mesh, i) - max), 1e-6);
      EXPECT_LT(
          std::min(length(minDirectionOf(mesh, i) - min), length(minDirectionOf(mesh, i) + min)),
          1e-6);
      ++flat;
    }
  }
  EXPECT_GT(flat, 20) << "vertices without any curvature";
  EXPECT_GT(largest, 1e-4) << "rounding shows on some plane";
}

TEST(CurvatureTensor, IsFiniteWherePositionsAreFiniteAndApart) {
  for (NamedMesh& each : everyMesh()) {
    if (each.name == "not a number" || each.name == "infinite") continue;
    SCOPED_TRACE(each.name);
    const TriangleMesh before = each.mesh;
    computeCurvatureTensor(each.mesh);
    EXPECT_EQ(each.mesh.faces, before.faces);
    EXPECT_EQ(each.mesh.vertices, before.vertices);
    for (int i = 0; i < each.mesh.vertexCount; ++i) {
      for (const double x : estimateOf(each.mesh, i)) EXPECT_TRUE(std::isfinite(x)) << i;
    }
  }
}

TEST(CurvatureTensor, FramesAreRightHandedUnitAndTangent) {
  for (NamedMesh& each : everyMesh()) {
    SCOPED_TRACE(each.name);
    computeCurvatureTensor(each.mesh);
    for (int i = 0; i < each.mesh.vertexCount; ++i) {
      const Vec3 N = each.mesh.vertexNormal(i);
      const Vec3 max = maxDirectionOf(each.mesh, i);
      const Vec3 min = minDirectionOf(each.mesh, i);
      EXPECT_FALSE(dot(cross(N, max), min) < 0.0) << i;
      EXPECT_FALSE(each.mesh.maxCurvature[static_cast<std::size_t>(i)] <
                   each.mesh.minCurvature[static_cast<std::size_t>(i)]);
      if (max == Vec3{} || length(N) == 0.0 || !std::isfinite(dot(max, min))) continue;
      // The normal is a float vector, of unit length only to some 1e-7.
      for (const double zero :
           {length(max) - 1.0, length(min) - 1.0, dot(max, min), dot(max, N), dot(min, N)}) {
        EXPECT_NEAR(zero, 0.0, 1e-6) << i;
      }
    }
  }
}

TEST(CurvatureTensor, HalvesExactlyWhenTheMeshIsDoubled) {
  TriangleMesh mesh = test::bumpyGrid(9, 7);
  TriangleMesh doubled = mesh;
  for (float& x : doubled.vertices) x *= 2.0F;
  computeCurvatureTensor(mesh);
  computeCurvatureTensor(doubled);
  for (std::size_t i = 0; i < mesh.maxCurvature.size(); ++i) {
    EXPECT_EQ(2.0 * doubled.maxCurvature[i], mesh.maxCurvature[i]);
    EXPECT_EQ(2.0 * doubled.minCurvature[i], mesh.minCurvature[i]);
  }
  EXPECT_EQ(doubled.maxDirection, mesh.maxDirection);
  EXPECT_EQ(doubled.minDirection, mesh.minDirection);
}

TEST(CurvatureTensor, TurnsWithTheMesh) {
  // A turn about the axis (1, 1, 1) by 120 degrees only renames the axes, so the float positions
  // and normals are exactly the turned ones and only the tangent frame is rounded anew.
  const auto turned = [](const Vec3& v) -> Vec3 { return {v.z, v.x, v.y}; };
  TriangleMesh mesh = test::bumpyGrid(9, 7);
  computeCurvatureTensor(mesh);
  TriangleMesh other = mesh;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    other.setPosition(i, turned(mesh.position(i)));
    storeVectorAt(other.vertexNormals, i, turned(mesh.vertexNormal(i)));
  }
  computeCurvatureTensor(other);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const auto k = static_cast<std::size_t>(i);
    // Projecting on the tangent plane loses what a float normal is off unit length.
    EXPECT_NEAR(other.maxCurvature[k], mesh.maxCurvature[k], 1e-6);
    EXPECT_NEAR(other.minCurvature[k], mesh.minCurvature[k], 1e-6);
    if (mesh.maxCurvature[k] - mesh.minCurvature[k] < 1e-2) continue;
    EXPECT_NEAR(std::abs(dot(maxDirectionOf(other, i), turned(maxDirectionOf(mesh, i)))), 1.0,
                1e-6);
  }
}

/// Three neighbours around vertex 0 in the plane z = 0; only the first has a tilted normal, so the
/// tensor is that neighbour's share of the weights.
TriangleMesh oneTiltedNormal(bool closed) {
  std::vector<std::array<int, 3>> faces = {{0, 1, 2}, {0, 2, 3}};
  if (closed) faces.push_back({0, 3, 1});
  TriangleMesh mesh = test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-1, -1, 0}}, faces);
  mesh.vertexNormals = {0, 0, 1, 0.6F, 0, 0.8F, 0, 0, 1, 0, 0, 1};
  computeCurvatureTensor(mesh);
  return mesh;
}

TEST(CurvatureTensor, GivesEachNeighbourTheAreaOfItsOwnFanTriangles) {
  // The normal turns by acos 0.8 over a distance of 1; the three fan triangles have equal areas.
  const double turn = 2.0 * std::sqrt(0.1);
  const TriangleMesh closed = oneTiltedNormal(true);
  ASSERT_EQ(closed.vertexKind[0], InteriorVertex);
  EXPECT_NEAR(closed.maxCurvature[0], 3.0 * turn / 3.0, 1e-6);  // 0.8 is a float
  EXPECT_NEAR(closed.minCurvature[0], -turn / 3.0, 1e-6);
  // The tensor's only entry lies on its diagonal, so these directions are turned by 45 degrees,
  // too.
  EXPECT_NEAR(std::abs(maxDirectionOf(closed, 0).x), std::sqrt(0.5), 1e-12);

  // Open: the first and last neighbour have one triangle, the middle one two; a quarter each.
  const TriangleMesh open = oneTiltedNormal(false);
  ASSERT_EQ(open.vertexKind[0], BoundaryVertex);
  EXPECT_NEAR(open.maxCurvature[0], 3.0 * turn / 4.0, 1e-6);
  EXPECT_NEAR(open.minCurvature[0], -turn / 4.0, 1e-6);
}

TEST(CurvatureTensor, IsZeroWithFewerThanThreeNeighboursOrWithoutArea) {
  for (TriangleMesh mesh : {test::singleTriangle(), test::pointsOnly()}) {
    computeCurvatureTensor(mesh);
    EXPECT_THAT(mesh.maxCurvature, Each(Eq(0.0)));
    EXPECT_THAT(mesh.minCurvature, Each(Eq(0.0)));
    EXPECT_THAT(mesh.maxDirection, Each(Eq(0.0)));
    EXPECT_THAT(mesh.minDirection, Each(Eq(0.0)));
    EXPECT_EQ(static_cast<int>(mesh.maxDirection.size()), 3 * mesh.vertexCount);
  }
  TriangleMesh flatFan = test::makeMesh({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}},
                                        {{0, 1, 2}, {0, 2, 3}, {0, 3, 1}});
  computeCurvatureTensor(flatFan);
  EXPECT_EQ(flatFan.maxCurvature[0], 0.0);
  EXPECT_EQ(maxDirectionOf(flatFan, 0), Vec3{});
}

TEST(CurvatureTensor, IgnoresANeighbourStraightAboveTheVertex) {
  // The fourth neighbour lies on the normal: no tangent, but its triangles count in the weight.
  TriangleMesh mesh = test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                                     {{0, 1, 2}, {0, 2, 3}, {0, 3, 1}});
  mesh.vertexNormals = {0, 0, 1, 0.6F, 0, 0.8F, 0, 0, 1, 0.6F, 0, 0.8F};
  computeCurvatureTensor(mesh);
  const double turn = 2.0 * std::sqrt(0.1);
  EXPECT_NEAR(mesh.maxCurvature[0], 3.0 * turn / 3.0, 1e-6);
  EXPECT_NEAR(mesh.minCurvature[0], -turn / 3.0, 1e-6);
}

TEST(CurvatureTensor, ComputesVertexNormalsOnlyWhenThereAreNone) {
  TriangleMesh mesh = test::icosphere(1);
  const std::vector<float> normals = mesh.vertexNormals;
  mesh.vertexNormals.clear();
  computeCurvatureTensor(mesh);
  EXPECT_EQ(mesh.vertexNormals, normals);
  const std::vector<double> first = mesh.maxCurvature;

  for (float& n : mesh.vertexNormals) n = -n;
  const std::vector<float> inward = mesh.vertexNormals;
  computeCurvatureTensor(mesh);
  EXPECT_EQ(mesh.vertexNormals, inward);
  EXPECT_NE(mesh.maxCurvature, first);
}

TEST(CurvatureTensor, IsTheSameEveryTime) {
  TriangleMesh mesh = test::torus(12, 8);
  computeCurvatureTensor(mesh);
  const TriangleMesh once = mesh;
  computeCurvatureTensor(mesh);
  EXPECT_EQ(mesh.maxCurvature, once.maxCurvature);
  EXPECT_EQ(mesh.minDirection, once.minDirection);
}

}  // namespace
}  // namespace gravlin
