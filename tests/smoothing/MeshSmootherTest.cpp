#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "smoothing/BilaplacianFlow.h"
#include "smoothing/ImplicitLaplacianFlow.h"
#include "smoothing/ImplicitMeanCurvatureFlow.h"
#include "smoothing/LaplacianFlow.h"
#include "smoothing/MeanCurvatureFlow.h"
#include "smoothing/MedianCurvatureFlow.h"
#include "smoothing/MeshSmoother.h"
#include "smoothing/Noise.h"
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

TEST(MeshSmoother, DoesNothingWithoutAMesh) {
  for (const Operation& operation : flowsAndNoise()) {
    const test::CapturedText text;
    MeshSmoother smoother;
    operation.run(smoother);
    smoother.attach(nullptr);
    operation.run(smoother);
    EXPECT_EQ(text.output + text.error, "") << operation.name;
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
        for (int i = 0; i < mesh.vertexCount; ++i) {
          if (mesh.vertexKind[static_cast<std::size_t>(i)] == InteriorVertex) continue;
          EXPECT_EQ(mesh.position(i), named.mesh.position(i)) << flow.name << " on " << named.name;
        }
      }
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
