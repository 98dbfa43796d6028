#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "mesh/io/MeshImport.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

using test::TemporaryFolder;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

ImportResult importText(const std::string& name, const std::string& content) {
  const TemporaryFolder folder;
  return importMeshFile(folder.write(name, content));
}

const std::string ply =
    "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\n"
    "property float z\nend_header\n1 2 3\n";

TEST(MeshImport, TheContentDecidesNotTheName) {
  const std::string off = "OFF 1 0 0\n1 2 3\n";
  const std::string obj = "v 1 2 3\n";
  for (const char* name : {"a.ply", "a.obj", "a.stl", "a.off", "a.txt", "a"}) {
    for (const auto& [content, format] :
         {std::pair{ply, "Stanford PLY"}, {off, "OFF"}, {obj, "Wavefront OBJ"}}) {
      const ImportResult result = importText(name, content);
      ASSERT_NE(result.mesh, nullptr) << result.error;
      EXPECT_EQ(result.format->name, format);
      EXPECT_THAT(result.mesh->positions, ElementsAre(1, 2, 3));
    }
  }
  const ImportResult stl = importText("a.obj", "solid\nendsolid\n");
  ASSERT_NE(stl.mesh, nullptr) << stl.error;
  EXPECT_EQ(stl.format->name, "STL");
}

TEST(MeshImport, WhereTheContentTellsNothingTheNameChoosesWhoComplains) {
  EXPECT_THAT(importText("a.off", "4 2 0\n").error,
              EndsWith("a.off: line 1: the file does not begin with OFF."));
  EXPECT_THAT(importText("a.STL", "?").error,
              EndsWith("a.STL: byte 1: the file ends before the number of triangles."));
}

TEST(MeshImport, AFileOfNoKnownFormatIsRefusedWithTheWayToGo) {
  for (const char* name : {"a.ply2", "a.txt", "a"}) {
    const ImportResult result = importText(name, "4 2 0 0 0\n");
    EXPECT_EQ(result.mesh, nullptr);
    EXPECT_THAT(result.error, HasSubstr("it is neither a PLY, an OBJ, an STL nor an OFF file"));
  }
  EXPECT_THAT(importText("a.ply", "").error, EndsWith("a.ply: it is empty."));
}

TEST(MeshImport, AFileThatCannotBeReadIsToldWithItsReason) {
  const TemporaryFolder folder;
  EXPECT_EQ(importMeshFile(folder.file("no.ply")).error,
            "Cannot import " + folder.file("no.ply") + ": No such file or directory.");
  EXPECT_EQ(importMeshFile(folder.file("")).error,
            "Cannot import " + folder.file("") + ": it is a folder.");
}

TEST(MeshImport, EveryWarningHasItsWords) {
  EXPECT_EQ(warningText({}), "");
  EXPECT_EQ(warningText({.polygons = 1, .unusableFaces = 1, .incompleteFaces = 2}),
            "1 polygon cut into triangles; 1 face with corners that do not exist left out; 2 faces "
            "of fewer than 3 corners left out");
  EXPECT_EQ(
      warningText({.bytesBehind = 1, .endMissing = true, .skippedElements = {"edge"}}),
      "1 byte at the end not read; the file may be cut off, for its last word is missing; the "
      "elements \"edge\" not read");
}

}  // namespace
}  // namespace gravlin
