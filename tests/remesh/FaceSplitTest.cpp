#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <stdexcept>

#include "mesh/MeshMeasures.h"
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
    const auto corner = [&] {
      return static_cast<int>(random() % (static_cast<unsigned>(vertexCount) + 1U));
    };
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
    const SplitCounts counts = splitCounts(old, markEveryFace(old));
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

// --- Some faces only ---

TriangleMesh splitAtMidpoints(const TriangleMesh& old, const std::vector<int>& marks) {
  return splitMarkedFaces(
      old, marks, [&](int i) { return old.position(i); },
      [&](const SplitEdge& edge) { return midpoint(old, edge); });
}

std::vector<int> marksOf(const TriangleMesh& mesh, const std::vector<int>& marked) {
  std::vector<int> marks(toIndex(mesh.faceCount), 0);
  for (const int f : marked) marks[toIndex(f)] = 1;
  return marks;
}

std::vector<int> spread(const TriangleMesh& mesh, std::vector<int> marks) {
  spreadMarks(mesh, marks);
  return marks;
}

/// About one face in `rarity`.
std::vector<int> randomMarks(const TriangleMesh& mesh, unsigned seed, unsigned rarity) {
  std::minstd_rand random(seed);
  std::vector<int> marks;
  for (int f = 0; f < mesh.faceCount; ++f) marks.push_back(random() % rarity == 0 ? 1 : 0);
  return marks;
}

/// How many sides of a face have a marked face on the other side.
int markedBeside(const TriangleMesh& mesh, const std::vector<int>& marks, int f) {
  int sides = 0;
  for (std::size_t j = 0; j < 3; ++j) {
    const int g = mesh.faceAdjacency[3 * toIndex(f) + j];
    sides += g >= 0 && marks[toIndex(g)] != 0 ? 1 : 0;
  }
  return sides;
}

/// The marks as their rule reads: looked over again and again until nothing changes.
std::vector<int> spreadSlowly(const TriangleMesh& mesh, std::vector<int> marks) {
  for (bool changed = true; changed;) {
    changed = false;
    for (int f = 0; f < mesh.faceCount; ++f) {
      if (marks[toIndex(f)] != 0 || markedBeside(mesh, marks, f) < 2) continue;
      marks[toIndex(f)] = 1;
      changed = true;
    }
  }
  return marks;
}

TEST(FaceSplit, NumbersThePointsOfAMarkedFaceAndHalvesTheFaceBesideIt) {
  //  3 ----- 2     Nobody but face 0 numbers the diagonal, so it comes third. Face 1 gets half of
  //  |  1  / |     the diagonal in each of its two children.
  //  |   6   5
  //  | /  0  |
  //  0 --4-- 1
  const TriangleMesh old = test::twoTriangles();
  const TriangleMesh mesh = splitAtMidpoints(old, marksOf(old, {0}));
  EXPECT_EQ(mesh.vertexCount, 7);
  EXPECT_EQ(mesh.position(6), (Vec3{0.5, 0.5, 0}));
  EXPECT_THAT(mesh.faces, ElementsAre(0, 4, 6, 1, 5, 4, 2, 6, 5, 4, 5, 6,  // face 0
                                      0, 6, 3, 2, 3, 6));                  // face 1
  // From the other face: sides 0 (the diagonal), 1 and 2 in order.
  const TriangleMesh other = splitAtMidpoints(old, marksOf(old, {1}));
  EXPECT_THAT(other.faces, ElementsAre(2, 4, 1, 0, 1, 4,                      // face 0
                                       0, 4, 6, 2, 5, 4, 3, 6, 5, 4, 5, 6));  // face 1
}

TEST(FaceSplit, HalvesAFaceAtAnyOfItsSides) {
  // Face 1 names its corners from another one each time; its children begin at the ends of the side
  // from 0 to 2, whatever its number.
  for (const std::array<int, 3>& second : {std::array{0, 2, 3}, {3, 0, 2}, {2, 3, 0}}) {
    const TriangleMesh old =
        test::makeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, second});
    const TriangleMesh mesh = splitAtMidpoints(old, marksOf(old, {0}));
    EXPECT_THAT(mesh.corners(4), ElementsAre(0, 6, 3));
    EXPECT_THAT(mesh.corners(5), ElementsAre(2, 3, 6));
  }
}

TEST(FaceSplit, MarksAFaceBetweenTwoMarkedOnes) {
  const TriangleMesh fan = test::hexagonFan();
  EXPECT_THAT(spread(fan, marksOf(fan, {0, 2})), ElementsAre(1, 1, 1, 0, 0, 0));
  EXPECT_THAT(spread(fan, marksOf(fan, {0, 3})), ElementsAre(1, 0, 0, 1, 0, 0));
  EXPECT_THAT(spread(fan, marksOf(fan, {0, 2, 4})), Each(1));
  // Three faces in four, two halves at the ends and the last one as it was.
  EXPECT_EQ(splitAtMidpoints(fan, marksOf(fan, {0, 2})).faceCount, 3 * 4 + 2 * 2 + 1);
}

TEST(FaceSplit, SpreadsMarksFromFaceToFace) {
  // A strip of faces of which each but the last has a marked face below or above: the mark of the
  // first runs along to the one before the last, which has no other side.
  const int columns = 40;
  std::vector<std::array<float, 3>> points;
  std::vector<std::array<int, 3>> faces;
  for (int k = 0; k < columns + 2; ++k) {
    points.push_back({0.5F * static_cast<float>(k), k % 2 == 0 ? 0.0F : 1.0F, 0.0F});
  }
  for (int k = 0; k < columns; ++k) {
    faces.push_back(k % 2 == 0 ? std::array{k, k + 2, k + 1} : std::array{k, k + 1, k + 2});
  }
  for (int k = 0; k + 1 < columns; ++k) {
    const int tip = static_cast<int>(points.size());
    points.push_back({0.5F * static_cast<float>(k + 1), k % 2 == 0 ? -1.0F : 2.0F, 0.0F});
    faces.push_back(k % 2 == 0 ? std::array{k, tip, k + 2} : std::array{k, k + 2, tip});
  }
  const TriangleMesh mesh = test::makeMesh(points, faces);
  std::vector<int> marks(toIndex(columns), 0);
  marks.resize(faces.size(), 1);
  EXPECT_EQ(spread(mesh, marks), [&] {
    std::vector<int> all(faces.size(), 0);
    std::fill(all.begin() + columns, all.end(), 1);
    return all;
  }()) << "each face of the strip has one marked side only";
  marks[0] = 1;
  std::vector<int> wanted(faces.size(), 1);
  wanted[toIndex(columns - 1)] = 0;
  EXPECT_EQ(spread(mesh, marks), wanted);
}

TEST(FaceSplit, CountsTwoSidesOfTheSameMarkedFaceTwice) {
  const TriangleMesh pillow =
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 1}});
  EXPECT_THAT(spread(pillow, {1, 0}), ElementsAre(1, 1));
}

TEST(FaceSplit, SpreadsMarksAsLookingOverAllFacesAgainAndAgainDoes) {
  for (const auto& [name, mesh] : everyMesh()) {
    for (const unsigned rarity : {2U, 3U, 6U}) {
      const std::vector<int> marks = randomMarks(mesh, 11, rarity);
      EXPECT_EQ(spread(mesh, marks), spreadSlowly(mesh, marks)) << name;
    }
  }
}

TEST(FaceSplit, WithoutMarksChangesNothing) {
  for (const auto& [name, old] : everyMesh()) {
    const TriangleMesh mesh = splitAtMidpoints(old, marksOf(old, {}));
    EXPECT_EQ(mesh.faces, old.faces) << name;
    EXPECT_EQ(mesh.vertexKind, old.vertexKind) << name;
    EXPECT_EQ(mesh.faceAdjacency, old.faceAdjacency) << name;
  }
}

TEST(FaceSplit, OfSomeFacesHasFourTwoOrOneChildrenOfEach) {
  for (const auto& [name, old] : everyMesh()) {
    SCOPED_TRACE(name);
    const std::vector<int> marks = spread(old, randomMarks(old, 5, 4));
    const TriangleMesh mesh = splitAtMidpoints(old, marks);
    int faces = 0;
    int valid = 0;
    for (int f = 0; f < old.faceCount; ++f) {
      const int unmarked = markedBeside(old, marks, f) == 0 ? 1 : 2;
      const int children = marks[toIndex(f)] != 0 ? 4 : unmarked;
      faces += children;
      valid += old.validFace(f) ? children : 0;
    }
    EXPECT_EQ(mesh.faceCount, faces);
    EXPECT_EQ(mesh.countValidFaces(), valid);
    EXPECT_EQ(mesh.vertexCount, splitCounts(old, marks).vertices);
    EXPECT_EQ(mesh.vertices.size(), 3 * toIndex(mesh.vertexCount));
    EXPECT_TRUE(std::ranges::all_of(mesh.faces, [&](int c) { return c < mesh.vertexCount; }));
  }
}

TEST(FaceSplit, OfSomeFacesLeavesNoPointInsideASide) {
  // A point in the side of an unsplit face would open a closed mesh there and take its Euler
  // characteristic away.
  const auto expectWhole = [](const TriangleMesh& mesh, const TriangleMesh& old) {
    EXPECT_EQ(test::eulerCharacteristic(mesh), test::eulerCharacteristic(old));
    EXPECT_THAT(mesh.vertexKind, Each(::testing::Lt(int{NonManifoldVertex})));
  };
  for (const unsigned rarity : {2U, 4U, 15U, 60U}) {
    for (const auto& [name, old] : test::closedMeshes()) {
      SCOPED_TRACE(name);
      const TriangleMesh mesh = splitAtMidpoints(old, randomMarks(old, rarity, rarity));
      expectWhole(mesh, old);
      EXPECT_THAT(mesh.vertexKind, Each(InteriorVertex));
      // Midpoints are rounded to single precision.
      EXPECT_NEAR(enclosedVolume(mesh), enclosedVolume(old), 1e-5 * enclosedVolume(old));
    }
    for (const auto& [name, old] : test::openMeshes()) {
      SCOPED_TRACE(name);
      expectWhole(splitAtMidpoints(old, randomMarks(old, rarity, rarity)), old);
    }
  }
}

TEST(FaceSplit, CanRefineTheSameCornerAgainAndAgain) {
  TriangleMesh mesh = test::tetrahedron();
  for (int step = 0; step < 8; ++step) {
    // The children of a marked face begin with the one at its first corner.
    mesh = splitAtMidpoints(mesh, marksOf(mesh, {0}));
    EXPECT_EQ(test::eulerCharacteristic(mesh), 2);
    EXPECT_THAT(mesh.vertexKind, Each(InteriorVertex));
  }
  EXPECT_LT(mesh.faceCount, 200) << "the rest of the mesh stays coarse";
}

TEST(FaceSplit, KeepsAnUnmarkedInvalidFaceAndTheFacesBesideANonManifoldEdge) {
  const TriangleMesh invalid =
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 9}, {0, 1, 2}, {2, 2, 1}});
  EXPECT_THAT(splitAtMidpoints(invalid, {0, 1, 0}).faces,
              ElementsAre(-1, -1, -1, 0, 3, 5, 1, 4, 3, 2, 5, 4, 3, 4, 5, -1, -1, -1));
  EXPECT_EQ(splitAtMidpoints(invalid, {0, 0, 1}).faceCount, 1 + 1 + 4);

  const TriangleMesh three = test::threeFacesOnAnEdge();
  const TriangleMesh mesh = splitAtMidpoints(three, {1, 0, 0});
  EXPECT_EQ(mesh.vertexCount, three.vertexCount + 3);
  EXPECT_EQ(mesh.faceCount, 4 + 1 + 1);
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
