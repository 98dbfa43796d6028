#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "doc/CGravlinDoc.h"
#include "support/ScriptedOutside.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// A square of one metre, half a million metres away.
const std::string farObj =
    "v 500000.123 0 0\nv 500001.123 0 0\nv 500001.123 1 0\nv 500000.123 1 0.5\nf 1 2 3\nf 1 3 4\n";

class ImportCommand : public ::testing::Test {
 protected:
  test::TemporaryFolder folder;
  const std::string objPath = folder.write("far.obj", farObj);
  const std::string plyPath =
      folder.write("quad.ply",
                   "ply\nformat ascii 1.0\nelement vertex 4\nproperty float x\nproperty float y\n"
                   "property float z\nproperty uchar red\nelement face 1\n"
                   "property list uchar int vertex_indices\nend_header\n"
                   "0 0 0 9\n2 0 0 9\n2 2 0 9\n0 2 0 9\n4 0 1 2 3\n");
  test::ScriptedOutside outside;
  CGravlinDoc doc{outside};
};

TEST_F(ImportCommand, TheFileIsChosenFirstAndWeldedWhereTheDialogSaysSo) {
  const std::string split = folder.write(
      "split.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3\nf 4 5 6\n");
  outside.fileAnswers = {split, split};
  outside.dialogAnswers = {test::ok(), test::okWith({{"weld", "1"}})};
  doc.OnFileImport();
  ASSERT_NE(doc.mesh(), nullptr);
  EXPECT_EQ(doc.mesh()->vertexCount, 6);
  EXPECT_EQ(outside.statuses.back(),
            "Imported " + split +
                ": 6 vertices, 2 faces. 2 open sides of faces coincide: Import with \"Weld\" joins "
                "them.");
  EXPECT_THAT(outside.calls, ::testing::ElementsAre("open file", "dialog CImportDlg", "redraw",
                                                    StartsWith("status ")));
  doc.OnFileImport();
  EXPECT_EQ(doc.mesh()->vertexCount, 4);
  EXPECT_EQ(outside.statuses.back(),
            "Imported " + split + ": 4 vertices, 2 faces; 2 vertices welded.");
  EXPECT_TRUE(outside.finished());
}

TEST_F(ImportCommand, CancelInEitherDialogChangesNothing) {
  outside.fileAnswers = {std::nullopt, objPath};
  outside.dialogAnswers = {test::cancel()};
  doc.OnFileImport();
  doc.OnFileImport();
  EXPECT_EQ(doc.mesh(), nullptr);
  EXPECT_TRUE(outside.finished());
}

TEST_F(ImportCommand, TheSentenceTellsWhatWasCutAndWhatWasNotKept) {
  ASSERT_TRUE(doc.importFile(plyPath, false));
  EXPECT_EQ(outside.statuses.back(), "Imported " + plyPath +
                                         ": 4 vertices, 2 faces; 1 polygon cut into triangles; the "
                                         "numbers of vertices (red) not kept.");
  EXPECT_EQ(doc.displayMode, FlatShading);
  EXPECT_EQ(doc.path, plyPath);
  EXPECT_FALSE(doc.modified);
}

TEST_F(ImportCommand, AFileThatCannotBeReadLeavesTheMeshAsItIs) {
  ASSERT_TRUE(doc.importFile(objPath, false));
  const std::string broken = folder.write("broken.obj", "v 0 0 0\nv 1 0\n");
  EXPECT_FALSE(doc.importFile(broken, false));
  EXPECT_THAT(outside.messages,
              ElementsAre("Cannot import " + broken + ": line 2: a vertex needs three numbers."));
  EXPECT_EQ(doc.mesh()->vertexCount, 4);
  EXPECT_EQ(doc.path, objPath);
}

TEST_F(ImportCommand, AMeshWithoutFacesIsShownAsPoints) {
  ASSERT_TRUE(doc.importFile(folder.write("points.obj", "v 0 0 0\nv 1 2 3\n"), false));
  EXPECT_EQ(doc.displayMode, Points);
}

/// In and out, with only the rounding in the view's cube on the way.
TEST_F(ImportCommand, SaveGivesBackWhatCameIn) {
  ASSERT_TRUE(doc.importFile(objPath, false));
  ASSERT_TRUE(doc.saveFile(folder.file("far.ply2")));
  EXPECT_THAT(outside.messages, IsEmpty());
  EXPECT_THAT(test::contentOf(folder.file("far.ply2")),
              StartsWith("4\n2\n500000.123000 0.000000 0.000000\n500001.123000 "));
  EXPECT_EQ(outside.statuses.back(), "Saved far.ply2.");
}

/// Undo, subdivision and simplification keep the place that the mesh came from.
TEST_F(ImportCommand, WhatCommandsMakeOfTheMeshLiesWhereItCameFrom) {
  ASSERT_TRUE(doc.importFile(objPath, false));
  const FileFrame frame = doc.mesh()->fileFrame();
  EXPECT_NEAR(frame.origin[0], 500000.623, 1e-9);
  outside.dialogAnswers = {test::okWith({{"method", "Linear"}})};
  doc.OnSubdivision();
  EXPECT_EQ(doc.mesh()->faceCount, 8);
  EXPECT_EQ(doc.mesh()->fileFrame(), frame);
  outside.dialogAnswers = {test::ok()};
  doc.OnSimplification();
  EXPECT_EQ(doc.mesh()->fileFrame(), frame);
  doc.OnEditUndo();
  EXPECT_EQ(doc.mesh()->fileFrame(), frame);
  ASSERT_TRUE(doc.openFile(folder.write("a.ply2", "3 1 0 0 0 1 0 0 0 1 0 3 0 1 2")));
  EXPECT_FALSE(doc.mesh()->importFrame);
}

// --- Open on a standard file ---

TEST_F(ImportCommand, OpenAsksHowToReadAFileOfAUsualFormat) {
  outside.fileAnswers = {plyPath, plyPath, plyPath};
  outside.standardFileAnswers = {StandardFileAnswer::Cancel, StandardFileAnswer::OpenAsItIs,
                                 StandardFileAnswer::Import};
  doc.OnFileOpen();
  EXPECT_EQ(outside.count("standard file Stanford PLY"), 1);
  EXPECT_EQ(doc.mesh(), nullptr);
  doc.OnFileOpen();
  ASSERT_NE(doc.mesh(), nullptr);
  EXPECT_EQ(doc.mesh()->vertexCount, 0) << "Open knows no header";
  doc.OnFileOpen();
  EXPECT_EQ(doc.mesh()->vertexCount, 4);
  EXPECT_TRUE(outside.finished());
}

/// A file of five numbers a vertex has the same extension and another first line.
TEST_F(ImportCommand, OpenReadsItsOwnPlyFilesWithoutAsking) {
  outside.fileAnswers = {folder.write("own.ply", "3 1  0 1 2 9 9  1 0 0 9 9  0 0 1 9 9  3 0 1 2")};
  doc.OnFileOpen();
  ASSERT_NE(doc.mesh(), nullptr);
  EXPECT_EQ(doc.mesh()->vertexCount, 3);
  EXPECT_FALSE(doc.mesh()->importFrame);
}

TEST_F(ImportCommand, FilesThatAreOnlyNamedAreImportedWhereTheyCanBe) {
  ASSERT_TRUE(doc.loadFile(objPath));
  EXPECT_TRUE(doc.mesh()->importFrame);
  ASSERT_TRUE(doc.loadFile(folder.write("a.ply2", "3 1 0 0 0 1 0 0 0 1 0 3 0 1 2")));
  EXPECT_FALSE(doc.mesh()->importFrame);
}

}  // namespace
}  // namespace gravlin
