#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "ImportTesting.h"
#include "mesh/io/ObjReader.h"

namespace gravlin {
namespace {

using test::refusal;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

const std::string fourVertices = "v 0 0 0\nv 2 0 0\nv 2 2 0.5\nv 0 2 1\n";

TEST(ObjReader, VerticesAndFacesKeepTheirOrder) {
  const ImportedMesh mesh = importObj("# a square\n" + fourVertices + "f 1 2 3\nf 1 3 4\n");
  EXPECT_THAT(mesh.positions, ElementsAre(0, 0, 0, 2, 0, 0, 2, 2, 0.5, 0, 2, 1));
  EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2, 0, 2, 3));
  EXPECT_EQ(mesh.warnings, ImportWarnings());
}

TEST(ObjReader, ACornerIsTheNumberBeforeTheFirstSlash) {
  for (const char* face :
       {"f 1 2 3", "f 1/9 2/8 3/7", "f 1//9 2//8 3//7", "f 1/9/8 2/7/6 3/5/4", "f -4 -3 -2",
        "f -4/-1/-2 -3//-1 -2/1", "f +1 2 3", "f\t1  2\t3 ", "  f 1 2 3 # a face", "f 1 2 3\r"}) {
    const ImportedMesh mesh = importObj(fourVertices + face + "\n");
    EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2)) << face;
  }
}

/// Negative numbers count back from the last vertex before the face, not from that of the file.
TEST(ObjReader, NegativeNumbersCountBackFromTheFace) {
  const ImportedMesh mesh =
      importObj("v 0 0 0\nv 1 0 0\nv 0 1 0\nf -3 -2 -1\nv 0 0 1\nf -3 -2 -1\n");
  EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2, 1, 2, 3));
}

TEST(ObjReader, FacesMayNameVerticesFurtherDown) {
  const ImportedMesh mesh = importObj("f 1 2 3\n" + fourVertices);
  EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2));
  EXPECT_EQ(mesh.warnings.unusableFaces, 0);
}

TEST(ObjReader, PolygonsBecomeFansAboutTheirFirstCorner) {
  const ImportedMesh mesh =
      importObj(fourVertices + "v 5 5 5\nf 1 2 3 4\nf 5//1 4//1 3//1 2//1 1//1\nf 1 2 3\n");
  EXPECT_THAT(mesh.faces, ElementsAreArray({0, 1, 2, 0, 2, 3, 4, 3, 2, 4, 2, 1, 4, 1, 0, 0, 1, 2}));
  EXPECT_EQ(mesh.warnings.polygons, 2);
}

TEST(ObjReader, FacesThatCannotBeUsedKeepTheirPlaceAndAreCounted) {
  const ImportedMesh mesh = importObj(fourVertices +
                                      "f 1 2 5\nf 0 1 2\nf 1 2 3\nf -5 -1 -2\nf 1 2 3 9\nf 1 2\nf "
                                      "1\nf \nf 1 2 99999999999999999999\n");
  EXPECT_EQ(mesh.faceCount(), 9);
  EXPECT_EQ(mesh.warnings.unusableFaces, 5);
  EXPECT_EQ(mesh.warnings.incompleteFaces, 3);
  EXPECT_EQ(mesh.warnings.polygons, 0);
  EXPECT_THAT(std::vector<int>(mesh.faces.begin() + 6, mesh.faces.begin() + 9),
              ElementsAre(0, 1, 2));
  EXPECT_EQ(test::brokenPromise(mesh), "");
}

TEST(ObjReader, ABackslashJoinsTheNextLine) {
  for (const std::string end : {"\n", "\r\n"}) {
    const ImportedMesh mesh = importObj("v 0 \\" + end + "0 0" + end + "v 2 0 0\nv 2 2 0\nf 1 \\" +
                                        end + " 2 \\" + end + "3" + end + "f 3 2 1" + end);
    EXPECT_THAT(mesh.positions, ElementsAre(0, 0, 0, 2, 0, 0, 2, 2, 0));
    EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2, 2, 1, 0));
  }
}

TEST(ObjReader, ACommentIsNotJoinedToTheNextLine) {
  const ImportedMesh mesh = importObj("# made in C:\\meshes\\\nv 1 2 3\n");
  EXPECT_THAT(mesh.positions, ElementsAre(1, 2, 3));
}

TEST(ObjReader, WhatIsNotAVertexOrAFaceIsNotRead) {
  const ImportedMesh mesh = importObj(
      "mtllib a.mtl\no thing\nvn 0 0 1\nvt 0 x\nvp 1\nv 1 2 3 0.5\nv 4 5 6 1 0 0\n"
      "s off\ng a b\nusemtl red\nl 1 2\np 1\nfo 1 2 3\nvertex\nfx");
  EXPECT_THAT(mesh.positions, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(ObjReader, MessagesNameTheLine) {
  struct Case {
    std::string text;
    std::string reason;
  };
  const std::vector<Case> cases = {
      {"v 0 0 0\nv 1 0\nv 0 0 1\n", "line 2: a vertex needs three numbers"},
      {"v 0 0 0\nv\n", "line 2: a vertex needs three numbers"},
      {"v 0 0 0\nv 1 a 0\n", "line 2: \"a\" is no number"},
      {"v 0 0 0\nv 1 0 # 0\n", "line 2: a vertex needs three numbers"},
      {"v 0 0 0\n\nf 1 x 1\n", "line 3: \"x\" is no number of a vertex"},
      {"v 0 0 0\nf 1.5 1 1\n", "line 2: \"1.5\" is no number of a vertex"},
      {"v 0 0 0\nf 1/a 1 1\n", "line 2: \"1/a\" is no number of a vertex"},
      {"v 0 0 0\nf /1 1 1\n", "line 2: \"/1\" is no number of a vertex"},
      {"v 0 \\\n 0 \\\n\nv 1 0 0\n", "line 1: a vertex needs three numbers"},
      {"v 0,5 0 0\n", "line 1: \"0,5\" is no number"},
      {std::string("v 0 0 \0 1\n", 10), "line 1: \"\\x00\" is no number"},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(refusal(importObj, each.text), each.reason) << each.text;
  }
}

/// A file of lines has no end that could be missing, but what is cut inside a vertex shows.
TEST(ObjReader, AFileCutAnywhereIsRefusedOrAMesh) {
  const std::string text = fourVertices + "f 1/1 2/2 3/3 \\\n4/4\nf -1//-1 -2//-2 -3//-3\n";
  test::cutEverywhere(importObj, text, 0);
  EXPECT_NE(refusal(importObj, text.substr(0, 12)), "");
}

TEST(ObjReader, TheFirstStatementTellsTheFormat) {
  for (const char* text : {"v 0 0 0", "# comment\n\n  mtllib a.mtl\n", "g\n", "o x\nv 1 2 3\n"}) {
    EXPECT_TRUE(looksLikeObj(text)) << text;
  }
  for (const char* text :
       {"", "# only a comment", "ply\n", "3 1 0 0 0", "OFF\n", "solid x", "V 1"}) {
    EXPECT_FALSE(looksLikeObj(text)) << text;
  }
}

}  // namespace
}  // namespace gravlin
