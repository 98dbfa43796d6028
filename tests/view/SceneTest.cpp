#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "doc/CGravlinDoc.h"
#include "support/DisplayModes.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/ScriptedOutside.h"
#include "view/RenderDispatcher.h"
#include "view/Scene.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

Scene sceneOf(TriangleMesh mesh, int displayMode) {
  test::ScriptedOutside outside;
  CGravlinDoc document{outside};
  test::setMesh(document, std::move(mesh));
  document.displayMode = displayMode;
  document.redraw();
  return gatherScene(document.shown());
}

Batch scalarsOn(const TriangleMesh& mesh, const std::vector<double>& values, bool grayScale) {
  return scalarFaces(mesh, values, {values, grayScale});
}

/// Number of vertices that the batches of a scene draw.
std::vector<std::size_t> drawnCounts(const Scene& scene) {
  std::vector<std::size_t> counts;
  for (const Batch& batch : scene.batches) counts.push_back(batch.drawnCount());
  return counts;
}

/// What every batch must hold whatever the mesh was, so that drawing it reads no stray memory.
void expectConsistent(const Batch& batch) {
  const std::size_t n = batch.vertexCount();
  EXPECT_EQ(batch.positions.size(), 3 * n);
  EXPECT_TRUE(batch.normals.empty() || batch.normals.size() == 3 * n);
  EXPECT_TRUE(batch.colours.empty() || batch.colours.size() == 3 * n);
  EXPECT_TRUE(batch.setBackAlong.empty() || batch.setBackAlong.size() == 3 * n);
  EXPECT_EQ(batch.normals.empty(), !batch.lit || n == 0);
  for (const unsigned index : batch.indices) EXPECT_LT(index, n);
  const auto drawnFinite = [&batch](std::size_t i) {
    return std::isfinite(batch.positions[3 * i]) && std::isfinite(batch.positions[3 * i + 1]) &&
           std::isfinite(batch.positions[3 * i + 2]);
  };
  for (std::size_t i = 0; i < batch.drawnCount(); ++i) {
    EXPECT_TRUE(drawnFinite(batch.indices.empty() ? i : batch.indices[i]));
  }
  for (const float component : batch.normals) EXPECT_TRUE(std::isfinite(component));
}

TEST(Scene, IsEmptyWithoutAMeshAndInModesThatDrawNothing) {
  test::ScriptedOutside outside;
  CGravlinDoc document{outside};
  for (const int mode : test::everyDisplayMode()) {
    document.displayMode = mode;
    document.redraw();
    EXPECT_THAT(gatherScene(document.shown()).batches, IsEmpty());
  }
  for (const int mode : {-1, 0, 9, 27, 32, 99, 1000}) {
    EXPECT_THAT(sceneOf(test::cube(), mode).batches, IsEmpty());
  }
}

TEST(Scene, EveryOtherModeShowsSomething) {
  for (const Mode& mode : modeTable()) {
    EXPECT_FALSE(sceneOf(test::bumpyGrid(3, 3), mode.number).batches.empty())
        << "mode " << mode.number;
  }
}

TEST(Scene, AnyMeshGivesConsistentArraysInEveryMode) {
  for (const auto& families : {test::closedMeshes(), test::openMeshes(), test::hostileMeshes()}) {
    for (const test::NamedMesh& named : families) {
      for (const int mode : test::everyDisplayMode()) {
        SCOPED_TRACE(named.name + ", mode " + std::to_string(mode));
        for (const Batch& batch : sceneOf(named.mesh, mode).batches) expectConsistent(batch);
      }
    }
  }
}

TEST(Scene, OfAnyMeshShowsTheFacesAndPointsThatAreFinite) {
  for (const test::NamedMesh& named : test::hostileMeshes()) {
    SCOPED_TRACE(named.name);
    const TriangleMesh& mesh = named.mesh;
    const auto finite = [&](int i) { return std::isfinite(dot(mesh.position(i), {1, 1, 1})); };
    std::size_t faces = 0;
    std::size_t points = 0;
    for (int f = 0; f < mesh.faceCount; ++f) {
      const auto c = mesh.corners(f);
      if (mesh.validFace(f) && finite(c[0]) && finite(c[1]) && finite(c[2])) ++faces;
    }
    for (int i = 0; i < mesh.vertexCount; ++i) points += finite(i) ? 1 : 0;
    for (const int mode : {SmoothShading, FlatShading, FlatShadingAlso}) {
      EXPECT_EQ(drawnCounts(sceneOf(mesh, mode)), std::vector<std::size_t>{3 * faces});
    }
    EXPECT_EQ(drawnCounts(sceneOf(mesh, Points)), std::vector<std::size_t>{points});
  }
}

TEST(Scene, MeshWithoutDerivedDataIsDrawnAllTheSame) {
  TriangleMesh mesh;
  mesh.copyGeometryFrom(test::cube());
  for (const int mode : test::everyDisplayMode()) {
    const Scene scene = gatherScene({.mesh = &mesh, .displayMode = mode});
    for (const Batch& batch : scene.batches) expectConsistent(batch);
  }
}

TEST(Scene, FacesOutsideTheMeshAreLeftOut) {
  TriangleMesh mesh = test::singleTriangle();
  mesh.faces = {0, 1, 7};
  EXPECT_EQ(drawnCounts(sceneOf(mesh, FlatShading)), std::vector<std::size_t>{0});
}

/// Three numbers of `numbers` from 3i on.
Vec3 three(const std::vector<float>& numbers, unsigned i) {
  return loadVec3(numbers.data() + 3 * static_cast<std::size_t>(i));
}

TEST(Scene, FlatShadingGivesEachFaceItsNormalThroughItsLastVertex) {
  for (const auto& families : {test::closedMeshes(), test::openMeshes()}) {
    for (const auto& [name, mesh] : families) {
      SCOPED_TRACE(name);
      const Scene scene = sceneOf(mesh, FlatShading);
      ASSERT_EQ(scene.batches.size(), 1U);
      const Batch& batch = scene.batches[0];
      EXPECT_TRUE(batch.lit);
      EXPECT_TRUE(batch.flat);
      ASSERT_EQ(batch.drawnCount(), 3 * static_cast<std::size_t>(mesh.faceCount));
      for (int f = 0; f < mesh.faceCount; ++f) {
        const auto corners = mesh.corners(f);
        const unsigned* drawn = batch.indices.data() + 3 * static_cast<std::size_t>(f);
        // Turned round by one, as OpenGL turns a polygon's corners when it makes a triangle of it.
        EXPECT_EQ(three(batch.positions, drawn[0]), mesh.position(corners[1]));
        EXPECT_EQ(three(batch.positions, drawn[1]), mesh.position(corners[2]));
        EXPECT_EQ(three(batch.positions, drawn[2]), mesh.position(corners[0]));
        EXPECT_EQ(three(batch.normals, drawn[2]), mesh.faceNormal(f));
      }
    }
  }
}

TEST(Scene, FlatShadingNeedsHardlyMoreVerticesThanFaces) {
  const TriangleMesh mesh = test::torus(40, 30);
  const Scene scene = sceneOf(mesh, FlatShading);
  EXPECT_LE(scene.batches.at(0).vertexCount(),
            static_cast<std::size_t>(mesh.faceCount + mesh.vertexCount));
}

TEST(Scene, ModeFourIsModeTwo) {
  TriangleMesh mesh = test::cube();
  mesh.pickedFace = 3;
  const Scene two = sceneOf(mesh, FlatShading);
  const Scene four = sceneOf(mesh, FlatShadingAlso);
  ASSERT_EQ(two.batches.size(), 2U);
  ASSERT_EQ(four.batches.size(), 2U);
  for (std::size_t b = 0; b < 2; ++b) {
    EXPECT_EQ(two.batches[b].positions, four.batches[b].positions);
    EXPECT_EQ(two.batches[b].normals, four.batches[b].normals);
    EXPECT_EQ(two.batches[b].colour, four.batches[b].colour);
  }
}

TEST(Scene, FlatShadingMarksThePickedFaceWithThreeRedPoints) {
  TriangleMesh mesh = test::singleTriangle();
  mesh.pickedFace = 0;
  const Scene scene = sceneOf(mesh, FlatShading);
  ASSERT_EQ(scene.batches.size(), 2U);
  const Batch& points = scene.batches[1];
  EXPECT_EQ(points.primitive, Primitive::Points);
  EXPECT_FALSE(points.lit);
  EXPECT_EQ(points.colour, (Colour{1, 0, 0}));
  EXPECT_EQ(points.positions, mesh.vertices);
}

TEST(Scene, PickedFaceIsFilledRedInPlaceOfItsLitOne) {
  TriangleMesh mesh = test::cube();
  mesh.pickedFace = 5;
  const Scene scene = sceneOf(mesh, PickedFace);
  ASSERT_EQ(drawnCounts(scene), (std::vector<std::size_t>{33, 3}));
  EXPECT_TRUE(scene.batches[0].lit);
  EXPECT_FALSE(scene.batches[1].lit);
  EXPECT_EQ(scene.batches[1].colour, (Colour{1, 0, 0}));
  EXPECT_EQ(scene.batches[1].primitive, Primitive::Triangles);
}

TEST(Scene, PickedFaceThatIsGoneMarksNothing) {
  for (const int face : {-1, 12, std::numeric_limits<int>::max()}) {
    TriangleMesh mesh = test::cube();
    mesh.pickedFace = face;
    EXPECT_EQ(drawnCounts(sceneOf(mesh, PickedFace)), std::vector<std::size_t>{36});
    EXPECT_EQ(drawnCounts(sceneOf(mesh, FlatShading)), std::vector<std::size_t>{36});
  }
}

TEST(Scene, SmoothShadingSharesTheVertices) {
  const TriangleMesh mesh = test::cube();
  const Scene scene = sceneOf(mesh, SmoothShading);
  ASSERT_EQ(scene.batches.size(), 1U);
  EXPECT_TRUE(scene.batches[0].lit);
  EXPECT_EQ(scene.batches[0].positions, mesh.vertices);
  EXPECT_EQ(scene.batches[0].normals, mesh.vertexNormals);
  EXPECT_EQ(scene.batches[0].drawnCount(), 36U);
}

TEST(Scene, WireFrameDrawsEachInnerEdgeOnce) {
  // 12 faces, 18 edges, every one shared.
  EXPECT_EQ(drawnCounts(sceneOf(test::cube(), WireFrame)), (std::vector<std::size_t>{36, 36}));
}

TEST(Scene, WireFrameDrawsABoundaryEdgeOnlyFromTheHigherIndexToTheLower) {
  // Corners 0, 1, 2: of the edges 0-1, 1-2 and 2-0 only the last one falls.
  const Scene scene = sceneOf(test::singleTriangle(), WireFrame);
  ASSERT_EQ(scene.batches.size(), 2U);
  EXPECT_EQ(scene.batches[0].primitive, Primitive::Lines);
  EXPECT_EQ(scene.batches[0].colour, (Colour{0, 0, 0}));
  EXPECT_THAT(scene.batches[0].indices, ElementsAre(2U, 0U));
}

TEST(Scene, WireFrameHidesLinesBehindWhiteFacesThatAreSetBack) {
  const TriangleMesh mesh = test::cube();
  const Scene scene = sceneOf(mesh, WireFrame);
  ASSERT_EQ(scene.batches.size(), 2U);
  EXPECT_EQ(scene.batches[1].colour, (Colour{1, 1, 1}));
  EXPECT_EQ(scene.batches[1].setBackAlong, mesh.vertexNormals);
  EXPECT_DOUBLE_EQ(setBackDistance(22.5F), 22.5 * 0.0022222222);
  EXPECT_EQ(setBackDistance(nan), 0.0);
  EXPECT_EQ(setBackDistance(std::numeric_limits<float>::infinity()), 0.0);
}

TEST(Scene, NonManifoldPointsShowsKindsAndOpenEdges) {
  const Scene scene = sceneOf(test::bowTie(), NonManifoldPoints);
  ASSERT_EQ(scene.batches.size(), 3U);
  EXPECT_EQ(scene.batches[0].colour, (Colour{1, 0, 0}));
  EXPECT_THAT(scene.batches[0].positions, ElementsAre(0, 0, 0));  // the vertex that is shared
  EXPECT_EQ(scene.batches[1].colour, (Colour{0, 1, 1}));
  EXPECT_EQ(scene.batches[1].vertexCount(), 4U);
  EXPECT_EQ(scene.batches[2].colour, (Colour{0, 0, 1}));
  EXPECT_EQ(scene.batches[2].primitive, Primitive::Lines);
  EXPECT_EQ(scene.batches[2].vertexCount(), 12U);
}

TEST(Scene, NonManifoldPointsShowsNothingOfAClosedSurface) {
  EXPECT_THAT(drawnCounts(sceneOf(test::icosphere(1), NonManifoldPoints)), Each(0U));
}

TEST(Scene, NonManifoldPointsLeavesOutEdgesOfInvalidFaces) {
  TriangleMesh mesh = test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {5, 6, 7}});
  EXPECT_EQ(sceneOf(mesh, NonManifoldPoints).batches.at(2).vertexCount(), 6U);
}

TEST(Scene, PointsShowsEveryVertexAlsoUnusedOnes) {
  const TriangleMesh mesh = test::pointsOnly();
  const Scene scene = sceneOf(mesh, Points);
  ASSERT_EQ(scene.batches.size(), 1U);
  EXPECT_EQ(scene.batches[0].primitive, Primitive::Points);
  EXPECT_EQ(scene.batches[0].colour, (Colour{0.4F, 0.2F, 0.2F}));
  EXPECT_EQ(scene.batches[0].positions, mesh.vertices);
}

TEST(Scene, WhatIsNotFiniteIsLeftOutAndTheRestIsShown) {
  const TriangleMesh mesh = test::withNan();  // vertex 2 of a tetrahedron
  EXPECT_EQ(drawnCounts(sceneOf(mesh, Points)), std::vector<std::size_t>{3});
  EXPECT_EQ(drawnCounts(sceneOf(mesh, FlatShading)), std::vector<std::size_t>{3});
  EXPECT_EQ(drawnCounts(sceneOf(mesh, SmoothShading)), std::vector<std::size_t>{3});
  EXPECT_EQ(drawnCounts(sceneOf(mesh, WireFrame)), (std::vector<std::size_t>{6, 3}));
}

TEST(Scene, ScalarFacesColourEachVertexByItsPlaceAmongAll) {
  const TriangleMesh mesh = test::singleTriangle();
  const std::vector<double> values = {1, 2, 3};
  const Batch batch = scalarsOn(mesh, values, false);
  EXPECT_FALSE(batch.lit);
  ASSERT_EQ(batch.colours.size(), 9U);
  // Deviation sqrt(2/3): the ends lie at t = -+1.837.
  const Colour low = scaleColour(-1.5 / std::sqrt(2.0 / 3.0));
  EXPECT_NEAR(batch.colours[2], low.b, 1e-6F);
  EXPECT_NEAR(batch.colours[3], 0.5F, 1e-6F);
  EXPECT_EQ(batch.colours[4], 1.0F);
  EXPECT_EQ(batch.colours[5], 0.0F);
}

TEST(Scene, ScalarFacesInGrey) {
  const Batch batch = scalarsOn(test::singleTriangle(), std::vector<double>{1, 2, 3}, true);
  ASSERT_EQ(batch.colours.size(), 9U);
  for (std::size_t i = 0; i < 9; i += 3) {
    EXPECT_EQ(batch.colours[i], batch.colours[i + 1]);
    EXPECT_EQ(batch.colours[i], batch.colours[i + 2]);
  }
  EXPECT_NEAR(batch.colours[3], 0.5F, 1e-6F);
}

TEST(Scene, ConstantFieldIsBlack) {
  for (const bool gray : {false, true}) {
    const Batch batch = scalarsOn(test::cube(), std::vector<double>(8, 4.25), gray);
    EXPECT_EQ(batch.drawnCount(), 36U);
    EXPECT_THAT(batch.colours, Each(0.0F));
  }
}

TEST(Scene, ScalarFacesNeedOneValuePerVertex) {
  EXPECT_EQ(scalarsOn(test::cube(), std::vector<double>(7, 1.0), false).drawnCount(), 0U);
  EXPECT_EQ(scalarsOn(test::emptyMesh(), {}, false).drawnCount(), 0U);
}

}  // namespace
}  // namespace gravlin
