#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "curvature/CurvatureTensor.h"
#include "curvature/DirectionCoherence.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using namespace gravlin::test;

/// A right triangle with legs of `leg` whose directions of maximum curvature are given per corner.
TriangleMesh triangleWithDirections(float leg, const std::array<Vec3, 3>& directions) {
  TriangleMesh mesh = makeMesh({{0, 0, 0}, {leg, 0, 0}, {0, leg, 0}}, {{0, 1, 2}});
  mesh.maxDirection.assign(9, 0.0);
  for (int i = 0; i < 3; ++i) {
    storeVec3(mesh.maxDirection.data() + 3 * static_cast<std::size_t>(i),
              directions[static_cast<std::size_t>(i)]);
  }
  return mesh;
}

constexpr Vec3 x = {1.0, 0.0, 0.0};
constexpr Vec3 y = {0.0, 1.0, 0.0};

// pi / 2 is above 5 x 0.3 and below 5 x 0.32.
TEST(DirectionCoherence, ARightAngleNeedsEdgesLongEnoughToTurnOn) {
  TriangleMesh shortEdges = triangleWithDirections(0.3F, {x, y, x});
  markCoherentFaces(shortEdges, 5.0F);
  EXPECT_THAT(shortEdges.coherentFaces, ElementsAre(0));
  TriangleMesh longEdges = triangleWithDirections(0.32F, {x, y, x});
  markCoherentFaces(longEdges, 5.0F);
  EXPECT_THAT(longEdges.coherentFaces, ElementsAre(1));
}

TEST(DirectionCoherence, ADirectionAndItsNegativeAreTheSameLine) {
  TriangleMesh mesh = triangleWithDirections(0.01F, {x, -x, x});
  markCoherentFaces(mesh, 0.0F);
  EXPECT_THAT(mesh.coherentFaces, ElementsAre(1));
}

TEST(DirectionCoherence, AnEdgeWithoutLengthNeedsDirectionsThatAgreeExactly) {
  TriangleMesh same = triangleWithDirections(0.0F, {x, x, x});
  markCoherentFaces(same, 5.0F);
  EXPECT_THAT(same.coherentFaces, ElementsAre(1));
  TriangleMesh turned = triangleWithDirections(0.0F, {x, y, x});
  markCoherentFaces(turned, 5.0F);
  EXPECT_THAT(turned.coherentFaces, ElementsAre(0));
}

TEST(DirectionCoherence, ACylinderIsCoherentBecauseDirectionsAreCarriedRoundIt) {
  // Around the cylinder the direction turns in space by the same angle as the normal.
  TriangleMesh mesh = torus(24, 24);
  mesh.maxDirection.resize(mesh.vertices.size());
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    const Vec3 along = Vec3{-p.y, p.x, 0.0} / std::hypot(p.x, p.y);
    const Vec3 around = cross(mesh.vertexNormal(i), along);
    storeVec3(mesh.maxDirection.data() + 3 * static_cast<std::size_t>(i), around);
  }
  markCoherentFaces(mesh, 1.0F);
  EXPECT_THAT(mesh.coherentFaces, Each(1));
}

TEST(DirectionCoherence, TheMarksAreMadeAnew) {
  TriangleMesh mesh = triangleWithDirections(0.01F, {x, y, x});
  mesh.coherentFaces = {1, 1, 1, 1};
  markCoherentFaces(mesh, 5.0F);
  EXPECT_THAT(mesh.coherentFaces, ElementsAre(0));
}

TEST(DirectionCoherence, HostileMeshesPassAndMarksAreZeroOrOne) {
  for (auto& [name, mesh] : hostileMeshes()) {
    SCOPED_TRACE(name);
    computeCurvatureTensor(mesh);
    markCoherentFaces(mesh, std::numeric_limits<float>::quiet_NaN());
    EXPECT_THAT(mesh.coherentFaces, Each(0));
    markCoherentFaces(mesh, 5.0F);
    EXPECT_EQ(static_cast<int>(mesh.coherentFaces.size()), mesh.faceCount);
  }
}

}  // namespace
}  // namespace gravlin
