#include <algorithm>
#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "curvature/EdgeCurvature.h"
#include "mesh/FaceGeometry.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"
#include "support/TiltedPlanes.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::Eq;

using test::NamedMesh;
using test::sameBits;

/// The definition written out, with both arc cosines for the sign.
std::vector<double> plainEdgeCurvatures(const TriangleMesh& mesh) {
  std::vector<double> values(3 * static_cast<std::size_t>(mesh.faceCount), 0.0);
  const auto clamp = [](double u) { return u < -1 ? -1.0 : (u > 1 ? 1.0 : u); };
  for (int f = 0; f < mesh.faceCount; ++f) {
    for (std::size_t j = 0; j < 3; ++j) {
      const std::size_t entry = 3 * static_cast<std::size_t>(f) + j;
      const int g = mesh.faceAdjacency[entry];
      if (g < 0 || g > f) continue;
      const auto corners = mesh.corners(f);
      const double Af = faceArea(mesh, f);
      const double Ag = faceArea(mesh, g);
      double value = 0.0;
      if (Af != 0 && Ag != 0) {
        float c = 0.0F;
        for (std::size_t axis = 0; axis < 3; ++axis) {
          const float product = mesh.faceNormals[3 * static_cast<std::size_t>(f) + axis] *
                                mesh.faceNormals[3 * static_cast<std::size_t>(g) + axis];
          c = axis == 0 ? product : c + product;
        }
        const Vec3 e = mesh.position(corners[(j + 1) % 3]) - mesh.position(corners[j]);
        value = length(e) * std::acos(clamp(static_cast<double>(c))) / (Af + Ag);
        const Vec3 d = faceCentroid(mesh, f) - faceCentroid(mesh, g);
        double u1 = 1;
        double u2 = 1;
        if (length(d) != 0) {
          u1 = clamp(dot(mesh.faceNormal(f), d) / length(d));
          u2 = clamp(-dot(mesh.faceNormal(g), d) / length(d));
        }
        if (std::acos(u1) + std::acos(u2) < 3.14159265) value = -value;
      }
      values[entry] = value;
      for (std::size_t b = 0; b < 3; ++b) {
        const std::size_t back = 3 * static_cast<std::size_t>(g) + b;
        if (mesh.faceAdjacency[back] != f) continue;
        values[back] = value;
        break;
      }
    }
  }
  return values;
}

TEST(EdgeCurvature, EqualsTheDefinitionBitForBitOnEveryMesh) {
  for (NamedMesh& each : test::everyMesh()) {
    SCOPED_TRACE(each.name);
    computeEdgeCurvatures(each.mesh);
    const std::vector<double> expected = plainEdgeCurvatures(each.mesh);
    ASSERT_EQ(each.mesh.edgeCurvatures.size(), expected.size());
    for (std::size_t n = 0; n < expected.size(); ++n) {
      EXPECT_TRUE(sameBits(each.mesh.edgeCurvatures[n], expected[n]))
          << n << ": " << each.mesh.edgeCurvatures[n] << " and " << expected[n];
    }
  }
}

TEST(EdgeCurvature, IsZeroOnAFlatMesh) {
  TriangleMesh mesh = test::grid(5, 4);
  computeEdgeCurvatures(mesh);
  EXPECT_EQ(mesh.edgeCurvatures.size(), 3U * 40U);
  EXPECT_THAT(mesh.edgeCurvatures, Each(Eq(0.0)));
}

TEST(EdgeCurvature, OfATiltedPlaneIsTheRoundingOfItsNormals) {
  // Three products and two sums of floats near 1 add half a unit of the last place each.
  const double angle = std::acos(1.0 - test::cosineRounding - 5.0 * 5.96e-8);
  double largest = 0.0;
  for (NamedMesh& each : test::tiltedPlanes()) {
    SCOPED_TRACE(each.name);
    TriangleMesh& mesh = each.mesh;
    computeEdgeCurvatures(mesh);
    // All faces are halves of equal squares; no edge is longer than their diagonal.
    const double side = length(mesh.position(1) - mesh.position(0));
    const double bound = std::sqrt(2.0) * side * angle / (side * side) * 1.001;
    for (const double value : mesh.edgeCurvatures) {
      EXPECT_LE(std::abs(value), bound);
      largest = std::max(largest, std::abs(value) * side);
    }
    for (std::size_t entry = 0; entry < mesh.edgeCurvatures.size(); ++entry) {
      if (mesh.faceAdjacency[entry] >= 0) continue;
      EXPECT_EQ(mesh.edgeCurvatures[entry], 0.0) << "at the border";
    }
  }
  EXPECT_GT(largest, 1e-4) << "rounding shows on some plane";
}

TEST(EdgeCurvature, IsFiniteWherePositionsAreFinite) {
  for (NamedMesh& each : test::everyMesh()) {
    if (each.name == "not a number" || each.name == "infinite") continue;
    SCOPED_TRACE(each.name);
    const std::vector<int> faces = each.mesh.faces;
    computeEdgeCurvatures(each.mesh);
    EXPECT_EQ(each.mesh.faces, faces);
    EXPECT_EQ(static_cast<int>(each.mesh.edgeCurvatures.size()), 3 * each.mesh.faceCount);
    for (const double value : each.mesh.edgeCurvatures) EXPECT_TRUE(std::isfinite(value));
  }
}

TEST(EdgeCurvature, IsNegativeAtTheEdgesOfACubeAndZeroAcrossItsDiagonals) {
  TriangleMesh mesh = test::cube();
  computeEdgeCurvatures(mesh);
  // Edge length 2, right angle, both faces half a square of area 4.
  const double edge = -std::numbers::pi / 2.0 * 2.0 / (2.0 + 2.0);
  int edges = 0;
  for (int f = 0; f < mesh.faceCount; ++f) {
    for (std::size_t j = 0; j < 3; ++j) {
      const std::size_t entry = 3 * static_cast<std::size_t>(f) + j;
      const auto c = mesh.corners(f);
      const bool diagonal = length(mesh.position(c[(j + 1) % 3]) - mesh.position(c[j])) > 2.5;
      EXPECT_NEAR(mesh.edgeCurvatures[entry], diagonal ? 0.0 : edge, 1e-15);
      if (!diagonal) ++edges;
    }
  }
  EXPECT_EQ(edges, 24);  // twelve edges, each seen from both faces
}

/// Two unit right triangles that meet at the x axis; the second is folded up from the plane.
TriangleMesh folded(double degrees) {
  const double angle = degrees * std::numbers::pi / 180.0;
  return test::makeMesh(
      {{0, 0, 0},
       {1, 0, 0},
       {0, -1, 0},
       {0, static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))}},
      {{0, 2, 1}, {0, 1, 3}});
}

TEST(EdgeCurvature, IsPositiveAtAFoldInwardsAndNegativeOutwards) {
  for (const double degrees : {5.0, 45.0, 90.0, 170.0}) {
    const double value = degrees * std::numbers::pi / 180.0;  // length 1, two areas of a half
    TriangleMesh inward = folded(degrees);
    computeEdgeCurvatures(inward);
    TriangleMesh outward = folded(-degrees);
    computeEdgeCurvatures(outward);
    // The cosine is a float: an error of 1e-7 in it is 1e-6 in a small angle.
    EXPECT_NEAR(inward.edgeCurvatures[2], value, 2e-6);
    EXPECT_NEAR(outward.edgeCurvatures[2], -value, 2e-6);
  }
}

TEST(EdgeCurvature, IsTheSameFromBothFacesAndZeroAtTheBorder) {
  TriangleMesh mesh = test::bumpyGrid(9, 7);
  computeEdgeCurvatures(mesh);
  for (int f = 0; f < mesh.faceCount; ++f) {
    for (std::size_t j = 0; j < 3; ++j) {
      const std::size_t entry = 3 * static_cast<std::size_t>(f) + j;
      const int g = mesh.faceAdjacency[entry];
      if (g < 0) {
        EXPECT_EQ(mesh.edgeCurvatures[entry], 0.0);
        continue;
      }
      const auto* row = mesh.faceAdjacency.data() + 3 * static_cast<std::size_t>(g);
      const auto back = static_cast<std::size_t>(std::find(row, row + 3, f) - row);
      ASSERT_LT(back, 3U);
      EXPECT_EQ(mesh.edgeCurvatures[3 * static_cast<std::size_t>(g) + back],
                mesh.edgeCurvatures[entry]);
    }
  }
}

TEST(EdgeCurvature, IsZeroAtFacesWithoutArea) {
  TriangleMesh mesh = test::degenerateFace();
  computeEdgeCurvatures(mesh);
  EXPECT_THAT(mesh.edgeCurvatures, Each(Eq(0.0)));
}

TEST(EdgeCurvature, ChangesItsSignWhenTheFacesAreTurnedOver) {
  TriangleMesh mesh = test::bumpyGrid(9, 7);
  computeEdgeCurvatures(mesh);
  const std::vector<double> before = mesh.edgeCurvatures;
  for (float& n : mesh.faceNormals) n = -n;
  computeEdgeCurvatures(mesh);
  for (std::size_t n = 0; n < before.size(); ++n) EXPECT_EQ(mesh.edgeCurvatures[n], -before[n]);
}

TEST(EdgeCurvature, HalvesExactlyWhenTheMeshIsDoubled) {
  TriangleMesh mesh = test::bumpyGrid(9, 7);
  TriangleMesh doubled = mesh;
  for (float& x : doubled.vertices) x *= 2.0F;
  computeEdgeCurvatures(mesh);
  computeEdgeCurvatures(doubled);
  for (std::size_t n = 0; n < mesh.edgeCurvatures.size(); ++n) {
    EXPECT_EQ(2.0 * doubled.edgeCurvatures[n], mesh.edgeCurvatures[n]);
  }
}

TEST(EdgeCurvature, ComputesFaceNormalsOnlyWhenThereAreNone) {
  TriangleMesh mesh = test::cube();
  const std::vector<float> normals = mesh.faceNormals;
  mesh.faceNormals.clear();
  computeEdgeCurvatures(mesh);
  EXPECT_EQ(mesh.faceNormals, normals);
  mesh.faceNormals.assign(normals.size(), 0.0F);
  computeEdgeCurvatures(mesh);
  EXPECT_THAT(mesh.faceNormals, Each(Eq(0.0F)));
}

}  // namespace
}  // namespace gravlin
