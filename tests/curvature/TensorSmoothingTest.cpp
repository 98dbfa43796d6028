#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numbers>
#include <string>
#include <vector>

#include "curvature/CurvatureDerivatives.h"
#include "curvature/CurvatureTensor.h"
#include "curvature/TensorSmoothing.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Eq;

using test::everyMesh;
using test::NamedMesh;
using test::sameBits;

bool allFinite(const std::vector<double>& field) {
  return std::all_of(field.begin(), field.end(), [](double x) { return std::isfinite(x); });
}

TriangleMesh withCurvature(TriangleMesh mesh) {
  computeCurvatureTensor(mesh);
  return mesh;
}

void smoothValues(TriangleMesh& mesh, int iterations, float lambda) {
  CurvatureTensorSmoother{&mesh}.smoothCurvatureValues(iterations, lambda);
}

void smoothDirections(TriangleMesh& mesh, int iterations, float sigma) {
  CurvatureTensorSmoother{&mesh}.smoothDirections(iterations, sigma);
}

// --- Values ---

TEST(SmoothCurvatureValues, EqualsTheDefinitionBitForBitOnEveryMesh) {
  const float lambda = 0.1F;
  for (NamedMesh& each : everyMesh()) {
    SCOPED_TRACE(each.name);
    TriangleMesh mesh = withCurvature(each.mesh);
    std::vector<double> expected = mesh.maxCurvature;
    for (int n = 0; n < 3; ++n) {
      const std::vector<double> before = expected;
      for (int i = 0; i < mesh.vertexCount; ++i) {
        double& value = expected[static_cast<std::size_t>(i)];
        const auto ring = mesh.getNeighbours(i);
        double sum = 0.0;
        for (const int j : ring) sum += before[static_cast<std::size_t>(j)];
        if (ring.empty())
          value = 0.0;
        else
          value = (1.0 - static_cast<double>(lambda)) * value +
                  static_cast<double>(lambda) * sum / static_cast<double>(ring.size());
      }
    }
    smoothValues(mesh, 3, lambda);
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_TRUE(sameBits(mesh.maxCurvature[i], expected[i])) << i;
    }
  }
}

TEST(SmoothCurvatureValues, LeavesValuesWhenLambdaIsZero) {
  TriangleMesh mesh = withCurvature(test::torus(12, 8));
  const TriangleMesh before = mesh;
  smoothValues(mesh, 4, 0.0F);
  EXPECT_EQ(mesh.maxCurvature, before.maxCurvature);
  EXPECT_EQ(mesh.minCurvature, before.minCurvature);
}

TEST(SmoothCurvatureValues, TakesTheMeanOfTheRingWithoutTheVertexWhenLambdaIsOne) {
  TriangleMesh mesh = withCurvature(test::hexagonFan());
  mesh.maxCurvature = {100, 1, 2, 3, 4, 5, 9};
  mesh.minCurvature = {-100, -1, -2, -3, -4, -5, -9};
  smoothValues(mesh, 1, 1.0F);
  EXPECT_EQ(mesh.maxCurvature[0], 4.0);
  EXPECT_EQ(mesh.minCurvature[0], -4.0);
  // A boundary vertex is treated alike: neighbours 0, 2 and 6 of vertex 1.
  EXPECT_EQ(mesh.maxCurvature[1], (100.0 + 2.0 + 9.0) / 3.0);
}

TEST(SmoothCurvatureValues, ZeroesVerticesWithoutNeighbours) {
  TriangleMesh mesh = withCurvature(test::pointsOnly());
  mesh.maxCurvature.assign(4, 7.0);
  mesh.minCurvature.assign(4, -7.0);
  smoothValues(mesh, 1, 0.1F);
  EXPECT_THAT(mesh.maxCurvature, Each(Eq(0.0)));
  EXPECT_THAT(mesh.minCurvature, Each(Eq(0.0)));
}

TEST(SmoothCurvatureValues, OfSeveralIterationsIsThatManySingleOnes) {
  TriangleMesh atOnce = withCurvature(test::bumpyGrid(9, 7));
  TriangleMesh oneByOne = atOnce;
  smoothValues(atOnce, 5, 0.3F);
  for (int n = 0; n < 5; ++n) smoothValues(oneByOne, 1, 0.3F);
  EXPECT_EQ(atOnce.maxCurvature, oneByOne.maxCurvature);
  EXPECT_EQ(atOnce.minCurvature, oneByOne.minCurvature);
}

TEST(SmoothCurvatureValues, NarrowsTheRangeAndTouchesNothingElse) {
  TriangleMesh mesh = withCurvature(test::bumpyGrid(9, 7));
  const TriangleMesh before = mesh;
  smoothValues(mesh, 10, 0.1F);
  const auto [least, largest] =
      std::minmax_element(mesh.maxCurvature.begin(), mesh.maxCurvature.end());
  const auto [leastBefore, largestBefore] =
      std::minmax_element(before.maxCurvature.begin(), before.maxCurvature.end());
  EXPECT_GT(*least, *leastBefore);
  EXPECT_LT(*largest, *largestBefore);
  EXPECT_EQ(mesh.vertices, before.vertices);
  EXPECT_EQ(mesh.maxDirection, before.maxDirection);
}

TEST(TensorSmoothing, DoesNothingForIterationCountsBelowOne) {
  TriangleMesh mesh = withCurvature(test::torus(12, 8));
  mesh.maxDirection[0] = 0.25;  // a frame that a repair would change
  const TriangleMesh before = mesh;
  for (const int iterations : {0, -1, -1000000}) {
    smoothValues(mesh, iterations, 0.5F);
    smoothDirections(mesh, iterations, 5.0F);
  }
  EXPECT_EQ(mesh.maxCurvature, before.maxCurvature);
  EXPECT_EQ(mesh.maxDirection, before.maxDirection);
  EXPECT_EQ(mesh.minDirection, before.minDirection);
}

// --- Directions ---

/// The rotation matrix about the cross product of two unit normals by the angle between them,
/// applied to v.
Vec3 plainTransport(const Vec3& from, const Vec3& to, const Vec3& v) {
  const Vec3 a = cross(from, to);
  if (length(a) < 1e-6) return v;
  const double angle = std::atan2(length(a), dot(from, to));
  const double u[3] = {a.x / length(a), a.y / length(a), a.z / length(a)};
  const double K[3][3] = {{0, -u[2], u[1]}, {u[2], 0, -u[0]}, {-u[1], u[0], 0}};
  const double x[3] = {v.x, v.y, v.z};
  double result[3];
  for (int r = 0; r < 3; ++r) {
    result[r] = 0.0;
    for (int s = 0; s < 3; ++s) {
      const double one = r == s ? 1.0 : 0.0;
      result[r] += (std::cos(angle) * one + std::sin(angle) * K[r][s] +
                    (1 - std::cos(angle)) * u[r] * u[s]) *
                   x[s];
    }
  }
  return {result[0], result[1], result[2]};
}

/// One new direction of one field by the definition.
Vec3 plainSmoothed(const TriangleMesh& mesh, int i, const std::vector<double>& field,
                   double sigma) {
  const Vec3 own = vectorAt(field, i);
  Vec3 sum;
  for (const int j : mesh.getNeighbours(i)) {
    const Vec3 r = plainTransport(mesh.vertexNormal(j), mesh.vertexNormal(i), vectorAt(field, j));
    const double c = std::max(-1.0, std::min(1.0, dot(r, own)));
    const double alpha = std::acos(c);
    const double d = length(mesh.position(i) - mesh.position(j));
    double w = std::exp(-(alpha * alpha / (d * d)) / (sigma * sigma));
    if (c < 0) w = -w;
    sum += w * r;
  }
  return length(sum) == 0 ? own : sum / length(sum);
}

TEST(SmoothDirections, FollowsItsDefinition) {
  for (TriangleMesh mesh : {test::torus(12, 8), test::bumpyGrid(9, 7), test::icosphere(2)}) {
    computeCurvatureTensor(mesh);
    const TriangleMesh before = mesh;
    smoothDirections(mesh, 1, 5.0F);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const auto k = static_cast<std::size_t>(i);
      const Vec3 N = mesh.vertexNormal(i);
      Vec3 max = plainSmoothed(before, i, before.maxDirection, 5.0);
      Vec3 min = plainSmoothed(before, i, before.minDirection, 5.0);
      if (std::abs(mesh.maxCurvature[k]) <= std::abs(mesh.minCurvature[k])) {
        max = cross(min, N);
      } else {
        min = cross(N, max);
      }
      // Different trigonometry, each within some units in the last place.
      EXPECT_LT(length(vectorAt(mesh.maxDirection, i) - max), 1e-10) << i;
      EXPECT_LT(length(vectorAt(mesh.minDirection, i) - min), 1e-10) << i;
    }
  }
}

/// The fan of six flat triangles with all directions along x (and y); curvatures 2 and 1, so that
/// the maximum direction is trusted.
TriangleMesh alignedFan() {
  TriangleMesh mesh = withCurvature(test::hexagonFan());
  mesh.maxCurvature.assign(7, 2.0);
  mesh.minCurvature.assign(7, 1.0);
  for (int i = 0; i < 7; ++i) {
    storeVectorAt(mesh.maxDirection, i, {1, 0, 0});
    storeVectorAt(mesh.minDirection, i, {0, 1, 0});
  }
  return mesh;
}

TEST(SmoothDirections, KeepsAFieldThatIsParallelAlready) {
  TriangleMesh mesh = alignedFan();
  const TriangleMesh before = mesh;
  smoothDirections(mesh, 3, 5.0F);
  EXPECT_EQ(mesh.maxDirection, before.maxDirection);
  EXPECT_EQ(mesh.minDirection, before.minDirection);
}

TEST(SmoothDirections, DoesNotFoldTheAngleOfAnOppositeNeighbour) {
  // Neighbour 1 points the other way round and a little aside. Unfolded, its angle is close to pi
  // and its weight nothing; folded it would pull the vertex off the x axis.
  TriangleMesh mesh = alignedFan();
  storeVectorAt(mesh.maxDirection, 1, {-std::cos(0.3), -std::sin(0.3), 0});
  smoothDirections(mesh, 1, 0.5F);
  const double weight =
      std::exp(-(std::numbers::pi - 0.3) * (std::numbers::pi - 0.3) / (0.5 * 0.5));
  const Vec3 expected = unitOrZero({5.0 + weight * std::cos(0.3), weight * std::sin(0.3), 0});
  // The neighbour's distance is 1 to some 1e-7, of which the exponent takes 35-fold.
  EXPECT_LT(length(vectorAt(mesh.maxDirection, 0) - expected), 1e-5 * weight);
}

TEST(SmoothDirections, KeepsTheOldDirectionWhenTheWeightedSumVanishes) {
  TriangleMesh mesh = alignedFan();
  for (int j = 1; j <= 6; ++j) storeVectorAt(mesh.maxDirection, j, {0, j % 2 == 0 ? 1.0 : -1.0, 0});
  smoothDirections(mesh, 1, 1e30F);
  EXPECT_EQ(vectorAt(mesh.maxDirection, 0), (Vec3{1, 0, 0}));

  mesh = alignedFan();
  for (int j = 1; j <= 6; ++j) storeVectorAt(mesh.maxDirection, j, {0, 1, 0});
  smoothDirections(mesh, 1, 1e30F);
  EXPECT_EQ(vectorAt(mesh.maxDirection, 0), (Vec3{0, 1, 0}));
}

TEST(SmoothDirections, GivesACoincidentNeighbourOfTheSameDirectionTheWeightOne) {
  // The fan's first neighbour lies on the centre; the others are at right angles and, with this
  // sigma, without weight.
  TriangleMesh mesh = alignedFan();
  mesh.setPosition(1, mesh.position(0));
  for (int j = 2; j <= 6; ++j) storeVectorAt(mesh.maxDirection, j, {0, 1, 0});
  for (const float sigma : {0.01F, 0.0F}) {
    TriangleMesh smoothed = mesh;
    smoothDirections(smoothed, 1, sigma);
    EXPECT_EQ(vectorAt(smoothed.maxDirection, 0), (Vec3{1, 0, 0}));
  }
  // A coincident neighbour of another direction has no weight.
  storeVectorAt(mesh.maxDirection, 1, {0, 1, 0});
  smoothDirections(mesh, 1, 0.01F);
  EXPECT_EQ(vectorAt(mesh.maxDirection, 0), (Vec3{1, 0, 0}));
}

TEST(SmoothDirections, RebuildsTheFrameFromTheLargerCurvature) {
  TriangleMesh mesh = alignedFan();
  for (int i = 0; i < 7; ++i) storeVectorAt(mesh.minDirection, i, unitOrZero({-1, 1, 0}));
  TriangleMesh trustMax = mesh;
  smoothDirections(trustMax, 1, 5.0F);
  EXPECT_EQ(vectorAt(trustMax.maxDirection, 0), (Vec3{1, 0, 0}));
  EXPECT_EQ(vectorAt(trustMax.minDirection, 0), (Vec3{0, 1, 0}));

  const double s = std::sqrt(0.5);
  for (const double maxCurvature : {1.0, -2.0, 2.0}) {  // smaller, and equal in absolute value
    TriangleMesh trustMin = mesh;
    trustMin.maxCurvature.assign(7, maxCurvature);
    trustMin.minCurvature.assign(7, -2.0);
    smoothDirections(trustMin, 1, 5.0F);
    EXPECT_LT(length(vectorAt(trustMin.minDirection, 0) - Vec3{-s, s, 0}), 1e-15);
    EXPECT_LT(length(vectorAt(trustMin.maxDirection, 0) - Vec3{s, s, 0}), 1e-15);
  }
}

TEST(SmoothDirections, ZeroesTheFrameWhereTheTrustedDirectionIsZero) {
  TriangleMesh mesh = alignedFan();
  for (int i = 0; i < 7; ++i) storeVectorAt(mesh.maxDirection, i, {});
  smoothDirections(mesh, 1, 5.0F);
  EXPECT_THAT(mesh.maxDirection, Each(Eq(0.0)));
  EXPECT_THAT(mesh.minDirection, Each(Eq(0.0)));
}

TEST(SmoothDirections, LeavesRightHandedUnitFrames) {
  for (NamedMesh& each : everyMesh()) {
    SCOPED_TRACE(each.name);
    TriangleMesh mesh = withCurvature(each.mesh);
    smoothValues(mesh, 2, 0.1F);
    smoothDirections(mesh, 3, 5.0F);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const Vec3 max = vectorAt(mesh.maxDirection, i);
      const Vec3 min = vectorAt(mesh.minDirection, i);
      EXPECT_FALSE(dot(cross(mesh.vertexNormal(i), max), min) < 0.0);
      const auto k = static_cast<std::size_t>(i);
      const bool trustMin = std::abs(mesh.maxCurvature[k]) <= std::abs(mesh.minCurvature[k]);
      const double size = length(trustMin ? min : max);
      if (each.name == "not a number" || each.name == "infinite") continue;
      EXPECT_TRUE(size == 0.0 || std::abs(size - 1.0) < 1e-12) << i << ": " << size;
    }
  }
}

TEST(SmoothDirections, TakesAnyParameters) {
  for (NamedMesh& each : everyMesh()) {
    for (const float sigma : {0.0F, -5.0F, 1e-30F, 1e30F, std::nanf("")}) {
      SCOPED_TRACE(::testing::Message() << each.name << ", sigma " << sigma);
      TriangleMesh mesh = withCurvature(each.mesh);
      const TriangleMesh before = mesh;
      smoothDirections(mesh, 2, sigma);
      EXPECT_EQ(static_cast<int>(mesh.maxDirection.size()), 3 * mesh.vertexCount);
      EXPECT_EQ(mesh.faces, before.faces);
      EXPECT_EQ(mesh.vertexKind, before.vertexKind);
      if (each.name == "not a number" || each.name == "infinite" || std::isnan(sigma)) continue;
      EXPECT_TRUE(allFinite(mesh.maxDirection));
      EXPECT_TRUE(allFinite(mesh.minDirection));
      EXPECT_EQ(mesh.vertices, before.vertices);
    }
  }
}

TEST(SmoothDirections, KeepsParallelDirectionsWhoseCosineRoundsAboveOne) {
  // Directions that are all alike after the transport, their squares rounded up: at an exact 1 or
  // below, the arc cosine would have nothing to be kept from.
  for (const NamedMesh& each :
       {NamedMesh{"cube", test::cube()}, NamedMesh{"octahedron", test::octahedron()},
        NamedMesh{"icosphere", test::icosphere(2)}}) {
    SCOPED_TRACE(each.name);
    TriangleMesh mesh = withCurvature(each.mesh);
    smoothDirections(mesh, 5, 5.0F);
    EXPECT_TRUE(allFinite(mesh.maxDirection));
    EXPECT_TRUE(allFinite(mesh.minDirection));
  }
  TriangleMesh fan = alignedFan();
  const double above = std::nextafter(1.0, 2.0);
  for (int i = 0; i < 7; ++i) storeVectorAt(fan.maxDirection, i, {above, 0, 0});
  smoothDirections(fan, 1, 5.0F);
  EXPECT_EQ(vectorAt(fan.maxDirection, 0), (Vec3{1, 0, 0}));
}

TEST(SmoothDirections, CalmsANoisyField) {
  // Directions of a torus run round its tube; half of them are turned by 0.4 radians either way.
  TriangleMesh mesh = withCurvature(test::torus(60, 40));
  const TriangleMesh clean = mesh;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const double turn = i % 3 == 0 ? 0.4 : (i % 3 == 1 ? -0.4 : 0.0);
    storeVectorAt(mesh.maxDirection, i,
                  std::cos(turn) * vectorAt(clean.maxDirection, i) +
                      std::sin(turn) * vectorAt(clean.minDirection, i));
  }
  const auto disorder = [&] {
    double sum = 0.0;
    for (int i = 0; i < mesh.vertexCount; ++i) {
      sum += 1.0 - std::abs(dot(vectorAt(mesh.maxDirection, i), vectorAt(clean.maxDirection, i)));
    }
    return sum / mesh.vertexCount;
  };
  const double before = disorder();
  smoothDirections(mesh, 5, 5.0F);
  EXPECT_LT(disorder(), 0.2 * before);
}

TEST(SmoothDerivativeGradients, IsTheSameIterationWithoutTheRepair) {
  TriangleMesh mesh = withCurvature(test::bumpyGrid(9, 7));
  computeCurvatureDerivatives(mesh);
  const TriangleMesh before = mesh;
  CurvatureTensorSmoother{&mesh}.smoothDerivativeGradients(1, 20.0F);
  EXPECT_EQ(mesh.maxDirection, before.maxDirection);
  EXPECT_EQ(mesh.minDirection, before.minDirection);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 max = plainSmoothed(before, i, before.maxDerivativeGradient, 20.0);
    const Vec3 min = plainSmoothed(before, i, before.minDerivativeGradient, 20.0);
    EXPECT_LT(length(vectorAt(mesh.maxDerivativeGradient, i) - max), 1e-10) << i;
    EXPECT_LT(length(vectorAt(mesh.minDerivativeGradient, i) - min), 1e-10) << i;
  }
  EXPECT_NE(mesh.maxDerivativeGradient, before.maxDerivativeGradient);
  EXPECT_NE(mesh.minDerivativeGradient, before.minDerivativeGradient);
}

}  // namespace
}  // namespace gravlin
