#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <stdexcept>

#include "remesh/FaceSplit.h"
#include "remesh/LinearSubdivision.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::SizeIs;

/// Faces of random corners, valid or not: every way in which faces may hang together.
TriangleMesh randomSoup(unsigned seed, int vertexCount, int faceCount) {
  std::minstd_rand random(seed);
  std::vector<std::array<float, 3>> points;
  for (int i = 0; i < vertexCount; ++i) {
    const auto coordinate = [&] { return static_cast<float>(random() % 100); };
    points.push_back({coordinate(), coordinate(), coordinate()});
  }
  std::vector<std::array<int, 3>> faces;
  for (int f = 0; f < faceCount; ++f) {
    const auto corner = [&] { return static_cast<int>(random() % (vertexCount + 1U)); };
    faces.push_back({corner(), corner(), corner()});
  }
  return test::makeMesh(points, faces);
}

std::vector<test::NamedMesh> everyMesh() {
  std::vector<test::NamedMesh> all = test::closedMeshes();
  for (auto& mesh : test::openMeshes()) all.push_back(std::move(mesh));
  for (auto& mesh : test::hostileMeshes()) all.push_back(std::move(mesh));
  for (unsigned seed = 1; seed <= 300; ++seed) {
    const int vertexCount = 4 + static_cast<int>(seed % 5);
    const int faceCount = 2 + static_cast<int>(seed % 9);
    all.push_back({"soup " + std::to_string(seed), randomSoup(seed, vertexCount, faceCount)});
  }
  return all;
}

std::size_t validSides(const TriangleMesh& mesh) {
  return 3 * toIndex(mesh.countValidFaces());
}

// --- Numbering, by hand ---

TEST(FaceSplit, NumbersEdgePointsFaceByFaceASharedEdgeAtItsSecondFace) {
  //  3 --8-- 2     The diagonal belongs to both faces and is numbered from face 1, as its first
  //  |  1  / |     side, after the two sides of face 0 that have no other face.
  //  8   6   5
  //  | /  0  |
  //  0 --4-- 1
  const TriangleMesh mesh = linearSubdivision(test::twoTriangles());
  EXPECT_EQ(mesh.vertexCount, 9);
  EXPECT_THAT(mesh.faces, ElementsAre(0, 4, 6, 1, 5, 4, 2, 6, 5, 4, 5, 6,    // face 0
                                      0, 6, 8, 2, 7, 6, 3, 8, 7, 6, 7, 8));  // face 1
}

TEST(FaceSplit, NumbersTheEdgesOfATetrahedronAsItsFacesMeet) {
  // Faces 0 2 1, 0 1 3, 0 3 2, 1 2 3. Face 0 has only later neighbours, so it numbers nothing;
  // face 1 numbers side 0 (with face 0), face 2 sides 0 (with 1) and 2 (with 0), face 3 the rest.
  const TriangleMesh mesh = linearSubdivision(test::tetrahedron());
  EXPECT_EQ(mesh.vertexCount, 10);
  const auto corners = [&](int f) { return mesh.corners(f); };
  EXPECT_THAT(corners(3), ElementsAre(6, 7, 4)) << "the middle of face 0";
  EXPECT_THAT(corners(7), ElementsAre(4, 9, 5)) << "the middle of face 1";
  EXPECT_THAT(corners(11), ElementsAre(5, 8, 6)) << "the middle of face 2";
  EXPECT_THAT(corners(15), ElementsAre(7, 8, 9)) << "the middle of face 3";
}

TEST(FaceSplit, GivesAnEdgePointToEachFaceOfANonManifoldEdge) {
  const TriangleMesh old = test::threeFacesOnAnEdge();
  const TriangleMesh mesh = linearSubdivision(old);
  EXPECT_THAT(old.faceAdjacency, Each(-1));
  EXPECT_EQ(mesh.vertexCount, 5 + 9);
  EXPECT_EQ(mesh.faceCount, 12);
}

TEST(FaceSplit, TellsTwoEdgesOfTheSameTwoFacesApartByTheirEnds) {
  const TriangleMesh old =
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 1}});
  ASSERT_THAT(old.faceAdjacency, ElementsAre(1, 1, 1, 0, 0, 0));
  const TriangleMesh mesh = linearSubdivision(old);
  ASSERT_EQ(mesh.vertexCount, 6);
  EXPECT_EQ(mesh.position(3), (Vec3{0, 0.5, 0})) << "side 0 of face 1, from 0 to 2";
  EXPECT_EQ(mesh.position(4), (Vec3{0.5, 0.5, 0}));
  EXPECT_EQ(mesh.position(5), (Vec3{0.5, 0, 0}));
  EXPECT_THAT(mesh.corners(3), ElementsAre(5, 4, 3));
  EXPECT_THAT(mesh.corners(7), ElementsAre(3, 4, 5));
}

TEST(FaceSplit, MakesFourInvalidFacesOfAnInvalidOneAndNoPoints) {
  const TriangleMesh mesh =
      linearSubdivision(test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 9}, {0, 1, 2}}));
  EXPECT_EQ(mesh.vertexCount, 6);
  EXPECT_EQ(mesh.faceCount, 8);
  EXPECT_THAT(std::vector(mesh.faces.begin(), mesh.faces.begin() + 12), Each(-1));
  EXPECT_EQ(mesh.countValidFaces(), 4);
}

// --- Laws of the split ---

TEST(FaceSplit, HasOnePointMoreForEveryEdgeAndFourTimesTheFaces) {
  for (const auto& [name, old] : everyMesh()) {
    SCOPED_TRACE(name);
    const SplitCounts counts = splitCounts(old);
    const TriangleMesh mesh = linearSubdivision(old);
    EXPECT_EQ(mesh.vertexCount, counts.vertices);
    EXPECT_EQ(mesh.faceCount, 4 * old.faceCount);
    EXPECT_EQ(mesh.countValidFaces(), 4 * old.countValidFaces());
    EXPECT_LE(std::int64_t(mesh.vertexNeighbours.items.size()), counts.ringEntries);
    for (int f = 0; f < mesh.faceCount; ++f) {
      for (const int corner : mesh.corners(f)) EXPECT_LT(corner, mesh.vertexCount);
    }
  }
}

TEST(FaceSplit, OfAClosedMeshHasThreeEdgesForTwoFacesAndKeepsTheEulerCharacteristic) {
  for (const auto& [name, old] : test::closedMeshes()) {
    const TriangleMesh mesh = linearSubdivision(old);
    EXPECT_EQ(mesh.vertexCount, old.vertexCount + 3 * old.faceCount / 2) << name;
    EXPECT_EQ(test::eulerCharacteristic(mesh), test::eulerCharacteristic(old)) << name;
    EXPECT_THAT(mesh.vertexKind, Each(InteriorVertex)) << name;
  }
  for (const auto& [name, old] : test::openMeshes()) {
    const TriangleMesh mesh = linearSubdivision(old);
    EXPECT_EQ(test::eulerCharacteristic(mesh), test::eulerCharacteristic(old)) << name;
  }
}

TEST(FaceSplit, WritesTheTopologyThatBuildingItAnewGives) {
  for (const auto& [name, old] : everyMesh()) {
    SCOPED_TRACE(name);
    const TriangleMesh mesh = linearSubdivision(old);
    TriangleMesh anew = mesh;
    anew.buildAdjacency();
    anew.buildFaceAdjacency();
    EXPECT_EQ(mesh.faces, anew.faces);
    EXPECT_EQ(mesh.vertexFaces.offsets, anew.vertexFaces.offsets);
    EXPECT_EQ(mesh.vertexFaces.items, anew.vertexFaces.items);
    EXPECT_EQ(mesh.vertexNeighbours.offsets, anew.vertexNeighbours.offsets);
    EXPECT_EQ(mesh.vertexNeighbours.items, anew.vertexNeighbours.items);
    EXPECT_EQ(mesh.vertexKind, anew.vertexKind);
    EXPECT_EQ(mesh.faceAdjacency, anew.faceAdjacency);
    // The second refinement starts from a topology that was written, not built.
    EXPECT_EQ(linearSubdivision(mesh).faces, linearSubdivision(anew).faces);
    EXPECT_THAT(mesh.vertexFaces.items, SizeIs(validSides(mesh)));
  }
}

TEST(FaceSplit, BringsNormalsAlongAndDropsEverythingThatBelongedToOldVertices) {
  TriangleMesh old = test::icosphere(1);
  old.ridgeMarks.assign(toIndex(old.vertexCount), 1);
  old.maxCurvature.assign(toIndex(old.vertexCount), 1.0);
  old.cornerNeighbourFaces = {{0, 0}, {}};
  old.pickedFace = 3;
  old.boxMax = {1, 2, 3};
  old.extentTolerance = 0.25;
  TriangleMesh mesh = linearSubdivision(old);
  EXPECT_TRUE(mesh.ridgeMarks.empty());
  EXPECT_TRUE(mesh.maxCurvature.empty());
  EXPECT_FALSE(mesh.cornerNeighbourFaces.built());
  EXPECT_FALSE(mesh.pickedFace.has_value());
  EXPECT_THAT(mesh.boxMax, ElementsAre(1, 2, 3));
  EXPECT_EQ(mesh.boxMin, old.boxMin);
  EXPECT_EQ(mesh.extentTolerance, 0.25);
  const std::vector<float> faceNormals = mesh.faceNormals;
  const std::vector<float> vertexNormals = mesh.vertexNormals;
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  EXPECT_EQ(mesh.faceNormals, faceNormals);
  EXPECT_EQ(mesh.vertexNormals, vertexNormals);
}

// --- Counts that no int could index ---

TEST(FaceSplit, RefusesCountsPastTheRangeOfAnInt) {
  constexpr std::int64_t most = std::numeric_limits<int>::max();
  const SplitCounts fits = {most / 3, most / 3, most};
  EXPECT_NO_THROW(requireIndexable(fits));
  EXPECT_THROW(requireIndexable({fits.vertices + 1, fits.faces, most}), std::length_error);
  EXPECT_THROW(requireIndexable({fits.vertices, fits.faces + 1, most}), std::length_error);
  EXPECT_THROW(requireIndexable({fits.vertices, fits.faces, most + 1}), std::length_error);
}

}  // namespace
}  // namespace gravlin
