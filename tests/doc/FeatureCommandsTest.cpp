#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

#include "curvature/CurvatureDerivatives.h"
#include "curvature/CurvatureTensor.h"
#include "curvature/DirectionCoherence.h"
#include "doc/CGravlinDoc.h"
#include "features/CreasesByAngle.h"
#include "numeric/Index.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"
#include "support/ScriptedOutside.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::IsEmpty;
using ::testing::Not;
using namespace gravlin::test;

using Texts = std::vector<std::pair<std::string, std::string>>;

/// A document with one mesh and a scripted world around it.
struct Desk {
  ScriptedOutside outside;
  CGravlinDoc doc{outside};

  explicit Desk(TriangleMesh mesh) {
    test::setMesh(doc, std::move(mesh));
    doc.redraw();
    outside.forget();
  }

  TriangleMesh& mesh() { return test::meshOf(doc); }
  void answer(DialogAnswer dialogAnswer) {
    outside.dialogAnswers.push_back(std::move(dialogAnswer));
  }

  /// Runs Local Max without tensor smoothing, with further values typed in.
  void findLines(Texts texts) {
    texts.emplace_back("smoothTensor", "0");
    outside.dialogAnswers.push_front(okWith(std::move(texts)));
    doc.OnEdgeDetectionLocalMax();
    EXPECT_TRUE(outside.finished());
  }
  void findCreases(Texts texts) {
    outside.dialogAnswers.push_front(okWith(std::move(texts)));
    doc.OnEdgeDetectionFaceAngle();
    EXPECT_TRUE(outside.finished());
  }
};

int linkCount(const std::vector<IndexList>& links) {
  int ends = 0;
  for (const IndexList& list : links) ends += list.size();
  return ends / 2;
}

DialogAnswer fewLaplacianSteps() {
  return okWith({{"iterationCount", "2"}, {"animate", "0"}, {"preserveVolume", "0"}});
}
DialogAnswer fewAdaptiveSteps() {
  return okWith({{"outerIterations", "1"}, {"animate", "0"}});
}

TEST(LocalMaxCommand, CancelRunsNoStageAndKeepsTheMode) {
  Desk desk(bumpyGrid(12, 12));
  desk.answer(cancel());
  desk.doc.OnEdgeDetectionLocalMax();
  EXPECT_EQ(desk.doc.displayMode, FlatShading);
  EXPECT_THAT(desk.mesh().ridgeMarks, IsEmpty());
  EXPECT_EQ(desk.outside.count("redraw"), 0);
}

TEST(LocalMaxCommand, WithoutAMeshNoDialogIsShown) {
  ScriptedOutside outside;
  CGravlinDoc doc(outside);
  doc.OnEdgeDetectionLocalMax();
  doc.OnEdgeDetectionFaceAngle();
  EXPECT_THAT(outside.calls, IsEmpty());
}

TEST(LocalMaxCommand, VertexShowsMarks) {
  Desk desk(bumpyGrid(20, 20));
  desk.findLines({});
  EXPECT_EQ(desk.doc.displayMode, RidgeVertices);
  EXPECT_THAT(desk.mesh().ridgeMarks, Contains(1));
  EXPECT_EQ(desk.outside.count("redraw"), 1);
}

TEST(LocalMaxCommand, RidgeDirectionComputesDerivativesOnTheSmoothedShapeAndRestoresIt) {
  Desk desk(bumpyGrid(20, 20));
  const auto positions = desk.mesh().vertices;
  desk.answer(fewLaplacianSteps());
  desk.findLines({{"preSmoothing", "common"}, {"showRidgeDirection", "1"}});
  EXPECT_EQ(desk.doc.displayMode, RidgeDirections);
  EXPECT_EQ(desk.mesh().vertices, positions);

  Desk unsmoothed(bumpyGrid(20, 20));
  unsmoothed.findLines({{"showRidgeDirection", "1"}});
  EXPECT_NE(desk.mesh().maxDerivativeGradient, unsmoothed.mesh().maxDerivativeGradient);
}

/// The desk's shape after two Laplacian steps, as the first stage leaves it, with its curvature.
TriangleMesh smoothedByHand(Desk& desk) {
  Desk smoothed(desk.mesh());
  smoothed.answer(fewLaplacianSteps());
  smoothed.doc.OnSmoothingShape();
  smoothed.mesh().computeVertexNormals();
  computeCurvatureTensor(smoothed.mesh());
  return std::move(smoothed.mesh());
}

LowThresholds markByHand(TriangleMesh& mesh) {
  extractExtrema(mesh);
  const LowThresholds low = thresholdHistogram(mesh, {.upper = 0.6F, .lower = 0.3F});
  compareAbsoluteValues(mesh);
  fillGaps(mesh);
  return low;
}

TEST(LocalMaxCommand, RidgeDirectionsAreThoseOfTheSmoothedShape) {
  Desk desk(bumpyGrid(20, 20));
  TriangleMesh byHand = smoothedByHand(desk);
  markByHand(byHand);
  computeCurvatureDerivatives(byHand);
  desk.answer(fewLaplacianSteps());
  desk.findLines({{"preSmoothing", "common"}, {"showRidgeDirection", "1"}});
  EXPECT_EQ(desk.mesh().ridgeMarks, byHand.ridgeMarks);
  EXPECT_EQ(desk.mesh().valleyMarks, byHand.valleyMarks);
  EXPECT_EQ(desk.mesh().maxDerivativeGradient, byHand.maxDerivativeGradient);
  EXPECT_EQ(desk.mesh().minDerivativeGradient, byHand.minDerivativeGradient);
}

/// The numbers of the stages between the curvature and the lines, as the dialog has them at first.
struct Stages {
  std::function<LowThresholds(TriangleMesh&)> threshold = [](TriangleMesh& mesh) {
    return thresholdHistogram(mesh, {.upper = 0.6F, .lower = 0.3F});
  };
  bool compares = true;
  bool connects = true;
  float connectThreshold = 200.0F;
};

/// The mesh with curvature, marks and lines as the stages give them one after the other.
TriangleMesh linesByHand(TriangleMesh mesh, const Stages& stages) {
  mesh.computeVertexNormals();
  computeCurvatureTensor(mesh);
  extractExtrema(mesh);
  const LowThresholds low = stages.threshold(mesh);
  if (stages.compares) compareAbsoluteValues(mesh);
  fillGaps(mesh);
  buildLineGraph(mesh);
  if (stages.connects) connectLines(mesh, stages.connectThreshold, low);
  return mesh;
}

bool sameLines(const TriangleMesh& a, const TriangleMesh& b) {
  return a.ridgeMarks == b.ridgeMarks && a.valleyMarks == b.valleyMarks &&
         a.ridgeLinks == b.ridgeLinks && a.valleyLinks == b.valleyLinks;
}

/// Thresholds that take marks by the constant but let joins run through other curvatures.
Stages byConstant(float constant, const LowThresholds& low) {
  return {.threshold =
              [=](TriangleMesh& mesh) {
                thresholdConstant(mesh, constant);
                return low;
              },
          .compares = false,
          .connectThreshold = 1e9F};
}

// The run before leaves other thresholds behind.
TEST(LocalMaxCommand, NoneIsTheConstantZeroAndLowsOfZero) {
  const TriangleMesh shape = jittered(bumpyGrid(30, 30), 0.1);
  const TriangleMesh byHand = linesByHand(shape, byConstant(0.0F, {0.0, 0.0}));
  const float everything = -std::numeric_limits<float>::infinity();
  ASSERT_FALSE(sameLines(byHand, linesByHand(shape, byConstant(everything, {0.0, 0.0}))));
  ASSERT_FALSE(sameLines(byHand, linesByHand(shape, byConstant(0.0F, {1.0, 0.0}))));
  ASSERT_FALSE(sameLines(byHand, linesByHand(shape, byConstant(0.0F, {0.0, -1.0}))));
  Desk desk(shape);
  for (const char* mode : {"histogram", "constant", "none"}) {
    desk.findLines({{"extractOn", "edge"},
                    {"thresholdMode", mode},
                    {"absoluteComparison", "0"},
                    {"connectThreshold", "1e9"}});
    EXPECT_EQ(sameLines(desk.mesh(), byHand), std::string(mode) == "none") << mode;
  }
}

TEST(LocalMaxCommand, BothSharesOfTheHistogramReachTheirStages) {
  const TriangleMesh shape = jittered(bumpyGrid(30, 30), 0.1);
  const auto shares = [&](float upper, float lower) {
    return linesByHand(shape, {.threshold =
                                   [=](TriangleMesh& mesh) {
                                     return thresholdHistogram(mesh, {upper, lower});
                                   },
                               .connectThreshold = 1e9F});
  };
  const TriangleMesh byHand = shares(0.85F, 0.05F);
  ASSERT_FALSE(sameLines(byHand, shares(0.6F, 0.05F)));
  ASSERT_FALSE(sameLines(byHand, shares(0.85F, 0.3F)));
  Desk desk(shape);
  desk.findLines({{"extractOn", "edge"},
                  {"histogramUpper", "0.85"},
                  {"histogramLower", "0.05"},
                  {"connectThreshold", "1e9"}});
  EXPECT_TRUE(sameLines(desk.mesh(), byHand));
}

TEST(LocalMaxCommand, MagnitudesAreComparedWhenTheBoxIsTickedAndNotOtherwise) {
  const TriangleMesh shape = jittered(bumpyGrid(30, 30), 0.1);
  const TriangleMesh compared = linesByHand(shape, {});
  const TriangleMesh all = linesByHand(shape, {.compares = false});
  ASSERT_NE(all.ridgeMarks, compared.ridgeMarks);
  ASSERT_NE(all.valleyMarks, compared.valleyMarks);
  for (const bool ticked : {true, false}) {
    Desk desk(shape);
    desk.findLines({{"extractOn", "edge"}, {"absoluteComparison", ticked ? "1" : "0"}});
    EXPECT_TRUE(sameLines(desk.mesh(), ticked ? compared : all)) << ticked;
  }
}

// At this threshold gaps are closed, so both answers give lines of their own.
TEST(LocalMaxCommand, GapsAreClosedWhenTheBoxIsTickedAndNotOtherwise) {
  const TriangleMesh shape = bumpyGrid(30, 30);
  const TriangleMesh apart = linesByHand(shape, {.connects = false, .connectThreshold = 1e9F});
  const TriangleMesh joined = linesByHand(shape, {.connectThreshold = 1e9F});
  ASSERT_GT(linkCount(joined.ridgeLinks) + linkCount(joined.valleyLinks),
            linkCount(apart.ridgeLinks) + linkCount(apart.valleyLinks));
  for (const bool ticked : {true, false}) {
    Desk desk(shape);
    desk.findLines(
        {{"extractOn", "edge"}, {"connect", ticked ? "1" : "0"}, {"connectThreshold", "1e9"}});
    EXPECT_TRUE(sameLines(desk.mesh(), ticked ? joined : apart)) << ticked;
  }
}

TEST(LocalMaxCommand, TheThresholdOfTheJoinsIsTheOneTyped) {
  const TriangleMesh shape = bumpyGrid(30, 30);
  const TriangleMesh byHand = linesByHand(shape, {.connectThreshold = 3000.0F});
  ASSERT_FALSE(sameLines(byHand, linesByHand(shape, {})));
  Desk desk(shape);
  desk.findLines({{"extractOn", "edge"}, {"connectThreshold", "3000"}});
  EXPECT_TRUE(sameLines(desk.mesh(), byHand));
}

// The lines come from the smoothed shape, and what is smoothed along them is the restored one.
TEST(LocalMaxCommand, RidgeEdgesAreSmoothedOnTheRestoredShapeByATenthPerStep) {
  Desk desk(bumpyGrid(30, 30));
  const auto positions = desk.mesh().vertices;
  TriangleMesh byHand = smoothedByHand(desk);
  const LowThresholds low = markByHand(byHand);
  buildLineGraph(byHand);
  connectLines(byHand, 200.0F, low);
  byHand.vertices = positions;
  byHand.computeNormals();
  const auto lines = byHand.ridgeLinks;
  RidgeLineSmoother smoother;
  smoother.attach(&byHand);
  smoother.smooth(7, 0.1F);
  ASSERT_NE(byHand.vertices, positions);
  desk.answer(fewLaplacianSteps());
  desk.findLines({{"preSmoothing", "common"},
                  {"extractOn", "edge"},
                  {"smoothRidgeEdges", "1"},
                  {"ridgeSmoothIterations", "7"}});
  EXPECT_EQ(desk.mesh().ridgeLinks, lines);
  EXPECT_EQ(desk.mesh().vertices, byHand.vertices);
}

TEST(LocalMaxCommand, CurvatureTensorSmoothingComesBeforeTheMarks) {
  Desk byHand(bumpyGrid(20, 20));
  byHand.mesh().computeVertexNormals();
  computeCurvatureTensor(byHand.mesh());
  byHand.answer(ok());
  byHand.doc.OnSmoothingCurvatureTensor();
  markByHand(byHand.mesh());

  Desk desk(bumpyGrid(20, 20));
  desk.answer(okWith({{"smoothTensor", "1"}}));
  desk.answer(ok());
  desk.doc.OnEdgeDetectionLocalMax();
  EXPECT_TRUE(desk.outside.finished());
  EXPECT_EQ(desk.mesh().maxCurvature, byHand.mesh().maxCurvature);
  EXPECT_EQ(desk.mesh().ridgeMarks, byHand.mesh().ridgeMarks);
  EXPECT_EQ(desk.mesh().valleyMarks, byHand.mesh().valleyMarks);

  Desk without(bumpyGrid(20, 20));
  without.findLines({});
  EXPECT_NE(without.mesh().ridgeMarks, desk.mesh().ridgeMarks);
}

TEST(LocalMaxCommand, FaceAloneDrawsNothing) {
  Desk desk(bumpyGrid(16, 16));
  desk.doc.displayMode = WireFrame;
  desk.findLines({{"extractOn", "face"}});
  EXPECT_EQ(desk.outside.count("redraw"), 0);
  EXPECT_EQ(desk.doc.displayMode, WireFrame);
}

TEST(LocalMaxCommand, FaceLeavesTheModeOfItsTensorSmoothing) {
  Desk byHand(bumpyGrid(16, 16));
  computeCurvatureTensor(byHand.mesh());
  byHand.answer(ok());
  byHand.doc.OnSmoothingCurvatureTensor();
  ASSERT_NE(byHand.doc.displayMode, FlatShading);
  Desk desk(bumpyGrid(16, 16));
  desk.answer(okWith({{"smoothTensor", "1"}, {"extractOn", "face"}}));
  desk.answer(ok());
  desk.doc.OnEdgeDetectionLocalMax();
  EXPECT_EQ(desk.doc.displayMode, byHand.doc.displayMode);
}

TEST(LocalMaxCommand, EdgeShowsLines) {
  Desk desk(bumpyGrid(30, 30));
  desk.findLines({{"extractOn", "edge"}});
  EXPECT_EQ(desk.doc.displayMode, FeatureLines);
  EXPECT_GT(linkCount(desk.mesh().ridgeLinks), 0);
}

TEST(LocalMaxCommand, FaceStopsAfterTheMarksAndKeepsTheSmoothedShape) {
  Desk desk(bumpyGrid(20, 20));
  const auto positions = desk.mesh().vertices;
  desk.answer(fewLaplacianSteps());
  desk.findLines({{"preSmoothing", "common"}, {"extractOn", "face"}});
  EXPECT_EQ(desk.doc.displayMode, FlatShading);
  EXPECT_NE(desk.mesh().vertices, positions);
  EXPECT_THAT(desk.mesh().ridgeMarks, Contains(1));
  EXPECT_EQ(desk.outside.count("redraw"), 1) << "the smoothing's own";
}

TEST(LocalMaxCommand, FaceKeepsTheShapeOfAnAdaptivePreSmoothingAsWell) {
  Desk desk(bumpyGrid(16, 16));
  const auto positions = desk.mesh().vertices;
  desk.answer(fewAdaptiveSteps());
  desk.findLines({{"preSmoothing", "adaptive"}, {"extractOn", "face"}});
  EXPECT_EQ(desk.doc.displayMode, FlatShading);
  EXPECT_NE(desk.mesh().vertices, positions);
}

// With the constant as the valleys' limit too, a way between valleys may pass wherever the minimum
// curvature is not above it, also where it is hardly negative.
TEST(LocalMaxCommand, AConstantIsTheSamePositiveLimitForRidgesAndValleys) {
  constexpr float constant = 0.3F;
  Desk desk(bumpyGrid(30, 30));
  desk.findLines({{"extractOn", "edge"},
                  {"thresholdMode", "constant"},
                  {"constantThreshold", "0.3"},
                  {"absoluteComparison", "0"},
                  {"connectThreshold", "1e9"}});
  const auto connected = [&](double valleyLow) {
    TriangleMesh mesh = bumpyGrid(30, 30);
    extractExtrema(mesh);
    thresholdConstant(mesh, constant);
    fillGaps(mesh);
    buildLineGraph(mesh);
    connectLines(mesh, 1e9F, {static_cast<double>(constant), valleyLow});
    return mesh;
  };
  const TriangleMesh same = connected(static_cast<double>(constant));
  EXPECT_EQ(desk.mesh().ridgeLinks, same.ridgeLinks);
  EXPECT_EQ(desk.mesh().valleyLinks, same.valleyLinks);
  EXPECT_NE(desk.mesh().valleyLinks, connected(-static_cast<double>(constant)).valleyLinks);
}

TEST(LocalMaxCommand, PositionsAreRestoredBitForBitAfterAdaptivePreSmoothing) {
  Desk desk(bumpyGrid(16, 16));
  const auto positions = desk.mesh().vertices;
  const auto normals = desk.mesh().vertexNormals;
  desk.answer(fewAdaptiveSteps());
  desk.findLines({{"preSmoothing", "adaptive"}, {"extractOn", "edge"}});
  EXPECT_EQ(desk.mesh().vertices, positions);
  EXPECT_EQ(desk.mesh().vertexNormals, normals);
}

TEST(LocalMaxCommand, ACancelInsideSkipsOnlyThatStage) {
  Desk plain(bumpyGrid(16, 16));
  plain.findLines({});
  Desk desk(bumpyGrid(16, 16));
  desk.answer(okWith({{"preSmoothing", "common"}}));
  desk.answer(cancel());
  desk.answer(cancel());
  desk.doc.OnEdgeDetectionLocalMax();
  EXPECT_TRUE(desk.outside.finished());
  EXPECT_EQ(desk.mesh().ridgeMarks, plain.mesh().ridgeMarks);
  EXPECT_EQ(desk.doc.displayMode, RidgeVertices);
}

TEST(LocalMaxCommand, ACancelOfTheAdaptiveSmoothingSkipsOnlyThatStage) {
  Desk plain(bumpyGrid(16, 16));
  plain.findLines({{"extractOn", "edge"}});
  Desk desk(bumpyGrid(16, 16));
  const auto positions = desk.mesh().vertices;
  desk.answer(cancel());
  desk.findLines({{"preSmoothing", "adaptive"}, {"extractOn", "edge"}});
  EXPECT_EQ(desk.mesh().ridgeLinks, plain.mesh().ridgeLinks);
  EXPECT_EQ(desk.mesh().vertices, positions);
  EXPECT_EQ(desk.doc.displayMode, FeatureLines);
  EXPECT_FALSE(desk.doc.modified);
}

// Between the runs the shape changes, so that whatever the first one left behind would show.
TEST(LocalMaxCommand, ASecondRunReplacesEverything) {
  const TriangleMesh second = jittered(bumpyGrid(20, 20), 0.1);
  Desk fresh(second);
  fresh.findLines({{"extractOn", "edge"}});
  Desk desk(bumpyGrid(20, 20));
  desk.findLines({{"extractOn", "edge"}});
  ASSERT_FALSE(sameLines(desk.mesh(), fresh.mesh()));
  desk.mesh().vertices = second.vertices;
  desk.doc.geometryChanged();
  desk.findLines({{"extractOn", "edge"}});
  EXPECT_TRUE(sameLines(desk.mesh(), fresh.mesh()));
  EXPECT_EQ(desk.mesh().maxCurvature, fresh.mesh().maxCurvature);
  EXPECT_EQ(desk.mesh().minCurvature, fresh.mesh().minCurvature);
  EXPECT_EQ(desk.mesh().maxDirection, fresh.mesh().maxDirection);
  EXPECT_EQ(desk.mesh().minDirection, fresh.mesh().minDirection);
}

TEST(LocalMaxCommand, CurvatureThatIsThereAlreadyIsComputedAnew) {
  Desk fresh(bumpyGrid(20, 20));
  fresh.findLines({});
  Desk desk(bumpyGrid(20, 20));
  const auto V = desk.mesh().vertices.size() / 3;
  desk.mesh().maxCurvature.assign(V, 3.0);
  desk.mesh().minCurvature.assign(V, -3.0);
  desk.mesh().maxDirection.assign(3 * V, 0.0);
  desk.mesh().minDirection.assign(3 * V, 0.0);
  desk.findLines({});
  EXPECT_EQ(desk.mesh().maxCurvature, fresh.mesh().maxCurvature);
  EXPECT_EQ(desk.mesh().maxDirection, fresh.mesh().maxDirection);
  EXPECT_EQ(desk.mesh().ridgeMarks, fresh.mesh().ridgeMarks);
  EXPECT_EQ(desk.mesh().valleyMarks, fresh.mesh().valleyMarks);
}

TEST(LocalMaxCommand, RidgeEdgeSmoothingChangesTheShape) {
  Desk desk(bumpyGrid(30, 30));
  const auto positions = desk.mesh().vertices;
  desk.findLines({{"extractOn", "edge"}, {"smoothRidgeEdges", "1"}});
  EXPECT_NE(desk.mesh().vertices, positions);
  EXPECT_TRUE(desk.doc.modified);
}

TEST(LocalMaxCommand, UndoWhileLinesAreShownReturnsToFlatShading) {
  Desk desk(bumpyGrid(16, 16));
  desk.answer(fewLaplacianSteps());
  desk.doc.OnSmoothingShape();
  desk.findLines({{"extractOn", "edge"}});
  desk.doc.OnEditUndo();
  EXPECT_EQ(desk.doc.displayMode, FlatShading);
}

TEST(FaceAngleCommand, FindsTheTwelveEdgesOfACube) {
  Desk desk(cube());
  desk.findCreases({{"thresholdMode", "angle"}});
  EXPECT_EQ(desk.doc.displayMode, FeatureLines);
  EXPECT_EQ(linkCount(desk.mesh().ridgeLinks), 12);
}

TEST(FaceAngleCommand, CancelChangesNothing) {
  Desk desk(cube());
  desk.answer(cancel());
  desk.doc.OnEdgeDetectionFaceAngle();
  EXPECT_TRUE(desk.outside.finished());
  EXPECT_EQ(desk.doc.displayMode, FlatShading);
  EXPECT_THAT(desk.mesh().ridgeLinks, IsEmpty());
  EXPECT_EQ(desk.outside.count("redraw"), 0);
}

TEST(LocalMaxCommand, CurvatureOfTheSmoothedShapeIsNotThatOfTheRestoredOne) {
  Desk desk(bumpyGrid(16, 16));
  desk.answer(fewLaplacianSteps());
  desk.findLines({{"preSmoothing", "common"}});
  desk.doc.OnCurvatureMax();
  EXPECT_EQ(desk.outside.histogramAge, HistogramAge::EarlierShape);
  desk.findLines({{"preSmoothing", "none"}});
  desk.doc.OnCurvatureMax();
  EXPECT_EQ(desk.outside.histogramAge, HistogramAge::Current);
}

TEST(FaceAngleCommand, SmoothingOnTheWayLeavesCurvatureThatOfTheRestoredShape) {
  Desk desk(bumpyGrid(16, 16));
  desk.doc.OnCurvatureMax();
  desk.answer(fewAdaptiveSteps());
  desk.findCreases({{"preSmoothing", "1"}});
  EXPECT_EQ(desk.outside.histogramAge, HistogramAge::Current);
  desk.doc.OnCurvatureMean();
  EXPECT_EQ(desk.outside.histogramAge, HistogramAge::Current);
}

TEST(FaceAngleCommand, ACancelOfTheAdaptiveSmoothingSkipsOnlyTheSmoothing) {
  Desk plain(bumpyGrid(16, 16));
  plain.findCreases({});
  Desk desk(bumpyGrid(16, 16));
  desk.answer(cancel());
  desk.findCreases({{"preSmoothing", "1"}});
  EXPECT_EQ(desk.mesh().ridgeLinks, plain.mesh().ridgeLinks);
  EXPECT_EQ(desk.mesh().valleyLinks, plain.mesh().valleyLinks);
  EXPECT_EQ(desk.mesh().vertices, plain.mesh().vertices);
  EXPECT_EQ(desk.doc.displayMode, FeatureLines);
  EXPECT_FALSE(desk.doc.modified);
}

TEST(FaceAngleCommand, TheAngleReachesTheDetector) {
  const TriangleMesh shape = jittered(bumpyGrid(16, 16), 0.2);
  std::vector<IndexList> before;
  for (const int angle : {0, 140, 165, 180}) {
    SCOPED_TRACE(angle);
    Desk desk(shape);
    desk.findCreases({{"thresholdMode", "angle"}, {"angle", std::to_string(angle)}});
    TriangleMesh byHand = shape;
    const auto creases =
        detectCreasesByAngle(byHand, static_cast<float>(-std::cos(angle * 0.017453292519943278)));
    EXPECT_EQ(desk.mesh().ridgeLinks, byHand.ridgeLinks);
    EXPECT_EQ(desk.mesh().valleyLinks, byHand.valleyLinks);
    EXPECT_EQ(desk.doc.creaseLinks, creases);
    EXPECT_NE(creases, before) << "each angle has creases of its own";
    before = creases;
  }
}

TEST(FaceAngleCommand, ThePercentagesReachTheDetector) {
  const TriangleMesh shape = jittered(bumpyGrid(16, 16), 0.2);
  std::vector<IndexList> before;
  for (const auto& [hi, low] : {std::pair{90, 80}, {90, 40}, {60, 40}}) {
    SCOPED_TRACE(hi + low);
    Desk desk(shape);
    desk.findCreases({{"histogramHi", std::to_string(hi)}, {"histogramLow", std::to_string(low)}});
    TriangleMesh byHand = shape;
    detectCreasesByHistogram(
        byHand, {.hi = static_cast<float>(hi) * 0.01F, .low = static_cast<float>(low) * 0.01F});
    EXPECT_EQ(desk.mesh().ridgeLinks, byHand.ridgeLinks);
    EXPECT_EQ(desk.mesh().valleyLinks, byHand.valleyLinks);
    EXPECT_NE(byHand.ridgeLinks, before);
    before = byHand.ridgeLinks;
  }
}

TEST(FaceAngleCommand, CreasesOfTheSmoothedShapeAreShownOnTheOriginalOne) {
  Desk desk(bumpyGrid(16, 16));
  const auto positions = desk.mesh().vertices;
  desk.answer(fewAdaptiveSteps());
  desk.findCreases({{"preSmoothing", "1"}});
  EXPECT_EQ(desk.mesh().vertices, positions);
  Desk plain(bumpyGrid(16, 16));
  plain.findCreases({});
  EXPECT_NE(desk.mesh().ridgeLinks, plain.mesh().ridgeLinks);
}

TEST(FaceAngleCommand, ARedrawFindsTheCreasesAgainWhenTheShapeHasChanged) {
  Desk desk(cube());
  desk.findCreases({{"thresholdMode", "angle"}});
  desk.mesh().setPosition(6, {1.0, 1.0, -0.99});  // one corner pressed into the opposite side
  desk.doc.needsRecompute = true;
  desk.doc.redraw();
  EXPECT_GT(linkCount(desk.mesh().ridgeLinks) + linkCount(desk.mesh().valleyLinks), 12)
      << "the sides that met in the corner are folded along their diagonals now";
}

TEST(FaceAngleCommand, LinesOfLocalMaxAreNeverOverwrittenByARedraw) {
  Desk desk(bumpyGrid(20, 20));
  desk.findLines({{"extractOn", "edge"}});
  const auto links = desk.mesh().ridgeLinks;
  desk.doc.needsRecompute = true;
  desk.doc.redraw();
  EXPECT_EQ(desk.mesh().ridgeLinks, links);
}

TEST(FaceAngleCommand, CreasesOfASmoothedShapeAreNotFoundAgainByARedraw) {
  Desk desk(bumpyGrid(16, 16));
  desk.answer(fewAdaptiveSteps());
  desk.findCreases({{"preSmoothing", "1"}});
  const auto links = desk.mesh().ridgeLinks;
  desk.doc.needsRecompute = true;
  desk.doc.redraw();
  EXPECT_EQ(desk.mesh().ridgeLinks, links);
}

// Pre-smoothing draws the smoothed shape in mode 12, so the creases on show are found there; marks
// of vertices do not take their place.
TEST(FaceAngleCommand, CreasesBelongToTheRestoredShapeAfterLocalMaxLookedAtASmoothedOne) {
  for (const char* mode : {"angle", "histogram"}) {
    for (const bool adaptive : {false, true}) {
      SCOPED_TRACE(std::string(mode) + (adaptive ? ", adaptive" : ", common"));
      Desk desk(jittered(bumpyGrid(16, 16), 0.1));
      desk.findCreases({{"thresholdMode", mode}});
      const auto ridges = desk.mesh().ridgeLinks;
      const auto valleys = desk.mesh().valleyLinks;
      const auto creases = desk.doc.creaseLinks;
      int foundElsewhere = 0;
      desk.outside.whenRedrawn = [&] {
        if (desk.mesh().ridgeLinks != ridges) ++foundElsewhere;
      };
      desk.answer(adaptive ? fewAdaptiveSteps() : fewLaplacianSteps());
      desk.findLines({{"preSmoothing", adaptive ? "adaptive" : "common"}});
      EXPECT_GT(foundElsewhere, 0) << "the smoothed shape has other creases";
      EXPECT_EQ(desk.mesh().ridgeLinks, ridges);
      EXPECT_EQ(desk.mesh().valleyLinks, valleys);
      EXPECT_EQ(desk.doc.creaseLinks, creases);
    }
  }
}

/// What the file of this name holds; it is removed.
std::string take(const std::string& path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  std::filesystem::remove(path);
  return text.str();
}

TEST(ExportLinesCommand, WritesTheLinesInTheFormatOfTheExtension) {
  Desk desk(cube());
  desk.findCreases({{"thresholdMode", "angle"}});
  const std::string stem = ::testing::TempDir() + "gravlin-export-lines";
  for (const auto& [extension, start] :
       {std::pair{".obj", "v "}, {".vtk", "# vtk DataFile"}, {".svg", "picture of 12 lines"}}) {
    desk.outside.fileAnswers.push_back(stem + extension);
    desk.doc.OnExportLines();
    EXPECT_EQ(take(stem + extension).find(start), 0U) << extension;
  }
  EXPECT_THAT(desk.outside.messages, IsEmpty());
}

TEST(ExportLinesCommand, BeforeAnyLinesWereLookedForThereIsAMessageAndNoFile) {
  Desk desk(bumpyGrid(12, 12));
  const std::string path = ::testing::TempDir() + "gravlin-no-lines-yet.obj";
  EXPECT_FALSE(desk.doc.exportLines(path));
  desk.findLines({{"extractOn", "vertex"}});
  EXPECT_FALSE(desk.doc.exportLines(path)) << "marks alone make no lines";
  EXPECT_EQ(desk.outside.messages.size(), 2U);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(ExportLinesCommand, WhenNoneWereFoundTheFileHasNoneAndTheStatusSaysSo) {
  const std::string path = ::testing::TempDir() + "gravlin-no-lines.obj";
  for (const TriangleMesh& mesh : {icosphere(2), emptyMesh()}) {
    Desk desk(mesh);
    desk.findCreases({{"thresholdMode", "angle"}, {"angle", "100"}});
    EXPECT_TRUE(desk.doc.exportLines(path));
    EXPECT_EQ(take(path), "");
    EXPECT_THAT(desk.outside.statuses.back(), ::testing::StartsWith("No lines were found"));
  }
}

TEST(ExportLinesCommand, PositionsThatAreLeftOutAreToldOfWhenLinesMeetThem) {
  const TemporaryFolder folder;
  const std::string path = folder.file("lines.obj");
  const std::string remark = "Positions that are not finite are left out.";
  TriangleMesh mesh = bumpyGrid(12, 12);
  Desk desk(mesh);
  desk.findCreases({{"thresholdMode", "angle"}, {"angle", "1"}});
  const auto& links = desk.mesh().ridgeLinks;
  const auto isOnLine = [&](std::size_t v) {
    return !links[v].empty() || !desk.mesh().valleyLinks[v].empty();
  };
  const auto breakVertex = [&](bool onLine) {
    std::size_t v = 0;
    while (isOnLine(v) != onLine) ++v;
    desk.mesh().vertices[3 * v] = std::numeric_limits<float>::infinity();
  };
  breakVertex(false);
  EXPECT_TRUE(desk.doc.exportLines(path));
  EXPECT_THAT(desk.outside.statuses.back(), Not(::testing::HasSubstr(remark)));
  breakVertex(true);
  EXPECT_TRUE(desk.doc.exportLines(path));
  EXPECT_THAT(desk.outside.statuses.back(), ::testing::EndsWith(remark));
}

TEST(ExportLinesCommand, LinesThatWentWithTheirMeshGetAMessageUntilSomeAreLookedForAgain) {
  const TemporaryFolder folder;
  const std::string path = folder.file("lost-lines.obj");
  for (const auto& [name, loseLines] :
       {std::pair<const char*, void (CGravlinDoc::*)()>{"subdivision", &CGravlinDoc::OnSubdivision},
        {"simplification", &CGravlinDoc::OnSimplification},
        {"undo", &CGravlinDoc::OnEditUndo}}) {
    SCOPED_TRACE(name);
    Desk desk(jittered(fineCube(5), 0.03));
    desk.doc.keepUndoCopy();
    desk.findCreases({{"thresholdMode", "angle"}});
    desk.doc.OnFlatShading();  // where creases are not found again
    desk.outside.dialogAnswers = {ok()};
    (desk.doc.*loseLines)();
    EXPECT_FALSE(desk.doc.exportLines(path));
    EXPECT_FALSE(std::filesystem::exists(path));
    ASSERT_EQ(desk.outside.messages.size(), 1U);
    EXPECT_THAT(desk.outside.messages[0], ::testing::HasSubstr("none were looked for since"));
    desk.outside.dialogAnswers.clear();
    desk.findCreases({{"thresholdMode", "angle"}});
    EXPECT_TRUE(desk.doc.exportLines(path));
    EXPECT_EQ(take(path).find("v "), 0U);
  }
}

TEST(ExportLinesCommand, LinesOfALostMeshAreNoMatterForAnotherFile) {
  const TemporaryFolder folder;
  Desk desk(cube());
  desk.findCreases({{"thresholdMode", "angle"}});
  ASSERT_TRUE(desk.doc.openFile(
      folder.write("square.ply2", "4 2\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n3 0 1 2\n3 0 2 3\n")));
  EXPECT_FALSE(desk.doc.exportLines(folder.file("none.obj")));
  EXPECT_THAT(desk.outside.messages.back(),
              ::testing::StartsWith("There are no lines to export yet"));
}

TEST(ExportLinesCommand, AnotherExtensionOrAFolderThatIsNotThereGetsAMessage) {
  Desk desk(cube());
  EXPECT_FALSE(desk.doc.exportLines(::testing::TempDir() + "lines.ply2"));
  EXPECT_FALSE(desk.doc.exportLines("/no/such/folder/lines.obj"));
  EXPECT_EQ(desk.outside.messages.size(), 2U);
}

TEST(ExportLinesCommand, CancelWritesNothingAndSoDoesNoMeshWithAMessage) {
  Desk desk(cube());
  desk.outside.fileAnswers.push_back(std::nullopt);
  desk.doc.OnExportLines();
  EXPECT_THAT(desk.outside.statuses, IsEmpty());
  EXPECT_THAT(desk.outside.messages, IsEmpty());
  test::dropMesh(desk.doc);
  desk.doc.OnExportLines();
  EXPECT_EQ(desk.outside.count("save file"), 1);
  EXPECT_EQ(desk.outside.messages.size(), 1U);
}

std::string exportedAs(Desk& desk, const std::string& extension) {
  const std::string path = ::testing::TempDir() + "gravlin-exported-lines" + extension;
  EXPECT_TRUE(desk.doc.exportLines(path));
  return take(path);
}

TEST(ExportLinesCommand, APictureOfAPenDrawingHasOnlyTheLinesThatItShows) {
  Desk desk(bumpyGrid(30, 30));
  desk.doc.OnSilhouette();
  const SilhouetteLines& shown = desk.doc.silhouetteLines;
  const std::size_t strong = shown.ridges.size() + shown.valleys.size();
  const std::size_t all = linesToExport(desk.mesh(), LineOrigin::RidgesAndValleys).lines.size();
  ASSERT_LT(strong, all);
  EXPECT_EQ(exportedAs(desk, ".svg"), "pen drawing of " + std::to_string(strong) + " lines");
  std::stringstream obj(exportedAs(desk, ".obj"));
  std::size_t records = 0;
  for (std::string line; std::getline(obj, line);) records += line.starts_with("l ") ? 1 : 0;
  EXPECT_EQ(records, all);
  desk.doc.OnFlatShading();
  EXPECT_EQ(exportedAs(desk, ".svg"), "picture of " + std::to_string(all) + " lines");
}

TEST(ExportLinesCommand, APictureIsInGreyWhenTheViewIs) {
  Desk desk(cube());
  desk.findCreases({{"thresholdMode", "angle"}});
  desk.doc.visualizationParameters.grayScale = true;
  EXPECT_EQ(exportedAs(desk, ".svg"), "picture of 12 lines in grey");
}

TEST(SilhouetteCommand, PreparesStrokesCoherentFacesAndStrongLines) {
  Desk desk(bumpyGrid(30, 30));
  desk.doc.OnSilhouette();
  EXPECT_EQ(desk.doc.displayMode, Silhouette);
  EXPECT_EQ(desk.mesh().strokes.maxStrokes.size(), 3000U);
  EXPECT_THAT(desk.mesh().coherentFaces, Contains(1));
  EXPECT_EQ(desk.mesh().maxDerivativeGradient.size(), desk.mesh().vertices.size());
  EXPECT_THAT(desk.doc.silhouetteLines.ridges, Not(IsEmpty()));
  EXPECT_EQ(desk.outside.count("redraw"), 1);
}

TEST(SilhouetteCommand, RunsItsStagesWithItsOwnNumbers) {
  constexpr float turn = 0.4F;
  Desk desk(bumpyGrid(30, 30));
  TriangleMesh byHand = desk.mesh();
  computeCurvatureTensor(byHand);
  extractExtrema(byHand);
  const LowThresholds low = thresholdHistogram(byHand, {.upper = 0.8F, .lower = 0.3F});
  compareAbsoluteValues(byHand);
  fillGaps(byHand);
  buildLineGraph(byHand);
  computeCurvatureDerivatives(byHand);
  CurvatureTensorSmoother smoother;
  smoother.mesh = &byHand;
  smoother.smoothDerivativeGradients(20, 20.0F);
  const SilhouetteLines lines = selectSilhouetteLines(byHand, {2.0F, low});
  markCoherentFaces(byHand, turn);

  desk.doc.tensorSmoothingParameters.directionThreshold = turn;
  desk.doc.OnSilhouette();
  EXPECT_EQ(desk.mesh().ridgeMarks, byHand.ridgeMarks);
  EXPECT_EQ(desk.mesh().ridgeLinks, byHand.ridgeLinks);
  EXPECT_EQ(desk.mesh().valleyLinks, byHand.valleyLinks);
  EXPECT_EQ(desk.mesh().maxDerivativeGradient, byHand.maxDerivativeGradient);
  EXPECT_EQ(desk.mesh().minDerivativeGradient, byHand.minDerivativeGradient);
  EXPECT_EQ(desk.doc.silhouetteLines.ridges, lines.ridges);
  EXPECT_EQ(desk.doc.silhouetteLines.valleys, lines.valleys);
  EXPECT_EQ(desk.mesh().coherentFaces, byHand.coherentFaces);

  Desk usual(bumpyGrid(30, 30));
  usual.doc.OnSilhouette();
  EXPECT_NE(usual.mesh().coherentFaces, byHand.coherentFaces) << "5 lets more faces pass";
}

TEST(SilhouetteCommand, KeepsCurvatureThatIsThereAndTheShape) {
  Desk desk(bumpyGrid(12, 12));
  desk.mesh().maxCurvature.assign(desk.mesh().vertices.size() / 3, 1.0);
  desk.mesh().minCurvature = desk.mesh().maxCurvature;
  desk.mesh().maxDirection.assign(desk.mesh().vertices.size(), 0.0);
  desk.mesh().minDirection = desk.mesh().maxDirection;
  const auto positions = desk.mesh().vertices;
  desk.doc.OnSilhouette();
  EXPECT_THAT(desk.mesh().maxCurvature, Each(1.0));
  EXPECT_EQ(desk.mesh().vertices, positions);
}

TEST(SilhouetteCommand, ForgetsTheCreasesThatItsLinesReplace) {
  Desk desk(bumpyGrid(12, 12));
  desk.findCreases({{"thresholdMode", "angle"}});
  ASSERT_GT(linkCount(desk.doc.creaseLinks), 0);
  desk.doc.OnSilhouette();
  EXPECT_THAT(desk.doc.creaseLinks, IsEmpty());
}

TEST(SilhouetteCommand, WithoutAMeshNothingHappens) {
  ScriptedOutside outside;
  CGravlinDoc doc(outside);
  doc.OnSilhouette();
  EXPECT_THAT(outside.calls, IsEmpty());
  EXPECT_EQ(doc.displayMode, FlatShading);
}

/// Expects what holds of lines on any mesh: a mark of 0 or 1 and a list for every vertex, each link
/// at both of its ends.
void expectLinesInOrder(const TriangleMesh& mesh, const std::vector<IndexList>& links,
                        const std::vector<int>& marks) {
  const auto V = static_cast<std::size_t>(mesh.vertexCount);
  ASSERT_EQ(links.size(), V);
  ASSERT_EQ(marks.size(), V);
  EXPECT_THAT(marks, Each(::testing::AnyOf(0, 1)));
  for (int v = 0; v < mesh.vertexCount; ++v) {
    for (const int u : links[toIndex(v)]) {
      EXPECT_EQ(std::ranges::count(links[toIndex(v)], u), std::ranges::count(links[toIndex(u)], v));
    }
  }
}

// Only the smoothing of ridge edges moves anything.
TEST(FeatureCommands, OnHostileMeshesLeaveFacesAndKindsAndFiniteShapesFinite) {
  for (const auto& [name, before] : hostileMeshes()) {
    SCOPED_TRACE(name);
    Desk desk(before);
    for (const char* extractOn : {"vertex", "edge", "face"}) {
      desk.findLines({{"extractOn", extractOn}, {"showRidgeDirection", "1"}});
      EXPECT_TRUE(sameVertices(desk.mesh(), before));
    }
    desk.findLines({{"extractOn", "edge"}, {"smoothRidgeEdges", "1"}});
    expectLinesInOrder(desk.mesh(), desk.mesh().ridgeLinks, desk.mesh().ridgeMarks);
    expectLinesInOrder(desk.mesh(), desk.mesh().valleyLinks, desk.mesh().valleyMarks);
    EXPECT_EQ(isFinite(desk.mesh()), isFinite(before));
    const std::vector<float> smoothed = desk.mesh().vertices;
    for (const char* mode : {"angle", "histogram"}) {
      desk.findCreases(
          {{"thresholdMode", mode}, {"angle", "180"}, {"histogramHi", "0"}, {"histogramLow", "0"}});
      EXPECT_EQ(desk.doc.displayMode, FeatureLines);
      expectLinesInOrder(desk.mesh(), desk.mesh().ridgeLinks, desk.mesh().ridgeMarks);
      expectLinesInOrder(desk.mesh(), desk.mesh().valleyLinks, desk.mesh().valleyMarks);
    }
    desk.doc.OnSilhouette();
    EXPECT_EQ(desk.doc.displayMode, Silhouette);
    EXPECT_EQ(desk.mesh().coherentFaces.size(), toIndex(desk.mesh().faceCount));
    EXPECT_EQ(desk.mesh().vertices.size(), smoothed.size());
    EXPECT_EQ(desk.mesh().faces, before.faces);
    EXPECT_EQ(desk.mesh().vertexKind, before.vertexKind);
    EXPECT_EQ(desk.mesh().faceAdjacency, before.faceAdjacency);
  }
}

}  // namespace
}  // namespace gravlin
