#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "mesh/FacePicking.h"

namespace gravlin {
namespace {

/// Unit right triangles one above the other at the given heights, all facing up.
TriangleMesh stack(const std::vector<float>& heights) {
  TriangleMesh mesh;
  for (const float z : heights) {
    const int first = mesh.vertexCount;
    mesh.vertices.insert(mesh.vertices.end(), {0, 0, z, 1, 0, z, 0, 1, z});
    mesh.faces.insert(mesh.faces.end(), {first, first + 1, first + 2});
    mesh.faceNormals.insert(mesh.faceNormals.end(), {0, 0, 1});
    mesh.vertexCount += 3;
    mesh.faceCount += 1;
  }
  return mesh;
}

Ray down(double x, double y) {
  return {{x, y, 10.0}, {0.0, 0.0, -1.0}};
}

TEST(FacePicking, MeetsTheNearestOfTheFacesOnTheLine) {
  const TriangleMesh mesh = stack({0.0F, 3.0F, 1.0F});
  EXPECT_EQ(faceOnRay(mesh, down(0.2, 0.2)), 1);
}

TEST(FacePicking, MeetsNothingBesideTheFaces) {
  const TriangleMesh mesh = stack({0.0F});
  EXPECT_EQ(faceOnRay(mesh, down(0.6, 0.6)), std::nullopt);
  EXPECT_EQ(faceOnRay(mesh, down(-0.1, 0.5)), std::nullopt);
  EXPECT_EQ(faceOnRay(mesh, down(0.5, -0.1)), std::nullopt);
}

TEST(FacePicking, EdgesAndCornersBelongToTheFace) {
  const TriangleMesh mesh = stack({0.0F});
  EXPECT_EQ(faceOnRay(mesh, down(0.0, 0.0)), 0);
  EXPECT_EQ(faceOnRay(mesh, down(0.5, 0.5)), 0);
  EXPECT_EQ(faceOnRay(mesh, down(0.5, 0.0)), 0);
}

TEST(FacePicking, FirstOfEquallyNearFacesWins) {
  const TriangleMesh mesh = stack({2.0F, 2.0F, 2.0F});
  EXPECT_EQ(faceOnRay(mesh, down(0.2, 0.2)), 0);
}

TEST(FacePicking, BackFacesAreMetAsWell) {
  TriangleMesh mesh = stack({0.0F});
  mesh.faces = {0, 2, 1};
  mesh.faceNormals = {0, 0, -1};
  EXPECT_EQ(faceOnRay(mesh, down(0.2, 0.2)), 0);
}

TEST(FacePicking, FacesBehindTheOriginAreNotExcluded) {
  const TriangleMesh mesh = stack({0.0F, 20.0F});
  EXPECT_EQ(faceOnRay(mesh, down(0.2, 0.2)), 1);
}

TEST(FacePicking, LineInThePlaneOfAFaceMeetsNothing) {
  const TriangleMesh mesh = stack({0.0F});
  EXPECT_EQ(faceOnRay(mesh, {{-1.0, 0.2, 0.0}, {1.0, 0.0, 0.0}}), std::nullopt);
}

TEST(FacePicking, FacesBeyondTheLargestDistanceAreNotMet) {
  const TriangleMesh mesh = stack({-1.1e9F});
  EXPECT_EQ(faceOnRay(mesh, down(0.2, 0.2)), std::nullopt);
}

TEST(FacePicking, InvalidDegenerateAndUnboundFacesAreNeverMet) {
  TriangleMesh mesh = stack({0.0F, 1.0F, 2.0F});
  mesh.faces[3] = mesh.faces[4] = mesh.faces[5] = -1;
  mesh.faceNormals[8] = 0.0F;
  EXPECT_EQ(faceOnRay(mesh, down(0.2, 0.2)), 0);
  mesh.vertices[2] = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(faceOnRay(mesh, down(0.2, 0.2)), std::nullopt);
}

TEST(FacePicking, RayThatIsNoNumberMeetsNothing) {
  const TriangleMesh mesh = stack({0.0F});
  const double nan = std::nan("");
  EXPECT_EQ(faceOnRay(mesh, {{nan, nan, nan}, {nan, nan, nan}}), std::nullopt);
  EXPECT_EQ(faceOnRay({}, down(0.0, 0.0)), std::nullopt);
}

}  // namespace
}  // namespace gravlin
