#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "ImportTesting.h"
#include "mesh/io/StlReader.h"

namespace gravlin {
namespace {

using test::bytesOf;
using test::refusal;
using ::testing::ElementsAre;
using ::testing::StartsWith;

/// Nine coordinates a triangle.
using Triangles = std::vector<std::vector<float>>;

const Triangles square = {{0, 0, 0, 2, 0, 0, 2, 2, 0.5F}, {0, 0, 0, 2, 2, 0.5F, 0, 2, 1}};

std::string binary(const Triangles& triangles, std::string header = "made by hand") {
  header.resize(80, '\0');
  std::string text = header + bytesOf(static_cast<std::uint32_t>(triangles.size()), false);
  for (const std::vector<float>& triangle : triangles) {
    text += std::string(12, '\7');  // a normal that is not read
    for (const float coordinate : triangle) text += bytesOf(coordinate, false);
    text += "ab";
  }
  return text;
}

const std::string ascii =
    "solid a square\n"
    "  facet normal 0 0 1\n    outer loop\n      vertex 0 0 0\n      vertex 2 0 0\n"
    "      vertex 2 2 0.5\n    endloop\n  endfacet\n"
    "  facet normal 0 0 1\n    outer loop\n      vertex 0 0 0\n      vertex 2 2 5e-1\n"
    "      vertex 0 2 1\n    endloop\n  endfacet\n"
    "endsolid a square\n";

void expectSquare(const ImportedMesh& mesh) {
  EXPECT_THAT(mesh.positions, ElementsAre(0, 0, 0, 2, 0, 0, 2, 2, 0.5, 0, 2, 1));
  EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2, 0, 2, 3));
  EXPECT_EQ(mesh.warnings, ImportWarnings());
}

TEST(StlReader, EqualCornersAreOneVertexInTheOrderOfTheirFirstAppearance) {
  expectSquare(importStl(binary(square)));
  expectSquare(importStl(ascii));
}

TEST(StlReader, ABinaryFileMayBeginWithSolid) {
  const std::string text = binary(square, "solid made by a program that did not know");
  EXPECT_TRUE(looksLikeStl(text));
  expectSquare(importStl(text));
}

TEST(StlReader, AsciiMayHaveCapitalsCrLfAndOneLine) {
  std::string capitals = ascii;
  for (char& c : capitals) {
    if (c >= 'a' && c <= 'z' && c != 'e') c = static_cast<char>(c - ('a' - 'A'));
  }
  expectSquare(importStl(capitals));
  std::string crLf = ascii;
  for (std::size_t k = crLf.find('\n'); k != std::string::npos; k = crLf.find('\n', k + 2)) {
    crLf.insert(k, "\r");
  }
  expectSquare(importStl(crLf));
  std::string oneLine = ascii;
  for (std::size_t k = oneLine.find('\n') + 1; k < oneLine.size(); ++k) {
    if (oneLine[k] == '\n') oneLine[k] = ' ';
  }
  expectSquare(importStl(oneLine));
}

TEST(StlReader, ZerosOfBothSignsAreOnePlaceAndNothingElseIsNearEnough) {
  const float above = std::nextafter(1.0F, 2.0F);
  const ImportedMesh mesh =
      importStl(binary({{0, 1, 0, 1, 0, 0, 0, 0, 1}, {-0.0F, 1, 0, above, 0, 0, 0, -0.0F, 1}}));
  EXPECT_EQ(mesh.vertexCount(), 4);
  EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2, 0, 3, 2));
}

TEST(StlReader, NumbersThatAreNoneStay) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const ImportedMesh mesh =
      importStl(binary({{nan, 0, 0, 1, 0, 0, 0, 1, 0}, {nan, 0, 0, 0, 1, 0, 1, 0, 0}}));
  EXPECT_EQ(mesh.vertexCount(), 3);
  EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2, 0, 2, 1));
}

TEST(StlReader, SeveralSolidsAndWordsInTheirNamesAreRead) {
  const ImportedMesh mesh = importStl("solid facet vertex\nendsolid\n" + ascii + ascii);
  EXPECT_EQ(mesh.vertexCount(), 4);
  EXPECT_EQ(mesh.faceCount(), 4);
}

TEST(StlReader, AFacetOfOtherThanThreeCornersIsCounted) {
  const ImportedMesh mesh = importStl(
      "solid\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 1 1 0\nvertex 0 1 "
      "0\n"
      "endloop\nendfacet\nfacet normal 0 0 1\nouter loop\nvertex 0 0 "
      "0\nendloop\nendfacet\nendsolid\n");
  EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2, 0, 2, 3, -1, -1, -1));
  EXPECT_EQ(mesh.warnings.polygons, 1);
  EXPECT_EQ(mesh.warnings.incompleteFaces, 1);
}

// --- Damage ---

TEST(StlReader, ABinaryFileCutAnywhereIsRefused) {
  const std::string text = binary(square);
  test::cutEverywhere(importStl, text, text.size());
  EXPECT_EQ(refusal(importStl, text.substr(0, 150)), "byte 150: the file ends in triangle 2 of 2");
  EXPECT_EQ(refusal(importStl, text.substr(0, 70)),
            "byte 70: the file ends before the number of triangles");
  const std::string solid = binary(square, "solid made by a program that did not know");
  EXPECT_EQ(refusal(importStl, solid.substr(0, 150)), "byte 150: the file ends in triangle 2 of 2");
}

/// Between two facets nothing tells but the last word.
TEST(StlReader, AnAsciiFileCutAnywhereIsRefusedOrSaysThatItsLastWordIsMissing) {
  const std::size_t begin = std::string("solid").size();
  for (std::size_t size = begin; size < ascii.find("endsolid") + 8; ++size) {
    const std::string piece = ascii.substr(0, size);
    if (refusal(importStl, piece).empty()) {
      EXPECT_TRUE(importStl(piece).warnings.endMissing) << size;
    }
  }
  EXPECT_EQ(refusal(importStl, ascii.substr(0, ascii.find("2 2 0.5") + 3)),
            "line 6: the file ends in a vertex");
  EXPECT_EQ(refusal(importStl, ascii.substr(0, ascii.find("endfacet"))),
            "line 8: the file ends in a facet");
}

TEST(StlReader, MessagesNameTheLine) {
  EXPECT_EQ(refusal(importStl, "solid\nfacet normal 0 0 1\nouter loop\nvertex 0 x 0\n"),
            "line 4: a vertex needs three numbers");
  EXPECT_EQ(refusal(importStl, "solid\nvertex 0 0 0\n"), "line 2: \"vertex\" does not belong here");
  EXPECT_EQ(refusal(importStl, "solid\nfacet normal 0 0 1\nfacet normal 0 0 1\n"),
            "line 3: \"facet\" does not belong here");
  EXPECT_EQ(refusal(importStl, "solid\nhello\n"), "line 2: \"hello\" does not belong here");
}

TEST(StlReader, ACountThatDoesNotFitIntoTheFileAllocatesNothing) {
  std::string text = binary(square);
  text.replace(80, 4, "\xFF\xFF\xFF\xFF");
  EXPECT_THAT(refusal(importStl, text),
              StartsWith("byte 184: the file ends in triangle 3 of 4294967295"));
}

TEST(StlReader, WhatFollowsTheLastTriangleIsCounted) {
  EXPECT_EQ(importStl(binary(square) + "colours").warnings.bytesBehind, 7);
}

TEST(StlReader, SizeOrTheFirstWordTellTheFormat) {
  EXPECT_TRUE(looksLikeStl(binary({})));
  EXPECT_TRUE(looksLikeStl(ascii));
  EXPECT_TRUE(looksLikeStl("  SOLID\n"));
  for (const std::string text : {"", "solids\n", "v 0 0 0\n", "ply\n"}) {
    EXPECT_FALSE(looksLikeStl(text)) << text;
  }
  EXPECT_FALSE(looksLikeStl(binary(square) + "x"));
}

}  // namespace
}  // namespace gravlin
