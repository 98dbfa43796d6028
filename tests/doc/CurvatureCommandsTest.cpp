#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "curvature/CurvatureFields.h"
#include "curvature/CurvatureTensor.h"
#include "curvature/EdgeCurvature.h"
#include "doc/CGravlinDoc.h"
#include "doc/ModeTable.h"
#include "support/Allocations.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/ScriptedOutside.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Eq;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using Handler = void (CGravlinDoc::*)();

class CurvatureCommands : public ::testing::Test {
 protected:
  void load(TriangleMesh mesh) { test::setMesh(doc, std::move(mesh)); }
  TriangleMesh& mesh() { return test::meshOf(doc); }

  test::ScriptedOutside outside;
  CGravlinDoc doc{outside};
};

/// The same mesh with its estimated curvature.
TriangleMesh estimated(TriangleMesh mesh) {
  computeCurvatureTensor(mesh);
  return mesh;
}

// --- Directions, tensors, curvatures ---

TEST_F(CurvatureCommands, DirectionsAndTensorsEstimateCurvatureAndShowTheirMode) {
  const TriangleMesh expected = estimated(test::torus(12, 8));
  for (const auto& [handler, mode] : {std::pair<Handler, int>{&CGravlinDoc::OnDirectionMax, 5},
                                      {&CGravlinDoc::OnDirectionMin, 16},
                                      {&CGravlinDoc::OnTensorMax, 14},
                                      {&CGravlinDoc::OnTensorMin, 15}}) {
    load(test::torus(12, 8));
    outside.forget();
    (doc.*handler)();
    EXPECT_EQ(doc.displayMode, mode);
    EXPECT_THAT(outside.calls, ElementsAre("redraw"));
    EXPECT_EQ(mesh().maxCurvature, expected.maxCurvature);
    EXPECT_EQ(mesh().minDirection, expected.minDirection);
  }
}

struct FieldCommand {
  Handler handler;
  int mode;
  CurvatureField field;
  std::string name;
};

const std::vector<FieldCommand>& fieldCommands() {
  static const std::vector<FieldCommand> commands = {
      {&CGravlinDoc::OnCurvatureMax, 10, CurvatureField::Max, "Maximum curvature"},
      {&CGravlinDoc::OnCurvatureMin, 20, CurvatureField::Min, "Minimum curvature"},
      {&CGravlinDoc::OnCurvatureMean, 18, CurvatureField::Mean, "Mean curvature"},
      {&CGravlinDoc::OnCurvatureGauss, 19, CurvatureField::Gauss, "Gaussian curvature"},
      {&CGravlinDoc::OnCurvatureTotal, 17, CurvatureField::Total, "Total curvature"}};
  return commands;
}

TEST_F(CurvatureCommands, CurvaturesShowTheHistogramOfTheirValues) {
  const TriangleMesh expected = estimated(test::torus(12, 8));
  for (const FieldCommand& command : fieldCommands()) {
    SCOPED_TRACE(command.name);
    load(test::torus(12, 8));
    outside.forget();
    (doc.*command.handler)();
    EXPECT_EQ(doc.displayMode, command.mode);
    EXPECT_THAT(outside.calls,
                ElementsAre("histogram " + command.name, "histogram values 96", "redraw"));
    EXPECT_EQ(outside.histogramValues, curvatureField(expected, command.field));
    EXPECT_TRUE(std::ranges::equal(doc.shown().fieldValues, outside.histogramValues));
  }
}

TEST_F(CurvatureCommands, ShowTheFieldThatIsThere) {
  for (const FieldCommand& command : fieldCommands()) {
    load(estimated(test::torus(12, 8)));
    mesh().maxCurvature.assign(96, 3.0);
    mesh().minCurvature.assign(96, -1.0);
    (doc.*command.handler)();
    const double expected[] = {3.0, -1.0, 1.0, -3.0, 4.0};
    EXPECT_THAT(outside.histogramValues,
                Each(Eq(expected[static_cast<std::size_t>(command.field)])));
  }
  mesh().maxDirection.assign(std::size_t{3} * 96, 0.25);
  doc.OnDirectionMax();
  EXPECT_THAT(mesh().maxDirection, Each(Eq(0.25)));
}

TEST_F(CurvatureCommands, AChangeOfGeometryRefreshesCurvatureAndHistogramOnce) {
  for (const FieldCommand& command : fieldCommands()) {
    SCOPED_TRACE(command.name);
    load(test::torus(12, 8));
    (doc.*command.handler)();
    for (float& x : mesh().vertices) x *= 2.0F;
    doc.needsRecompute = true;
    outside.forget();
    doc.redraw();
    EXPECT_THAT(outside.calls, ElementsAre("histogram values 96", "redraw"));
    TriangleMesh expected = test::torus(12, 8);
    for (float& x : expected.vertices) x *= 2.0F;
    computeCurvatureTensor(expected);
    EXPECT_EQ(outside.histogramValues, curvatureField(expected, command.field));
    outside.forget();
    doc.redraw();
    EXPECT_THAT(outside.calls, ElementsAre("redraw"));
  }
}

TEST_F(CurvatureCommands, AChangeOfGeometryInAnotherModeLeavesTheEstimate) {
  load(test::torus(12, 8));
  doc.OnDirectionMax();
  const std::vector<double> before = mesh().maxCurvature;
  doc.OnFlatShading();
  for (float& x : mesh().vertices) x *= 2.0F;
  doc.needsRecompute = true;
  doc.redraw();
  doc.OnCurvatureMax();
  EXPECT_EQ(mesh().maxCurvature, before);
}

// --- Smoothing of the curvature, and the histogram of before ---

TEST_F(CurvatureCommands, AHistogramOfBeforeCurvatureTensorSaysSo) {
  for (const FieldCommand& command : fieldCommands()) {
    SCOPED_TRACE(command.name);
    load(test::torus(12, 8));
    (doc.*command.handler)();
    outside.dialogAnswers = {test::cancel(), test::ok()};
    doc.OnSmoothingCurvatureTensor();
    EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
    doc.OnSmoothingCurvatureTensor();
    EXPECT_EQ(outside.histogramAge, HistogramAge::BeforeCurvatureSmoothing);
    (doc.*command.handler)();
    EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
    outside.dialogAnswers = {test::ok()};  // from a fresh estimate, but smoothed otherwise
    doc.OnSmoothingCurvatureTensor();
    EXPECT_EQ(outside.histogramAge, HistogramAge::BeforeCurvatureSmoothing);
    doc.keepUndoCopy();
    mesh().vertices[0] += 1.0F;
    doc.geometryChanged();
    EXPECT_EQ(outside.histogramAge, HistogramAge::EarlierShape);
  }
}

TEST_F(CurvatureCommands, AHistogramIsOfTheCurvatureAgainWhenItIsEstimatedAsBefore) {
  const auto estimateAnew = [this] {
    outside.dialogAnswers = {test::okWith({{"extractOn", "edge"}, {"smoothTensor", "0"}})};
    doc.OnEdgeDetectionLocalMax();
  };
  load(test::torus(12, 8));
  doc.OnCurvatureMax();
  const std::vector<double> estimated = outside.histogramValues;
  outside.dialogAnswers = {test::ok()};
  doc.OnSmoothingCurvatureTensor();
  EXPECT_EQ(outside.histogramAge, HistogramAge::BeforeCurvatureSmoothing);
  estimateAnew();
  EXPECT_EQ(mesh().maxCurvature, estimated);
  EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
  // The other way round the histogram has smoothed values.
  outside.dialogAnswers = {test::ok()};
  doc.OnSmoothingCurvatureTensor();
  doc.OnCurvatureMax();
  ASSERT_NE(outside.histogramValues, estimated);
  EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
  estimateAnew();
  EXPECT_EQ(outside.histogramAge, HistogramAge::BeforeNewEstimate);
  doc.OnCurvatureMax();
  EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
}

TEST_F(CurvatureCommands, AnEstimateThatLeavesThePictureAsItIsTellsTheHistogramAllTheSame) {
  load(test::torus(12, 8));
  doc.OnCurvatureMax();
  outside.dialogAnswers = {test::ok()};
  doc.OnSmoothingCurvatureTensor();
  outside.dialogAnswers = {test::okWith({{"extractOn", "face"}, {"smoothTensor", "0"}})};
  doc.OnEdgeDetectionLocalMax();
  EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
}

TEST_F(CurvatureCommands, CurvatureTensorConcernsNoHistogramOfAnotherField) {
  for (const auto& [handler, iterations] :
       {std::pair<Handler, const char*>{&CGravlinDoc::OnEdgeCurvature, "3"},
        {&CGravlinDoc::OnShowVertexError, "3"},
        {&CGravlinDoc::OnCurvatureMax, "0"}}) {
    load(test::torus(12, 8));
    (doc.*handler)();
    outside.dialogAnswers = {test::okWith({{"curvatureIterations", iterations}})};
    doc.OnSmoothingCurvatureTensor();
    EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
  }
}

// --- The scale of an estimate ---

/// The mean curvature over all vertices, in units of the file.
double meanInFile(const TriangleMesh& mesh) {
  double sum = 0.0;
  for (const double h : curvatureField(mesh, CurvatureField::Mean)) sum += h;
  return sum / static_cast<double>(mesh.vertexCount) / mesh.curvatureOrigin.unit;
}

TEST_F(CurvatureCommands, SavingDoesNotChangeCurvatureInUnitsOfTheFile) {
  const test::TemporaryFolder folder;
  // A sphere of radius 3 that comes down to 1.5. The estimate of its mean curvature, 1 / radius, is
  // off by the error of the vertex normals alone.
  TriangleMesh sphere = test::icosphere(3, 3.0);
  sphere.normalize();
  load(std::move(sphere));
  doc.keepUndoCopy();
  for (float& x : mesh().vertices) x *= 0.5F;
  doc.geometryChanged();
  doc.OnCurvatureMax();
  doc.OnEdgeCurvature();
  const double edge = mesh().edgeCurvatures[0] / mesh().edgeCurvatureOrigin.unit;
  EXPECT_NEAR(meanInFile(mesh()), 1.0 / 1.5, 0.01);
  ASSERT_TRUE(doc.saveFile(folder.file("sphere.ply2")));
  EXPECT_NEAR(mesh().extentTolerance, 0.15, 1e-6);
  EXPECT_NEAR(meanInFile(mesh()), 1.0 / 1.5, 0.01);
  EXPECT_EQ(mesh().edgeCurvatures[0] / mesh().edgeCurvatureOrigin.unit, edge);
  outside.dialogAnswers = {test::okWith({{"curvatureIterations", "2"}})};
  doc.OnSmoothingCurvatureTensor();  // estimates at the new scale
  EXPECT_NEAR(meanInFile(mesh()), 1.0 / 1.5, 0.01);
  EXPECT_EQ(mesh().curvatureOrigin.unit, mesh().extentTolerance);
  doc.OnEditUndo();
  doc.OnCurvatureMax();
  EXPECT_NEAR(meanInFile(mesh()), 1.0 / 3.0, 0.005);
}

// --- Edge curvature ---

TEST_F(CurvatureCommands, EdgeCurvatureGivesThreeValuesAFaceToTheHistogram) {
  load(test::bumpyGrid(9, 7));
  mesh().faceNormals.clear();
  doc.OnEdgeCurvature();
  TriangleMesh expected = test::bumpyGrid(9, 7);
  computeEdgeCurvatures(expected);
  EXPECT_EQ(doc.displayMode, EdgeCurvature);
  EXPECT_THAT(outside.calls,
              ElementsAre("histogram Edge curvature", "histogram values 378", "redraw"));
  EXPECT_EQ(outside.histogramValues, expected.edgeCurvatures);

  for (float& x : mesh().vertices) x *= 2.0F;
  doc.needsRecompute = true;
  outside.forget();
  doc.redraw();
  EXPECT_THAT(outside.calls, ElementsAre("histogram values 378", "redraw"));
  EXPECT_EQ(2.0 * outside.histogramValues[40], expected.edgeCurvatures[40]);
}

// --- Strokes ---

TEST_F(CurvatureCommands, StrokesAskForTheirSeeds) {
  load(test::torus(12, 8));
  outside.dialogAnswers = {test::okWith({{"seedAmount", "30"}}), test::ok()};
  doc.OnStrokeMax();
  EXPECT_EQ(doc.displayMode, StrokeMax);
  EXPECT_THAT(outside.calls, ElementsAre("dialog CSeedDlg", "redraw"));
  EXPECT_THAT(mesh().strokes.maxStrokes, SizeIs(30));
  EXPECT_THAT(mesh().strokes.minStrokes, SizeIs(30));
  doc.OnStrokeMin();
  EXPECT_EQ(doc.displayMode, StrokeMin);
  EXPECT_THAT(mesh().strokes.strokeSeeds, SizeIs(30)) << "the dialog remembers its value";
}

TEST_F(CurvatureCommands, CancelledStrokesKeepTheModeAndTheStrokesThereAre) {
  load(test::torus(12, 8));
  outside.dialogAnswers = {test::okWith({{"seedAmount", "30"}}), test::cancel(), test::cancel()};
  doc.OnStrokeMax();
  outside.forget();
  doc.OnStrokeMin();
  EXPECT_EQ(doc.displayMode, StrokeMin);
  EXPECT_THAT(outside.calls, ElementsAre("dialog CSeedDlg"));
  EXPECT_THAT(mesh().strokes.strokeSeeds, SizeIs(30));
  load(test::torus(12, 8));
  doc.OnStrokeMax();
  EXPECT_THAT(mesh().strokes.strokeSeeds, IsEmpty());
}

TEST_F(CurvatureCommands, StrokesFollowTheFieldThatIsThere) {
  load(estimated(test::torus(12, 8)));
  mesh().maxDirection.assign(std::size_t{3} * 96, 0.0);
  outside.dialogAnswers = {test::okWith({{"seedAmount", "10"}})};
  doc.OnStrokeMax();
  EXPECT_THAT(mesh().strokes.maxStrokes, Each(SizeIs(1)));
  EXPECT_THAT(mesh().strokes.minStrokes.front(), SizeIs(::testing::Gt(1U)));
}

// --- Errors ---

TEST_F(CurvatureCommands, VertexErrorIsWhatHappenedSinceTheUndoCopy) {
  load(test::cube());
  doc.keepUndoCopy();
  mesh().setPosition(6, {1, 1, 3});
  doc.OnShowVertexError();
  EXPECT_EQ(doc.displayMode, VertexError);
  EXPECT_THAT(outside.calls, ElementsAre("histogram Vertex error", "histogram values 8", "redraw"));
  EXPECT_THAT(outside.histogramValues, ElementsAre(0, 0, 0, 0, 0, 0, 2, 0));
  EXPECT_EQ(doc.vertexErrors, outside.histogramValues);
  EXPECT_FALSE(doc.needsRecompute);

  doc.OnEditUndo();
  EXPECT_THAT(outside.histogramValues, Each(Eq(0.0)));
}

TEST_F(CurvatureCommands, FaceErrorIsTheAngleToTheUndoCopy) {
  load(test::singleTriangle());
  doc.keepUndoCopy();
  mesh().setPosition(2, {0, 0, 1});
  doc.OnShowFaceError();
  EXPECT_EQ(doc.displayMode, FaceError);
  EXPECT_THAT(outside.calls, ElementsAre("histogram Face error", "histogram values 1", "redraw"));
  EXPECT_NEAR(outside.histogramValues.front(), std::acos(0.0), 1e-12);
}

TEST_F(CurvatureCommands, ErrorsAreZeroWithoutAnUndoCopy) {
  load(test::cube());
  doc.OnShowVertexError();
  EXPECT_THAT(outside.histogramValues, SizeIs(8));
  EXPECT_THAT(outside.histogramValues, Each(Eq(0.0)));
  doc.OnShowFaceError();
  EXPECT_THAT(outside.histogramValues, SizeIs(12));
  EXPECT_THAT(outside.histogramValues, Each(Eq(0.0)));
}

// --- Tensor smoothing ---

/// The display mode at every redraw, in order.
struct ModesDrawn {
  ModesDrawn(test::ScriptedOutside& outside, const CGravlinDoc& doc) {
    outside.whenRedrawn = [this, &doc] { modes.push_back(doc.displayMode); };
  }
  std::vector<int> modes;
};

TEST_F(CurvatureCommands, TensorSmoothingRunsInTenthsWithoutAnimation) {
  load(test::torus(12, 8));
  const ModesDrawn drawn(outside, doc);
  outside.dialogAnswers = {test::okWith({{"curvatureIterations", "25"}})};
  doc.OnSmoothingCurvatureTensor();
  std::vector<std::string> expected = {"dialog CTensorSmoothDlg", "show progress 0..25 by 2"};
  expected.insert(expected.end(), 12, "step progress");
  expected.insert(expected.end(), {"redraw", "show progress 0..5 by 1"});
  expected.insert(expected.end(), 5, "step progress");
  expected.insert(expected.end(), {"redraw", "hide progress", "redraw"});
  EXPECT_EQ(outside.calls, expected);
  EXPECT_THAT(drawn.modes, ElementsAre(CurvatureMax, DirectionMax, TensorMax));
}

TEST_F(CurvatureCommands, TensorSmoothingRedrawsAsItAnimates) {
  load(test::torus(12, 8));
  const ModesDrawn drawn(outside, doc);
  outside.dialogAnswers = {test::okWith({{"animate", "1"},
                                         {"animateEvery", "3"},
                                         {"curvatureIterations", "7"},
                                         {"directionIterations", "2"},
                                         {"displayChoice", "1"}})};
  doc.OnSmoothingCurvatureTensor();
  EXPECT_THAT(outside.calls,
              ElementsAre("dialog CTensorSmoothDlg", "show progress 0..7 by 3", "step progress",
                          "redraw", "step progress", "redraw", "redraw", "show progress 0..2 by 3",
                          "redraw", "hide progress", "redraw"));
  EXPECT_THAT(drawn.modes,
              ElementsAre(CurvatureMin, CurvatureMin, CurvatureMin, DirectionMin, TensorMin));
}

TEST_F(CurvatureCommands, TensorSmoothingTakesOnlyTheFirstChoiceForTheMaximum) {
  for (const bool animate : {false, true}) {
    for (const char* choice : {"0", "1", "2", "3"}) {
      SCOPED_TRACE(::testing::Message() << choice << (animate ? " animated" : ""));
      load(test::torus(12, 8));
      const ModesDrawn drawn(outside, doc);
      outside.dialogAnswers = {test::okWith({{"displayChoice", choice},
                                             {"animate", animate ? "1" : "0"},
                                             {"animateEvery", "2"},
                                             {"curvatureIterations", "4"},
                                             {"directionIterations", "3"}})};
      doc.OnSmoothingCurvatureTensor();
      const bool max = std::string_view(choice) == "0";
      // Animated, a phase redraws after each chunk of two and once more at its end.
      std::vector<int> expected(animate ? 3 : 1, max ? CurvatureMax : CurvatureMin);
      expected.insert(expected.end(), animate ? 2 : 1, max ? DirectionMax : DirectionMin);
      expected.push_back(max ? TensorMax : TensorMin);
      EXPECT_EQ(drawn.modes, expected);
      EXPECT_EQ(doc.displayMode, max ? TensorMax : TensorMin);
    }
  }
}

TEST_F(CurvatureCommands, TensorSmoothingSmoothsAFreshEstimate) {
  TriangleMesh expected = estimated(test::bumpyGrid(9, 7));
  CurvatureTensorSmoother smoother{&expected};
  smoother.smoothCurvatureValues(10, 0.1F);
  smoother.smoothDirections(5, 5.0F);
  load(test::bumpyGrid(9, 7));
  outside.dialogAnswers = {test::ok(), test::ok()};
  for (int again = 0; again < 2; ++again) {
    doc.OnSmoothingCurvatureTensor();
    EXPECT_EQ(mesh().maxCurvature, expected.maxCurvature);
    EXPECT_EQ(mesh().minCurvature, expected.minCurvature);
    // Five single iterations repair the frames after each, one call of five only at the end.
    for (int i = 0; i < mesh().vertexCount; ++i) {
      EXPECT_GT(std::abs(dot(vectorAt(mesh().maxDirection, i), vectorAt(expected.maxDirection, i))),
                0.9);
    }
  }
  doc.OnCurvatureMax();
  EXPECT_EQ(outside.histogramValues, expected.maxCurvature) << "the smoothed field is shown";
}

TEST_F(CurvatureCommands, TensorSmoothingTakesAnyCounts) {
  for (const char* count : {"0", "-7", "-2147483648"}) {
    load(test::bumpyGrid(9, 7));
    outside.dialogAnswers = {test::okWith({{"animate", "1"},
                                           {"animateEvery", count},
                                           {"curvatureIterations", count},
                                           {"directionIterations", count}})};
    doc.OnSmoothingCurvatureTensor();
    EXPECT_EQ(mesh().maxCurvature, estimated(test::bumpyGrid(9, 7)).maxCurvature);
  }
}

TEST_F(CurvatureCommands, CancelledTensorSmoothingChangesNothing) {
  load(test::torus(12, 8));
  doc.displayMode = WireFrame;
  outside.dialogAnswers = {test::cancel()};
  doc.OnSmoothingCurvatureTensor();
  EXPECT_THAT(outside.calls, ElementsAre("dialog CTensorSmoothDlg"));
  EXPECT_EQ(doc.displayMode, WireFrame);
  EXPECT_THAT(mesh().maxCurvature, IsEmpty());
}

// --- Everywhere ---

TEST_F(CurvatureCommands, DoNothingWithoutAMesh) {
  const int before = doc.displayMode;
  for (const Handler handler :
       {&CGravlinDoc::OnDirectionMax, &CGravlinDoc::OnDirectionMin, &CGravlinDoc::OnCurvatureMax,
        &CGravlinDoc::OnCurvatureTotal, &CGravlinDoc::OnTensorMax, &CGravlinDoc::OnTensorMin,
        &CGravlinDoc::OnStrokeMax, &CGravlinDoc::OnStrokeMin, &CGravlinDoc::OnEdgeCurvature,
        &CGravlinDoc::OnShowVertexError, &CGravlinDoc::OnShowFaceError,
        &CGravlinDoc::OnSmoothingCurvatureTensor}) {
    (doc.*handler)();
    EXPECT_EQ(doc.displayMode, before);
    EXPECT_THAT(outside.calls, IsEmpty());
  }
}

TEST_F(CurvatureCommands, LeaveTheDocumentUnmodified) {
  load(test::torus(12, 8));
  const std::vector<float> vertices = mesh().vertices;
  outside.dialogAnswers = {test::ok()};
  doc.OnSmoothingCurvatureTensor();
  doc.OnEdgeCurvature();
  EXPECT_FALSE(doc.modified);
  EXPECT_EQ(doc.undoMesh, nullptr);
  EXPECT_EQ(mesh().vertices, vertices);
}

// --- The values that views are shown ---

TEST_F(CurvatureCommands, ModesWithoutAFieldShowNoValues) {
  load(estimated(test::torus(12, 8)));
  doc.OnCurvatureMean();
  EXPECT_THAT(doc.shown().fieldValues, SizeIs(96));
  doc.OnFlatShading();
  EXPECT_THAT(doc.shown().fieldValues, IsEmpty());
}

TEST_F(CurvatureCommands, ValuesBelongToTheModeThatTheyWereFormedFor) {
  load(estimated(test::torus(12, 8)));
  doc.OnCurvatureMean();
  doc.displayMode = CurvatureGauss;
  EXPECT_THAT(doc.shown().fieldValues, IsEmpty());
  doc.redraw();
  const auto gauss = curvatureField(mesh(), CurvatureField::Gauss);
  EXPECT_TRUE(std::ranges::equal(doc.shown().fieldValues, gauss));
}

TEST_F(CurvatureCommands, AllThatReadThemShareTheValuesOfOneRedraw) {
  load(estimated(test::torus(12, 8)));
  std::vector<const double*> seen;
  outside.whenRedrawn = [&] {
    for (int view = 0; view < 3; ++view) seen.push_back(doc.shown().fieldValues.data());
  };
  doc.OnCurvatureTotal();
  seen.push_back(doc.shown().fieldValues.data());
  ASSERT_THAT(seen, SizeIs(4));
  EXPECT_NE(seen[0], nullptr);
  EXPECT_THAT(seen, Each(Eq(seen[0])));
}

TEST_F(CurvatureCommands, WithoutMemoryForTheValuesARedrawGoesOnAndSaysSo) {
  load(estimated(test::torus(12, 8)));
  doc.OnCurvatureMean();
  int drawn = 0;
  outside.whenRedrawn = [&] {
    ++drawn;
    EXPECT_TRUE(doc.shown().fieldOutOfMemory);
    EXPECT_THAT(doc.shown().fieldValues, IsEmpty());
  };
  {
    const test::AllocationFailure failure(1);
    doc.redraw();
  }
  EXPECT_EQ(drawn, 1);
  outside.whenRedrawn = {};
  doc.redraw();
  EXPECT_FALSE(doc.shown().fieldOutOfMemory);
  EXPECT_THAT(doc.shown().fieldValues, SizeIs(96));
}

TEST_F(CurvatureCommands, AHistogramThatFailedForMemoryIsFilledByTheNextRedraw) {
  load(estimated(test::torus(12, 8)));
  int failures = 0;
  for (std::size_t refused = 1; refused <= 10; ++refused) {
    doc.OnFlatShading();
    outside.forget();
    outside.histogramValues.clear();
    try {
      const test::AllocationFailure failure(refused);
      doc.OnCurvatureMean();
    } catch (const std::bad_alloc&) {
      ++failures;
      doc.redraw();
    }
    EXPECT_THAT(outside.histogramValues, SizeIs(96)) << refused;
  }
  EXPECT_GT(failures, 0);
}

}  // namespace
}  // namespace gravlin
