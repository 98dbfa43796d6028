#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <optional>

#include "curvature/CurvatureTensor.h"
#include "doc/CGravlinDoc.h"
#include "remesh/ButterflySubdivision.h"
#include "remesh/LinearSubdivision.h"
#include "remesh/LoopSubdivision.h"
#include "support/Allocations.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/ScriptedOutside.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class RemeshCommands : public ::testing::Test {
 protected:
  RemeshCommands() { load(before); }

  void load(const TriangleMesh& mesh) {
    test::setMesh(doc, mesh);
    outside.forget();
  }

  void subdivide(const std::string& method) {
    outside.dialogAnswers = {test::okWith({{"method", method}})};
    doc.OnSubdivision();
  }

  void simplify(const std::string& rate) {
    outside.dialogAnswers = {test::okWith({{"reductionRate", rate}})};
    doc.OnSimplification();
  }

  /// The document is as it was before a command was refused: mesh, undo copy and view.
  void expectNothingLost(const TriangleMesh& mesh) {
    EXPECT_EQ(doc.mesh()->vertices, mesh.vertices);
    EXPECT_EQ(doc.mesh()->faces, mesh.faces);
    EXPECT_EQ(doc.mesh()->vertexNeighbours.items, mesh.vertexNeighbours.items);
    EXPECT_EQ(doc.mesh()->faceAdjacency, mesh.faceAdjacency);
    EXPECT_EQ(doc.mesh()->faceNormals, mesh.faceNormals);
    EXPECT_EQ(doc.mesh()->vertexNormals, mesh.vertexNormals);
    EXPECT_EQ(doc.mesh()->ridgeMarks, mesh.ridgeMarks);
    EXPECT_EQ(doc.mesh()->maxCurvature, mesh.maxCurvature);
    EXPECT_EQ(doc.mesh()->minDirection, mesh.minDirection);
    EXPECT_EQ(doc.mesh()->pickedFace, mesh.pickedFace);
    ASSERT_NE(doc.undoMesh, nullptr);
    EXPECT_EQ(doc.undoMesh->vertices, kept.vertices);
    EXPECT_EQ(doc.displayMode, WireFrame);
    EXPECT_FALSE(doc.modified);
  }

  /// Gives the document an undo copy that a refused command must not lose.
  void keepSomethingForUndo() {
    doc.undoMesh = std::make_unique<TriangleMesh>(kept);
    doc.displayMode = WireFrame;
    doc.modified = false;
  }

  /// Refuses one allocation after the other behind the dialog, up to the first that comes when the
  /// command's work is done.
  template <class Command>
  void expectNothingLostWhicheverAllocationFails(const Command& command) {
    int refusals = 0;
    for (std::size_t n = 1; n < 500; ++n) {
      SCOPED_TRACE(n);
      load(before);
      keepSomethingForUndo();
      std::optional<test::AllocationFailure> failure;
      outside.dialogAnswers = {[&](const Form&) {
        failure.emplace(n);
        return true;
      }};
      try {
        command();
      } catch (const std::bad_alloc&) {
        break;  // the new mesh is there, and not even its redraw or a sentence about it fits
      }
      failure.reset();
      ASSERT_FALSE(outside.messages.empty()) << "the command has come to its end before";
      ++refusals;
      EXPECT_THAT(outside.messages, ElementsAre(HasSubstr("not enough memory")));
      expectNothingLost(before);
    }
    EXPECT_GT(refusals, 10);
    EXPECT_NE(doc.mesh()->vertexCount, before.vertexCount);
    EXPECT_EQ(doc.undoMesh->vertices, before.vertices);
  }

  /// A mesh with curvature, marks and a picked face.
  static TriangleMesh examined() {
    TriangleMesh mesh = test::jittered(test::icosphere(2), 0.02);
    computeCurvatureTensor(mesh);
    mesh.ridgeMarks.assign(static_cast<std::size_t>(mesh.vertexCount), 1);
    mesh.pickedFace = 7;
    return mesh;
  }

  const TriangleMesh before = examined();
  const TriangleMesh kept = test::cube();
  test::ScriptedOutside outside;
  CGravlinDoc doc{outside};
};

// --- Subdivision ---

TEST_F(RemeshCommands, SubdivisionRunsTheSchemeOfItsExactText) {
  struct Case {
    const char* method;
    TriangleMesh (*scheme)(const TriangleMesh&);
  };
  for (const Case& c :
       {Case{"Loop", loopSubdivision}, Case{"Modified butterfly", butterflySubdivision},
        Case{"Linear", linearSubdivision}, Case{"Normal averaging(angle)", linearSubdivision},
        Case{"loop", linearSubdivision}, Case{"Loop ", linearSubdivision},
        Case{"", linearSubdivision}}) {
    load(before);
    subdivide(c.method);
    EXPECT_EQ(doc.mesh()->vertices, c.scheme(before).vertices) << c.method;
    EXPECT_EQ(doc.mesh()->faceCount, 4 * before.faceCount) << c.method;
  }
}

TEST_F(RemeshCommands, SubdivisionKeepsTheViewAndRedrawsOnceWithUpToDateNormals) {
  doc.displayMode = SmoothShading;
  outside.whenRedrawn = [&] {
    TriangleMesh fresh = *doc.mesh();
    fresh.computeFaceNormals();
    fresh.computeVertexNormals();
    EXPECT_EQ(doc.mesh()->faceNormals, fresh.faceNormals);
    EXPECT_EQ(doc.mesh()->vertexNormals, fresh.vertexNormals);
  };
  subdivide("Loop");
  EXPECT_EQ(doc.displayMode, SmoothShading);
  EXPECT_THAT(outside.calls, ElementsAre("dialog CSubdivisionDlg", "redraw"));
  EXPECT_TRUE(doc.modified);
}

TEST_F(RemeshCommands, UndoAfterASubdivisionBringsTheOldMeshBack) {
  subdivide("Loop");
  subdivide("Linear");
  doc.OnEditUndo();
  EXPECT_EQ(doc.mesh()->vertices, loopSubdivision(before).vertices);
  EXPECT_EQ(doc.undoMesh, nullptr);
  EXPECT_EQ(doc.mesh()->faceAdjacency, loopSubdivision(before).faceAdjacency);
}

TEST_F(RemeshCommands, SubdivisionDropsLinesAndFindsCreasesThatAreShownAgain) {
  const auto countLinks = [&] {
    int links = 0;
    for (const IndexList& list : doc.mesh()->ridgeLinks) links += list.size();
    for (const IndexList& list : doc.mesh()->valleyLinks) links += list.size();
    return links;
  };
  load(test::cube());
  outside.dialogAnswers = {test::okWith({{"thresholdMode", "angle"}, {"angle", "120"}})};
  doc.OnEdgeDetectionFaceAngle();
  ASSERT_EQ(countLinks(), 2 * 12);
  subdivide("Linear");
  EXPECT_EQ(countLinks(), 2 * 24) << "every edge of the cube in two halves";

  doc.OnFlatShading();
  subdivide("Linear");
  EXPECT_EQ(countLinks(), 0);
  EXPECT_TRUE(doc.creaseLinks.empty());
}

TEST_F(RemeshCommands, ASubdivisionThatRunsOutOfMemoryLosesNothing) {
  expectNothingLostWhicheverAllocationFails([&] { doc.OnSubdivision(); });
}

// --- Simplification ---

TEST_F(RemeshCommands, SimplificationLeavesACompactMeshInFlatShading) {
  doc.displayMode = FeatureLines;
  simplify("0.5");
  const TriangleMesh& mesh = *doc.mesh();
  EXPECT_EQ(mesh.vertexCount, before.vertexCount / 2);
  EXPECT_EQ(mesh.countUsedVertices(), mesh.vertexCount);
  EXPECT_EQ(mesh.countValidFaces(), mesh.faceCount);
  EXPECT_EQ(test::eulerCharacteristic(mesh), 2);
  EXPECT_EQ(mesh.boxMax, before.boxMax);
  EXPECT_EQ(mesh.extentTolerance, before.extentTolerance);
  TriangleMesh fresh = mesh;
  fresh.buildAdjacency();
  fresh.buildFaceAdjacency();
  fresh.computeFaceNormals();
  fresh.computeVertexNormals();
  EXPECT_EQ(mesh.faceAdjacency, fresh.faceAdjacency);
  EXPECT_EQ(mesh.vertexNormals, fresh.vertexNormals);
  EXPECT_EQ(doc.displayMode, FlatShading);
  EXPECT_EQ(outside.count("redraw"), 1);
  EXPECT_TRUE(doc.modified);
}

TEST_F(RemeshCommands, SimplificationTellsWhatWentAndWhyItStopped) {
  simplify("0.5");
  EXPECT_THAT(outside.statuses,
              ElementsAre("Removed 81 vertices and 162 faces; the target was reached."));
  load(test::tetrahedron());
  simplify("0.5");
  EXPECT_THAT(outside.statuses,
              ElementsAre("Removed 0 vertices and 0 faces; no edge left that may collapse."));
}

TEST_F(RemeshCommands, SimplificationCountsASingleVertexInTheSingular) {
  load(test::hexagonFan());
  simplify("0.1");
  ASSERT_THAT(outside.statuses, ::testing::SizeIs(1));
  EXPECT_THAT(outside.statuses[0], ::testing::StartsWith("Removed 1 vertex and 1 face; "));
}

TEST_F(RemeshCommands, SimplificationOfATetrahedronOnlyCompactsIt) {
  TriangleMesh scattered =
      test::makeMesh({{9, 9, 9}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {8, 8, 8}},
                     {{0, 0, 1}, {1, 3, 2}, {1, 2, 4}, {1, 4, 3}, {2, 3, 4}});
  load(scattered);
  simplify("0.5");
  EXPECT_EQ(doc.mesh()->vertices, test::tetrahedron().vertices);
  EXPECT_EQ(doc.mesh()->faces, test::tetrahedron().faces);
}

TEST_F(RemeshCommands, UndoAfterASimplificationBringsTheOldMeshBack) {
  simplify("0.9");
  doc.OnEditUndo();
  EXPECT_EQ(doc.mesh()->vertices, before.vertices);
  EXPECT_EQ(doc.mesh()->faces, before.faces);
  EXPECT_FALSE(doc.modified);
}

TEST_F(RemeshCommands, ProcessingObjectsWorkOnTheNewMesh) {
  simplify("0.5");
  const int vertexCount = doc.mesh()->vertexCount;
  doc.meshSubdivider.linearSubdivision();
  EXPECT_GT(doc.mesh()->vertexCount, vertexCount);
  doc.decimator.decimate(0.5F);
  EXPECT_LT(doc.mesh()->countUsedVertices(), doc.mesh()->vertexCount);
}

TEST_F(RemeshCommands, ASimplificationThatRunsOutOfMemoryLosesNothing) {
  expectNothingLostWhicheverAllocationFails([&] { doc.OnSimplification(); });
}

// --- Both ---

TEST_F(RemeshCommands, CancelChangesNothing) {
  keepSomethingForUndo();
  outside.dialogAnswers = {test::cancel(), test::cancel()};
  doc.OnSubdivision();
  doc.OnSimplification();
  expectNothingLost(before);
  EXPECT_THAT(outside.calls, ElementsAre("dialog CSubdivisionDlg", "dialog CDecimationDlg"));
}

TEST_F(RemeshCommands, WithoutAMeshNothingIsAsked) {
  test::dropMesh(doc);
  doc.OnSubdivision();
  doc.OnSimplification();
  EXPECT_THAT(outside.calls, IsEmpty());
}

TEST_F(RemeshCommands, RememberTheirValues) {
  subdivide("Linear");
  simplify("0.25");
  EXPECT_EQ(doc.subdivisionParameters.method, "Linear");
  EXPECT_EQ(doc.decimationParameters.reductionRate, 0.25F);
}

}  // namespace
}  // namespace gravlin
