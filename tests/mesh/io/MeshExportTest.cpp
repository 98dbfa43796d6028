#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "mesh/io/MeshExport.h"
#include "mesh/io/MeshImport.h"
#include "support/Meshes.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

using test::contentOf;
using test::TemporaryFolder;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const FileFrame cubeAsFile = {};

/// A format and whether it is asked for as text.
struct Kind {
  const char* extension;
  ExportOptions::Text text;
};
constexpr std::array<Kind, 6> kinds = {{{"ply", ExportOptions::Text::Binary},
                                        {"ply", ExportOptions::Text::Ascii},
                                        {"obj", ExportOptions::Text::Ascii},
                                        {"off", ExportOptions::Text::Ascii},
                                        {"stl", ExportOptions::Text::Binary},
                                        {"stl", ExportOptions::Text::Ascii}}};

std::string nameOf(const Kind& kind) {
  return std::string(kind.extension) +
         (kind.text == ExportOptions::Text::Ascii ? ", ascii" : ", binary");
}

/// A mesh written in one way, and read again.
ImportedMesh thereAndBack(const MeshToWrite& mesh, const Kind& kind) {
  const TemporaryFolder folder(test::folderInMemory());
  const std::string path = folder.file(std::string("mesh.") + kind.extension);
  const ExportResult written = exportMeshFile(path, mesh, {.text = kind.text});
  EXPECT_EQ(written.error, "");
  ImportResult read = importMeshFile(path);
  EXPECT_EQ(read.error, "");
  if (!read.mesh) return {};
  EXPECT_EQ(read.format->extension, kind.extension);
  EXPECT_EQ(warningText(read.mesh->warnings), "");
  return std::move(*read.mesh);
}

std::vector<int> validFacesOf(const TriangleMesh& mesh) {
  std::vector<int> faces;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (mesh.validFace(f))
      faces.insert(faces.end(), mesh.corners(f).begin(), mesh.corners(f).end());
  }
  return faces;
}

std::vector<test::NamedMesh> allMeshes() {
  std::vector<test::NamedMesh> meshes = test::closedMeshes();
  for (auto family : {test::openMeshes(), test::hostileMeshes()}) {
    for (test::NamedMesh& each : family) meshes.push_back(std::move(each));
  }
  return meshes;
}

bool sameNumber(double a, double b, double tolerance) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) == std::isnan(b);
  return a == b || std::abs(a - b) <= tolerance;
}

/// A cube far from the origin, and small: floats cannot hold it.
const FileFrame farAway = {{500000.123, -7000000.25, 3.0}, 0.001};

// --- Round trips ---

TEST(MeshExport, FormatsThatNumberVerticesGiveBackEveryFaceAndEveryPosition) {
  for (const test::NamedMesh& each : allMeshes()) {
    for (const FileFrame& frame :
         {cubeAsFile, farAway, FileFrame{{0, 0, 0}, 1e-9}, FileFrame{{1e9, 0, 0}, 12345.0}}) {
      MeshToWrite mesh(each.mesh, frame, MeshToWrite::Vertices::All);
      mesh.comments = {"a comment, also in files of no vertex"};
      for (const Kind& kind : kinds) {
        if (std::string(kind.extension) == "stl") continue;
        SCOPED_TRACE(each.name + ", " + nameOf(kind));
        const ImportedMesh back = thereAndBack(mesh, kind);
        EXPECT_EQ(std::vector<int>(back.faces.begin(), back.faces.end()), validFacesOf(each.mesh));
        ASSERT_EQ(back.vertexCount(), each.mesh.vertexCount);
        for (int i = 0; i < back.vertexCount(); ++i) {
          for (std::size_t axis = 0; axis < 3; ++axis) {
            const double wanted =
                frame.origin[axis] +
                frame.scale *
                    static_cast<double>(each.mesh.vertices[3 * static_cast<std::size_t>(i) + axis]);
            EXPECT_PRED3(sameNumber, back.positions[3 * static_cast<std::size_t>(i) + axis], wanted,
                         frame.scale * 0x1p-20);
          }
        }
      }
    }
  }
}

/// STL numbers corners anew, so each is compared where it stands.
TEST(MeshExport, StlGivesBackEveryCornerOfEveryFace) {
  for (const test::NamedMesh& each : allMeshes()) {
    const MeshToWrite mesh(each.mesh, cubeAsFile, MeshToWrite::Vertices::All);
    const std::vector<int> faces = validFacesOf(each.mesh);
    for (const auto text : {ExportOptions::Text::Binary, ExportOptions::Text::Ascii}) {
      SCOPED_TRACE(each.name);
      const ImportedMesh back = thereAndBack(mesh, {"stl", text});
      ASSERT_EQ(back.faces.size(), faces.size());
      for (std::size_t c = 0; c < faces.size(); ++c) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
          const auto corner = static_cast<std::size_t>(back.faces[c]);
          EXPECT_PRED3(sameNumber, back.positions[3 * corner + axis],
                       static_cast<double>(
                           each.mesh.vertices[3 * static_cast<std::size_t>(faces[c]) + axis]),
                       0x1p-20);
        }
      }
    }
  }
}

// --- What stands in the files ---

std::string exported(const MeshToWrite& mesh, const Kind& kind) {
  const TemporaryFolder folder;
  const std::string path = folder.file(std::string("mesh.") + kind.extension);
  EXPECT_EQ(exportMeshFile(path, mesh, {.text = kind.text}).error, "");
  return contentOf(path);
}

TEST(MeshExport, TextsAreThoseWrittenByHand) {
  const TriangleMesh triangle = test::singleTriangle();
  MeshToWrite mesh(triangle, cubeAsFile, MeshToWrite::Vertices::All);
  mesh.comments = {"a triangle"};
  EXPECT_EQ(exported(mesh, kinds[1]),
            "ply\nformat ascii 1.0\ncomment a triangle\nelement vertex 3\nproperty double x\n"
            "property double y\nproperty double z\nelement face 1\n"
            "property list uchar int vertex_indices\nend_header\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
  EXPECT_EQ(exported(mesh, kinds[2]), "# a triangle\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
  EXPECT_EQ(exported(mesh, kinds[3]), "OFF\n# a triangle\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
  EXPECT_EQ(exported(mesh, kinds[5]),
            "solid mesh\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n"
            "endloop\nendfacet\nendsolid mesh\n");
}

TEST(MeshExport, ABinaryStlHasItsSizeItsNormalAndNoSolidInFront) {
  const TriangleMesh triangle = test::singleTriangle();
  const std::string text =
      exported(MeshToWrite(triangle, cubeAsFile, MeshToWrite::Vertices::All), kinds[4]);
  EXPECT_EQ(text.size(), 84U + 50U);
  EXPECT_THAT(text, Not(StartsWith("solid")));
  const std::array<float, 3> up = {0.0F, 0.0F, 1.0F};
  EXPECT_EQ(std::memcmp(text.data() + 84, up.data(), sizeof up), 0);
}

TEST(MeshExport, BinaryPlyHasFloatsWhereTheySuffice) {
  const TriangleMesh mesh = test::icosphere(2);
  const auto typeIn = [&mesh](const FileFrame& frame) {
    const std::string text =
        exported(MeshToWrite(mesh, frame, MeshToWrite::Vertices::All), kinds[0]);
    return text.find("property double x") == std::string::npos ? "float" : "double";
  };
  EXPECT_STREQ(typeIn(cubeAsFile), "float");
  EXPECT_STREQ(typeIn({{0, 0, 0}, 1e-6}), "float");
  EXPECT_STREQ(typeIn(farAway), "double");
}

TEST(MeshExport, UnusedVerticesStayUnlessTheyAreLeftOut) {
  TriangleMesh mesh = test::makeMesh({{9, 9, 9}, {0, 0, 0}, {1, 0, 0}, {8, 8, 8}, {0, 1, 0}},
                                     {{1, 2, 4}, {1, 1, 2}, {4, 2, 1}});
  EXPECT_THAT(exported(MeshToWrite(mesh, cubeAsFile, MeshToWrite::Vertices::All), kinds[2]),
              EndsWith("v 9 9 9\nv 0 0 0\nv 1 0 0\nv 8 8 8\nv 0 1 0\nf 2 3 5\nf 5 3 2\n"));
  EXPECT_THAT(exported(MeshToWrite(mesh, cubeAsFile, MeshToWrite::Vertices::Used), kinds[2]),
              EndsWith("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nf 3 2 1\n"));
  const TriangleMesh points = test::pointsOnly();
  EXPECT_THAT(exported(MeshToWrite(points, cubeAsFile, MeshToWrite::Vertices::Used), kinds[3]),
              HasSubstr("\n0 0 0\n"));
}

// --- Fields ---

TEST(MeshExport, FieldsComeBackUnderTheirNames) {
  const TriangleMesh triangle =
      test::makeMesh({{9, 9, 9}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{1, 2, 3}});
  const std::vector<double> curvature = {0.1, 0.2, 1.0 / 3.0, -4.0};
  const std::vector<float> normals = {0,    0,    0,    0.1F, 0.2F, 0.3F,
                                      0.4F, 0.5F, 0.6F, 0.7F, 0.8F, 0.9F};
  const std::vector<int> marks = {0, 1, 0, 1};
  for (const auto wanted : {MeshToWrite::Vertices::All, MeshToWrite::Vertices::Used}) {
    MeshToWrite mesh(triangle, cubeAsFile, wanted);
    mesh.fields.push_back({.name = "ny", .values = std::span(normals).subspan(1), .step = 3});
    mesh.fields.push_back({.name = "curvature", .values = std::span(curvature), .factor = 2.0});
    mesh.fields.push_back({.name = "ridge", .values = std::span(marks)});
    for (const Kind& kind : {kinds[0], kinds[1]}) {
      const ImportedMesh back = thereAndBack(mesh, kind);
      ASSERT_EQ(back.properties.size(), 3U);
      EXPECT_EQ(back.properties[0].name, "ny");
      EXPECT_EQ(back.properties[1].name, "curvature");
      EXPECT_EQ(back.properties[2].name, "ridge");
      const auto last3 = [](std::vector<double> values) {
        return std::vector<double>(values.end() - 3, values.end());
      };
      if (kind.text == ExportOptions::Text::Binary) {
        EXPECT_THAT(last3(back.properties[0].values),
                    ElementsAre(static_cast<double>(0.2F), static_cast<double>(0.5F),
                                static_cast<double>(0.8F)));
      } else {
        EXPECT_THAT(last3(back.properties[0].values), ElementsAre(0.2, 0.5, 0.8));
      }
      EXPECT_THAT(last3(back.properties[1].values), ElementsAre(0.4, 2.0 / 3.0, -8.0));
      EXPECT_THAT(last3(back.properties[2].values), ElementsAre(1, 0, 1));
    }
  }
}

TEST(MeshExport, AFormatWithoutFieldsSaysSoBeforeItWrites) {
  const TriangleMesh triangle = test::singleTriangle();
  const std::vector<int> marks = {0, 1, 0};
  MeshToWrite mesh(triangle, cubeAsFile, MeshToWrite::Vertices::All);
  mesh.fields.push_back({.name = "ridgeMarks", .values = std::span(marks)});
  const TemporaryFolder folder;
  for (const char* name : {"a.obj", "a.stl", "a.off"}) {
    const std::string path = folder.write(name, "before");
    const ExportResult result = exportMeshFile(path, mesh, {});
    EXPECT_THAT(result.error, AllOf(StartsWith("Cannot export " + path),
                                    HasSubstr("cannot hold \"ridgeMarks\": choose PLY")));
    EXPECT_EQ(contentOf(path), "before");
  }
}

// --- Names and failures ---

TEST(MeshExport, TheExtensionChoosesTheFormatUnlessOneIsNamed) {
  const TriangleMesh triangle = test::singleTriangle();
  const MeshToWrite mesh(triangle, cubeAsFile, MeshToWrite::Vertices::All);
  const TemporaryFolder folder;
  const std::string upper = folder.file("a.OBJ");
  EXPECT_EQ(exportMeshFile(upper, mesh, {}).error, "");
  EXPECT_THAT(contentOf(upper), StartsWith("v 0 0 0\n"));
  const std::string named = folder.file("a.txt");
  EXPECT_EQ(exportMeshFile(named, mesh, {.format = "off"}).error, "");
  EXPECT_THAT(contentOf(named), StartsWith("OFF\n"));
  const ExportResult bare = exportMeshFile(folder.file("bare"), mesh, {});
  EXPECT_EQ(bare.error, "");
  EXPECT_EQ(bare.path, folder.file("bare.ply"));
  EXPECT_THAT(contentOf(bare.path), StartsWith("ply\nformat binary_little_endian 1.0\n"));

  EXPECT_EQ(exportMeshFile(folder.file("a.ply2"), mesh, {}).error,
            "Cannot export " + folder.file("a.ply2") +
                ": no format belongs to the extension \"ply2\". Choose a name that ends in .ply, "
                ".off, .stl or .obj.");
  EXPECT_THAT(exportMeshFile(folder.file("a.ply"), mesh, {.format = "xyz"}).error,
              HasSubstr("there is no format \"xyz\": ply, off, stl and obj are known"));
  EXPECT_THAT(exportMeshFile(folder.file(""), mesh, {}).error, HasSubstr("a file name is missing"));
}

TEST(MeshExport, AFileThatCannotBeWrittenLeavesTheOldOne) {
  const TriangleMesh triangle = test::singleTriangle();
  const MeshToWrite mesh(triangle, cubeAsFile, MeshToWrite::Vertices::All);
  const TemporaryFolder folder;
  EXPECT_EQ(exportMeshFile(folder.file("no/a.ply"), mesh, {}).error,
            "Cannot export " + folder.file("no/a.ply") + ": No such file or directory.");
  EXPECT_EQ(folder.entryCount(), 0);
}

TEST(MeshExport, WhatAFormatLosesIsTold) {
  const TriangleMesh unused =
      test::makeMesh({{9, 9, 9}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{1, 2, 3}, {1, 1, 2}});
  const MeshToWrite mesh(unused, cubeAsFile, MeshToWrite::Vertices::All);
  const MeshToWrite away(unused, farAway, MeshToWrite::Vertices::All);
  const TemporaryFolder folder;
  EXPECT_EQ(exportMeshFile(folder.file("a.ply"), mesh, {}).loss, "");
  EXPECT_EQ(exportMeshFile(folder.file("a.stl"), mesh, {}).loss,
            "vertices are numbered anew and unused ones are left out");
  // Floats near 7,000,000 are half a unit apart.
  EXPECT_THAT(exportMeshFile(folder.file("a.stl"), away, {}).loss,
              HasSubstr("single precision moves coordinates by up to 0.25"));
  EXPECT_THAT(exportMeshFile(folder.file("a.stl"), away, {.text = ExportOptions::Text::Ascii}).loss,
              Not(HasSubstr("single precision")));
}

}  // namespace
}  // namespace gravlin
