#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "ImportTesting.h"
#include "mesh/io/PlyHeader.h"
#include "mesh/io/PlyReader.h"

namespace gravlin {
namespace {

using test::bytesOf;
using test::refusal;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

std::string header(const std::string& format, const std::string& elements) {
  return "ply\nformat " + format + " 1.0\n" + elements + "end_header\n";
}

const std::string plainElements =
    "element vertex 4\nproperty float x\nproperty float y\nproperty float z\n"
    "element face 2\nproperty list uchar int vertex_indices\n";

const std::string plainBody = "0 0 0\n2 0 0\n2 2 0.5\n0 2 1\n3 0 1 2\n3 0 2 3\n";

std::string plainAscii() {
  return header("ascii", plainElements) + plainBody;
}

/// The same mesh in binary.
std::string plainBinary(bool bigEndian) {
  std::string text =
      header(bigEndian ? "binary_big_endian" : "binary_little_endian", plainElements);
  for (const float x : {0.0F, 0.0F, 0.0F, 2.0F, 0.0F, 0.0F, 2.0F, 2.0F, 0.5F, 0.0F, 2.0F, 1.0F}) {
    text += bytesOf(x, bigEndian);
  }
  for (const auto& face : {std::array{0, 1, 2}, std::array{0, 2, 3}}) {
    text += '\3';
    for (const int corner : face) text += bytesOf(corner, bigEndian);
  }
  return text;
}

void expectPlainMesh(const ImportedMesh& mesh) {
  EXPECT_THAT(mesh.positions, ElementsAre(0, 0, 0, 2, 0, 0, 2, 2, 0.5, 0, 2, 1));
  EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2, 0, 2, 3));
  EXPECT_THAT(mesh.properties, IsEmpty());
  EXPECT_EQ(mesh.warnings, ImportWarnings());
}

// --- Encodings ---

TEST(PlyReader, AllThreeEncodingsHoldTheSameMesh) {
  expectPlainMesh(importPly(plainAscii()));
  expectPlainMesh(importPly(plainBinary(false)));
  expectPlainMesh(importPly(plainBinary(true)));
}

TEST(PlyReader, LinesMayEndWithCrLf) {
  std::string text = plainAscii();
  for (std::size_t k = text.find('\n'); k != std::string::npos; k = text.find('\n', k + 2)) {
    text.insert(k, "\r");
  }
  EXPECT_TRUE(looksLikePly(text));
  expectPlainMesh(importPly(text));

  std::string binary = plainBinary(false);
  const std::size_t body = binary.find("end_header\n") + 11;
  std::string binaryHeader = binary.substr(0, body);
  for (std::size_t k = binaryHeader.find('\n'); k != std::string::npos;
       k = binaryHeader.find('\n', k + 2)) {
    binaryHeader.insert(k, "\r");
  }
  expectPlainMesh(importPly(binaryHeader + binary.substr(body)));
}

TEST(PlyReader, OnlyAFirstLineOfNothingButPlyIsPly) {
  EXPECT_TRUE(looksLikePly("ply\nformat"));
  EXPECT_TRUE(looksLikePly("ply\r\n"));
  for (const char* text : {"", "ply", "ply2\n", "ply \n", " ply\n", "PLY\n", "3 1 0 0 0"}) {
    EXPECT_FALSE(looksLikePly(text)) << text;
  }
}

TEST(PlyReader, AsciiNumbersMayStandOnAnyLine) {
  std::string body = plainBody;
  for (char& c : body) {
    if (c == '\n') c = ' ';
  }
  expectPlainMesh(importPly(header("ascii", plainElements) + body));
  expectPlainMesh(importPly(header("ascii", plainElements) + "\n\n" + plainBody + "\n \n"));
}

// --- Properties ---

TEST(PlyReader, PropertiesMayStandInAnyOrderAndHaveAnyType) {
  const std::string elements =
      "comment made by hand\nelement vertex 2\nproperty uchar red\nproperty double z\n"
      "property short x\nproperty float quality\nproperty int8 y\nobj_info nothing\n";
  const std::string ascii = header("ascii", elements) + "255 0.1 -300 2.5 -7\n0 1e300 12 -0.5 8\n";
  for (const bool big : {false, true}) {
    std::string binary = header(big ? "binary_big_endian" : "binary_little_endian", elements);
    binary += '\xFF' + bytesOf(0.1, big) + bytesOf(std::int16_t{-300}, big) + bytesOf(2.5F, big) +
              bytesOf(std::int8_t{-7}, big);
    binary += std::string(1, '\0') + bytesOf(1e300, big) + bytesOf(std::int16_t{12}, big) +
              bytesOf(-0.5F, big) + bytesOf(std::int8_t{8}, big);
    for (const std::string& text : {ascii, binary}) {
      const ImportedMesh mesh = importPly(text);
      EXPECT_THAT(mesh.positions, ElementsAre(-300, -7, 0.1, 12, 8, 1e300));
      ASSERT_EQ(mesh.properties.size(), 2U);
      EXPECT_EQ(mesh.properties[0].name, "red");
      EXPECT_THAT(mesh.properties[0].values, ElementsAre(255, 0));
      EXPECT_EQ(mesh.properties[1].name, "quality");
      EXPECT_THAT(mesh.properties[1].values, ElementsAre(2.5, -0.5));
    }
  }
}

/// Each type by both of its names, with a value that its neighbours among the types could not hold.
TEST(PlyReader, EveryTypeIsReadInEveryByteOrder) {
  struct Case {
    const char* names[2];
    std::string little;
    double value;
  };
  const std::vector<Case> cases = {
      {{"char", "int8"}, bytesOf(std::int8_t{-128}, false), -128},
      {{"uchar", "uint8"}, bytesOf(std::uint8_t{255}, false), 255},
      {{"short", "int16"}, bytesOf(std::int16_t{-32768}, false), -32768},
      {{"ushort", "uint16"}, bytesOf(std::uint16_t{65535}, false), 65535},
      {{"int", "int32"}, bytesOf(std::int32_t{-2147483647}, false), -2147483647},
      {{"uint", "uint32"}, bytesOf(std::uint32_t{4294967295U}, false), 4294967295.0},
      {{"float", "float32"}, bytesOf(1.5e-40F, false), static_cast<double>(1.5e-40F)},
      {{"double", "float64"}, bytesOf(500000.123, false), 500000.123},
  };
  for (const Case& each : cases) {
    for (const char* name : each.names) {
      const std::string elements =
          "element vertex 1\nproperty float x\nproperty float y\n"
          "property float z\nproperty " +
          std::string(name) + " value\n";
      const std::string big(each.little.rbegin(), each.little.rend());
      const std::string zeros(12, '\0');
      for (const std::string& text :
           {header("binary_little_endian", elements) + zeros + each.little,
            header("binary_big_endian", elements) + zeros + big}) {
        const ImportedMesh mesh = importPly(text);
        ASSERT_EQ(mesh.properties.size(), 1U) << name;
        EXPECT_THAT(mesh.properties[0].values, ElementsAre(each.value)) << name;
      }
    }
  }
}

TEST(PlyReader, CoordinatesAreDoubles) {
  const ImportedMesh mesh = importPly(header("ascii",
                                             "element vertex 1\nproperty float x\n"
                                             "property double y\nproperty int z\n") +
                                      "500000.123 0.1 3\n");
  EXPECT_THAT(mesh.positions, ElementsAre(500000.123, 0.1, 3));
}

// --- Elements ---

TEST(PlyReader, WhatIsNotKnownIsSkipped) {
  const std::string elements =
      "element camera 1\nproperty list uchar float view\nproperty int id\n"
      "element vertex 3\nproperty list int uchar tags\nproperty float x\nproperty float y\n"
      "property float z\nelement empty 100000000000\nelement none 0\nproperty float nothing\n"
      "element face 1\nproperty uchar flags\nproperty list uchar float texcoord\n"
      "property list ushort uint vertex_index\nproperty float area\n"
      "element edge 1\nproperty int a\n";
  const std::string ascii = header("ascii", elements) +
                            "2 0.5 0.25 7\n0 0 0 0\n2 9 9 1 0 0\n1 5 0 1 0\n"
                            "1 2 0.5 0.5 3 0 1 2 0.5\n12\n";
  for (const bool big : {false, true}) {
    std::string binary = header(big ? "binary_big_endian" : "binary_little_endian", elements);
    binary += '\2' + bytesOf(0.5F, big) + bytesOf(0.25F, big) + bytesOf(7, big);
    binary += bytesOf(0, big) + std::string(12, '\0');
    binary += bytesOf(2, big) + "\x09\x09" + bytesOf(1.0F, big) + std::string(8, '\0');
    binary += bytesOf(1, big) + "\5" + bytesOf(0.0F, big) + bytesOf(1.0F, big) + bytesOf(0.0F, big);
    binary += std::string("\1\2") + bytesOf(0.5F, big) + bytesOf(0.5F, big) +
              bytesOf(std::uint16_t{3}, big) + bytesOf(0U, big) + bytesOf(1U, big) +
              bytesOf(2U, big) + bytesOf(0.5F, big);
    binary += bytesOf(12, big);
    for (const std::string& text : {ascii, binary}) {
      const ImportedMesh mesh = importPly(text);
      EXPECT_THAT(mesh.positions, ElementsAre(0, 0, 0, 1, 0, 0, 0, 1, 0));
      EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2));
      EXPECT_THAT(mesh.warnings.skippedElements, ElementsAre("camera", "empty", "edge"));
    }
  }
}

TEST(PlyReader, FacesMayStandBeforeVertices) {
  const ImportedMesh mesh =
      importPly(header("ascii",
                       "element face 1\nproperty list uchar int vertex_indices\nelement vertex 3\n"
                       "property float x\nproperty float y\nproperty float z\n") +
                "3 2 1 0\n0 0 0 1 0 0 0 1 0\n");
  EXPECT_THAT(mesh.faces, ElementsAre(2, 1, 0));
  EXPECT_EQ(mesh.vertexCount(), 3);
}

TEST(PlyReader, PointsAloneAreAMeshWithoutFaces) {
  const ImportedMesh mesh = importPly(
      header("ascii", "element vertex 2\nproperty float x\nproperty float y\nproperty float z\n") +
      "1 2 3\n4 5 6");
  EXPECT_EQ(mesh.vertexCount(), 2);
  EXPECT_EQ(mesh.faceCount(), 0);
}

// --- Faces ---

TEST(PlyReader, PolygonsBecomeFansAboutTheirFirstCorner) {
  const std::string elements =
      "element vertex 5\nproperty float x\nproperty float y\nproperty float z\n"
      "element face 3\nproperty list uchar int vertex_indices\n";
  const std::string vertices = "0 0 0 1 0 0 1 1 0 0 1 0 0 2 0\n";
  const std::string ascii =
      header("ascii", elements) + vertices + "3 0 1 2\n5 4 3 2 1 0\n4 1 2 3 4\n";
  std::string binary = header("binary_little_endian", elements) + std::string(60, '\0');
  for (const auto& face : std::vector<std::vector<int>>{{0, 1, 2}, {4, 3, 2, 1, 0}, {1, 2, 3, 4}}) {
    binary += static_cast<char>(face.size());
    for (const int corner : face) binary += bytesOf(corner, false);
  }
  for (const std::string& text : {ascii, binary}) {
    const ImportedMesh mesh = importPly(text);
    EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2, 4, 3, 2, 4, 2, 1, 4, 1, 0, 1, 2, 3, 1, 3, 4));
    EXPECT_EQ(mesh.warnings.polygons, 2);
    EXPECT_EQ(mesh.warnings.unusableFaces, 0);
  }
}

TEST(PlyReader, FacesThatCannotBeUsedKeepTheirPlaceAndAreCounted) {
  const std::string elements =
      "element vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
      "element face 6\nproperty list uchar int vertex_indices\n";
  const std::vector<std::vector<int>> faces = {{0, 1, 3},       {0, 1, 2}, {-1, 0, 1},
                                               {0, 1, 2, 2000}, {0, 1},    {}};
  std::string ascii = header("ascii", elements) + "0 0 0 1 0 0 1 1 0\n";
  std::string binary = header("binary_big_endian", elements) + std::string(36, '\0');
  for (const std::vector<int>& face : faces) {
    ascii += std::to_string(face.size());
    binary += static_cast<char>(face.size());
    for (const int corner : face) {
      ascii += " " + std::to_string(corner);
      binary += bytesOf(corner, true);
    }
    ascii += "\n";
  }
  for (const std::string& text : {ascii, binary}) {
    const ImportedMesh mesh = importPly(text);
    EXPECT_THAT(mesh.faces,
                ElementsAre(-1, -1, -1, 0, 1, 2, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1));
    EXPECT_EQ(mesh.warnings.unusableFaces, 3);
    EXPECT_EQ(mesh.warnings.incompleteFaces, 2);
    EXPECT_EQ(mesh.warnings.polygons, 0);
  }
}

// --- Damage ---

TEST(PlyReader, AFileCutAnywhereIsRefused) {
  // The last digit of an ascii file may be a part of a number, the newline behind it be gone.
  test::cutEverywhere(importPly, plainAscii(), plainAscii().size() - 2);
  test::cutEverywhere(importPly, plainBinary(false), plainBinary(false).size());
  test::cutEverywhere(importPly, plainBinary(true), plainBinary(true).size());
}

TEST(PlyReader, MessagesNameTheLineOrTheByte) {
  const std::string ascii = header("ascii", plainElements);
  struct Case {
    std::string text;
    std::string reason;
  };
  const std::string elements = plainElements;
  const std::vector<Case> cases = {
      {ascii + "0 0 0\n2 0 x\n2 2 0\n0 2 1\n3 0 1 2\n3 0 2 3\n",
       "line 11: vertex 2 of 4: \"x\" is no number"},
      {ascii + "0 0 0\n2 0 0\n2 2 0\n0 2 1\n3 0 1.5 2\n3 0 2 3\n",
       "line 14: face 1 of 2: \"1.5\" is no whole number"},
      {ascii + "0 0 0\n2 0 0\n2 2 0\n0 2 1\n3 0 1 2\n3 0 2      \n",
       "line 16: the file ends in face 2 of 2"},
      {ascii + "0 0 0\n2 0 0\n2 2 0\n0 2 1\n3 0 1 2\n-3 0 2 3\n",
       "line 15: face 2 of 2: a list has a negative count"},
      {"ply\nelement vertex 0\nend_header\n", "line 3: the header tells no format"},
      {"ply\nformat ascii 1.0\nelement vertex 1\n", "line 3: the header has no end_header"},
      {"ply\nformat text 1.0\nend_header\n", "line 2: the format \"text\" is not known"},
      {"ply\nformat ascii 1.0\nproperty float x\nend_header\n",
       "line 3: a property stands before the first element"},
      {"ply\nformat ascii 1.0\nelement vertex many\nend_header\n",
       "line 3: \"many\" is no count of elements"},
      {"ply\nformat ascii 1.0\nelement vertex -1\nend_header\n",
       "line 3: \"-1\" is no count of elements"},
      {"ply\nformat ascii 1.0\nelement vertex 1\nproperty real x\nend_header\n",
       "line 4: the type \"real\" is not known"},
      {"ply\nformat ascii 1.0\nelement face 1\nproperty list float int vertex_index\nend_header\n",
       "line 4: the count of a list is no whole number"},
      {"ply\nformat ascii 1.0\nelement vertex\nend_header\n",
       "line 3: an element needs a name and a count"},
      {"ply\nformat ascii 1.0\nelement vertex 1\nproperty list uchar x\nend_header\n",
       "line 4: a property needs a type and a name"},
      {"ply\nformat ascii 1.0\nwhatever\nend_header\n",
       "line 3: \"whatever\" is no statement of a header"},
      {"ply\nformat ascii 1.0\nelement face 0\nend_header\n", "its header announces no vertices"},
      {header("ascii", "element vertex 1\nproperty float x\nproperty float y\n") + "1 2 3",
       "its vertices have no property \"z\""},
  };
  for (const Case& each : cases) EXPECT_EQ(refusal(importPly, each.text), each.reason);

  const std::string binary = plainBinary(false);
  EXPECT_EQ(refusal(importPly, binary.substr(0, binary.size() - 1)),
            "byte " + std::to_string(binary.size() - 1) + ": the file ends in face 2 of 2");
}

TEST(PlyReader, CountsThatDoNotFitIntoTheFileAllocateNothing) {
  for (const std::string format : {"ascii", "binary_little_endian"}) {
    for (const std::string count : {"100", "160000000", "3000000000", "18446744073709551615"}) {
      EXPECT_THAT(refusal(importPly, header(format, "element vertex " + count +
                                                        "\nproperty float x\nproperty float y\n"
                                                        "property float z\n") +
                                         "0 0 0\n"),
                  StartsWith("its header announces " + count + " elements \"vertex\""));
    }
  }
  EXPECT_NE(refusal(importPly, header("ascii", "element vertex 99999999999999999999\n")), "");
}

TEST(PlyReader, AListLongerThanTheFileIsRefused) {
  const std::string elements =
      "element vertex 1\nproperty list uint double tags\nproperty float x\nproperty float y\n"
      "property float z\n";
  EXPECT_THAT(refusal(importPly, header("ascii", elements) + "4000000000 1 2 3"),
              HasSubstr("the file ends in vertex 1 of 1"));
  EXPECT_THAT(refusal(importPly, header("binary_little_endian", elements) +
                                     bytesOf(4000000000U, false) + std::string(100, '\1')),
              HasSubstr("the file ends in vertex 1 of 1"));
}

TEST(PlyReader, WhatFollowsTheLastElementIsCounted) {
  EXPECT_EQ(importPly(plainBinary(false) + "more").warnings.bytesBehind, 4);
  EXPECT_EQ(importPly(plainAscii() + "  \nmore").warnings.bytesBehind, 4);
  EXPECT_EQ(importPly(plainAscii() + "  \n").warnings.bytesBehind, 0);
}

}  // namespace
}  // namespace gravlin
