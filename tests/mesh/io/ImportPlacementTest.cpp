#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "mesh/io/ImportPlacement.h"
#include "mesh/io/MeshExport.h"
#include "mesh/io/MeshFile.h"
#include "mesh/io/MeshImport.h"
#include "mesh/PositionLoss.h"
#include "support/Meshes.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

using test::TemporaryFolder;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::FloatEq;

ImportedMesh meshOf(const std::vector<double>& positions, const std::vector<int>& faces) {
  ImportedMesh mesh;
  mesh.positions.assign(positions.begin(), positions.end());
  mesh.faces.assign(faces.begin(), faces.end());
  return mesh;
}

/// A square of one metre, half a million metres from the origin.
const std::vector<double> farSquare = {500000.123, 0, 0, 500001.123, 0, 0,
                                       500001.123, 1, 0, 500000.123, 1, 0.5};
const std::vector<int> squareFaces = {0, 1, 2, 0, 2, 3};

TEST(ImportPlacement, TheMiddleOfTheTrueBoxGoesToTheOriginAndItsExtentIsTwenty) {
  const auto mesh = placeInCube(meshOf({0, 0, 0, 2, 0, 0, 2, 2, 0, 0, 2, 1}, squareFaces));
  EXPECT_THAT(mesh->vertices, ElementsAre(-10, -10, -5, 10, -10, -5, 10, 10, -5, -10, 10, 5));
  EXPECT_EQ(mesh->importFrame, (FileFrame{{1, 1, 0.5}, 0.1}));
  EXPECT_THAT(mesh->boxMin, ElementsAre(0, 0, 0));
  EXPECT_THAT(mesh->boxMax, ElementsAre(2, 2, 1));
  EXPECT_EQ(mesh->extentTolerance, 0.1);
  EXPECT_THAT(mesh->faces, ElementsAre(0, 1, 2, 0, 2, 3));
  EXPECT_THAT(mesh->faceAdjacency, ElementsAre(-1, -1, 1, 0, -1, -1));
  EXPECT_EQ(mesh->vertexNormals.size(), 12U);
}

/// Where Open would miss the box: coordinates that only rise, or lie beyond a million.
TEST(ImportPlacement, TheBoxIsFoundWhateverTheOrderAndSizeOfCoordinates) {
  const auto rising = placeInCube(meshOf({1, 1, 1, 2, 2, 2, 3, 3, 3}, {0, 1, 2}));
  EXPECT_THAT(rising->vertices, ElementsAre(-10, -10, -10, 0, 0, 0, 10, 10, 10));
  const auto huge = placeInCube(meshOf({2e6, 0, 0, 4e6, 0, 0, 3e6, 1e6, 0}, {0, 1, 2}));
  EXPECT_THAT(huge->vertices, ElementsAre(-10, -5, 0, 10, -5, 0, 0, 5, 0));
  const auto largest = placeInCube(meshOf({-1.7e308, 0, 0, 1.7e308, 0, 0, 0, 1e308, 0}, {0, 1, 2}));
  EXPECT_THAT(largest->vertices[0], FloatEq(-10));
  EXPECT_THAT(largest->vertices[3], FloatEq(10));
}

TEST(ImportPlacement, CoordinatesThatAreNoNumbersStayWhatTheyAreAndDoNotMoveTheBox) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinity = std::numeric_limits<double>::infinity();
  const auto mesh = placeInCube(meshOf({0, 0, 0, 2, 0, 0, nan, -infinity, 0}, {0, 1, 2}));
  EXPECT_EQ(mesh->vertices[0], -10.0F);
  EXPECT_EQ(mesh->vertices[3], 10.0F);
  EXPECT_TRUE(std::isnan(mesh->vertices[6]));
  EXPECT_EQ(mesh->vertices[7], -std::numeric_limits<float>::infinity());
}

TEST(ImportPlacement, OnePlaceAndNoneAtAllAreMeshes) {
  const auto point = placeInCube(meshOf({5, 6, 7, 5, 6, 7}, {}));
  EXPECT_THAT(point->vertices, Each(0.0F));
  EXPECT_EQ(point->importFrame, (FileFrame{{5, 6, 7}, 1.0}));
  EXPECT_EQ(placeInCube({})->vertexCount, 0);
}

// --- The way back ---

/// The position of a vertex as the frame tells it.
std::array<double, 3> inFile(const TriangleMesh& mesh, int vertex) {
  return mesh.fileFrame().toFile(mesh.vertices.data() + 3 * static_cast<std::size_t>(vertex));
}

TEST(ImportPlacement, CopiesAndCompactionKeepThePlace) {
  const auto mesh = placeInCube(meshOf(farSquare, squareFaces));
  TriangleMesh copy;
  copy.copyGeometryFrom(*mesh);
  EXPECT_EQ(copy.importFrame, mesh->importFrame);
  EXPECT_EQ(mesh->compactCopy().importFrame, mesh->importFrame);
  TriangleMesh bare;
  bare.copyGeometryFrom(*mesh);
  bare.dropDerived();
  EXPECT_EQ(bare.importFrame, mesh->importFrame);
}

TEST(ImportPlacement, SavingWritesPositionsInDoubleAndLeavesTheMeshAsItIs) {
  const auto mesh = placeInCube(meshOf(farSquare, squareFaces));
  const std::vector<float> before = mesh->vertices;
  const TemporaryFolder folder;
  ASSERT_EQ(saveMeshFile(folder.file("far.ply2"), *mesh).error, "");
  EXPECT_EQ(test::contentOf(folder.file("far.ply2")),
            "4\n2\n500000.123000 0.000000 0.000000\n500001.123000 0.000000 0.000000\n"
            "500001.123000 1.000000 0.000000\n500000.123000 1.000000 0.500000\n3 0 1 2\n3 0 2 3\n");
  EXPECT_EQ(mesh->vertices, before);
  EXPECT_EQ(mesh->importFrame->origin[0], 500000.623);
}

/// Half a unit of the sixth decimal at most, and no more though floats are 0.03 apart there.
TEST(ImportPlacement, WhatSavingTakesFromAnImportedMeshIsItsDecimals) {
  const auto mesh = placeInCube(meshOf(farSquare, squareFaces));
  const std::optional<WritingLoss> loss = lossByWriting(*mesh);
  ASSERT_TRUE(loss);
  EXPECT_LE(loss->largest, 0.5e-6);
  EXPECT_NEAR(loss->extent, 1.0, 1e-6);
}

TEST(ImportPlacement, ExportingAndImportingAgainGivesThePositionsBack) {
  const auto mesh = placeInCube(meshOf(farSquare, squareFaces));
  const TemporaryFolder folder;
  for (const char* name : {"a.ply", "a.obj", "a.off"}) {
    const MeshToWrite toWrite(*mesh, mesh->fileFrame(), MeshToWrite::Vertices::All);
    ASSERT_EQ(exportMeshFile(folder.file(name), toWrite, {}).error, "");
    ImportResult read = importMeshFile(folder.file(name));
    ASSERT_NE(read.mesh, nullptr);
    const auto back = placeInCube(std::move(*read.mesh));
    for (std::size_t c = 0; c < mesh->vertices.size(); ++c) {
      // A unit in the last place of what lies between 8 and 16.
      EXPECT_NEAR(back->vertices[c], mesh->vertices[c], 0x1p-20) << name;
    }
    EXPECT_NEAR(inFile(*back, 0)[0], 500000.123, 1e-7) << name;
  }
}

// --- Welding ---

TEST(ImportPlacement, WeldingJoinsEqualVerticesToTheFirstAndKeepsTheOrderOfFaces) {
  ImportedMesh mesh = meshOf({0, 0, 0, 1, 0, 0, 1, 1, 0, -0.0, 0, 0, 1, 1, 0, 0, 1, 0},
                             {0, 1, 2, 3, 4, 5, -1, -1, -1});
  mesh.properties.push_back({"red", {1, 2, 3, 4, 5, 6}});
  EXPECT_EQ(weldVertices(mesh), 2);
  EXPECT_THAT(mesh.positions, ElementsAre(0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0));
  EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2, 0, 2, 3, -1, -1, -1));
  EXPECT_THAT(mesh.properties[0].values, ElementsAre(1, 2, 3, 6));
  EXPECT_EQ(weldVertices(mesh), 0);
}

TEST(ImportPlacement, SidesThatWouldBeJoinedAreCounted) {
  const auto split = placeInCube(
      meshOf({0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0, 1, 1, 0, 0, 1, 0}, {0, 1, 2, 3, 4, 5}));
  EXPECT_EQ(countCoincidingSides(*split), 2);
  const auto joined = placeInCube(meshOf({0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0}, squareFaces));
  EXPECT_EQ(countCoincidingSides(*joined), 0);
  // Three faces on a side that all of them name by the same vertices.
  EXPECT_EQ(countCoincidingSides(test::threeFacesOnAnEdge()), 0);
}

}  // namespace
}  // namespace gravlin
