#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "smoothing/DenseLaplacians.h"
#include "smoothing/ImplicitChecks.h"
#include "smoothing/ImplicitLaplacianFlow.h"
#include "support/CapturedText.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

TEST(ImplicitLaplacianFlow, SystemIsTheIdentityLessTheUmbrellaTimesTheStep) {
  for (const auto& family : {test::closedMeshes(), test::openMeshes()}) {
    for (const test::NamedMesh& named : family) {
      TriangleMesh mesh = named.mesh;
      const ImplicitLaplacianFlow flow(mesh, 0.5F);
      const test::DenseMatrix system = test::dense(flow.systemMatrix(), mesh.vertexCount);
      const test::DenseMatrix umbrella = test::umbrellaMatrix(mesh);
      for (int i = 0; i < mesh.vertexCount; ++i) {
        for (int j = 0; j < mesh.vertexCount; ++j) {
          const double expected = (i == j ? 1.0 : 0.0) - 0.5 * umbrella.at(i, j);
          EXPECT_NEAR(system.at(i, j), expected, 1e-15) << named.name << ' ' << i << ' ' << j;
        }
      }
    }
  }
}

TEST(ImplicitLaplacianFlow, StoresEveryRowInRisingOrder) {
  for (const test::NamedMesh& named : test::closedMeshes()) {
    TriangleMesh mesh = named.mesh;
    const ImplicitLaplacianFlow flow(mesh, 0.5F);
    test::expectRowsInRisingOrder(flow.systemMatrix(), mesh.vertexCount);
    const std::size_t stored =
        static_cast<std::size_t>(mesh.vertexCount) + mesh.vertexNeighbours.items.size();
    EXPECT_EQ(flow.systemMatrix().sa.size(), stored + 3) << named.name;
    EXPECT_EQ(flow.systemMatrix().ija.size(), stored + 3) << named.name;
  }
}

TEST(ImplicitLaplacianFlow, SolvesItsSystemToTheToleranceAndNoFurther) {
  for (const auto& family : {test::closedMeshes(), test::openMeshes()}) {
    for (const test::NamedMesh& named : family) {
      for (const float dt : {0.1F, 0.5F, 3.0F, 20.0F}) {
        const test::CapturedText text;
        TriangleMesh mesh = named.mesh;
        ImplicitLaplacianFlow flow(mesh, dt);
        const ImplicitStep step = flow.step();
        test::recordPasses(named.name + " dt " + std::to_string(dt), step);
        EXPECT_EQ(text.outputLines(),
                  step.solves[0].iter + step.solves[1].iter + step.solves[2].iter);
        const test::SolvedStep solved = {
            .before = named.mesh, .after = mesh, .system = flow.systemMatrix(), .tolerance = 0.001};
        test::expectSolved(solved);
        test::expectNoPassTooMany(solved, step);
      }
    }
  }
}

TEST(ImplicitLaplacianFlow, SpreadsAPeakOverItsNeighbours) {
  // One interior vertex: (1 + dt) z - dt x 0 = z before.
  const test::CapturedText text;
  TriangleMesh pyramid = test::hexagonFan();
  pyramid.setPosition(0, {0, 0, 3});
  ImplicitLaplacianFlow(pyramid, 0.5F).step();
  EXPECT_NEAR(pyramid.position(0).z, 2.0, 0.003 * 3.0);
  EXPECT_EQ(pyramid.position(1), test::hexagonFan().position(1));
}

TEST(ImplicitLaplacianFlow, LeavesAMeshWithoutInteriorVerticesAloneAndPrintsNothing) {
  for (const TriangleMesh& before : {test::twoTriangles(), test::pointsOnly(), test::emptyMesh()}) {
    const test::CapturedText text;
    TriangleMesh mesh = before;
    const ImplicitStep step = ImplicitLaplacianFlow(mesh, 0.5F).step();
    EXPECT_EQ(mesh.vertices, before.vertices);
    for (const LinbcgResult& solve : step.solves) EXPECT_EQ(solve.iter, 0);
    EXPECT_EQ(text.output + text.error, "");
  }
}

TEST(ImplicitLaplacianFlow, LeavesEverythingAloneWithAStepOfZero) {
  for (const test::NamedMesh& named : test::closedMeshes()) {
    const test::CapturedText text;
    TriangleMesh mesh = named.mesh;
    ImplicitLaplacianFlow(mesh, 0.0F).step();
    EXPECT_EQ(mesh.vertices, named.mesh.vertices) << named.name;
    EXPECT_EQ(text.output, "");
  }
}

TEST(ImplicitLaplacianFlow, KeepsAnIsolatedVertexBesideMovingOnes) {
  test::expectLoneVertexStays<ImplicitLaplacianFlow>(0.5F);
}

TEST(ImplicitLaplacianFlow, KeepsItsMatrixFromStepToStepWithoutADifference) {
  const test::CapturedText text;
  TriangleMesh kept = test::torus(12, 8);
  TriangleMesh rebuilt = kept;
  ImplicitLaplacianFlow flow(kept, 0.7F);
  for (int step = 0; step < 4; ++step) {
    flow.step();
    ImplicitLaplacianFlow(rebuilt, 0.7F).step();
  }
  EXPECT_EQ(kept.vertices, rebuilt.vertices);
}

TEST(ImplicitLaplacianFlow, MovesOnlyInteriorVerticesOfAnyMesh) {
  for (const test::NamedMesh& named : test::hostileMeshes()) {
    for (const float dt : {0.5F, -1.0F, -3.0F, 1e30F, HUGE_VALF, std::nanf("")}) {
      test::expectHarmlessStep<ImplicitLaplacianFlow>(named, dt);
    }
  }
}

}  // namespace
}  // namespace gravlin
