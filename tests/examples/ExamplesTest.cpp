#include <algorithm>
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <numbers>
#include <string>

#include "generator/Gear.h"
#include "generator/Gourd.h"
#include "generator/Relief.h"
#include "support/Meshes.h"

namespace gravlin::test {
namespace {

constexpr double degree = std::numbers::pi / 180.0;

TriangleMesh meshOf(const examples::Shape& shape) {
  std::vector<std::array<float, 3>> vertices(shape.points.size());
  for (std::size_t i = 0; i < vertices.size(); ++i) storeVec3(vertices[i].data(), shape.points[i]);
  return makeMesh(vertices, shape.triangles);
}

std::string bytesOf(const std::string& name) {
  std::ifstream file(std::string(GRAVLIN_EXAMPLES "/") + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

double enclosedVolume(const TriangleMesh& mesh) {
  double volume = 0.0;
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    volume += dot(mesh.position(c[0]), cross(mesh.position(c[1]), mesh.position(c[2]))) / 6.0;
  }
  return volume;
}

double smallestAngle(const TriangleMesh& mesh) {
  double smallest = std::numbers::pi;
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    for (std::size_t j = 0; j < 3; ++j) {
      const Vec3 a = mesh.position(c[(j + 1) % 3]) - mesh.position(c[j]);
      const Vec3 b = mesh.position(c[(j + 2) % 3]) - mesh.position(c[j]);
      smallest = std::min(smallest, std::atan2(length(cross(a, b)), dot(a, b)));
    }
  }
  return smallest;
}

/// An edge between two faces: its middle, and the angle between the normals of its faces, positive
/// where the surface is convex.
struct Bend {
  Vec3 middle;
  double angle;
};

std::vector<Bend> bendsOf(const TriangleMesh& mesh) {
  std::vector<Bend> bends;
  for (int f = 0; f < mesh.faceCount; ++f) {
    for (std::size_t j = 0; j < 3; ++j) {
      const int other = mesh.faceAdjacency[3 * static_cast<std::size_t>(f) + j];
      if (other <= f) continue;
      const Vec3 from = mesh.position(mesh.corners(f)[j]);
      const Vec3 to = mesh.position(mesh.corners(f)[(j + 1) % 3]);
      const Vec3 turn = cross(mesh.faceNormal(f), mesh.faceNormal(other));
      const double size = std::atan2(length(turn), dot(mesh.faceNormal(f), mesh.faceNormal(other)));
      bends.push_back({0.5 * (from + to), std::copysign(size, dot(turn, to - from))});
    }
  }
  return bends;
}

bool allKindsAre(const TriangleMesh& mesh, VertexKind kind) {
  return std::all_of(mesh.vertexKind.begin(), mesh.vertexKind.end(),
                     [kind](int k) { return k == kind; });
}

TEST(Examples, TheGeneratorMakesTheBundledFilesByteForByte) {
  EXPECT_EQ(bytesOf("gear.ply2"), ply2Text(examples::gear()));
  EXPECT_EQ(bytesOf("gourd.ply2"), ply2Text(examples::gourd()));
  EXPECT_EQ(bytesOf("relief.ply2"), ply2Text(examples::relief()));
}

TEST(Examples, TextRoundsToThreeDigitsAndKnowsNoNegativeZero) {
  examples::Shape shape;
  shape.add({-0.0004, 1.0006, -2.5});
  shape.triangles.push_back({0, 1, 2});
  EXPECT_EQ(ply2Text(shape), "1\n1\n0.000 1.001 -2.500\n3 0 1 2\n");
}

TEST(Examples, GearIsClosedOutwardAndHasAHandlePerSlotAndOneForTheBore) {
  const TriangleMesh mesh = meshOf(examples::gear());
  EXPECT_TRUE(allKindsAre(mesh, InteriorVertex));
  EXPECT_EQ(eulerCharacteristic(mesh), 2 - 2 * (examples::gearSlotCount + 1));
  EXPECT_GT(enclosedVolume(mesh), 0.0);
}

TEST(Examples, GourdIsAClosedOutwardSphere) {
  const TriangleMesh mesh = meshOf(examples::gourd());
  EXPECT_TRUE(allKindsAre(mesh, InteriorVertex));
  EXPECT_EQ(eulerCharacteristic(mesh), 2);
  EXPECT_GT(enclosedVolume(mesh), 0.0);
}

TEST(Examples, ReliefIsADiscThatFacesUp) {
  const TriangleMesh mesh = meshOf(examples::relief());
  EXPECT_EQ(eulerCharacteristic(mesh), 1);
  EXPECT_TRUE(std::none_of(mesh.vertexKind.begin(), mesh.vertexKind.end(),
                           [](int kind) { return kind == NonManifoldVertex; }));
  for (int f = 0; f < mesh.faceCount; ++f) ASSERT_GT(mesh.faceNormal(f).z, 0.0) << "face " << f;
}

TEST(Examples, NoTriangleIsASliver) {
  // The narrowest, between the gear's keyway and its hub, keeps about 4 degrees.
  EXPECT_GT(smallestAngle(meshOf(examples::gear())), 3.0 * degree);
  EXPECT_GT(smallestAngle(meshOf(examples::gourd())), 25.0 * degree);
  EXPECT_GT(smallestAngle(meshOf(examples::relief())), 10.0 * degree);
}

TEST(Examples, GearHasSharpConvexAndConcaveEdgesButNoneAtTheFootOfTheHub) {
  int convex = 0;
  int concave = 0;
  for (const Bend& bend : bendsOf(meshOf(examples::gear()))) {
    const double radius = std::hypot(bend.middle.x, bend.middle.y);
    const bool onFillet = radius > 9.02 && radius < 11.5 && std::abs(bend.middle.z) < 4.5;
    // The fillet turns by a right angle in four steps.
    if (onFillet) {
      EXPECT_LT(std::abs(bend.angle), 23.0 * degree);
    }
    if (bend.angle > 60.0 * degree) ++convex;
    if (bend.angle < -60.0 * degree) ++concave;
  }
  // At least the two rims of the teeth are convex, at least the two corners of rim and web concave,
  // each of them a loop of 96 edges.
  EXPECT_GE(convex, 2 * 96);
  EXPECT_GE(concave, 2 * 96);
}

TEST(Examples, GourdIsSmoothWithCrestsAndHollows) {
  double sharpest = 0.0;
  double hollowest = 0.0;
  for (const Bend& bend : bendsOf(meshOf(examples::gourd()))) {
    sharpest = std::max(sharpest, bend.angle);
    hollowest = std::min(hollowest, bend.angle);
  }
  EXPECT_GT(sharpest, 10.0 * degree);
  EXPECT_LT(sharpest, 40.0 * degree);
  EXPECT_LT(hollowest, -5.0 * degree);
}

TEST(Examples, ReliefIsRoughByTheSameAmountWhereItWouldBeFlat) {
  const examples::Shape shape = examples::relief();
  double sum = 0.0;
  double squares = 0.0;
  int count = 0;
  for (const Vec3& p : shape.points) {
    // The strip along one side, beyond every feature.
    if (p.x < 38.0) continue;
    sum += p.z;
    squares += p.z * p.z;
    ++count;
  }
  ASSERT_GT(count, 50);
  const double mean = sum / count;
  const double deviation = std::sqrt(squares / count - mean * mean);
  // The estimate from n normal numbers of deviation 0.2 mm itself deviates by 0.2 / sqrt(2 n), here
  // at most 0.02; three times that on either side.
  EXPECT_NEAR(deviation, 0.2, 0.06);
  EXPECT_NEAR(mean, 0.0, 0.09);
}

}  // namespace
}  // namespace gravlin::test
