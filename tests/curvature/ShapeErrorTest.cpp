#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "curvature/ShapeError.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::Eq;
using ::testing::Le;
using ::testing::SizeIs;

TEST(ShapeError, IsZeroAgainstTheMeshItself) {
  for (const test::NamedMesh& each : test::closedMeshes()) {
    SCOPED_TRACE(each.name);
    EXPECT_THAT(vertexErrors(each.mesh, each.mesh), Each(Eq(0.0)));
    EXPECT_THAT(faceErrors(each.mesh, each.mesh), Each(Le(1e-6)));  // one normal is in floats
  }
}

TEST(ShapeError, ComparesByIndexWhenTheCountsAgree) {
  const TriangleMesh ideal = test::cube();
  TriangleMesh moved = ideal;
  moved.setPosition(6, {1, 1, 3});
  moved.computeFaceNormals();
  const std::vector<double> errors = vertexErrors(moved, ideal);
  for (std::size_t i = 0; i < errors.size(); ++i) EXPECT_EQ(errors[i], i == 6 ? 2.0 : 0.0);

  // Vertices that slide within the surface are off by their way, not by their height.
  TriangleMesh slid = test::grid(4, 3);
  for (int i = 0; i < slid.vertexCount; ++i)
    slid.setPosition(i, slid.position(i) + Vec3{0.5, 0, 0});
  EXPECT_THAT(vertexErrors(slid, test::grid(4, 3)), Each(Eq(0.5)));
}

TEST(ShapeError, MeasuresTheAngleOfFaceNormals) {
  const TriangleMesh ideal = test::singleTriangle();
  const double angle = 0.3;
  TriangleMesh turned = test::makeMesh(
      {{0, 0, 0},
       {1, 0, 0},
       {0, static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))}},
      {{0, 1, 2}});
  EXPECT_NEAR(faceErrors(turned, ideal).front(), angle, 1e-6);
  TriangleMesh over = test::makeMesh({{0, 0, 0}, {0, 1, 0}, {1, 0, 0}}, {{0, 1, 2}});
  EXPECT_NEAR(faceErrors(over, ideal).front(), std::numbers::pi, 1e-12);
}

TEST(ShapeError, ComparesWithTheNearestPointWhenTheCountsDiffer) {
  TriangleMesh mesh = test::grid(9, 7);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    mesh.setPosition(i, 0.25 * mesh.position(i) + Vec3{0.5, 0.5, 0.125});
  }
  const TriangleMesh ideal = test::grid(4, 3);
  EXPECT_THAT(vertexErrors(mesh, ideal), Each(Eq(0.125)));
  EXPECT_THAT(faceErrors(mesh, ideal), Each(Eq(0.0)));
}

TEST(ShapeError, OfAFineSphereAgainstACoarseOneIsTheSagOfItsFaces) {
  const TriangleMesh fine = test::icosphere(3);
  const TriangleMesh coarse = test::icosphere(1);
  double largest = 0.0;
  for (const double error : vertexErrors(fine, coarse)) largest = std::max(largest, error);
  // The faces of the coarse sphere lie up to 0.062 inside the unit sphere.
  EXPECT_GT(largest, 0.03);
  EXPECT_LT(largest, 0.09);
  for (const double angle : faceErrors(fine, coarse)) EXPECT_LT(angle, 0.4);
}

bool allFinite(const TriangleMesh& mesh) {
  return std::all_of(mesh.vertices.begin(), mesh.vertices.end(),
                     [](float x) { return std::isfinite(x); });
}

/// How far the mesh reaches from the origin.
double reachOf(const TriangleMesh& mesh) {
  double reach = 0.0;
  for (int i = 0; i < mesh.vertexCount; ++i) reach = std::max(reach, length(mesh.position(i)));
  return reach;
}

TEST(ShapeError, IsADistanceWithinReachAndAnAngleBetweenAnyTwoFiniteMeshes) {
  for (const test::NamedMesh& a : test::everyMesh()) {
    for (const test::NamedMesh& b : test::everyMesh()) {
      SCOPED_TRACE(a.name + " against " + b.name);
      const std::vector<double> distances = vertexErrors(a.mesh, b.mesh);
      const std::vector<double> angles = faceErrors(a.mesh, b.mesh);
      EXPECT_THAT(distances, SizeIs(static_cast<std::size_t>(a.mesh.vertexCount)));
      EXPECT_THAT(angles, SizeIs(static_cast<std::size_t>(a.mesh.faceCount)));
      if (!allFinite(a.mesh) || !allFinite(b.mesh)) continue;
      const double reach = (reachOf(a.mesh) + reachOf(b.mesh)) * (1.0 + 1e-12);
      for (const double distance : distances) EXPECT_TRUE(distance >= 0.0 && distance <= reach);
      for (const double angle : angles) EXPECT_TRUE(angle >= 0.0 && angle <= std::numbers::pi);
      for (int f = 0; f < a.mesh.faceCount; ++f) {
        if (a.mesh.faceNormal(f) == Vec3{}) {
          EXPECT_EQ(angles[static_cast<std::size_t>(f)], 0.0);
        }
      }
    }
  }
}

TEST(ShapeError, IsZeroWithoutASurface) {
  EXPECT_THAT(vertexErrors(test::cube(), test::pointsOnly()), Each(Eq(0.0)));
  EXPECT_THAT(faceErrors(test::cube(), test::pointsOnly()), Each(Eq(0.0)));
}

}  // namespace
}  // namespace gravlin
