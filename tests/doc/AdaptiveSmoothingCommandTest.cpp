#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <optional>
#include <string>

#include "doc/CGravlinDoc.h"
#include "doc/Messages.h"
#include "smoothing/AdaptiveSmoothing.h"
#include "support/Allocations.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/ScriptedOutside.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class AdaptiveSmoothingCommand : public ::testing::Test {
 protected:
  AdaptiveSmoothingCommand() { test::setMesh(doc, before); }

  void run(std::vector<std::pair<std::string, std::string>> texts) {
    outside.dialogAnswers = {test::okWith(std::move(texts))};
    doc.OnSmoothingShapeAdaptive();
    EXPECT_TRUE(outside.finished());
  }

  std::vector<float> afterMedian(int iterations) const {
    TriangleMesh mesh = before;
    medianSmoothing(mesh, iterations, doc.adaptiveSmoothingParameters.options());
    return mesh.vertices;
  }

  std::vector<float> afterWeighted(int iterations) const {
    TriangleMesh mesh = before;
    adaptiveSmoothing(mesh, iterations, doc.adaptiveSmoothingParameters.options());
    return mesh.vertices;
  }

  const TriangleMesh before = test::jittered(test::icosphere(1), 0.05);
  test::ScriptedOutside outside;
  CGravlinDoc doc{outside};
};

TEST_F(AdaptiveSmoothingCommand, RunsElevenOuterIterationsWithTheDefaults) {
  run({});
  EXPECT_EQ(doc.mesh()->vertices, afterMedian(11));
  EXPECT_NE(doc.mesh()->vertices, afterMedian(10));
  EXPECT_EQ(outside.count("show progress 0..10 by 1"), 1);
  EXPECT_EQ(outside.count("step progress"), 10);
  EXPECT_EQ(outside.count("redraw"), 11) << "ten of the animation and the last";
}

TEST_F(AdaptiveSmoothingCommand, MedianEndsWithOneMoreWholeChunk) {
  struct Case {
    const char* count;
    const char* animate;
    const char* every;
    int iterations;
    int chunks;
  };
  for (const Case& c :
       {Case{"7", "0", "1", 8, 7}, Case{"25", "0", "1", 26, 12}, Case{"10", "1", "3", 12, 3},
        Case{"4", "1", "9", 9, 0}, Case{"5", "1", "0", 6, 5}, Case{"0", "1", "1", 1, 0}}) {
    SCOPED_TRACE(c.count);
    test::setMesh(doc, before);
    outside.forget();
    run({{"outerIterations", c.count}, {"animate", c.animate}, {"animateEvery", c.every}});
    EXPECT_EQ(doc.mesh()->vertices, afterMedian(c.iterations));
    EXPECT_EQ(outside.count("step progress"), c.chunks);
    EXPECT_EQ(outside.count("redraw"), (c.animate[0] == '1' ? c.chunks : 0) + 1);
  }
}

TEST_F(AdaptiveSmoothingCommand, WeightFunctionEndsWithWhatIsLeft) {
  struct Case {
    const char* count;
    const char* animate;
    const char* every;
    int iterations;
  };
  for (const Case& c : {Case{"7", "0", "1", 7}, Case{"25", "0", "1", 25}, Case{"10", "1", "3", 10},
                        Case{"4", "1", "9", 4}, Case{"-3", "1", "2", 0}}) {
    SCOPED_TRACE(c.count);
    test::setMesh(doc, before);
    run({{"outerIterations", c.count},
         {"animate", c.animate},
         {"animateEvery", c.every},
         {"averagingKind", "weight"}});
    EXPECT_EQ(doc.mesh()->vertices, afterWeighted(c.iterations));
  }
}

TEST_F(AdaptiveSmoothingCommand, ShowsProgressFromDialogToTailAndRedrawsLast) {
  run({{"outerIterations", "2"}});
  EXPECT_THAT(outside.calls, ElementsAre("dialog CAdaptiveSmoothingDlg", "show progress 0..2 by 1",
                                         "step progress", "redraw", "step progress", "redraw",
                                         "hide progress", "redraw"));
}

TEST_F(AdaptiveSmoothingCommand, EveryRedrawShowsNormalsOfThePositions) {
  int drawn = 0;
  outside.whenRedrawn = [&] {
    TriangleMesh fresh = *doc.mesh();
    fresh.computeFaceNormals();
    fresh.computeVertexNormals();
    EXPECT_EQ(doc.mesh()->faceNormals, fresh.faceNormals);
    EXPECT_EQ(doc.mesh()->vertexNormals, fresh.vertexNormals);
    ++drawn;
  };
  run({{"outerIterations", "3"}});
  EXPECT_EQ(drawn, 4);
}

TEST_F(AdaptiveSmoothingCommand, UndoBringsTheShapeBackToTheBit) {
  run({});
  EXPECT_TRUE(doc.modified);
  doc.OnEditUndo();
  EXPECT_EQ(doc.mesh()->vertices, before.vertices);
  EXPECT_EQ(doc.mesh()->faces, before.faces);
  EXPECT_FALSE(doc.modified);
}

TEST_F(AdaptiveSmoothingCommand, EveryRunReplacesTheUndoCopy) {
  doc.undoMesh = std::make_unique<TriangleMesh>(test::cube());
  run({{"outerIterations", "1"}});
  EXPECT_EQ(doc.undoMesh->vertices, before.vertices);
  const std::vector<float> smoother = doc.mesh()->vertices;
  run({{"averagingKind", "weight"}});
  EXPECT_EQ(doc.undoMesh->vertices, smoother);
  EXPECT_NE(doc.mesh()->vertices, smoother);
}

TEST_F(AdaptiveSmoothingCommand, CancelLeavesValuesShapeAndUndoAlone) {
  outside.dialogAnswers = {test::cancel()};
  doc.OnSmoothingShapeAdaptive();
  EXPECT_EQ(doc.mesh()->vertices, before.vertices);
  EXPECT_EQ(doc.undoMesh, nullptr);
  EXPECT_THAT(outside.calls, ElementsAre("dialog CAdaptiveSmoothingDlg"));
}

TEST_F(AdaptiveSmoothingCommand, WithoutAMeshNothingIsAsked) {
  test::dropMesh(doc);
  doc.OnSmoothingShapeAdaptive();
  EXPECT_THAT(outside.calls, IsEmpty());
}

TEST_F(AdaptiveSmoothingCommand, RemembersItsValues) {
  run({{"outerIterations", "3"}, {"threshold", "2.5"}, {"weightShape", "similar"}});
  std::map<std::string_view, std::string> shown;
  outside.dialogAnswers = {[&](const Form& form) {
    for (const Field& field : form.fields) shown[field.name] = textOf(field);
    return false;
  }};
  doc.OnSmoothingShapeAdaptive();
  EXPECT_EQ(shown["outerIterations"], "3");
  EXPECT_EQ(shown["threshold"], "2.5");
  EXPECT_EQ(shown["weightShape"], "0");
}

TEST_F(AdaptiveSmoothingCommand, TellsWhenPositionsAreNoLongerFinite) {
  // A negative threshold lets the weights grow with the difference, here past every number.
  run({{"averagingKind", "weight"}, {"threshold", "-1e30"}});
  EXPECT_THAT(outside.statuses, ElementsAre(HasSubstr("Undo")));
}

TEST_F(AdaptiveSmoothingCommand, RefusesAVertexOfTooManyFacesAndLosesNothing) {
  constexpr int valence = 50000;
  std::vector<std::array<float, 3>> points = {{0, 0, 0}};
  std::vector<std::array<int, 3>> faces;
  for (int k = 0; k < valence; ++k) {
    points.push_back({static_cast<float>(k), 1, 0});
    faces.push_back({0, 1 + k, 1 + (k + 1) % valence});
  }
  run({{"outerIterations", "1"}});
  const std::vector<float> kept = doc.undoMesh->vertices;
  const TriangleMesh hub = test::makeMesh(points, faces);
  test::setMesh(doc, hub);
  run({});
  EXPECT_THAT(outside.messages, ElementsAre(HasSubstr("too many faces meet at one vertex")));
  EXPECT_EQ(doc.mesh()->vertices, hub.vertices);
  EXPECT_EQ(doc.undoMesh->vertices, kept);
}

TEST_F(AdaptiveSmoothingCommand, TellsWhenMemoryEndsOnTheWayAndKeepsWhatIsDone) {
  outside.whenRedrawn = [this] {
    outside.whenRedrawn = nullptr;
    throw std::bad_alloc();
  };
  run({{"outerIterations", "9"}, {"animateEvery", "3"}});
  EXPECT_THAT(outside.messages, ElementsAre(outOfMemoryWhileSmoothing));
  EXPECT_THAT(outside.calls,
              ElementsAre("dialog CAdaptiveSmoothingDlg", "show progress 0..9 by 3",
                          "step progress", "redraw", "hide progress",
                          std::string("message ") + outOfMemoryWhileSmoothing, "redraw"));
  EXPECT_EQ(doc.mesh()->vertices, afterMedian(3));
  doc.OnEditUndo();
  EXPECT_EQ(doc.mesh()->vertices, before.vertices);
}

TEST_F(AdaptiveSmoothingCommand, WithoutMemoryForItsListsTellsItAndLosesNothing) {
  const TriangleMesh sphere = test::icosphere(3);  // 1280 faces, so their rows take 5124 bytes
  test::setMesh(doc, sphere);
  doc.undoMesh = std::make_unique<TriangleMesh>(before);
  std::optional<test::AllocationLimit> limit;
  outside.dialogAnswers = {[&](const Form&) {
    limit.emplace(5000);
    return true;
  }};
  doc.OnSmoothingShapeAdaptive();
  limit.reset();
  EXPECT_THAT(outside.calls,
              ElementsAre("dialog CAdaptiveSmoothingDlg",
                          "message There is not enough memory to smooth this mesh adaptively."));
  EXPECT_EQ(doc.mesh()->vertices, sphere.vertices);
  EXPECT_EQ(doc.undoMesh->vertices, before.vertices);
  EXPECT_FALSE(doc.modified);
}

}  // namespace
}  // namespace gravlin
