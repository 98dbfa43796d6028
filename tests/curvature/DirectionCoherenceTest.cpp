#include <algorithm>
#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <vector>

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

// Lines at 0, 40 and 80 degrees: of the three edges of length 1 only the one between the first and
// the last turns by more than 60 degrees.
TEST(DirectionCoherence, EachOfTheThreeEdgesCanSpoilAFace) {
  const auto line = [](double degrees) -> Vec3 {
    const double angle = degrees * std::numbers::pi / 180.0;
    return {std::cos(angle), std::sin(angle), 0.0};
  };
  for (const std::array<int, 3>& turn : {std::array{0, 1, 2}, {1, 2, 0}, {2, 0, 1}}) {
    TriangleMesh mesh =
        makeMesh({{0, 0, 0}, {1, 0, 0}, {0.5F, static_cast<float>(std::sqrt(0.75)), 0}},
                 {{turn[0], turn[1], turn[2]}});
    mesh.maxDirection.resize(9);
    for (int i = 0; i < 3; ++i) storeVectorAt(mesh.maxDirection, i, line(40.0 * i));
    markCoherentFaces(mesh, static_cast<float>(std::numbers::pi / 3.0));
    EXPECT_THAT(mesh.coherentFaces, ElementsAre(0));
    markCoherentFaces(mesh, static_cast<float>(std::numbers::pi / 2.0));
    EXPECT_THAT(mesh.coherentFaces, ElementsAre(1));
  }
}

/// A sphere about the origin, its directions along the meridians.
TriangleMesh sphereWithMeridians(double radius) {
  TriangleMesh mesh = icosphere(5, radius);
  mesh.maxDirection.resize(mesh.vertices.size());
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 n = unitOrZero(mesh.position(i));
    storeVectorAt(mesh.maxDirection, i, unitOrZero(Vec3{0, 0, 1} - n.z * n));
  }
  return mesh;
}

// Along a parallel at latitude b, meridians turn against each other by tan b / radius radians per
// unit of length; along a meridian they do not turn.
TEST(DirectionCoherence, OnASphereItEndsAtTheLatitudeWhereMeridiansTurnFasterThanTheThreshold) {
  for (const double radius : {1.0, 2.0}) {
    TriangleMesh mesh = sphereWithMeridians(radius);
    for (const double threshold : {5.0, 1.0}) {
      SCOPED_TRACE(::testing::Message() << "radius " << radius << ", threshold " << threshold);
      markCoherentFaces(mesh, static_cast<float>(threshold));
      int coherent = 0;
      int spoilt = 0;
      for (int f = 0; f < mesh.faceCount; ++f) {
        double least = HUGE_VAL;  // radians per unit of length at the corners
        double largest = 0.0;
        for (const int corner : mesh.corners(f)) {
          const Vec3 p = mesh.position(corner);
          const double rate = std::abs(p.z) / std::hypot(p.x, p.y) / radius;
          least = std::min(least, rate);
          largest = std::max(largest, rate);
        }
        const int mark = mesh.coherentFaces[static_cast<std::size_t>(f)];
        if (largest < 0.9 * threshold) {
          EXPECT_EQ(mark, 1) << f;
          ++coherent;
        }
        // One of three edges runs within 30 degrees of the parallel, give or take the distortion.
        if (least * std::cos(std::numbers::pi / 5.0) > threshold) {
          EXPECT_EQ(mark, 0) << f;
          ++spoilt;
        }
      }
      EXPECT_GT(coherent, mesh.faceCount / 2);
      EXPECT_GT(spoilt, 20);
    }
  }
}

TEST(DirectionCoherence, ASphereIsCoherentAtTheUsualThresholdAwayFromThePoles) {
  TriangleMesh mesh = sphereWithMeridians(1.0);
  markCoherentFaces(mesh, 5.0F);
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    const auto below = [&](int i) { return std::abs(mesh.position(i).z) < std::sin(1.3); };
    if (!std::all_of(c.begin(), c.end(), below)) continue;
    EXPECT_EQ(mesh.coherentFaces[static_cast<std::size_t>(f)], 1);
  }
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

/// Positions, normals and directions at the face's corners are numbers, and no edge is shorter
/// than a millionth.
bool finiteOn(const TriangleMesh& mesh, int f) {
  const auto c = mesh.corners(f);
  for (std::size_t j = 0; j < 3; ++j) {
    const Vec3 sum =
        mesh.position(c[j]) + mesh.vertexNormal(c[j]) + vectorAt(mesh.maxDirection, c[j]);
    if (!std::isfinite(dot(sum, sum))) return false;
    if (length(mesh.position(c[j]) - mesh.position(c[(j + 1) % 3])) < 1e-6) return false;
  }
  return true;
}

TEST(DirectionCoherence, HostileMeshesPassAndMarksAreZeroOrOne) {
  for (auto& [name, mesh] : hostileMeshes()) {
    SCOPED_TRACE(name);
    computeCurvatureTensor(mesh);
    markCoherentFaces(mesh, std::numeric_limits<float>::quiet_NaN());
    EXPECT_THAT(mesh.coherentFaces, Each(0));
    const std::vector<int> faces = mesh.faces;
    markCoherentFaces(mesh, 5.0F);
    EXPECT_EQ(mesh.faces, faces);
    ASSERT_EQ(static_cast<int>(mesh.coherentFaces.size()), mesh.faceCount);
    for (int f = 0; f < mesh.faceCount; ++f) {
      const int mark = mesh.coherentFaces[static_cast<std::size_t>(f)];
      EXPECT_TRUE(mark == 0 || mark == 1);
      if (!mesh.validFace(f)) {
        EXPECT_EQ(mark, 0);
      }
    }
    // However far it turns, it turns by less than this rate on edges with a length.
    markCoherentFaces(mesh, 1e30F);
    for (int f = 0; f < mesh.faceCount; ++f) {
      if (!mesh.validFace(f) || !finiteOn(mesh, f)) continue;
      EXPECT_EQ(mesh.coherentFaces[static_cast<std::size_t>(f)], 1);
    }
  }
}

}  // namespace
}  // namespace gravlin
