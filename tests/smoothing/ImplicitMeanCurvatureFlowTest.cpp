#include <cmath>
#include <gtest/gtest.h>
#include <string>

#include "smoothing/DenseLaplacians.h"
#include "smoothing/ImplicitChecks.h"
#include "smoothing/ImplicitMeanCurvatureFlow.h"
#include "support/CapturedText.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

TEST(ImplicitMeanCurvatureFlow, SystemIsTheIdentityLessTheCotangentsOverTheArea) {
  for (const auto& family : {test::closedMeshes(), test::openMeshes()}) {
    for (const test::NamedMesh& named : family) {
      TriangleMesh mesh = named.mesh;
      const test::DenseMatrix system =
          test::dense(ImplicitMeanCurvatureFlow(mesh, 0.5F).assemble(), mesh.vertexCount);
      const test::DenseMatrix cotangents = test::cotangentMatrix(mesh);
      const std::vector<double> areas = test::ringAreas(mesh);
      for (int i = 0; i < mesh.vertexCount; ++i) {
        for (int j = 0; j < mesh.vertexCount; ++j) {
          const double expected =
              (i == j ? 1.0 : 0.0) - 0.5 * cotangents.at(i, j) / areas[static_cast<std::size_t>(i)];
          EXPECT_NEAR(system.at(i, j), expected, 1e-11) << named.name << ' ' << i << ' ' << j;
        }
      }
    }
  }
}

TEST(ImplicitMeanCurvatureFlow, FollowsAQuarterOfTheExplicitFlowsNormal) {
  for (const test::NamedMesh& named : test::closedMeshes()) {
    TriangleMesh mesh = named.mesh;
    const test::DenseMatrix system =
        test::dense(ImplicitMeanCurvatureFlow(mesh, 0.5F).assemble(), mesh.vertexCount);
    const std::vector<double> product = system.times(test::coordinates(mesh, 0));
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const double quarter = mesh.meanCurvatureNormal(i).x / 4.0;
      EXPECT_NEAR(product[static_cast<std::size_t>(i)] - mesh.position(i).x, 0.5 * quarter, 1e-11)
          << named.name;
    }
  }
}

TEST(ImplicitMeanCurvatureFlow, StoresRowsInRisingOrderWithoutZeroWeights) {
  for (const test::NamedMesh& named : test::closedMeshes()) {
    TriangleMesh mesh = named.mesh;
    ImplicitMeanCurvatureFlow flow(mesh, 0.5F);
    const SparseMatrix& system = flow.assemble();
    test::expectRowsInRisingOrder(system, mesh.vertexCount);
    const std::size_t first = static_cast<std::size_t>(mesh.vertexCount) + 2;
    const auto end = static_cast<std::size_t>(system.ija[first - 1]);
    for (std::size_t k = first; k < end; ++k) EXPECT_NE(system.sa[k], 0.0) << named.name;
  }
  // On a grid of squares the diagonals see two right angles, whose cotangent is exactly 0.
  TriangleMesh grid = test::grid(2, 2);
  ImplicitMeanCurvatureFlow flow(grid, 0.5F);
  const SparseMatrix& system = flow.assemble();
  EXPECT_EQ(grid.neighbourCount(4), 6);
  EXPECT_EQ(system.ija[6] - system.ija[5], 4);
}

TEST(ImplicitMeanCurvatureFlow, SolvesItsSystemToTheToleranceAndNoFurther) {
  for (const auto& family : {test::closedMeshes(), test::openMeshes()}) {
    for (const test::NamedMesh& named : family) {
      for (const float dt : {0.02F, 0.1F, 0.5F, 2.0F}) {
        const test::CapturedText text;
        TriangleMesh mesh = named.mesh;
        ImplicitMeanCurvatureFlow flow(mesh, dt);
        const SparseMatrix system = flow.assemble();
        const ImplicitStep step = flow.step();
        test::recordPasses(named.name + " dt " + std::to_string(dt), step);
        EXPECT_EQ(text.outputLines(),
                  step.solves[0].iter + step.solves[1].iter + step.solves[2].iter);
        const test::SolvedStep solved = {
            .before = named.mesh, .after = mesh, .system = system, .tolerance = 1e-5};
        test::expectSolved(solved);
        test::expectNoPassTooMany(solved, step);
      }
    }
  }
}

TEST(ImplicitMeanCurvatureFlow, WritesTheLastIterateBackWhenTheToleranceIsNotReached) {
  // A step so long that a hundred passes are not enough on a long thin tube.
  const test::CapturedText text;
  TriangleMesh mesh = test::torus(400, 4);
  const TriangleMesh before = mesh;
  const ImplicitStep step = ImplicitMeanCurvatureFlow(mesh, 1e6F).step();
  EXPECT_EQ(step.solves[0].iter, 101);
  EXPECT_GT(step.solves[0].err, 1e-5);
  EXPECT_NE(mesh.vertices, before.vertices);
}

TEST(ImplicitMeanCurvatureFlow, KeepsAnIsolatedVertexBesideMovingOnes) {
  test::expectLoneVertexStays<ImplicitMeanCurvatureFlow>(0.1F);
}

TEST(ImplicitMeanCurvatureFlow, KeepsAVertexWithoutRingArea) {
  // Vertex 0 lies on a line with its whole ring.
  TriangleMesh mesh =
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {-1, 0, 0}, {0, 3, 3}},
                     {{0, 1, 2}, {0, 2, 3}, {0, 3, 1}, {1, 3, 4}, {3, 2, 4}, {2, 1, 4}});
  ASSERT_EQ(mesh.vertexKind[0], InteriorVertex);
  ImplicitMeanCurvatureFlow flow(mesh, 0.5F);
  const SparseMatrix& system = flow.assemble();
  EXPECT_EQ(system.sa[1], 1.0);
  EXPECT_EQ(system.ija[2], system.ija[1]);
  const test::CapturedText text;
  const TriangleMesh before = mesh;
  flow.step();
  EXPECT_EQ(mesh.position(0), before.position(0));
  EXPECT_NE(mesh.vertices, before.vertices) << "others move";
}

TEST(ImplicitMeanCurvatureFlow, LeavesAMeshWithoutInteriorVerticesAloneAndPrintsNothing) {
  for (const TriangleMesh& before : {test::twoTriangles(), test::pointsOnly(), test::emptyMesh()}) {
    const test::CapturedText text;
    TriangleMesh mesh = before;
    ImplicitMeanCurvatureFlow(mesh, 0.5F).step();
    EXPECT_EQ(mesh.vertices, before.vertices);
    EXPECT_EQ(text.output + text.error, "");
  }
}

TEST(ImplicitMeanCurvatureFlow, LeavesEverythingAloneWithAStepOfZero) {
  for (const test::NamedMesh& named : test::closedMeshes()) {
    const test::CapturedText text;
    TriangleMesh mesh = named.mesh;
    ImplicitMeanCurvatureFlow(mesh, 0.0F).step();
    EXPECT_EQ(mesh.vertices, named.mesh.vertices) << named.name;
    EXPECT_EQ(text.output, "");
  }
}

TEST(ImplicitMeanCurvatureFlow, RenewsItsWeightsFromStepToStep) {
  const test::CapturedText text;
  TriangleMesh kept = test::torus(12, 8);
  TriangleMesh rebuilt = kept;
  ImplicitMeanCurvatureFlow flow(kept, 0.1F);
  for (int step = 0; step < 3; ++step) {
    flow.step();
    ImplicitMeanCurvatureFlow(rebuilt, 0.1F).step();
  }
  EXPECT_EQ(kept.vertices, rebuilt.vertices);
}

TEST(ImplicitMeanCurvatureFlow, MovesOnlyInteriorVerticesOfAnyMesh) {
  for (const test::NamedMesh& named : test::hostileMeshes()) {
    for (const float dt : {0.5F, -1.0F, 1e30F, HUGE_VALF, std::nanf("")}) {
      test::expectHarmlessStep<ImplicitMeanCurvatureFlow>(named, dt);
    }
  }
}

}  // namespace
}  // namespace gravlin
