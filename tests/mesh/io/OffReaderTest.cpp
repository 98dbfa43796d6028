#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ImportTesting.h"
#include "mesh/io/OffReader.h"

namespace gravlin {
namespace {

using test::refusal;
using ::testing::ElementsAre;
using ::testing::StartsWith;

const std::string vertices = "0 0 0\n2 0 0\n2 2 0.5\n0 2 1\n";
const std::string faces = "3 0 1 2\n3 0 2 3\n";

void expectSquare(const std::string& text) {
  const ImportedMesh mesh = importOff(text);
  EXPECT_THAT(mesh.positions, ElementsAre(0, 0, 0, 2, 0, 0, 2, 2, 0.5, 0, 2, 1)) << text;
  EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2, 0, 2, 3)) << text;
  EXPECT_EQ(mesh.warnings, ImportWarnings()) << text;
}

TEST(OffReader, CountsMayStandOnTheFirstLineOrBehindIt) {
  expectSquare("OFF\n4 2 5\n" + vertices + faces);
  expectSquare("OFF 4 2 5\n" + vertices + faces);
  expectSquare("OFF\n4 2\n" + vertices + faces);
  expectSquare("OFF 4 2\n" + vertices + faces);
  expectSquare("OFF\n4\n2\n0\n" + vertices + faces);
}

TEST(OffReader, CommentsAndEmptyLinesMayStandAnywhere) {
  expectSquare(
      "# first\n\nOFF # keyword\n# counts\n4 2 5 # behind\n\n0 0 0 # here\n# there\n2 0 0\n"
      "2 2 0.5\n0 2 1\n3 0 1 2 # and here\n\n3 0 2 3\n# last\n");
}

TEST(OffReader, LinesMayEndWithCrLf) {
  std::string text = "OFF\n4 2 0\n" + vertices + faces;
  for (std::size_t k = text.find('\n'); k != std::string::npos; k = text.find('\n', k + 2)) {
    text.insert(k, "\r");
  }
  expectSquare(text);
}

TEST(OffReader, ColoursAndNormalsAreNotRead) {
  expectSquare("COFF\n4 2 0\n0 0 0 255 0 0 255\n2 0 0 1 1 1 1\n2 2 0.5 0.5 0.5 0.5\n0 2 1 7\n" +
               faces);
  expectSquare("NOFF\n4 2 0\n0 0 0 0 0 1\n2 0 0 0 0 1\n2 2 0.5 0 0 1\n0 2 1 0 0 1\n" + faces);
  expectSquare("STCNOFF 4 2 0\n0 0 0 0 0 1 9 9 9 9 0 0\n2 0 0 1\n2 2 0.5\n0 2 1 4 5\n" + faces);
  expectSquare("OFF\n4 2 0\n" + vertices + "3 0 1 2 255 0 0\n3 0 2 3 0.5 0.5 0.5 1\n");
}

/// The keyword is sometimes forgotten: what stands behind a position is left aside where every
/// record has a line of its own, and is the next vertex where it has not.
TEST(OffReader, LinesTellWhatBelongsToAPlainVertex) {
  expectSquare("OFF\n4 2 0\n0 0 0 255 0 0\n2 0 0 255 0 0\n2 2 0.5 0 0 0\n0 2 1 1 1 1\n" + faces);
  expectSquare("OFF\n4 2 0\n0 0 0 2 0 0\n2 2 0.5 0 2 1\n" + faces);
}

TEST(OffReader, PolygonsAreCutAndUnusableFacesCounted) {
  const ImportedMesh mesh =
      importOff("OFF 4 5 0\n" + vertices + "4 0 1 2 3\n3 0 1 4\n2 0 1\n3 0 1 -1\n3 3 2 1\n");
  EXPECT_THAT(mesh.faces,
              ElementsAre(0, 1, 2, 0, 2, 3, -1, -1, -1, -1, -1, -1, -1, -1, -1, 3, 2, 1));
  EXPECT_EQ(mesh.warnings.polygons, 1);
  EXPECT_EQ(mesh.warnings.unusableFaces, 2);
  EXPECT_EQ(mesh.warnings.incompleteFaces, 1);
}

TEST(OffReader, CoordinatesAreDoubles) {
  EXPECT_THAT(importOff("OFF 1 0 0\n500000.123 -0.1 1e-3").positions,
              ElementsAre(500000.123, -0.1, 1e-3));
}

TEST(OffReader, AFileCutAnywhereIsRefused) {
  const std::string text = "OFF\n4 2 5\n" + vertices + faces;
  test::cutEverywhere(importOff, text, text.size() - 2);
}

TEST(OffReader, MessagesNameTheLine) {
  struct Case {
    std::string text;
    std::string reason;
  };
  const std::vector<Case> cases = {
      {"OFF\n", "line 2: the file ends in the number of vertices"},
      {"OFF\n4\n", "line 3: the file ends in the number of faces"},
      {"OFF\n-4 2 0\n", "line 2: the number of vertices is no count"},
      {"OFF\nfour 2 0\n", "line 2: the number of vertices is no count"},
      {"OFF\n1 1 0\n0 0\n3 0 0 0 0 0 0", ""},
      {"OFF\n2 0 0\n0 0 0\n0 y 0\n", "line 4: vertex 2 of 2 needs three numbers"},
      {"OFF\n2 0 0\n0 0 0\n0 0          \n", "line 5: the file ends in vertex 2 of 2"},
      {"OFF\n1 1 0\n0 0 0\n3 0 0.5 0\n", "line 4: face 1 of 1 could not be read"},
      {"OFF\n1 1 0\n0 0 0\n-3 0 0 0\n", "line 4: face 1 of 1 has a negative number of corners"},
      {"4OFF\n1 0 0\n0 0 0 1\n", "line 1: only OFF files of three dimensions are read"},
      {"nOFF\n3\n1 0 0\n0 0 0\n", "line 1: only OFF files of three dimensions are read"},
      {"OFF BINARY\n1 0 0\n", "line 1: binary OFF files are not read"},
      {"ply\n", "line 1: the file does not begin with OFF"},
  };
  for (const Case& each : cases) EXPECT_EQ(refusal(importOff, each.text), each.reason) << each.text;
}

TEST(OffReader, CountsThatDoNotFitIntoTheFileAllocateNothing) {
  for (const char* counts : {"100 0 0", "0 100 0", "166000000 166000000 0", "9e15 9e15 0",
                             "99999999999999999999 1 0", "3 99999999999999999999 0"}) {
    EXPECT_THAT(refusal(importOff, "OFF\n" + std::string(counts) + "\n" + vertices),
                StartsWith("it announces "))
        << counts;
  }
}

TEST(OffReader, WhatFollowsTheLastFaceIsCounted) {
  EXPECT_EQ(importOff("OFF 4 2 0\n" + vertices + faces + "# no\nmore").warnings.bytesBehind, 4);
}

TEST(OffReader, TheKeywordTellsTheFormat) {
  for (const char* text : {"OFF", "OFF\n", "# c\nCOFF 1 0 0", "NOFF ", "STOFF\t", "STCN4nOFF\n"}) {
    EXPECT_TRUE(looksLikeOff(text)) << text;
  }
  for (const char* text : {"", "#", "OFFS", "off", "XOFF", "ply\n", "C OFF"}) {
    EXPECT_FALSE(looksLikeOff(text)) << text;
  }
}

}  // namespace
}  // namespace gravlin
