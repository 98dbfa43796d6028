#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "doc/CGravlinDoc.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"
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
    test::meshOf(doc).vertices[0] = x;
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
    ASSERT_NE(doc.mesh(), nullptr);
    EXPECT_EQ(doc.mesh()->faceNormals.size(), 6U);
    EXPECT_EQ(doc.mesh()->vertexNormals.size(), 12U);
  };
  open(squarePath);
  EXPECT_EQ(outside.count("redraw"), 1);
  EXPECT_EQ(doc.mesh()->countUsedVertices(), 4);
  EXPECT_EQ(doc.path, squarePath);
  EXPECT_FALSE(doc.modified);
  EXPECT_EQ(doc.undoMesh, nullptr);
  EXPECT_THAT(outside.messages, IsEmpty());
}

TEST_F(FileCommands, OpenReplacesTheMeshOfTheSameDocument) {
  open(squarePath);
  test::meshOf(doc).pickedFace = 1;
  test::meshOf(doc).maxCurvature.assign(4, 1.0);
  open(trianglePath);
  EXPECT_EQ(doc.mesh()->vertexCount, 3);
  EXPECT_EQ(doc.mesh()->pickedFace, std::nullopt);
  EXPECT_THAT(doc.mesh()->maxCurvature, IsEmpty());
  EXPECT_EQ(doc.path, trianglePath);
}

TEST_F(FileCommands, WhatWasSaidSinceAFaceWasPickedOutlivesThePictureOfTheFace) {
  open(squarePath);
  doc.pickFace(0);
  saveAs(folder.file("out.ply2"));
  doc.OnPoints();
  EXPECT_EQ(outside.statuses.back(), "Saved out.ply2.");
}

TEST_F(FileCommands, CancellingTheFileDialogsChangesNothing) {
  open(squarePath);
  moveVertexZero(1.0F);
  outside.forget();
  outside.fileAnswers = {std::nullopt, std::nullopt};
  doc.OnFileOpen();
  doc.OnFileSaveAs();
  EXPECT_THAT(outside.calls, ElementsAre("open file", "save file"));
  EXPECT_EQ(doc.mesh()->vertexCount, 4);
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
    EXPECT_EQ(doc.mesh()->vertexCount, 4);
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
  const std::vector<float> unsmoothed = doc.mesh()->vertices;
  moveVertexZero(1.0F);
  open(trianglePath);
  ASSERT_NE(doc.undoMesh, nullptr);
  doc.OnEditUndo();
  EXPECT_EQ(doc.mesh()->vertices, unsmoothed);
  EXPECT_EQ(doc.mesh()->faceCount, 2);
  EXPECT_TRUE(doc.modified) << "what is shown is not what the opened file holds";
}

TEST_F(FileCommands, UndoAfterOpenTellsThatTheShapeIsAnotherFilesAndOffersNoName) {
  open(squarePath);
  moveVertexZero(1.0F);
  open(trianglePath);
  doc.OnEditUndo();
  EXPECT_EQ(
      outside.statuses.back(),
      "Undo has brought back the shape from before triangle.ply2 was opened; choose a name to "
      "save it.");
  EXPECT_EQ(doc.path, "");
  EXPECT_EQ(doc.meshOrigin.path, squarePath);
  // Within one file it keeps its name and has nothing to tell.
  moveVertexZero(1.0F);
  saveAs(folder.file("out.ply2"));
  doc.OnEditUndo();
  EXPECT_EQ(outside.statuses.back(), "");
  EXPECT_EQ(doc.path, folder.file("out.ply2"));
}

TEST_F(FileCommands, UndoAfterOpenTellsOfAnotherFilesShapeAndOfItsBrokenPositionsAtOnce) {
  open(squarePath);
  moveVertexZero(std::numeric_limits<float>::quiet_NaN());
  moveVertexZero(1.0F);  // what is kept for undo has a position that is none
  open(trianglePath);
  doc.OnEditUndo();
  EXPECT_EQ(
      outside.statuses.back(),
      "Undo has brought back the shape from before triangle.ply2 was opened; choose a name to "
      "save it. Some positions are not finite numbers.");
}

TEST_F(FileCommands, AShapeThatUndoBringsBackIsStillNotSavedOverTheDamagedFileItCameFrom) {
  const std::string content = "4 2\n0 0 0\n4 0 0\n4 2 0\n0 2 0\n3 0 1 2\n3 0 2";
  const std::string damaged = folder.write("damaged.ply2", content);
  open(damaged);
  moveVertexZero(1.0F);
  open(trianglePath);
  doc.OnEditUndo();
  EXPECT_FALSE(doc.saveFile(damaged));
  ASSERT_FALSE(outside.messages.empty());
  EXPECT_THAT(outside.messages.back(), HasSubstr("not all of it could be read"));
  EXPECT_EQ(test::contentOf(damaged), content);
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

TEST_F(FileCommands, ANameWithoutAWriterBecomesAnEmptyFileWithAMessageAndDoesNotCountAsSaved) {
  open(squarePath);
  moveVertexZero(1.0F);
  outside.forget();
  saveAs(folder.file("out.obj"));
  EXPECT_TRUE(std::filesystem::exists(folder.file("out.obj")));
  EXPECT_EQ(test::contentOf(folder.file("out.obj")), "");
  EXPECT_THAT(outside.messages,
              ElementsAre(folder.file("out.obj") +
                          " is empty: Save writes no .obj files. The mesh is not saved; choose a "
                          "name that ends in .ply2 or .plyR. File > Export writes them."));
  EXPECT_TRUE(doc.modified);
  EXPECT_EQ(doc.path, squarePath) << "there is nothing in the other one";
}

TEST_F(FileCommands, OnlyWhatExportWritesIsSaidToBeExported) {
  open(squarePath);
  saveAs(folder.file("out.png"));
  EXPECT_THAT(outside.messages,
              ElementsAre(folder.file("out.png") +
                          " is empty: Save writes no .png files. The mesh is not saved; choose a "
                          "name that ends in .ply2 or .plyR."));
}

TEST_F(FileCommands, AFileIsNotLeftEmptyUnasked) {
  open(squarePath);
  const std::string model = folder.write("model.obj", "v 1 2 3\n");
  const std::string question =
      "question Save writes no .obj files: the file would be left empty. File > Export writes "
      "them.";
  outside.forget();
  outside.confirmAnswers = {false};
  saveAs(model);
  EXPECT_THAT(outside.calls, ElementsAre("save file", question));
  EXPECT_EQ(test::contentOf(model), "v 1 2 3\n");
  outside.forget();
  outside.confirmAnswers = {true};
  saveAs(model);
  ASSERT_GT(outside.calls.size(), 1U);
  EXPECT_EQ(outside.calls[1], question);
  EXPECT_EQ(test::contentOf(model), "");
  EXPECT_THAT(outside.messages, IsEmpty()) << "it was said before";
  EXPECT_TRUE(outside.finished());
}

/// Its x only rises, so the middle of its box lies half a million away.
constexpr const char* rising = "4 2\n0.13 0 0\n0.24 2 0\n0.37 0 1\n0.41 1 0\n3 0 1 2\n3 1 2 3\n";

TEST_F(FileCommands, SavingAsksBeforeItMovesTheVerticesOfItsFile) {
  const std::string path = folder.write("rising.ply2", rising);
  std::filesystem::create_hard_link(path, folder.file("same.ply2"));
  open(path);
  for (const char* name : {"rising.ply2", "same.ply2"}) {
    outside.forget();
    outside.confirmAnswers = {false};
    EXPECT_FALSE(doc.saveFile(folder.file(name)));
    ASSERT_EQ(outside.calls.size(), 1U) << name;
    EXPECT_THAT(outside.calls[0], StartsWith("question Saving over " + std::string(name) +
                                             " moves its vertices by up to 0.0"));
    EXPECT_THAT(outside.calls[0],
                HasSubstr(" % of the extent of the mesh, since its box was not "));
    EXPECT_EQ(test::contentOf(path), rising) << name;
  }
  outside.forget();
  outside.confirmAnswers = {true};
  EXPECT_TRUE(doc.saveFile(path));
  EXPECT_NE(test::contentOf(path), rising);
  EXPECT_FALSE(doc.modified);
  EXPECT_THAT(outside.statuses.back(), HasSubstr("; its vertices are off by up to 0.0"));
}

TEST_F(FileCommands, SavingElsewhereTellsInOneSentenceHowFarVerticesMove) {
  open(folder.write("rising.ply2", rising));
  outside.forget();
  EXPECT_TRUE(doc.saveFile(folder.file("copy.ply2")));
  ASSERT_EQ(outside.statuses.size(), 1U);
  EXPECT_THAT(outside.statuses[0], StartsWith("Saved " + folder.file("copy.ply2") +
                                              "; its vertices are off by up to 0.0"));
  EXPECT_FALSE(doc.modified);
}

/// Its x lies beyond where the search for the box ends, so their bounds stay where it starts.
constexpr const char* beyond =
    "4 2\n3000000.25 0 0\n3000002.5 2 0\n3000001.75 0 1\n3000004 1 0\n3 0 1 2\n3 1 2 3\n";

TEST_F(FileCommands, SavingAgainOverWhatWasSavedAsksOnlyForWhatIsLostSince) {
  const std::string copy = folder.file("copy.ply2");
  open(folder.write("beyond.ply2", beyond));
  ASSERT_GT(doc.meshOrigin.positionLoss, 0.01);
  EXPECT_TRUE(doc.saveFile(copy));
  EXPECT_THAT(outside.statuses.back(), HasSubstr("off by up to 0."));
  const std::string content = test::contentOf(copy);
  EXPECT_TRUE(doc.saveFile(copy));
  EXPECT_EQ(outside.statuses.back(), "Saved copy.ply2.");
  EXPECT_EQ(test::contentOf(copy), content);
  // What Undo brings back was written there, too.
  moveVertexZero(doc.mesh()->vertices[0]);
  doc.OnEditUndo();
  EXPECT_TRUE(doc.saveFile(copy));
  EXPECT_EQ(test::contentOf(copy), content);
  // The opened file has what was lost before.
  outside.confirmAnswers = {false};
  EXPECT_FALSE(doc.saveFile(folder.file("beyond.ply2")));
  EXPECT_TRUE(outside.finished());
}

TEST_F(FileCommands, SavingAgainAsksWhenTheFileWouldChange) {
  const std::string copy = folder.file("copy.ply2");
  open(folder.write("rising.ply2", rising));
  EXPECT_TRUE(doc.saveFile(copy));
  const std::string content = test::contentOf(copy);
  EXPECT_TRUE(doc.saveFile(folder.file("next.ply2")));
  ASSERT_NE(test::contentOf(folder.file("next.ply2")), content) << "x rises in the copy, too";
  outside.confirmAnswers = {false};
  EXPECT_FALSE(doc.saveFile(folder.file("next.ply2")));
  EXPECT_TRUE(outside.finished());
}

// Two of its x come together in the copy, and with that its box is found.
TEST_F(FileCommands, WhatWasLostBeforeAFileWasSavedIsNoneOfItsLosses) {
  const std::string copy = folder.file("copy.ply2");
  open(folder.write("rising.ply2",
                    "4 2\n0.13 0 0\n0.24 2 0\n0.25 0 1\n0.41 1 0\n3 0 1 2\n3 1 2 3\n"));
  EXPECT_TRUE(doc.saveFile(copy));
  ASSERT_EQ(doc.meshOrigin.lossSinceSaving, 0.0);
  moveVertexZero(doc.mesh()->vertices[0] + 0.37F);
  EXPECT_TRUE(doc.saveFile(copy));
  EXPECT_EQ(outside.statuses.back(), "Saved copy.ply2.");
}

TEST_F(FileCommands, SavingAnotherShapeOverWhatWasSavedAsksAsBefore) {
  const std::string copy = folder.file("copy.ply2");
  open(folder.write("beyond.ply2", beyond));
  EXPECT_TRUE(doc.saveFile(copy));
  const float x = doc.mesh()->vertices[0];
  moveVertexZero(x + 1.0F);
  outside.confirmAnswers = {true};
  EXPECT_TRUE(doc.saveFile(copy));
  doc.OnEditUndo();  // which is not what the file has now
  outside.confirmAnswers = {false};
  EXPECT_FALSE(doc.saveFile(copy));
  EXPECT_TRUE(outside.finished());
}

// A hundredth of a unit across, with digits behind the sixth decimal; and a shape smoothed a
// million units away, where single precision goes in steps of 1/16.
TEST_F(FileCommands, SavingAsksWhereDigitsAreTooFew) {
  open(folder.write("tiny.ply2",
                    "3 1\n0.01 0.00000037 0\n0 0.01 0.00000041\n0.005 0 0.0000003\n3 0 1 2\n"));
  outside.confirmAnswers = {false};
  EXPECT_FALSE(doc.saveFile(folder.file("tiny.ply2")));
  EXPECT_THAT(outside.calls.back(), HasSubstr("since files hold six decimals"));
  const std::string far =
      folder.write("far.ply2", "3 1\n900002 0 0\n900000 0 1\n900001 2 0\n3 0 1 2\n");
  open(far);
  EXPECT_TRUE(doc.saveFile(far)) << "as long as it is what was read";
  moveVertexZero(doc.mesh()->vertices[0] - 0.2F);
  outside.confirmAnswers = {false};
  EXPECT_FALSE(doc.saveFile(far));
  EXPECT_THAT(outside.calls.back(), HasSubstr("seven digits and it lies far from the origin"));
  EXPECT_TRUE(outside.finished());
}

TEST_F(FileCommands, SavingAMeshOverItsFileAgainAndAgainAsksNothing) {
  open(squarePath);
  for (int k = 0; k < 5; ++k) {
    moveVertexZero(doc.mesh()->vertices[0] + 0.37F);
    EXPECT_TRUE(doc.saveFile(squarePath));
  }
  EXPECT_EQ(outside.statuses.back(), "Saved square.ply2.");
}

TEST_F(FileCommands, OtherWritersKeepTheFileOfTheMeshToo) {
  open(squarePath);
  std::filesystem::create_symlink(squarePath, folder.file("link.obj"));
  std::filesystem::create_hard_link(squarePath, folder.file("same.json"));
  for (const char* name : {"square.ply2", "link.obj", "same.json"}) {
    EXPECT_EQ(doc.lossByOverwriting(folder.file(name)),
              "Cannot write " + folder.file(name) +
                  ": the mesh was opened from it and would be lost there. Choose another name.");
  }
  EXPECT_TRUE(doc.saveFile(folder.file("saved.ply2")));
  EXPECT_THAT(doc.lossByOverwriting(folder.file("saved.ply2")), HasSubstr("saved to it"));
  EXPECT_EQ(doc.lossByOverwriting(folder.file("new.json")), "");
  EXPECT_EQ(doc.lossByOverwriting(trianglePath), "");
  EXPECT_FALSE(doc.exportLines(folder.file("link.obj")));
  ASSERT_FALSE(outside.messages.empty());
  EXPECT_THAT(outside.messages.back(), HasSubstr("the mesh was opened from it"));
  EXPECT_EQ(test::contentOf(squarePath), square);
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
    doc.openFile(folder.write(name, "3 0\n0 0 0 0 0\n"));
    outside.forget();
    EXPECT_FALSE(doc.saveFile(folder.file(name)));
    ASSERT_EQ(outside.messages.size(), 1U) << name;
    EXPECT_THAT(outside.messages[0], HasSubstr("no writer")) << name;
    EXPECT_EQ(test::contentOf(folder.file(name)), "3 0\n0 0 0 0 0\n");
  }
}

TEST_F(FileCommands, AnEmptyFileHasNothingToLose) {
  for (const char* name : {"new.data", "new.obj"}) {
    doc.openFile(folder.write(name, ""));
    doc.saveFile(folder.file(name));
    ASSERT_FALSE(outside.messages.empty());
    EXPECT_THAT(outside.messages.back(), HasSubstr("is empty: Save writes no")) << name;
  }
  outside.forget();
  open(folder.write("new.ply2", ""));
  EXPECT_TRUE(doc.saveFile(folder.file("new.ply2")));
  EXPECT_TRUE(doc.saveFile(folder.file("new.ply2"))) << "what is there now was written by us";
  EXPECT_EQ(test::contentOf(folder.file("new.ply2")), "0\n0\n");
  EXPECT_THAT(outside.messages, IsEmpty());
}

TEST_F(FileCommands, ASaveThatFailsShowsOneMessageAndChangesNothing) {
  open(squarePath);
  moveVertexZero(1.0F);
  const std::vector<float> vertices = doc.mesh()->vertices;
  outside.forget();
  saveAs(folder.file("no/such/folder/out.ply2"));
  EXPECT_THAT(outside.calls, ElementsAre("save file", StartsWith("message ")));
  EXPECT_EQ(doc.mesh()->vertices, vertices);
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
  test::setMesh(doc, test::bumpyGrid(4, 3));
  const TriangleMesh before = *doc.mesh();
  saveAs(folder.file("grid.ply2"));
  open(folder.file("grid.ply2"));
  EXPECT_EQ(doc.mesh()->faces, before.faces);
  EXPECT_EQ(doc.mesh()->vertexKind, before.vertexKind);
}

// Saving turns positions into those of the file and back. A file whose extension has no writer is
// left empty.
TEST_F(FileCommands, SaveOfAHostileMeshKeepsItsFacesAndWhatIsUsedOfItIsOpenedAgain) {
  for (const test::NamedMesh& hostile : test::hostileMeshes()) {
    TriangleMesh thereAndBack = hostile.mesh;
    thereAndBack.denormalize();
    thereAndBack.normalize();
    const TriangleMesh compact = hostile.mesh.compactCopy();
    for (const std::string name : {"a.ply2", "a.plyR", "a.data"}) {
      SCOPED_TRACE(hostile.name + " as " + name);
      test::setMesh(doc, hostile.mesh);
      ASSERT_EQ(doc.saveFile(folder.file(name)), name != "a.data");
      EXPECT_TRUE(test::sameVertices(*doc.mesh(), thereAndBack));
      EXPECT_EQ(doc.mesh()->faces, hostile.mesh.faces);
      ASSERT_TRUE(doc.openFile(folder.file(name)));
      if (name == "a.data") {
        EXPECT_EQ(doc.mesh()->vertexCount, 0);
        continue;
      }
      EXPECT_EQ(doc.mesh()->vertexCount, compact.vertexCount);
      EXPECT_EQ(doc.mesh()->faces, compact.faces);
      // Six decimals of 1e-40 are none.
      const bool hasSize = hostile.name != "all vertices equal" &&
                           hostile.name != "closed in one place" && hostile.name != "very small";
      EXPECT_EQ(test::isFinite(*doc.mesh()), test::isFinite(hostile.mesh) && hasSize);
    }
  }
}

}  // namespace
}  // namespace gravlin
