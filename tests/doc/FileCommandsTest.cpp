#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "doc/CGravlinDoc.h"
#include "support/Meshes.h"
#include "support/ScriptedOutside.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* square = "4 2\n0 0 0\n4 0 0\n4 2 0\n0 2 0\n3 0 1 2\n3 0 2 3\n";
constexpr const char* triangle = "3 1\n0 0 5\n1 0 4\n0 1 3\n3 0 1 2\n";

class FileCommands : public ::testing::Test {
 protected:
  void open(const std::string& path) {
    outside.fileAnswers.push_back(path);
    doc.OnFileOpen();
  }
  void saveAs(const std::string& path) {
    outside.fileAnswers.push_back(path);
    doc.OnFileSaveAs();
  }
  /// What an undoable command does around its work.
  void moveVertexZero(float x) {
    doc.keepUndoCopy();
    doc.currentMesh->vertices[0] = x;
    doc.geometryChanged();
    doc.redraw();
  }

  test::TemporaryFolder folder;
  const std::string squarePath = folder.write("square.ply2", square);
  const std::string trianglePath = folder.write("triangle.ply2", triangle);
  test::ScriptedOutside outside;
  CGravlinDoc doc{outside};
};

TEST_F(FileCommands, OpenLoadsTheMeshAndShowsItFlatWithBothNormals) {
  doc.displayMode = WireFrame;
  outside.whenRedrawn = [&] {
    EXPECT_EQ(doc.displayMode, FlatShading);
    EXPECT_FALSE(doc.needsRecompute);
    ASSERT_NE(doc.currentMesh, nullptr);
    EXPECT_EQ(doc.currentMesh->faceNormals.size(), 6U);
    EXPECT_EQ(doc.currentMesh->vertexNormals.size(), 12U);
  };
  open(squarePath);
  EXPECT_EQ(outside.count("redraw"), 1);
  EXPECT_EQ(doc.currentMesh->countUsedVertices(), 4);
  EXPECT_EQ(doc.path, squarePath);
  EXPECT_FALSE(doc.modified);
  EXPECT_EQ(doc.undoMesh, nullptr);
  EXPECT_THAT(outside.messages, IsEmpty());
}

TEST_F(FileCommands, OpenReplacesTheMeshOfTheSameDocument) {
  open(squarePath);
  doc.currentMesh->pickedFace = 1;
  doc.currentMesh->maxCurvature.assign(4, 1.0);
  open(trianglePath);
  EXPECT_EQ(doc.currentMesh->vertexCount, 3);
  EXPECT_EQ(doc.currentMesh->pickedFace, std::nullopt);
  EXPECT_THAT(doc.currentMesh->maxCurvature, IsEmpty());
  EXPECT_EQ(doc.path, trianglePath);
}

TEST_F(FileCommands, CancellingTheFileDialogsChangesNothing) {
  open(squarePath);
  moveVertexZero(1.0F);
  outside.forget();
  outside.fileAnswers = {std::nullopt, std::nullopt};
  doc.OnFileOpen();
  doc.OnFileSaveAs();
  EXPECT_THAT(outside.calls, ElementsAre("open file", "save file"));
  EXPECT_EQ(doc.currentMesh->vertexCount, 4);
  EXPECT_TRUE(doc.modified);
}

TEST_F(FileCommands, AFileThatCannotBeOpenedLeavesEverythingAndShowsOneMessage) {
  open(squarePath);
  moveVertexZero(1.0F);
  doc.displayMode = Points;
  outside.forget();
  for (const std::string& bad : {folder.file("missing.ply2"), folder.file("."),
                                 folder.write("huge.ply2", "2000000000 2000000000 0 0 0")}) {
    outside.forget();
    EXPECT_FALSE(doc.openFile(bad)) << bad;
    ASSERT_EQ(outside.messages.size(), 1U) << bad;
    EXPECT_THAT(outside.messages[0], HasSubstr(bad));
    EXPECT_THAT(outside.calls, ElementsAre(StartsWith("message ")));
    EXPECT_EQ(doc.currentMesh->vertexCount, 4);
    EXPECT_EQ(doc.path, squarePath);
    EXPECT_EQ(doc.displayMode, Points);
    EXPECT_TRUE(doc.modified);
    EXPECT_NE(doc.undoMesh, nullptr);
  }
}

TEST_F(FileCommands, AnOddFileOpensAndTheStatusBarTellsWhatWasOdd) {
  for (const auto& [name, content, oddity] :
       {std::tuple<std::string, std::string, std::string>{"short.ply2", "3 1 0 0 0 1", "ended"},
        {"mesh.PLY2", square, "PLY2"},
        {"mesh.obj", "v 0 0 0\n", "obj"},
        {"bad.ply2", "3 1 0 0 0 1 0 0 0 1 0 3 0 1 9", "unusable"}}) {
    outside.forget();
    EXPECT_TRUE(doc.openFile(folder.write(name, content)));
    EXPECT_THAT(outside.messages, IsEmpty()) << name;
    ASSERT_FALSE(outside.statuses.empty()) << name;
    EXPECT_THAT(outside.statuses.back(), HasSubstr(oddity)) << name;
    EXPECT_THAT(outside.statuses.back(), EndsWith(".")) << name;
  }
}

TEST_F(FileCommands, AProperFileClearsTheStatusBar) {
  outside.showStatus("Something about another mesh.");
  EXPECT_TRUE(doc.openFile(squarePath));
  EXPECT_EQ(outside.statuses.back(), "");
}

TEST_F(FileCommands, OpenKeepsTheUndoSlotSoThatUndoBringsTheEarlierFileBack) {
  open(squarePath);
  const std::vector<float> unsmoothed = doc.currentMesh->vertices;
  moveVertexZero(1.0F);
  open(trianglePath);
  ASSERT_NE(doc.undoMesh, nullptr);
  doc.OnEditUndo();
  EXPECT_EQ(doc.currentMesh->vertices, unsmoothed);
  EXPECT_EQ(doc.currentMesh->faceCount, 2);
  EXPECT_EQ(doc.path, trianglePath);
  EXPECT_TRUE(doc.modified) << "what is shown is not what the opened file holds";
}

TEST_F(FileCommands, SaveWritesTheUnitsOfTheFile) {
  open(squarePath);
  const std::string out = folder.file("out.ply2");
  saveAs(out);
  EXPECT_EQ(test::contentOf(out),
            "4\n2\n"
            "0.000000 0.000000 0.000000\n4.000000 0.000000 0.000000\n"
            "4.000000 2.000000 0.000000\n0.000000 2.000000 0.000000\n"
            "3 0 1 2\n3 0 2 3\n");
  EXPECT_EQ(doc.path, out);
  EXPECT_EQ(outside.count("redraw"), 2);
}

TEST_F(FileCommands, SaveSaysSoUntilTheShapeChanges) {
  open(squarePath);
  saveAs(folder.file("out.ply2"));
  EXPECT_EQ(outside.statuses.back(), "Saved out.ply2.");
  moveVertexZero(1.0F);
  EXPECT_EQ(outside.statuses.back(), "");
}

TEST_F(FileCommands, WhatWasOddAboutAFileStaysInTheStatusBarAfterASaveBeforeIt) {
  open(squarePath);
  saveAs(folder.file("out.ply2"));
  open(folder.write("bad.ply2", "3 1 0 0 0 1 0 0 0 1 0 3 0 1 9"));
  ASSERT_THAT(outside.statuses.back(), HasSubstr("unusable"));
  moveVertexZero(1.0F);
  EXPECT_THAT(outside.statuses.back(), HasSubstr("unusable"));
}

TEST_F(FileCommands, SaveGivesANameWithoutExtensionTheUsualOne) {
  open(squarePath);
  saveAs(folder.file("out"));
  EXPECT_EQ(outside.statuses.back(), "Saved out.ply2.");
  EXPECT_EQ(doc.path, folder.file("out.ply2"));
  EXPECT_TRUE(std::filesystem::exists(folder.file("out.ply2")));
}

TEST_F(FileCommands, SaveEndsTheModificationAndUndoBringsItBack) {
  open(squarePath);
  moveVertexZero(1.0F);
  EXPECT_TRUE(doc.modified);
  saveAs(folder.file("out.ply2"));
  EXPECT_FALSE(doc.modified);
  doc.OnEditUndo();
  EXPECT_TRUE(doc.modified) << "the file holds what was undone";
}

TEST_F(FileCommands, AFormatThatHoldsNothingDoesNotCountAsSaved) {
  open(squarePath);
  moveVertexZero(1.0F);
  saveAs(folder.file("out.obj"));
  EXPECT_EQ(test::contentOf(folder.file("out.obj")), "");
  EXPECT_TRUE(doc.modified);
  EXPECT_THAT(outside.statuses.back(), HasSubstr("obj"));
  EXPECT_THAT(outside.messages, IsEmpty());
}

TEST_F(FileCommands, SavingDoesNotLoseWhatCouldNotBeReadFromTheFile) {
  std::filesystem::create_symlink(folder.file("broken.ply2"), folder.file("link.ply2"));
  for (const std::string content : {"ply\nformat binary_little_endian 1.0\n", "no mesh", "-4 1",
                                    "4 2\n0 0 0\n4 0 0\n4 2 x\n0 2 0\n3 0 1 2\n3 0 2 3\n"}) {
    open(folder.write("broken.ply2", content));
    for (const char* name : {"broken.ply2", "link.ply2"}) {
      outside.forget();
      EXPECT_FALSE(doc.saveFile(folder.file(name))) << content;
      ASSERT_EQ(outside.messages.size(), 1U) << content;
      EXPECT_THAT(outside.messages[0], StartsWith("Cannot save " + folder.file(name) + ": "));
      EXPECT_EQ(test::contentOf(folder.file("broken.ply2")), content);
    }
    EXPECT_TRUE(doc.saveFile(folder.file("copy.ply2"))) << content;
    EXPECT_FALSE(doc.saveFile(folder.file("broken.ply2"))) << "still only there: " << content;
  }
}

TEST_F(FileCommands, SavingDoesNotReplaceGoodPositionsInItsFileByBrokenOnes) {
  const auto expectRefused = [&](const std::string& name) {
    outside.forget();
    const std::string content = test::contentOf(folder.file(name));
    EXPECT_FALSE(doc.saveFile(folder.file(name)));
    ASSERT_EQ(outside.messages.size(), 1U) << name;
    EXPECT_THAT(outside.messages[0], HasSubstr("not finite numbers")) << name;
    EXPECT_EQ(test::contentOf(folder.file(name)), content);
    EXPECT_TRUE(doc.modified);
  };
  open(squarePath);
  moveVertexZero(1.0F);
  EXPECT_TRUE(doc.saveFile(folder.file("copy.ply2")));
  moveVertexZero(std::numeric_limits<float>::quiet_NaN());
  expectRefused("copy.ply2");
  expectRefused(std::filesystem::path(squarePath).filename().string());
  // Elsewhere the broken shape can be kept, and is told of.
  EXPECT_TRUE(doc.saveFile(folder.file("broken.ply2")));
  EXPECT_THAT(outside.statuses.back(), HasSubstr("not finite numbers"));
  EXPECT_TRUE(doc.modified);
}

TEST_F(FileCommands, SavingDoesNotEmptyAFileOfPoints) {
  const std::string content = "2 0\n0 0 0\n1 2 3\n";
  open(folder.write("points.ply2", content));
  outside.forget();
  EXPECT_FALSE(doc.saveFile(folder.file("points.ply2")));
  ASSERT_EQ(outside.messages.size(), 1U);
  EXPECT_THAT(outside.messages[0], HasSubstr("no face uses any of the vertices"));
  EXPECT_EQ(test::contentOf(folder.file("points.ply2")), content);
}

TEST_F(FileCommands, SavingDoesNotEmptyTheFileThatTheMeshCameFrom) {
  for (const char* name : {"cloud.data", "scan.ply", "model.obj", "mesh.PLY2"}) {
    open(folder.write(name, "3 0\n0 0 0 0 0\n"));
    outside.forget();
    EXPECT_FALSE(doc.saveFile(folder.file(name)));
    ASSERT_EQ(outside.messages.size(), 1U) << name;
    EXPECT_THAT(outside.messages[0], HasSubstr("no writer")) << name;
    EXPECT_EQ(test::contentOf(folder.file(name)), "3 0\n0 0 0 0 0\n");
  }
}

TEST_F(FileCommands, AnEmptyFileHasNothingToLose) {
  for (const char* name : {"new.ply2", "new.data", "new.obj"}) {
    open(folder.write(name, ""));
    EXPECT_TRUE(doc.saveFile(folder.file(name))) << name;
  }
  EXPECT_EQ(test::contentOf(folder.file("new.ply2")), "0\n0\n");
  EXPECT_THAT(outside.messages, IsEmpty());
}

TEST_F(FileCommands, ASaveThatFailsShowsOneMessageAndChangesNothing) {
  open(squarePath);
  moveVertexZero(1.0F);
  const std::vector<float> vertices = doc.currentMesh->vertices;
  outside.forget();
  saveAs(folder.file("no/such/folder/out.ply2"));
  EXPECT_THAT(outside.calls, ElementsAre("save file", StartsWith("message ")));
  EXPECT_EQ(doc.currentMesh->vertices, vertices);
  EXPECT_EQ(doc.path, squarePath);
  EXPECT_TRUE(doc.modified);
}

TEST_F(FileCommands, SaveWithoutAMeshTellsSoAndAsksForNoFile) {
  doc.OnFileSaveAs();
  EXPECT_THAT(outside.calls, ElementsAre("message There is no mesh to save."));
  outside.forget();
  EXPECT_FALSE(doc.saveFile(folder.file("out.ply2")));
  EXPECT_THAT(outside.calls, ElementsAre("message There is no mesh to save."));
  EXPECT_FALSE(std::filesystem::exists(folder.file("out.ply2")));
}

TEST_F(FileCommands, SaveThenOpenGivesTheSameMesh) {
  doc.currentMesh = std::make_unique<TriangleMesh>(test::bumpyGrid(4, 3));
  const TriangleMesh before = *doc.currentMesh;
  saveAs(folder.file("grid.ply2"));
  open(folder.file("grid.ply2"));
  EXPECT_EQ(doc.currentMesh->faces, before.faces);
  EXPECT_EQ(doc.currentMesh->vertexKind, before.vertexKind);
}

TEST_F(FileCommands, AreSafeOnHostileMeshes) {
  for (const test::NamedMesh& hostile : test::hostileMeshes()) {
    SCOPED_TRACE(hostile.name);
    doc.currentMesh = std::make_unique<TriangleMesh>(hostile.mesh);
    for (const char* name : {"a.ply2", "a.plyR", "a.data"}) {
      EXPECT_TRUE(doc.saveFile(folder.file(name)));
      EXPECT_TRUE(doc.openFile(folder.file(name)));
      doc.currentMesh = std::make_unique<TriangleMesh>(hostile.mesh);
    }
  }
}

}  // namespace
}  // namespace gravlin
