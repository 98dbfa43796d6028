#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "smoothing/AdaptiveSmoothing.h"
#include "smoothing/BilaplacianFlow.h"
#include "smoothing/CornerNeighbours.h"
#include "smoothing/ImplicitLaplacianFlow.h"
#include "smoothing/ImplicitMeanCurvatureFlow.h"
#include "smoothing/LaplacianFlow.h"
#include "smoothing/MeanCurvatureFlow.h"
#include "smoothing/MedianCurvatureFlow.h"
#include "smoothing/MeshSmoother.h"
#include "smoothing/Noise.h"
#include "smoothing/NormalAveraging.h"
#include "smoothing/NormalIntegration.h"
#include "smoothing/TaubinSmoothing.h"
#include "support/CapturedText.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

/// An operation of the smoother beside the function that it stands for.
struct Operation {
  std::string name;
  std::function<void(MeshSmoother&)> run;
  std::function<void(TriangleMesh&)> expected;
};

std::vector<Operation> flows() {
  return {{"laplacianFlow", [](MeshSmoother& s) { s.laplacianFlow(3, 0.1F); },
           [](TriangleMesh& m) { laplacianFlow(m, {.iterations = 3, .step = 0.1F}); }},
          {"meanCurvatureFlow", [](MeshSmoother& s) { s.meanCurvatureFlow(2, 0.01F); },
           [](TriangleMesh& m) { meanCurvatureFlow(m, {.iterations = 2, .step = 0.01F}); }},
          {"medianCurvatureFlow", [](MeshSmoother& s) { s.medianCurvatureFlow(2, 0.01F); },
           [](TriangleMesh& m) { medianCurvatureFlow(m, {.iterations = 2, .step = 0.01F}); }},
          {"taubinSmoothing", [](MeshSmoother& s) { s.taubinSmoothing(2, 0.5F, 0.2F, 2); },
           [](TriangleMesh& m) {
             taubinSmoothing(m, {.iterations = 2, .lambda = 0.5F, .k = 0.2F, .weighting = 2});
           }},
          {"bilaplacianFlow", [](MeshSmoother& s) { s.bilaplacianFlow(2, 0.4F); },
           [](TriangleMesh& m) { bilaplacianFlow(m, {.iterations = 2, .step = 0.4F}); }},
          {"implicitLaplacianFlow", [](MeshSmoother& s) { s.implicitLaplacianFlow(0.5F); },
           [](TriangleMesh& m) { ImplicitLaplacianFlow(m, 0.5F).step(); }},
          {"implicitMeanCurvatureFlow", [](MeshSmoother& s) { s.implicitMeanCurvatureFlow(0.1F); },
           [](TriangleMesh& m) { ImplicitMeanCurvatureFlow(m, 0.1F).step(); }}};
}

/// What adaptive smoothing consists of; each on a mesh with the lists of faces around a corner.
std::vector<Operation> adaptiveOperations() {
  const NormalWeight weight = {.threshold = 1.5};
  const MedianFilter median = {.weighted = false};
  const AdaptiveSmoothingOptions options;
  return {
      {"adaptiveSmoothing", [=](MeshSmoother& s) { s.adaptiveSmoothing(2, options); },
       [=](TriangleMesh& m) { adaptiveSmoothing(m, 2, options); }},
      {"medianSmoothing", [=](MeshSmoother& s) { s.medianSmoothing(2, options); },
       [=](TriangleMesh& m) { medianSmoothing(m, 2, options); }},
      {"averageNormalsWeighted", [=](MeshSmoother& s) { s.averageNormalsWeighted(weight); },
       [=](TriangleMesh& m) { averageNormalsWeighted(m, weight); }},
      {"averageNormalsVertexWeighted",
       [=](MeshSmoother& s) { s.averageNormalsVertexWeighted(weight, 0.25); },
       [=](TriangleMesh& m) { averageNormalsVertexWeighted(m, weight, 0.25); }},
      {"averageNormalsMedian", [=](MeshSmoother& s) { s.averageNormalsMedian(median); },
       [=](TriangleMesh& m) { averageNormalsMedian(m, median); }},
      {"integrateDistance", [](MeshSmoother& s) { s.integrateDistance(0.3); },
       [](TriangleMesh& m) { integrateDistance(m, 0.3); }},
      {"integrateDerivative", [](MeshSmoother& s) { s.integrateDerivative(0.3); },
       [](TriangleMesh& m) { integrateDerivative(m, 0.3); }},
      {"integrateDerivativeByArea", [](MeshSmoother& s) { s.integrateDerivativeByArea(0.3, 2.0); },
       [](TriangleMesh& m) { integrateDerivativeByArea(m, 0.3, 2.0); }}};
}

std::vector<Operation> flowsAndNoise() {
  std::vector<Operation> all = flows();
  all.push_back({"addNoise", [](MeshSmoother& s) { s.addNoise(0.05F); },
                 [](TriangleMesh& m) { addNoise(m, 0.05F); }});
  return all;
}

bool allNumbers(const TriangleMesh& mesh) {
  return std::all_of(mesh.vertices.begin(), mesh.vertices.end(),
                     [](float x) { return std::isfinite(x); });
}

TEST(MeshSmoother, RunsEachOperationOnTheAttachedMesh) {
  for (const Operation& operation : flowsAndNoise()) {
    const test::CapturedText text;
    TriangleMesh mesh = test::torus(9, 7);
    TriangleMesh expected = mesh;
    MeshSmoother smoother;
    smoother.attach(&mesh);
    operation.run(smoother);
    operation.expected(expected);
    EXPECT_NE(mesh.vertices, test::torus(9, 7).vertices) << operation.name;
    EXPECT_EQ(mesh.vertices, expected.vertices) << operation.name;
  }
}

TEST(MeshSmoother, FlowInPartsIsTheMethodOfItsName) {
  using Method = SmoothingMethod;
  const auto taubin = [](TaubinWeighting weighting) {
    return [weighting](TriangleMesh& m) {
      taubinSmoothing(m, {.iterations = 3, .lambda = 0.25F, .k = 0.1F, .weighting = weighting});
    };
  };
  const std::vector<std::pair<Method, std::function<void(TriangleMesh&)>>> methods = {
      {Method::Laplacian,
       [](TriangleMesh& m) {
         laplacianFlow(m, {3, 0.25F});
       }},
      {Method::ImplicitLaplacian,
       [](TriangleMesh& m) {
         for (int k = 0; k < 3; ++k) ImplicitLaplacianFlow(m, 0.25F).step();
       }},
      {Method::MeanCurvature,
       [](TriangleMesh& m) {
         meanCurvatureFlow(m, {3, 0.25F});
       }},
      {Method::ImplicitMeanCurvature,
       [](TriangleMesh& m) {
         for (int k = 0; k < 3; ++k) ImplicitMeanCurvatureFlow(m, 0.25F).step();
       }},
      {Method::MedianCurvature,
       [](TriangleMesh& m) {
         medianCurvatureFlow(m, {3, 0.25F});
       }},
      {Method::TaubinUmbrella, taubin(UmbrellaWeights)},
      {Method::TaubinInverseDistance, taubin(InverseDistanceWeights)},
      {Method::TaubinCotangent, taubin(CotangentWeights)},
      {Method::Bilaplacian, [](TriangleMesh& m) {
         bilaplacianFlow(m, {3, 0.25F});
       }}};
  std::set<std::vector<float>> outcomes;
  for (const auto& [method, expected] : methods) {
    const test::CapturedText text;
    TriangleMesh mesh = test::jittered(test::torus(9, 7), 0.1);
    TriangleMesh whole = mesh;
    MeshSmoother smoother;
    smoother.attach(&mesh);
    const Flow flow = smoother.flow(method, 0.25F);
    for (const int part : {2, 0, 1, -1}) flow(part);
    expected(whole);
    EXPECT_EQ(mesh.vertices, whole.vertices) << static_cast<int>(method);
    EXPECT_TRUE(outcomes.insert(mesh.vertices).second) << static_cast<int>(method);
  }
}

TEST(MeshSmoother, RunsEachPartOfAdaptiveSmoothingOnTheAttachedMesh) {
  TriangleMesh start = test::jittered(test::torus(9, 7), 0.1);
  buildCornerNeighbourFaces(start);
  // Normals that differ from those of the faces, as after an averaging.
  averageNormalsMedian(start, {});
  std::set<std::vector<float>> outcomes;
  for (const Operation& operation : adaptiveOperations()) {
    TriangleMesh mesh = start;
    TriangleMesh expected = start;
    MeshSmoother smoother;
    smoother.attach(&mesh);
    operation.run(smoother);
    operation.expected(expected);
    EXPECT_EQ(mesh.vertices, expected.vertices) << operation.name;
    EXPECT_EQ(mesh.faceNormals, expected.faceNormals) << operation.name;
    std::vector<float> outcome = mesh.vertices;
    outcome.insert(outcome.end(), mesh.faceNormals.begin(), mesh.faceNormals.end());
    EXPECT_TRUE(outcomes.insert(outcome).second) << operation.name << " as another operation";
  }
}

TEST(MeshSmoother, NeverMovesAVertexThatIsNotInteriorByAFlow) {
  for (const auto& family : {test::openMeshes(), test::hostileMeshes()}) {
    for (const test::NamedMesh& named : family) {
      if (!allNumbers(named.mesh)) continue;  // a solve spreads what is not a number
      for (const Operation& flow : flows()) {
        const test::CapturedText text;
        TriangleMesh mesh = named.mesh;
        flow.expected(mesh);
        EXPECT_EQ(mesh.faces, named.mesh.faces) << flow.name << " on " << named.name;
        // Curvatures of 1e40 times a step are more than a coordinate holds.
        const bool tooFast = named.name == "very small" && flow.name == "meanCurvatureFlow";
        EXPECT_EQ(allNumbers(mesh), !tooFast) << flow.name << " on " << named.name;
        for (int i = 0; i < mesh.vertexCount; ++i) {
          if (mesh.vertexKind[static_cast<std::size_t>(i)] == InteriorVertex) continue;
          EXPECT_EQ(mesh.position(i), named.mesh.position(i)) << flow.name << " on " << named.name;
        }
      }
    }
  }
}

TEST(MeshSmoother, LeavesTheVertexWhereTwoSurfacesTouchAndMovesThoseAroundIt) {
  for (const Operation& flow : flows()) {
    if (flow.name == "bilaplacianFlow") continue;  // holds its neighbours too
    const test::CapturedText text;
    const TriangleMesh before = test::jittered(test::touchingOctahedra(), 0.1);
    TriangleMesh mesh = before;
    flow.expected(mesh);
    EXPECT_EQ(mesh.position(0), before.position(0)) << flow.name;
    for (int i = 1; i < mesh.vertexCount; ++i) {
      EXPECT_NE(mesh.position(i), before.position(i)) << flow.name << ' ' << i;
    }
  }
}

TEST(MeshSmoother, ChangesPositionsOnly) {
  for (const Operation& operation : flowsAndNoise()) {
    const test::CapturedText text;
    const TriangleMesh before = test::torus(9, 7);
    TriangleMesh mesh = before;
    operation.expected(mesh);
    EXPECT_EQ(mesh.faces, before.faces) << operation.name;
    EXPECT_EQ(mesh.vertexNeighbours.items, before.vertexNeighbours.items) << operation.name;
    EXPECT_EQ(mesh.vertexKind, before.vertexKind) << operation.name;
  }
}

TEST(MeshSmoother, TakesAnyStep) {
  for (const test::NamedMesh& named : test::closedMeshes()) {
    for (const float step : {0.0F, -0.5F, 1e30F, HUGE_VALF, std::nanf("")}) {
      TriangleMesh mesh = named.mesh;
      MeshSmoother smoother;
      smoother.attach(&mesh);
      smoother.laplacianFlow(3, step);
      smoother.meanCurvatureFlow(3, step);
      smoother.medianCurvatureFlow(3, step);
      smoother.bilaplacianFlow(3, step);
      for (const int weighting : {0, 1, 2}) {
        smoother.taubinSmoothing(3, step, 0.1F, weighting);
        smoother.taubinSmoothing(3, 10.0F, step, weighting);
      }
      EXPECT_EQ(mesh.vertices.size(), named.mesh.vertices.size());
    }
  }
}

}  // namespace
}  // namespace gravlin
