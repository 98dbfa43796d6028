#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "numeric/Form.h"
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
                     const AdaptiveSmoothingParameters& parameters, const Check& check) {
  TriangleMesh weighted = mesh;
  adaptiveSmoothing(weighted, iterations, parameters);
  check(weighted);
  TriangleMesh median = mesh;
  medianSmoothing(median, iterations, parameters);
  check(median);
}

// --- What an outer iteration consists of ---

TEST(AdaptiveSmoothing, OuterIterationIsNormalsThenAveragingThenIntegration) {
  const TriangleMesh before = roughSphere();
  AdaptiveSmoothingParameters parameters;
  parameters.averagingIterations = 2;
  parameters.integrationIterations = 3;
  parameters.integrationStep = 0.2F;
  parameters.integrationError = DistanceError;
  parameters.threshold = 4.0F;
  const double step = static_cast<double>(0.2F);

  TriangleMesh byHand = before;
  buildCornerNeighbourFaces(byHand);
  for (int outer = 0; outer < 2; ++outer) {
    byHand.computeFaceNormals();
    for (int k = 0; k < 2; ++k) averageNormalsVertexWeighted(byHand, {.threshold = 4.0}, 0.5);
    for (int k = 0; k < 3; ++k) integrateDistance(byHand, step);
  }
  TriangleMesh mesh = before;
  adaptiveSmoothing(mesh, 2, parameters);
  EXPECT_EQ(mesh.vertices, byHand.vertices);
  EXPECT_EQ(mesh.faceNormals, byHand.faceNormals);

  byHand = before;
  byHand.computeFaceNormals();
  for (int k = 0; k < 2; ++k) averageNormalsWeighted(byHand, {.threshold = 4.0});
  for (int k = 0; k < 3; ++k) integrateDistance(byHand, step);
  mesh = before;
  parameters.meetAtVertex = 0.0F;
  adaptiveSmoothing(mesh, 1, parameters);
  EXPECT_EQ(mesh.vertices, byHand.vertices);

  byHand = before;
  buildCornerNeighbourFaces(byHand);
  byHand.computeFaceNormals();
  for (int k = 0; k < 2; ++k) averageNormalsMedian(byHand, {});
  for (int k = 0; k < 3; ++k) integrateDistance(byHand, step);
  mesh = before;
  medianSmoothing(mesh, 1, parameters);
  EXPECT_EQ(mesh.vertices, byHand.vertices);
}

TEST(AdaptiveSmoothing, IntegrationIsChosenByErrorAndVariant) {
  const TriangleMesh before = roughSphere();
  AdaptiveSmoothingParameters parameters;
  parameters.integrationIterations = 1;
  const double step = static_cast<double>(parameters.integrationStep);
  const auto expectStep = [&](const auto& integrate) {
    TriangleMesh byHand = before;
    buildCornerNeighbourFaces(byHand);
    averageNormalsMedian(byHand, {});
    integrate(byHand);
    TriangleMesh mesh = before;
    medianSmoothing(mesh, 1, parameters);
    EXPECT_EQ(mesh.vertices, byHand.vertices);
  };
  expectStep([&](TriangleMesh& mesh) { integrateDerivative(mesh, step); });
  for (const int variant : {2, 0, -1}) {
    parameters.derivativeVariant = variant;
    expectStep([&](TriangleMesh& mesh) { integrateDerivativeByArea(mesh, step, variant); });
  }
  parameters.integrationError = DistanceError;
  expectStep([&](TriangleMesh& mesh) { integrateDistance(mesh, step); });
}

TEST(AdaptiveSmoothing, ShapeAndDifferenceReachTheFilters) {
  const TriangleMesh before = roughSphere();
  std::vector<std::vector<float>> results;
  for (const int shape : {SimilarWeight, ExponentialWeight}) {
    for (const int difference : {CurvatureDifference, AngleDifference}) {
      AdaptiveSmoothingParameters parameters;
      parameters.weightShape = shape;
      parameters.normalDifference = difference;
      TriangleMesh mesh = before;
      adaptiveSmoothing(mesh, 1, parameters);
      EXPECT_THAT(results, ::testing::Not(::testing::Contains(mesh.vertices)));
      results.push_back(mesh.vertices);
    }
  }
}

TEST(AdaptiveSmoothing, InChunksGivesTheSameBitsAsAtOnce) {
  const AdaptiveSmoothingParameters parameters;
  std::vector<std::vector<float>> atOnce;
  forBothBranches(roughSphere(), 5, parameters,
                  [&](const TriangleMesh& mesh) { atOnce.push_back(mesh.vertices); });
  TriangleMesh mesh = roughSphere();
  adaptiveSmoothing(mesh, 2, parameters);
  adaptiveSmoothing(mesh, 3, parameters);
  EXPECT_EQ(mesh.vertices, atOnce[0]);
  mesh = roughSphere();
  medianSmoothing(mesh, 4, parameters);
  medianSmoothing(mesh, 1, parameters);
  EXPECT_EQ(mesh.vertices, atOnce[1]);
}

TEST(AdaptiveSmoothing, CountsBelowOneDoNothing) {
  const TriangleMesh before = roughSphere();
  for (const int none : {0, -1, std::numeric_limits<int>::min()}) {
    AdaptiveSmoothingParameters parameters;
    forBothBranches(before, none, parameters, [&](const TriangleMesh& mesh) {
      EXPECT_EQ(mesh.vertices, before.vertices);
      EXPECT_EQ(mesh.faceNormals, before.faceNormals);
    });
    parameters.averagingIterations = none;
    parameters.integrationIterations = none;
    forBothBranches(before, 3, parameters,
                    [&](const TriangleMesh& mesh) { EXPECT_EQ(mesh.vertices, before.vertices); });
  }
}

TEST(AdaptiveSmoothing, LeavesFacesBoundariesAndFlatPatchesAlone) {
  const TriangleMesh flat = test::grid(6, 5);
  const TriangleMesh bumpy = test::bumpyGrid(6, 5);
  const AdaptiveSmoothingParameters parameters;
  forBothBranches(flat, 3, parameters,
                  [&](const TriangleMesh& mesh) { EXPECT_EQ(mesh.vertices, flat.vertices); });
  forBothBranches(bumpy, 3, parameters, [&](const TriangleMesh& mesh) {
    EXPECT_EQ(mesh.faces, bumpy.faces);
    EXPECT_NE(mesh.vertices, bumpy.vertices);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      if (mesh.vertexKind[toIndex(i)] == InteriorVertex) continue;
      EXPECT_EQ(mesh.position(i), bumpy.position(i));
    }
  });
}

TEST(AdaptiveSmoothing, LeavesATiltedFlatPatchWithinTheRoundingOfNormals) {
  for (const test::NamedMesh& plane : test::tiltedPlanes()) {
    for (const int error : {DistanceError, DerivativeError}) {
      AdaptiveSmoothingParameters parameters;
      parameters.integrationError = error;
      forBothBranches(plane.mesh, 3, parameters, [&](const TriangleMesh& mesh) {
        for (int i = 0; i < mesh.vertexCount; ++i) {
          // Thirty steps of a tenth with normals that are off by some 1e-6, over edges of up to 4.
          EXPECT_LT(length(mesh.position(i) - plane.mesh.position(i)), 3e-5)
              << plane.name << ' ' << i;
        }
      });
    }
  }
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

TEST(AdaptiveSmoothing, MovesOnlyInteriorVerticesOfAnyMeshToFinitePlacesWithAnyParameters) {
  for (const test::NamedMesh& hostile : test::hostileMeshes()) {
    const TriangleMesh& before = hostile.mesh;
    for (const float threshold : {-1.0F, 0.0F, std::numeric_limits<float>::infinity()}) {
      SCOPED_TRACE(::testing::Message() << hostile.name << ' ' << threshold);
      AdaptiveSmoothingParameters parameters;
      parameters.threshold = threshold;
      parameters.normalDifference = CurvatureDifference;
      for (const int variant : {1, std::numeric_limits<int>::max()}) {
        parameters.derivativeVariant = variant;
        forBothBranches(before, 2, parameters, [&](const TriangleMesh& mesh) {
          ASSERT_EQ(mesh.vertices.size(), before.vertices.size());
          EXPECT_EQ(mesh.faces, before.faces);
          EXPECT_EQ(mesh.vertexKind, before.vertexKind);
          const bool broken = hostile.name == "not a number" || hostile.name == "infinite";
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

TEST(AdaptiveSmoothing, TheSmootherRunsItOnItsMeshAndDoesNothingWithout) {
  MeshSmoother smoother;
  smoother.adaptiveSmoothing(1, {});
  smoother.medianSmoothing(1, {});
  smoother.averageNormalsWeighted({});
  smoother.averageNormalsVertexWeighted({}, 0.5);
  smoother.averageNormalsMedian({});
  smoother.integrateDistance(0.1);
  smoother.integrateDerivative(0.1);
  smoother.integrateDerivativeByArea(0.1, 2.0);

  TriangleMesh mesh = roughSphere();
  TriangleMesh byHand = mesh;
  smoother.attach(&mesh);
  smoother.medianSmoothing(2, {});
  medianSmoothing(byHand, 2, {});
  EXPECT_EQ(mesh.vertices, byHand.vertices);
}

TEST(AdaptiveSmoothing, DialogHoldsEveryFieldWithItsDefault) {
  AdaptiveSmoothingParameters parameters;
  const Form form = parameters.form();
  EXPECT_EQ(form.name, "CAdaptiveSmoothingDlg");
  EXPECT_EQ(form.title, "Adaptive Smoothing");
  EXPECT_EQ(form.okText, "OK");
  EXPECT_EQ(form.cancelText, "CANCEL");
  std::vector<std::string> shown;
  for (const Field& field : form.fields) {
    std::ostringstream line;
    line << field.name << ": " << field.group << '|' << field.label << '|' << field.unit << '|'
         << textOf(field);
    for (const Choice& choice : field.choices) line << '|' << choice.text;
    shown.push_back(line.str());
  }
  EXPECT_THAT(shown,
              ::testing::UnorderedElementsAre(
                  "outerIterations: |Outer Iteration||10", "threshold: |Threshold||1",
                  "meetAtVertex: |Meet at vertex effect[0:1]||0.5", "animate: |Animate flow||1",
                  "animateEvery: |per|interations|1",
                  "integrationError: Face Normal Integration|||1|Distance error|Derivative error",
                  "integrationIterations: Face Normal Integration|Inner iteration||10",
                  "integrationStep: Face Normal Integration|Step size||0.1",
                  "averagingIterations: Face Normal Averaging|Inner iteration||1",
                  "weightShape: Face Normal Averaging|||1|Similar func.|Exp. func.",
                  "derivativeVariant: Face Normal Integration|L~2*||1",
                  "medianWeighted: Face Normal Averaging|Weighted||1",
                  "normalDifference: Difference of normals|||1|Curvature|Angle",
                  "averagingKind: Face Normal Averaging|||1|Weight function|Median"));
}

TEST(AdaptiveSmoothing, DialogRefusesSharesOutsideZeroToOneOnly) {
  AdaptiveSmoothingParameters parameters;
  for (const Field& field : parameters.form().fields) {
    const bool share = field.name == "meetAtVertex" || field.name == "integrationStep";
    EXPECT_EQ(field.range.has_value(), share) << field.name;
    if (!share) continue;
    EXPECT_EQ(storeText(field, "1.5"), "Enter a number between 0 and 1.");
    EXPECT_EQ(storeText(field, "0"), "");
    EXPECT_EQ(storeText(field, "1"), "");
  }
}

}  // namespace
}  // namespace gravlin
