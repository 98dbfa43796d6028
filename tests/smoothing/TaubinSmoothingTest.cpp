#include <cmath>
#include <gtest/gtest.h>
#include <span>
#include <utility>

#include "mesh/MeshMeasures.h"
#include "numeric/Index.h"
#include "smoothing/DenseLaplacians.h"
#include "smoothing/TaubinSmoothing.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

constexpr TaubinSteps once = {.iterations = 1, .lambda = 0.5F, .k = 0.1F};

TaubinSteps steps(int iterations, int weighting) {
  return {.iterations = iterations, .lambda = 0.5F, .k = 0.1F, .weighting = weighting};
}

/// 0.5 / (0.1 x 0.5 - 1) = -0.5263...
const double mu = 0.5 / (static_cast<double>(0.1F) * 0.5 - 1.0);

/// Applies the matrix and divisor that `weights(mesh)` gives, with lambda and then with mu.
template <class Weights>
void denseHalfSteps(TriangleMesh& mesh, int iterations, Weights weights) {
  for (int iteration = 0; iteration < iterations; ++iteration) {
    for (const double factor : {0.5, mu}) {
      const auto [matrix, divisor] = weights(mesh);
      test::moveBy(mesh, factor, matrix, divisor);
    }
  }
}

struct Weighted {
  test::DenseMatrix matrix;
  std::vector<double> divisor;
};

Weighted umbrellas(const TriangleMesh& mesh) {
  return {test::umbrellaMatrix(mesh), {}};
}

/// The cotangent matrix, each row divided by the sum of its weights.
Weighted cotangents(const TriangleMesh& mesh) {
  Weighted result{test::cotangentMatrix(mesh), {}};
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const double sum = -result.matrix.at(i, i);
    result.divisor.push_back(sum == 0.0 ? 1.0 : sum);
  }
  return result;
}

/// 1 / distance wherever the umbrella has a neighbour.
Weighted inverseDistances(const TriangleMesh& mesh) {
  Weighted result = umbrellas(mesh);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    double sum = 0.0;
    for (int j = 0; j < mesh.vertexCount; ++j) {
      if (j == i || result.matrix.at(i, j) == 0.0) continue;
      result.matrix.at(i, j) = 1.0 / length(mesh.position(j) - mesh.position(i));
      sum += result.matrix.at(i, j);
    }
    result.matrix.at(i, i) = -sum;
    result.divisor.push_back(sum == 0.0 ? 1.0 : sum);
  }
  return result;
}

template <class Weights>
void expectDense(int weighting, Weights weights) {
  for (const auto& family : {test::closedMeshes(), test::openMeshes()}) {
    for (const test::NamedMesh& named : family) {
      TriangleMesh smoothed = named.mesh;
      TriangleMesh expected = named.mesh;
      taubinSmoothing(smoothed, steps(2, weighting));
      denseHalfSteps(expected, 2, weights);
      // Single rounding of edges and of coordinates up to 10, in four half-steps.
      EXPECT_LE(test::largestDifference(expected, smoothed), 1e-5) << named.name;
    }
  }
}

TEST(TaubinSmoothing, AppliesTheUmbrellaMatrixInAndOut) {
  expectDense(UmbrellaWeights, umbrellas);
}

TEST(TaubinSmoothing, AppliesInverseDistancesInAndOut) {
  expectDense(InverseDistanceWeights, inverseDistances);
}

TEST(TaubinSmoothing, AppliesCotangentsInAndOut) {
  expectDense(CotangentWeights, cotangents);
}

TEST(TaubinSmoothing, RunsTwoHalfStepsWithTheLaplacianRecomputedBetween) {
  TriangleMesh pyramid = test::hexagonFan();
  pyramid.setPosition(0, {0, 0, 8});
  taubinSmoothing(pyramid, once);
  // 8 - 0.5 x 8 = 4, then 4 + 0.5263 x 4.
  EXPECT_EQ(pyramid.vertices[2], static_cast<float>(4.0 - mu * 4.0));
}

TEST(TaubinSmoothing, ShrinksFarLessThanItsInwardHalfStepsAlone) {
  TriangleMesh smoothed = test::icosphere(3);
  const double before = enclosedVolume(smoothed);
  taubinSmoothing(smoothed, steps(20, UmbrellaWeights));
  EXPECT_NEAR(enclosedVolume(smoothed), before, 0.03 * before);
}

TEST(TaubinSmoothing, GivesTheSameForAllWeightsWhereTheRingIsRegular) {
  // Equal distances and equal angles around the apex of a regular pyramid.
  TriangleMesh pyramid = test::hexagonFan();
  pyramid.setPosition(0, {0, 0, 2});
  const Vec3 umbrella = pyramid.umbrellaLaplacian(0);
  EXPECT_LE(length(inverseDistanceLaplacian(pyramid, 0) - umbrella), 1e-6);
  EXPECT_LE(length(cotangentLaplacian(pyramid, 0) - umbrella), 1e-6);
}

TEST(TaubinSmoothing, DoesNotDependOnTheScaleOfTheMesh) {
  for (const int weighting : {UmbrellaWeights, InverseDistanceWeights, CotangentWeights}) {
    TriangleMesh small = test::torus(12, 8);
    TriangleMesh large = small;
    scaleVertices(large, 1024.0);  // a power of 2: only exponents change
    taubinSmoothing(small, steps(3, weighting));
    taubinSmoothing(large, steps(3, weighting));
    scaleVertices(large, 1.0 / 1024.0);
    EXPECT_EQ(small.vertices, large.vertices) << weighting;
  }
}

/// An octahedron whose vertex 4 sits so close to (0, 0, 1) that its distance to a neighbour along
/// an axis rounds to 1 in single precision.
TriangleMesh octahedronWithApexAt(double x, double y) {
  TriangleMesh mesh = test::octahedron();
  mesh.setPosition(4, {x, y, 1});
  return mesh;
}

/// x_j - x_i in single-precision arithmetic.
Vec3 singleEdge(const TriangleMesh& mesh, int i, int j) {
  const float* from = mesh.vertices.data() + 3 * toIndex(i);
  const float* to = mesh.vertices.data() + 3 * toIndex(j);
  const float edge[3] = {to[0] - from[0], to[1] - from[1], to[2] - from[2]};
  return loadVec3(edge);
}

TEST(TaubinSmoothing, RoundsEdgesForDistancesToSinglePrecision) {
  const TriangleMesh mesh = octahedronWithApexAt(1e-9, 0);
  Vec3 sum;
  double total = 0.0;
  for (const int j : mesh.getNeighbours(4)) {
    const Vec3 edge = singleEdge(mesh, 4, j);
    sum += 1.0 / length(edge) * edge;
    total += 1.0 / length(edge);
  }
  EXPECT_EQ(inverseDistanceLaplacian(mesh, 4), sum / total);
  // Two of the four edges have lost the offset.
  EXPECT_NEAR(inverseDistanceLaplacian(mesh, 4).x, -0.5e-9, 1e-15);
}

TEST(TaubinSmoothing, RoundsEdgesForCotangentsInYAndZOnly) {
  for (const auto& [x, y] : {std::pair{1e-9, 0.0}, std::pair{0.0, 1e-9}}) {
    const TriangleMesh mesh = octahedronWithApexAt(x, y);
    const std::span<const int> ring = mesh.getNeighbours(4);
    Vec3 sum;
    double total = 0.0;
    for (std::size_t k = 0; k < ring.size(); ++k) {
      const Vec3 a = mesh.position(ring[k]);
      const Vec3 b = mesh.position(ring[(k + 1) % ring.size()]);
      Vec3 u = singleEdge(mesh, 4, ring[k]);
      Vec3 v = singleEdge(mesh, 4, ring[(k + 1) % ring.size()]);
      u.x = a.x - mesh.position(4).x;
      v.x = b.x - mesh.position(4).x;
      const double crossLength = length(cross(u, v));
      const double weightOfU = dot(b - a, v) / crossLength;
      const double weightOfV = -dot(b - a, u) / crossLength;
      sum += weightOfU * u + weightOfV * v;
      total += weightOfU + weightOfV;
    }
    EXPECT_EQ(cotangentLaplacian(mesh, 4), sum / total);
  }
  // Along x every edge has kept the offset, along y only half of them.
  EXPECT_NE(cotangentLaplacian(octahedronWithApexAt(1e-9, 0), 4).x,
            cotangentLaplacian(octahedronWithApexAt(0, 1e-9), 4).y);
}

TEST(TaubinSmoothing, SkipsEdgesWithoutLength) {
  TriangleMesh mesh = test::octahedron();
  mesh.setPosition(0, mesh.position(4));  // onto its neighbour
  const Vec3 without = inverseDistanceLaplacian(mesh, 4);
  // Left are -x, +y and -y, all at distance sqrt 2, seen from (0, 0, 1).
  EXPECT_LE(length(without - Vec3{-1.0 / 3.0, 0, -1}), 1e-15);
}

TEST(TaubinSmoothing, LeavesAVertexWhoseWeightsVanish) {
  TriangleMesh mesh = test::octahedron();
  for (int i = 0; i < mesh.vertexCount; ++i) mesh.setPosition(i, {1, 2, 3});
  for (const int weighting : {UmbrellaWeights, InverseDistanceWeights, CotangentWeights}) {
    TriangleMesh smoothed = mesh;
    taubinSmoothing(smoothed, steps(1, weighting));
    EXPECT_EQ(smoothed.vertices, mesh.vertices) << weighting;
  }
}

TEST(TaubinSmoothing, MovesNothingForACountBelowOneOrAnotherWeighting) {
  for (const TaubinSteps& none :
       {steps(0, UmbrellaWeights), steps(-3, UmbrellaWeights), steps(1, 3), steps(1, -1)}) {
    TriangleMesh mesh = test::octahedron();
    taubinSmoothing(mesh, none);
    EXPECT_EQ(mesh.vertices, test::octahedron().vertices);
  }
}

}  // namespace
}  // namespace gravlin
