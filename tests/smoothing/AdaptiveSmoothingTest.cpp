#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "mesh/MeshMeasures.h"
#include "numeric/Index.h"
#include "smoothing/AdaptiveSmoothing.h"
#include "smoothing/CornerNeighbours.h"
#include "smoothing/MeshSmoother.h"
#include "smoothing/NormalAveraging.h"
#include "smoothing/NormalIntegration.h"
#include "support/Meshes.h"
#include "support/TiltedPlanes.h"

namespace gravlin {
namespace {

TriangleMesh roughSphere() {
  return test::jittered(test::icosphere(2), 0.05);
}

/// Runs both branches on copies of the mesh.
template <class Check>
void forBothBranches(const TriangleMesh& mesh, int iterations,
                     const AdaptiveSmoothingOptions& options, const Check& check) {
  TriangleMesh weighted = mesh;
  adaptiveSmoothing(weighted, iterations, options);
  check(weighted);
  TriangleMesh median = mesh;
  medianSmoothing(median, iterations, options);
  check(median);
}

// --- What an outer iteration consists of ---

TEST(AdaptiveSmoothing, OuterIterationIsNormalsThenAveragingThenIntegration) {
  const TriangleMesh before = roughSphere();
  AdaptiveSmoothingOptions options;
  options.averagingIterations = 2;
  options.integrationIterations = 3;
  options.integrationStep = 0.2F;
  options.integrationError = DistanceError;
  options.threshold = 4.0F;
  const double step = static_cast<double>(0.2F);

  TriangleMesh byHand = before;
  buildCornerNeighbourFaces(byHand);
  for (int outer = 0; outer < 2; ++outer) {
    byHand.computeFaceNormals();
    for (int k = 0; k < 2; ++k) averageNormalsVertexWeighted(byHand, {.threshold = 4.0}, 0.5);
    for (int k = 0; k < 3; ++k) integrateDistance(byHand, step);
  }
  TriangleMesh mesh = before;
  adaptiveSmoothing(mesh, 2, options);
  EXPECT_EQ(mesh.vertices, byHand.vertices);
  EXPECT_EQ(mesh.faceNormals, byHand.faceNormals);

  byHand = before;
  byHand.computeFaceNormals();
  for (int k = 0; k < 2; ++k) averageNormalsWeighted(byHand, {.threshold = 4.0});
  for (int k = 0; k < 3; ++k) integrateDistance(byHand, step);
  mesh = before;
  options.meetAtVertex = 0.0F;
  adaptiveSmoothing(mesh, 1, options);
  EXPECT_EQ(mesh.vertices, byHand.vertices);

  byHand = before;
  buildCornerNeighbourFaces(byHand);
  byHand.computeFaceNormals();
  for (int k = 0; k < 2; ++k) averageNormalsMedian(byHand, {});
  for (int k = 0; k < 3; ++k) integrateDistance(byHand, step);
  mesh = before;
  medianSmoothing(mesh, 1, options);
  EXPECT_EQ(mesh.vertices, byHand.vertices);
}

TEST(AdaptiveSmoothing, IntegrationIsChosenByErrorAndVariant) {
  const TriangleMesh before = roughSphere();
  AdaptiveSmoothingOptions options;
  options.integrationIterations = 1;
  const double step = static_cast<double>(options.integrationStep);
  const auto expectStep = [&](const auto& integrate) {
    TriangleMesh byHand = before;
    buildCornerNeighbourFaces(byHand);
    averageNormalsMedian(byHand, {});
    integrate(byHand);
    TriangleMesh mesh = before;
    medianSmoothing(mesh, 1, options);
    EXPECT_EQ(mesh.vertices, byHand.vertices);
  };
  expectStep([&](TriangleMesh& mesh) { integrateDerivative(mesh, step); });
  for (const int variant : {2, 0, -1}) {
    options.derivativeVariant = variant;
    expectStep([&](TriangleMesh& mesh) { integrateDerivativeByArea(mesh, step, variant); });
  }
  options.integrationError = DistanceError;
  expectStep([&](TriangleMesh& mesh) { integrateDistance(mesh, step); });
}

TEST(AdaptiveSmoothing, ShapeAndDifferenceReachTheFilters) {
  const TriangleMesh before = roughSphere();
  std::vector<std::vector<float>> results;
  for (const WeightShape shape : {SimilarWeight, ExponentialWeight}) {
    for (const NormalDifference difference : {CurvatureDifference, AngleDifference}) {
      AdaptiveSmoothingOptions options;
      options.weightShape = shape;
      options.normalDifference = difference;
      TriangleMesh mesh = before;
      adaptiveSmoothing(mesh, 1, options);
      EXPECT_THAT(results, ::testing::Not(::testing::Contains(mesh.vertices)));
      results.push_back(mesh.vertices);
    }
  }
}

TEST(AdaptiveSmoothing, InChunksGivesTheSameBitsAsAtOnce) {
  const AdaptiveSmoothingOptions options;
  std::vector<std::vector<float>> atOnce;
  forBothBranches(roughSphere(), 5, options,
                  [&](const TriangleMesh& mesh) { atOnce.push_back(mesh.vertices); });
  TriangleMesh mesh = roughSphere();
  adaptiveSmoothing(mesh, 2, options);
  adaptiveSmoothing(mesh, 3, options);
  EXPECT_EQ(mesh.vertices, atOnce[0]);
  mesh = roughSphere();
  medianSmoothing(mesh, 4, options);
  medianSmoothing(mesh, 1, options);
  EXPECT_EQ(mesh.vertices, atOnce[1]);
}

TEST(AdaptiveSmoothing, CountsBelowOneDoNothing) {
  const TriangleMesh before = roughSphere();
  for (const int none : {0, -1, std::numeric_limits<int>::min()}) {
    AdaptiveSmoothingOptions options;
    forBothBranches(before, none, options, [&](const TriangleMesh& mesh) {
      EXPECT_EQ(mesh.vertices, before.vertices);
      EXPECT_EQ(mesh.faceNormals, before.faceNormals);
    });
    options.averagingIterations = none;
    options.integrationIterations = none;
    forBothBranches(before, 3, options,
                    [&](const TriangleMesh& mesh) { EXPECT_EQ(mesh.vertices, before.vertices); });
  }
}

TEST(AdaptiveSmoothing, LeavesFacesBoundariesAndFlatPatchesAlone) {
  const TriangleMesh flat = test::grid(6, 5);
  const TriangleMesh bumpy = test::bumpyGrid(6, 5);
  const AdaptiveSmoothingOptions options;
  forBothBranches(flat, 3, options,
                  [&](const TriangleMesh& mesh) { EXPECT_EQ(mesh.vertices, flat.vertices); });
  forBothBranches(bumpy, 3, options, [&](const TriangleMesh& mesh) {
    EXPECT_EQ(mesh.faces, bumpy.faces);
    EXPECT_NE(mesh.vertices, bumpy.vertices);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      if (mesh.vertexKind[toIndex(i)] == InteriorVertex) continue;
      EXPECT_EQ(mesh.position(i), bumpy.position(i));
    }
  });
}

TEST(AdaptiveSmoothing, LeavesATiltedFlatPatchWithinTheRoundingOfNormals) {
  double largest = 0.0;
  for (const test::NamedMesh& plane : test::tiltedPlanes()) {
    const double edge = shortestEdgeLength(plane.mesh);
    for (const IntegrationError error : {DistanceError, DerivativeError}) {
      AdaptiveSmoothingOptions options;
      options.integrationError = error;
      forBothBranches(plane.mesh, 3, options, [&](const TriangleMesh& mesh) {
        for (int i = 0; i < mesh.vertexCount; ++i) {
          const double moved = length(mesh.position(i) - plane.mesh.position(i)) / edge;
          EXPECT_LT(moved, 2e-6) << plane.name << ' ' << i;
          largest = std::max(largest, moved);
        }
      });
    }
  }
  EXPECT_GT(largest, 3e-8) << "planes that are tilted show the rounding";
}

// --- Creases ---

double meanAngleDegrees(const TriangleMesh& mesh, const TriangleMesh& clean) {
  double sum = 0.0;
  for (int f = 0; f < mesh.faceCount; ++f) {
    sum += std::acos(std::clamp(dot(mesh.faceNormal(f), clean.faceNormal(f)), -1.0, 1.0));
  }
  return sum / mesh.faceCount * 180.0 / std::acos(-1.0);
}

TEST(AdaptiveSmoothing, KeepsTheEdgesOfANoisyCubeFourTimesBetterThanLaplacianSteps) {
  constexpr int iterations = 11;
  const TriangleMesh clean = test::fineCube(20);
  const TriangleMesh noisy = test::jittered(clean, 0.02);

  TriangleMesh adaptive = noisy;
  medianSmoothing(adaptive, iterations, {});
  adaptive.computeFaceNormals();

  TriangleMesh laplacian = noisy;
  for (int k = 0; k < iterations; ++k) {
    std::vector<Vec3> moved;
    for (int i = 0; i < laplacian.vertexCount; ++i) {
      moved.push_back(laplacian.position(i) + 0.5 * laplacian.umbrellaLaplacian(i));
    }
    for (int i = 0; i < laplacian.vertexCount; ++i) {
      laplacian.setPosition(i, moved[toIndex(i)]);
    }
  }
  laplacian.computeFaceNormals();

  const double noise = meanAngleDegrees(noisy, clean);
  const double afterAdaptive = meanAngleDegrees(adaptive, clean);
  const double afterLaplacian = meanAngleDegrees(laplacian, clean);
  RecordProperty("noisy degrees", std::to_string(noise));
  RecordProperty("adaptive degrees", std::to_string(afterAdaptive));
  RecordProperty("laplacian degrees", std::to_string(afterLaplacian));
  EXPECT_LT(4.0 * afterAdaptive, afterLaplacian)
      << "noisy " << noise << ", adaptive " << afterAdaptive << ", Laplacian " << afterLaplacian;
}

// --- Any mesh ---

TEST(AdaptiveSmoothing, MovesOnlyInteriorVerticesOfAnyMeshToFinitePlacesWithAnyThreshold) {
  for (const test::NamedMesh& hostile : test::hostileMeshes()) {
    const TriangleMesh& before = hostile.mesh;
    for (const float threshold : {-1.0F, 0.0F, std::numeric_limits<float>::max()}) {
      SCOPED_TRACE(::testing::Message() << hostile.name << ' ' << threshold);
      AdaptiveSmoothingOptions options;
      options.threshold = threshold;
      options.normalDifference = CurvatureDifference;
      for (const int variant : {1, std::numeric_limits<int>::max()}) {
        options.derivativeVariant = variant;
        forBothBranches(before, 2, options, [&](const TriangleMesh& mesh) {
          ASSERT_EQ(mesh.vertices.size(), before.vertices.size());
          EXPECT_EQ(mesh.faces, before.faces);
          EXPECT_EQ(mesh.vertexKind, before.vertexKind);
          // Below zero, weights grow with the angle per distance: over 1e-40 beyond all numbers.
          const bool broken = hostile.name == "not a number" || hostile.name == "infinite" ||
                              (hostile.name == "very small" && threshold < 0.0F);
          for (int i = 0; i < mesh.vertexCount; ++i) {
            const Vec3 p = mesh.position(i);
            EXPECT_TRUE(broken || std::isfinite(dot(p, p))) << i;
            if (mesh.vertexKind[toIndex(i)] == InteriorVertex || broken) continue;
            EXPECT_EQ(p, before.position(i)) << i;
          }
        });
      }
    }
  }
}

TEST(AdaptiveSmoothing, KeepsFiniteMeshesFiniteWithTheDefaults) {
  for (const test::NamedMesh& hostile : test::hostileMeshes()) {
    if (hostile.name == "not a number" || hostile.name == "infinite") continue;
    forBothBranches(hostile.mesh, 11, {}, [&](const TriangleMesh& mesh) {
      EXPECT_TRUE(std::ranges::all_of(mesh.vertices, [](float x) { return std::isfinite(x); }))
          << hostile.name;
    });
  }
}

// --- Its object and its dialog ---

TEST(AdaptiveSmoothing, TheSmootherRunsItOnItsMesh) {
  MeshSmoother smoother;
  TriangleMesh mesh = roughSphere();
  TriangleMesh byHand = mesh;
  smoother.attach(&mesh);
  smoother.medianSmoothing(2, {});
  medianSmoothing(byHand, 2, {});
  EXPECT_EQ(mesh.vertices, byHand.vertices);
}

}  // namespace
}  // namespace gravlin
