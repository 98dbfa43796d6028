#include <cmath>
#include <cstdio>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "mesh/io/MeshFile.h"
#include "mesh/io/MeshReader.h"
#include "mesh/io/MeshWriter.h"
#include "mesh/MeshMeasures.h"
#include "support/Meshes.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

namespace fs = std::filesystem;
using test::contentOf;
using test::TemporaryFolder;
using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

const std::string twoFaces = "4 2 0 0 0 2 0 0 2 2 0 0 2 1 3 0 1 2 3 0 2 3\n";

OpenResult openText(const std::string& name, const std::string& content) {
  const TemporaryFolder folder;
  return openMeshFile(folder.write(name, content));
}

/// The coordinates as they stood in the file, give or take the rounding of the way back.
std::vector<float> inFileUnits(const TriangleMesh& mesh) {
  TriangleMesh copy;
  copy.copyGeometryFrom(mesh);
  copy.denormalize();
  return copy.vertices;
}

// --- Formats ---

TEST(MeshFile, ExtensionIsWhatFollowsTheLastDotOfTheName) {
  EXPECT_EQ(extensionOf("/a.b/mesh.ply2"), "ply2");
  EXPECT_EQ(extensionOf("mesh.old.plyR"), "plyR");
  EXPECT_EQ(extensionOf("/a.b/mesh"), "");
  EXPECT_EQ(extensionOf("mesh."), "");
  EXPECT_EQ(extensionOf(".data"), "data");
  EXPECT_EQ(extensionOf(""), "");
}

TEST(MeshFile, Ply2HoldsCoordinatesInOrderAndTriangles) {
  const OpenResult opened = openText("a.ply2", twoFaces);
  ASSERT_TRUE(opened.mesh) << opened.error;
  EXPECT_EQ(opened.error, "");
  EXPECT_EQ(opened.notice, "");
  const TriangleMesh& mesh = *opened.mesh;
  EXPECT_THAT(mesh.vertices, ElementsAre(-10, -10, -5, 10, -10, -5, 10, 10, -5, -10, 10, 5));
  EXPECT_THAT(mesh.faces, ElementsAre(0, 1, 2, 0, 2, 3));
  EXPECT_THAT(mesh.boxMax, ElementsAre(2, 2, 1));
  EXPECT_THAT(mesh.boxMin, ElementsAre(0, 0, 0));
  EXPECT_THAT(mesh.vertexKind, Each(BoundaryVertex));
  EXPECT_THAT(mesh.faceAdjacency, ElementsAre(-1, -1, 1, 0, -1, -1));
  EXPECT_EQ(mesh.faceNormals.size(), 6U);
  EXPECT_EQ(mesh.vertexNormals.size(), 12U);
  EXPECT_THAT(mesh.ridgeMarks, IsEmpty());
}

TEST(MeshFile, PlySwapsTheSecondAndThirdNumberAndIgnoresTwo) {
  const OpenResult opened = openText("a.ply", "3 1  0 1 2 9 9  1 0 0 9 9  0 0 1 9 9  3 0 1 2");
  ASSERT_TRUE(opened.mesh);
  EXPECT_EQ(opened.notice, "");
  EXPECT_THAT(opened.mesh->boxMax, ElementsAre(1, 2, 1));
  EXPECT_THAT(opened.mesh->boxMin, ElementsAre(0, 0, 0));
  EXPECT_THAT(inFileUnits(*opened.mesh), ElementsAre(0, 2, 1, 1, 0, 0, 0, 1, 0));
  EXPECT_THAT(opened.mesh->faces, ElementsAre(0, 1, 2));
}

TEST(MeshFile, TheNumberBeforeTheCornersIsIgnored) {
  const std::string vertices = "4 2\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n";
  for (const std::string faces :
       {"4 0 1 2\n4 0 2 3\n", "4 0 1 2 4 0 2 3", "4\n0\n1\n2\n4\n0\n2\n3"}) {
    const OpenResult opened = openText("a.ply2", vertices + faces);
    ASSERT_TRUE(opened.mesh);
    EXPECT_THAT(opened.mesh->faces, ElementsAre(0, 1, 2, 0, 2, 3));
    EXPECT_EQ(opened.notice, "") << faces;
    EXPECT_EQ(opened.extent, ReadExtent::Whole) << faces;
  }
  const OpenResult odd = openText("a.ply2", "3 1 0 0 0 1 0 0 0 1 0  -2.5e3 0 1 2");
  EXPECT_EQ(odd.notice, "");
  EXPECT_THAT(odd.mesh->faces, ElementsAre(0, 1, 2));
}

TEST(MeshFile, DataIsAPointSet) {
  const OpenResult opened = openText("a.data", "2\n1 1 1\n0 0 0\n3 0 0 0");
  ASSERT_TRUE(opened.mesh);
  EXPECT_EQ(opened.mesh->vertexCount, 2);
  EXPECT_EQ(opened.mesh->faceCount, 0);
  EXPECT_THAT(opened.mesh->vertexKind, Each(NonManifoldVertex));
  EXPECT_EQ(opened.notice, "");
}

TEST(MeshFile, PlyRBringsTheMarksOfRidgesAndValleys) {
  const OpenResult opened = openText("a.plyR", twoFaces + "2 1\n0\n3\n2\n");
  ASSERT_TRUE(opened.mesh);
  EXPECT_EQ(opened.notice, "");
  EXPECT_THAT(opened.mesh->ridgeMarks, ElementsAre(1, 0, 0, 1));
  EXPECT_THAT(opened.mesh->valleyMarks, ElementsAre(0, 0, 1, 0));
}

TEST(MeshFile, AnyWhiteSpaceOrNoneSeparatesNumbers) {
  const OpenResult opened = openText("a.ply2", "4\t2\r\n0 0 0+2-0\v0\f2 2 0 0 2 1 3 0 1 2 3 0 2 3");
  ASSERT_TRUE(opened.mesh);
  EXPECT_EQ(opened.notice, "");
  EXPECT_THAT(inFileUnits(*opened.mesh), ElementsAre(0, 0, 0, 2, 0, 0, 2, 2, 0, 0, 2, 1));
}

// --- Broken files ---

struct BrokenFile {
  const char* description;
  std::string name;
  std::string content;
  std::string notice;
  int vertexCount;
  int validFaceCount;
};

const std::vector<BrokenFile>& brokenFiles() {
  static const std::string corners = "4 2 0 0 0 2 0 0 2 2 0 0 2 1 ";
  static const std::vector<BrokenFile> files = {
      {"capital letters", "a.PLY2", twoFaces,
       "the extension \"PLY2\" has no reader, so the mesh is empty", 0, 0},
      {"no extension", "a", twoFaces, "the extension \"\" has no reader, so the mesh is empty", 0,
       0},
      {"obj", "a.obj", "v 0 0 0\n", "the extension \"obj\" has no reader, so the mesh is empty", 0,
       0},
      {"an empty file", "a.ply2", "", "the file ended in the number of vertices", 0, 0},
      {"blanks only", "a.ply2", " \n\t ", "the file ended in the number of vertices", 0, 0},
      {"one count", "a.ply2", "3", "the file ended in the number of faces", 3, 0},
      {"counts only", "a.ply2", "3 0", "the file ended in vertex 1 of 3", 3, 0},
      {"a point set without points", "a.data", "5", "the file ended in vertex 1 of 5", 5, 0},
      {"the end inside a vertex", "a.ply2", "3 1 0 0 0 1 0 0 5",
       "the file ended in vertex 3 of 3; 1 face with unusable corners left out", 3, 0},
      {"the end inside a face", "a.ply2", corners + "3 0 1 2 3 0 2",
       "the file ended in face 2 of 2; 1 face with unusable corners left out", 4, 1},
      {"the end before the faces", "a.ply2", corners,
       "the file ended in face 1 of 2; 2 faces with unusable corners left out", 4, 0},
      {"the end before the ridge count", "a.plyR", twoFaces,
       "the file ended in the number of ridge marks", 4, 2},
      {"the end before the valley count", "a.plyR", twoFaces + "1",
       "the file ended in the number of valley marks", 4, 2},
      {"the end inside the ridge marks", "a.plyR", twoFaces + "3 0 1",
       "the file ended in ridge mark 2 of 3", 4, 2},
      {"the end inside the valley marks", "a.plyR", twoFaces + "1 2 1 1",
       "the file ended in valley mark 2 of 2", 4, 2},
      {"a negative vertex count", "a.ply2", "-4 0", "-4 vertices taken as none", 0, 0},
      {"a negative face count", "a.ply2", "1 -1 0 0 0", "-1 faces taken as none", 1, 0},
      {"a negative mark count", "a.plyR", twoFaces + "-7 1 3", "-7 ridge marks taken as none", 4,
       2},
      {"faces of no vertices", "a.ply2", "0 1 3 0 1 2", "1 face with unusable corners left out", 0,
       0},
      {"a corner out of range", "a.ply2", corners + "3 0 1 2 3 0 2 4",
       "1 face with unusable corners left out", 4, 1},
      {"a negative corner", "a.ply2", corners + "3 0 1 2 3 -1 2 3",
       "1 face with unusable corners left out", 4, 1},
      {"a repeated corner", "a.ply2", corners + "3 0 0 2 3 1 2 1",
       "2 faces with unusable corners left out", 4, 0},
      {"marks out of range", "a.plyR", twoFaces + "3 1 -1 4 2 2000000000",
       "3 marks out of range ignored", 4, 2},
      {"a mark of a written unused vertex", "a.plyR", twoFaces + "1 0 -1",
       "1 mark out of range ignored", 4, 2},
      {"a keyword where a count belongs", "a.ply2", "ply\nformat ascii 1.0\n",
       "the number of vertices could not be read", 0, 0},
      {"letters in a vertex", "a.ply2", "2 0 1 x 1 0 0 0", "vertex 1 of 2 could not be read", 2, 0},
      {"letters in a face", "a.ply2", corners + "3 0 1 2 3 0 b 3",
       "face 2 of 2 could not be read; 1 face with unusable corners left out", 4, 1},
      {"a fraction where an index belongs", "a.ply2", corners + "3 0 1.5 2 3 0 2 3",
       "face 1 of 2 could not be read; 1 face with unusable corners left out", 4, 1},
      {"a quadrilateral", "a.ply2", "4 1 0 0 0 1 0 0 1 1 0 0 1 0 4 0 1 2 3",
       "1 face of more than 3 corners taken as a triangle", 4, 1},
      {"a quadrilateral on two lines", "a.ply2", "4 1\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n4 0 1 2\n3\n",
       "1 face of more than 3 corners taken as a triangle", 4, 1},
      {"a decimal comma", "a.data", "1 0,5 1 1", "vertex 1 of 1 could not be read", 1, 0},
      {"bytes that are no text", "a.ply2",
       std::string("\x7f"
                   "ELF\0\0\1\2",
                   8),
       "the number of vertices could not be read", 0, 0},
      {"a NUL between numbers", "a.data", std::string("1 0 0\0 0", 8),
       "vertex 1 of 1 could not be read", 1, 0},
      {"a count below every int", "a.data", "-3000000000 1 2 3",
       "-3000000000 vertices taken as none", 0, 0},
      {"a mark count above every int", "a.plyR", twoFaces + " 3000000000 4294967297 1",
       "3000000000 ridge marks taken as none; 4294967297 valley marks taken as 1", 4, 2},
      {"more marks than could be there", "a.plyR", twoFaces + "2147483647 2147483647 1 2",
       "the file ended in ridge mark 3 of 2147483647", 4, 2},
      {"a byte-order mark", "a.ply2", "\xEF\xBB\xBF" + twoFaces,
       "the number of vertices could not be read", 0, 0},
  };
  return files;
}

bool nothingWasRead(const OpenResult& opened) {
  return opened.extent == ReadExtent::Nothing && opened.notice.find("reader") == std::string::npos;
}

TEST(MeshFile, BrokenFilesOpenAndTellWhatIsOdd) {
  const TemporaryFolder folder;
  for (const BrokenFile& broken : brokenFiles()) {
    const std::string path = folder.write(broken.name, broken.content);
    const OpenResult opened = openMeshFile(path);
    ASSERT_TRUE(opened.mesh) << broken.description << ": " << opened.error;
    EXPECT_EQ(opened.error, "") << broken.description;
    EXPECT_THAT(opened.notice,
                StartsWith(nothingWasRead(opened) ? "Nothing was read from " : "Opened "))
        << broken.description;
    EXPECT_THAT(opened.notice, EndsWith(path + ": " + broken.notice + ".")) << broken.description;
    EXPECT_EQ(opened.mesh->vertexCount, broken.vertexCount) << broken.description;
    EXPECT_EQ(opened.mesh->countValidFaces(), broken.validFaceCount) << broken.description;
    EXPECT_TRUE(opened.mesh->vertexNeighbours.built()) << broken.description;
    EXPECT_EQ(opened.mesh->faceAdjacency.size(), opened.mesh->faces.size()) << broken.description;
  }
}

TEST(MeshFile, OpeningTellsHowMuchOfTheFileWasRead) {
  for (const auto& [name, content, extent] :
       {std::tuple<std::string, std::string, ReadExtent>{"a.ply2", twoFaces, ReadExtent::Whole},
        {"a.ply2", twoFaces + "more", ReadExtent::Whole},
        {"a.ply2", "3 1 0 0 0 1 0 0 0 1 0 3 0 1 9", ReadExtent::Whole},
        {"a.data", "0", ReadExtent::Whole},
        {"a.plyR", twoFaces, ReadExtent::Partial},
        {"a.ply2", "3 1 0 0 0 1 0 0 0 1 0 3 0 1", ReadExtent::Partial},
        {"a.ply2", "4 1 0 0 0 1 0 0 1 1 0 0 1 0 4 0 1 2 3", ReadExtent::Partial},
        {"a.ply2", "3 x", ReadExtent::Partial},
        {"a.ply2", "-3 1", ReadExtent::Partial},
        {"a.ply2", "", ReadExtent::Nothing},
        {"a.ply2", "ply\nformat ascii 1.0\n", ReadExtent::Nothing},
        {"a.obj", "v 0 0 0\n", ReadExtent::Nothing}}) {
    EXPECT_EQ(openText(name, content).extent, extent) << name << ": " << content;
  }
}

TEST(MeshFile, WhatCannotBeReadIsZero) {
  const OpenResult opened = openText("a.ply2", "3 1 5 x 5 8 8 8");
  ASSERT_TRUE(opened.mesh);
  // "x" stops the scanner for good.
  EXPECT_THAT(opened.mesh->boxMax, ElementsAre(5, 0, 0));
  EXPECT_THAT(inFileUnits(*opened.mesh), ElementsAre(5, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_THAT(opened.mesh->faces, ElementsAre(-1, -1, -1));
}

TEST(MeshFile, AMarkThatCannotBeReadIsVertexZero) {
  const OpenResult opened = openText("a.plyR", twoFaces + "1 1 2");
  ASSERT_TRUE(opened.mesh);
  EXPECT_THAT(opened.mesh->ridgeMarks, ElementsAre(0, 0, 1, 0));
  EXPECT_THAT(opened.mesh->valleyMarks, ElementsAre(1, 0, 0, 0));
}

TEST(MeshFile, EveryPrefixOfAFileOpens) {
  const TemporaryFolder folder;
  const std::string whole = twoFaces + "2 1\n0\n3\n2\n";
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    const OpenResult opened = openMeshFile(folder.write("a.plyR", whole.substr(0, length)));
    ASSERT_TRUE(opened.mesh) << length;
    EXPECT_EQ(opened.error, "") << length;
  }
}

// --- Files that do not open ---

TEST(MeshFile, CountsThatNoArrayCanHoldAreAnError) {
  const TemporaryFolder folder;
  for (const auto& [content, asked] :
       {std::pair{"400000000 1", "400000000 vertices"},
        std::pair{"166666667 1", "166666667 vertices"},
        std::pair{"1 2000000000", "2000000000 faces"},
        std::pair{"3000000000 1", "3000000000 vertices"},
        std::pair{"4294967296 1", "4294967296 vertices"},
        std::pair{"0 +9999999999999999999999999999999", "999999999999999999999999... faces"}}) {
    const std::string path = folder.write("a.ply2", content);
    const OpenResult opened = openMeshFile(path);
    EXPECT_FALSE(opened.mesh);
    EXPECT_EQ(opened.error, "Cannot open " + path + ": it asks for " + asked +
                                " and 166666666 is the most that can be held.");
    EXPECT_EQ(opened.notice, "");
  }
}

// Eight million vertices are 96 MB of positions, and their numbers take 48 million bytes of text.
TEST(MeshFile, CountsThatTheTextCannotBearOutAreAnError) {
  const TemporaryFolder folder;
  for (const auto& [name, content, announced] :
       {std::tuple<std::string, std::string, std::string>{"a.data", "8000000", "8000000 vertices"},
        {"a.ply2", "8000000 1", "8000000 vertices and 1 face"},
        {"a.plyR", "1 8000000 0", "1 vertex and 8000000 faces"},
        {"a.ply", "3000000 3000000 0 0", "3000000 vertices and 3000000 faces"},
        {"a.ply2", "160000000 160000000", "160000000 vertices and 160000000 faces"}}) {
    const std::string path = folder.write(name, content);
    const OpenResult opened = openMeshFile(path);
    EXPECT_FALSE(opened.mesh) << content;
    std::string expected = "Cannot open " + path;
    expected += ": it announces " + announced;
    EXPECT_EQ(opened.error.substr(0, opened.error.find(", but only ")), expected);
    EXPECT_THAT(opened.error,
                EndsWith(content.size() < 10 ? ", but only 0 bytes follow." : " bytes follow."));
  }
}

TEST(MeshFile, AShortFileKeepsItsCountsWhereTheyAreHarmlessOrTheTextMayHoldThem) {
  const OpenResult small = openText("a.data", "1000000 1 2 3");
  ASSERT_TRUE(small.mesh) << small.error;
  EXPECT_EQ(small.mesh->vertexCount, 1000000);
  // Six million vertices, of which the text has fewer, at two bytes a number.
  std::string text = "6000000";
  text.resize(text.size() + 36000000, ' ');
  const OpenResult large = openText("a.data", text);
  ASSERT_TRUE(large.mesh) << large.error;
  EXPECT_EQ(large.mesh->vertexCount, 6000000);
  EXPECT_EQ(openText("a.data", text.substr(0, text.size() - 1)).mesh, nullptr) << "a byte less";
}

TEST(MeshFile, OpeningTellsOfABoxThatCouldNotBeMeasured) {
  const OpenResult rising =
      openText("a.ply2", "4 2\n0.13 0 0\n0.24 2 0\n0.37 0 1\n0.41 1 0\n3 0 1 2\n3 1 2 3\n");
  EXPECT_GT(rising.positionLoss, 1e-3);
  EXPECT_THAT(
      rising.notice,
      HasSubstr(
          ": its box could not be measured along x, so saving may move vertices by up to 0.0"));
  EXPECT_EQ(rising.extent, ReadExtent::Whole);
  const OpenResult far = openText(
      "a.ply2", "3 1\n2000000 0 -1500000\n3000000 2 -3000000\n2000000 0 -2000000\n3 0 1 2\n");
  EXPECT_THAT(far.notice, HasSubstr(" along x and z, so saving"));
  const OpenResult found = openText("a.ply2", twoFaces);
  EXPECT_EQ(found.positionLoss, 0.0);
}

TEST(MeshFile, WhatCannotBeOpenedIsAnError) {
  const TemporaryFolder folder;
  const std::string missing = folder.file("missing.ply2");
  EXPECT_EQ(openMeshFile(missing).error, "Cannot open " + missing + ": No such file or directory.");
  fs::create_directory(folder.file("folder.ply2"));
  EXPECT_EQ(openMeshFile(folder.file("folder.ply2")).error,
            "Cannot open " + folder.file("folder.ply2") + ": it is a folder.");
  EXPECT_EQ(openMeshFile("/dev/zero").error, "Cannot open /dev/zero: it is a device.");
  EXPECT_EQ(openMeshFile("").error, "Cannot open : No such file or directory.");
}

// --- Writing ---

/// What the plain calls write, number by number.
std::string printedByLibrary(const TriangleMesh& mesh, bool withMarks) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::tmpfile(), std::fclose);
  std::FILE* out = stream.get();
  std::fprintf(out, "%d\n", mesh.countUsedVertices());
  std::fprintf(out, "%d\n", mesh.countValidFaces());
  std::vector<int> newIndex(static_cast<std::size_t>(mesh.vertexCount), -1);
  int next = 0;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (mesh.neighbourCount(i) == 0) continue;
    newIndex[static_cast<std::size_t>(i)] = next++;
    const Vec3 p = mesh.position(i);
    std::fprintf(out, "%f ", p.x);
    std::fprintf(out, "%f ", p.y);
    std::fprintf(out, "%f\n", p.z);
  }
  const auto renumbered = [&](int i) { return newIndex[static_cast<std::size_t>(i)]; };
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    if (c[0] < 0) continue;
    std::fprintf(out, "3 ");
    std::fprintf(out, "%d ", renumbered(c[0]));
    std::fprintf(out, "%d ", renumbered(c[1]));
    std::fprintf(out, "%d\n", renumbered(c[2]));
  }
  if (withMarks) {
    const auto count = [](const std::vector<int>& marks) {
      return static_cast<int>(std::ranges::count_if(marks, [](int mark) { return mark != 0; }));
    };
    std::fprintf(out, "%d\n", count(mesh.ridgeMarks));
    std::fprintf(out, "%d\n", count(mesh.valleyMarks));
    for (const auto* marks : {&mesh.ridgeMarks, &mesh.valleyMarks}) {
      for (std::size_t i = 0; i < marks->size(); ++i) {
        if ((*marks)[i] != 0) std::fprintf(out, "%d\n", newIndex[i]);
      }
    }
  }
  std::string text(static_cast<std::size_t>(std::ftell(out)), '\0');
  std::rewind(out);
  text.resize(std::fread(text.data(), 1, text.size(), out));
  return text;
}

std::string written(const std::string& extension, const TriangleMesh& mesh) {
  const TemporaryFolder folder;
  std::FILE* stream = std::fopen(folder.file("a").c_str(), "w");
  writeMesh({stream, folder.file("a"), extension}, mesh);
  std::fclose(stream);
  return contentOf(folder.file("a"));
}

TEST(MeshFile, WritesWhatThePlainCallsWrite) {
  std::vector<test::NamedMesh> meshes = test::closedMeshes();
  for (auto& mesh : test::openMeshes()) meshes.push_back(std::move(mesh));
  for (auto& mesh : test::hostileMeshes()) meshes.push_back(std::move(mesh));
  meshes.push_back({"large", test::torus(60, 60)});
  for (auto& [name, mesh] : meshes) {
    EXPECT_EQ(written("ply2", mesh), printedByLibrary(mesh, false)) << name;
    EXPECT_EQ(written("plyR", mesh), printedByLibrary(mesh, true)) << name << " without marks";
    mesh.ridgeMarks.assign(static_cast<std::size_t>(mesh.vertexCount), 1);
    mesh.valleyMarks.assign(static_cast<std::size_t>(mesh.vertexCount), 0);
    if (mesh.vertexCount > 2) mesh.valleyMarks[2] = 7;
    EXPECT_EQ(written("plyR", mesh), printedByLibrary(mesh, true)) << name << " with marks";
    EXPECT_EQ(written("obj", mesh), "") << name;
  }
}

TEST(MeshFile, WritingLeavesOutUnusedVerticesAndInvalidFacesAndShiftsIndices) {
  TriangleMesh mesh =
      test::makeMesh({{9, 9, 9}, {0, 0, 0}, {1, 0, 0}, {0, 0.5F, 0}}, {{1, 2, 3}, {0, 0, 1}});
  mesh.ridgeMarks = {1, 0, 1, 0};
  mesh.valleyMarks = {0, 1, 0, 0};
  EXPECT_EQ(written("plyR", mesh),
            "3\n1\n"
            "0.000000 0.000000 0.000000\n1.000000 0.000000 0.000000\n0.000000 0.500000 0.000000\n"
            "3 0 1 2\n"
            "2\n1\n-1\n1\n0\n");
}

TEST(MeshFile, WhatIsWrittenReadsBackTheSame) {
  for (const auto& [name, original] : test::closedMeshes()) {
    const TemporaryFolder folder;
    TriangleMesh mesh = original;
    mesh.normalize();
    ASSERT_EQ(saveMeshFile(folder.file("a.ply2"), mesh).error, "") << name;
    const OpenResult opened = openMeshFile(folder.file("a.ply2"));
    ASSERT_TRUE(opened.mesh) << name;
    EXPECT_EQ(opened.notice, "") << name;
    EXPECT_EQ(opened.mesh->faces, original.faces) << name;
    for (std::size_t c = 0; c < mesh.vertices.size(); ++c) {
      // Six decimals in a file whose largest extent is at least 1 are 20e-6 in memory.
      EXPECT_NEAR(opened.mesh->vertices[c], mesh.vertices[c], 2e-5) << name;
    }
  }
}

// --- Saving ---

TEST(MeshFile, SavingGoesThroughTheUnitsOfTheFile) {
  const TemporaryFolder folder;
  OpenResult opened = openMeshFile(folder.write("in.ply2", "3 1 7 5 5 4 8 5 5 5 6 3 0 1 2"));
  ASSERT_TRUE(opened.mesh);
  TriangleMesh expected = *opened.mesh;
  expected.denormalize();
  expected.normalize();
  ASSERT_EQ(saveMeshFile(folder.file("out.ply2"), *opened.mesh).error, "");
  EXPECT_EQ(contentOf(folder.file("out.ply2")),
            "3\n1\n7.000000 5.000000 5.000000\n4.000000 8.000000 5.000000\n"
            "5.000000 5.000000 6.000000\n3 0 1 2\n");
  EXPECT_EQ(opened.mesh->vertices, expected.vertices);
  EXPECT_EQ(opened.mesh->boxMax, expected.boxMax);
  EXPECT_EQ(opened.mesh->boxMin, expected.boxMin);
  EXPECT_EQ(opened.mesh->extentTolerance, expected.extentTolerance);
}

TEST(MeshFile, SavingFindsTheBoxOfTheMeshAsItIsNow) {
  const TemporaryFolder folder;
  OpenResult opened = openMeshFile(folder.write("in.ply2", twoFaces));
  ASSERT_TRUE(opened.mesh);
  opened.mesh->vertices[3] = 20.0F;  // 1 unit further out, 10 in memory
  saveMeshFile(folder.file("out.ply2"), *opened.mesh);
  EXPECT_THAT(opened.mesh->boxMax, ElementsAre(3, 2, 1));
  EXPECT_DOUBLE_EQ(opened.mesh->extentTolerance, 3 * 0.05);
}

TEST(MeshFile, ANameWithoutExtensionGetsOne) {
  const TemporaryFolder folder;
  TriangleMesh mesh = test::tetrahedron();
  EXPECT_EQ(saveMeshFile(folder.file("out"), mesh).path, folder.file("out.ply2"));
  EXPECT_THAT(contentOf(folder.file("out.ply2")), StartsWith("4\n4\n"));
  EXPECT_EQ(saveMeshFile(folder.file("out."), mesh).path, folder.file("out..ply2"));
  EXPECT_EQ(folder.entryCount(), 2);
}

TEST(MeshFile, WithoutANameNothingIsSaved) {
  const TemporaryFolder folder;
  TriangleMesh mesh = test::tetrahedron();
  for (const std::string& path : {std::string(), folder.file("") + "/"}) {
    EXPECT_THAT(saveMeshFile(path, mesh).error, EndsWith(": a file name is missing.")) << path;
  }
  EXPECT_EQ(folder.entryCount(), 0);
}

TEST(MeshFile, AnExtensionWithoutWriterLeavesAnEmptyFile) {
  const TemporaryFolder folder;
  TriangleMesh mesh = test::tetrahedron();
  folder.write("out.obj", "something");
  const SaveResult saved = saveMeshFile(folder.file("out.obj"), mesh);
  EXPECT_EQ(saved.error, "");
  EXPECT_EQ(saved.notice, "Saved " + folder.file("out.obj") +
                              ": the extension \"obj\" has no writer, so the file is empty.");
  EXPECT_EQ(saved.path, folder.file("out.obj"));
  EXPECT_TRUE(fs::exists(folder.file("out.obj")));
  EXPECT_EQ(contentOf(folder.file("out.obj")), "");
}

TEST(MeshFile, AFailedSaveLeavesFileAndMeshAsTheyWere) {
  const TemporaryFolder folder;
  TriangleMesh mesh = test::icosphere(2);
  mesh.boxMax = {7, 8, 9};
  mesh.boxMin = {1, 2, 3.3F};
  mesh.extentTolerance = 0.123;
  const TriangleMesh before = mesh;
  fs::create_symlink("/dev/full", folder.file("full.ply2"));
  for (const std::string& path : {folder.file("none/out.ply2"), folder.file("full.ply2")}) {
    const SaveResult saved = saveMeshFile(path, mesh);
    EXPECT_THAT(saved.error, StartsWith("Cannot save " + path + ": "));
    EXPECT_EQ(mesh.vertices, before.vertices) << path;
    EXPECT_EQ(mesh.boxMax, before.boxMax) << path;
    EXPECT_EQ(mesh.boxMin, before.boxMin) << path;
    EXPECT_EQ(mesh.extentTolerance, before.extentTolerance) << path;
  }
}

TEST(MeshFile, HostileMeshesAreSavedAndOpenedAgain) {
  for (auto& [name, mesh] : test::hostileMeshes()) {
    const TemporaryFolder folder;
    EXPECT_EQ(saveMeshFile(folder.file("a.plyR"), mesh).error, "") << name;
    const OpenResult opened = openMeshFile(folder.file("a.plyR"));
    ASSERT_TRUE(opened.mesh) << name;
    EXPECT_EQ(opened.mesh->vertexCount, mesh.countUsedVertices()) << name;
    EXPECT_EQ(opened.mesh->faceCount, mesh.countValidFaces()) << name;
    EXPECT_EQ(opened.mesh->faces, mesh.compactCopy().faces) << name;
    EXPECT_EQ(opened.notice.empty(), countNonFiniteVertices(*opened.mesh) == 0) << name;
  }
}

TEST(MeshFile, OpeningTellsOfPositionsThatAreNotFinite) {
  const TemporaryFolder folder;
  const auto noticeOf = [&](const std::string& content) {
    const OpenResult opened = openMeshFile(folder.write("a.ply2", content));
    EXPECT_EQ(opened.extent, ReadExtent::Whole);
    return opened.notice;
  };
  EXPECT_THAT(noticeOf("3 1  0 0 nan  1 0 0  0 1 0  3 0 1 2"),
              EndsWith(": 1 vertex with a coordinate that is no finite number."));
  EXPECT_THAT(noticeOf("3 1  0 inf 0  1 0 -inf  0 1 0  3 0 1 2"),
              EndsWith(": 2 vertices with a coordinate that is no finite number."));
  const std::string noScale =
      ": the mesh cannot be scaled to the view, since all of it is at one place or its size is no "
      "finite number.";
  EXPECT_THAT(noticeOf("3 1  1 2 3  1 2 3  1 2 3  3 0 1 2"), EndsWith(noScale));
  EXPECT_THAT(noticeOf("3 1  -3e38 0 0  3e38 0 0  0 1 0  3 0 1 2"), EndsWith(noScale));
  EXPECT_EQ(noticeOf("3 1  0 0 0  1 0 0  0 1 0  3 0 1 2"), "");
}

TEST(MeshFile, SavingTellsOfPositionsThatAreNotFiniteAndOfVerticesLeftOut) {
  const TemporaryFolder folder;
  TriangleMesh broken = test::withNan();
  EXPECT_THAT(saveMeshFile(folder.file("a.ply2"), broken).notice,
              EndsWith(": some positions are not finite numbers."));
  TriangleMesh points = test::pointsOnly();
  EXPECT_THAT(saveMeshFile(folder.file("a.plyR"), points).notice,
              EndsWith(": no face uses any of the vertices, and such are left out, so the file "
                       "holds none."));
  TriangleMesh empty = test::emptyMesh();
  EXPECT_EQ(saveMeshFile(folder.file("a.ply2"), empty).notice, "");
}

TEST(MeshFile, NotANumberGoesThroughTheFile) {
  const TemporaryFolder folder;
  TriangleMesh mesh = test::withNan();
  saveMeshFile(folder.file("a.ply2"), mesh);
  const OpenResult opened = openMeshFile(folder.file("a.ply2"));
  ASSERT_TRUE(opened.mesh);
  EXPECT_TRUE(std::isnan(opened.mesh->vertices[7]));
  EXPECT_FALSE(std::isnan(opened.mesh->vertices[6]));
}

}  // namespace
}  // namespace gravlin
