#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <optional>

#include "doc/CGravlinDoc.h"
#include "doc/CommandTable.h"
#include "support/Allocations.h"
#include "support/DisplayModes.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"
#include "support/ScriptedOutside.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class Document : public ::testing::Test {
 protected:
  void load(TriangleMesh mesh) { test::setMesh(doc, std::move(mesh)); }

  /// What every undoable command does around its work.
  void moveVertexZero(float x) {
    doc.keepUndoCopy();
    test::meshOf(doc).vertices[0] = x;
    doc.geometryChanged();
    doc.redraw();
  }

  test::ScriptedOutside outside;
  CGravlinDoc doc{outside};
};

TEST_F(Document, IsNewWithoutAMeshAndUnmodified) {
  EXPECT_EQ(doc.mesh(), nullptr);
  EXPECT_EQ(doc.undoMesh, nullptr);
  EXPECT_FALSE(doc.needsRecompute);
  EXPECT_FALSE(doc.modified);
  EXPECT_THAT(outside.calls, IsEmpty());
}

TEST_F(Document, AShapeThatDidNotChangeKeepsItsNumberWithPositionsThatAreNone) {
  const float none = std::numeric_limits<float>::quiet_NaN();
  load(test::octahedron());
  moveVertexZero(none);
  const auto shape = doc.mesh()->shape;
  moveVertexZero(none);
  EXPECT_EQ(doc.mesh()->shape, shape);
  moveVertexZero(1.0F);
  EXPECT_NE(doc.mesh()->shape, shape);
}

// --- Redraw ---

TEST_F(Document, RedrawRaisesTheRevisionBeforeViewsAreDrawn) {
  const std::uint64_t before = doc.revision;
  std::uint64_t seen = before;
  outside.whenRedrawn = [&] { seen = doc.revision; };
  doc.redraw();
  EXPECT_GT(seen, before);
  doc.redraw();
  EXPECT_GT(seen, before + 1);
}

TEST_F(Document, RedrawBringsBothNormalsUpToDateBeforeViewsAreDrawnInEveryMode) {
  const TriangleMesh cube = test::cube();
  for (const int mode : test::everyDisplayMode()) {
    load(cube);
    doc.displayMode = mode;
    for (float& n : test::meshOf(doc).faceNormals) n = 9.0F;
    test::meshOf(doc).vertexNormals.clear();
    doc.needsRecompute = true;
    int drawn = 0;
    outside.whenRedrawn = [&] {
      ++drawn;
      EXPECT_FALSE(doc.needsRecompute);
      EXPECT_EQ(doc.mesh()->faceNormals, cube.faceNormals);
      EXPECT_EQ(doc.mesh()->vertexNormals, cube.vertexNormals);
    };
    doc.redraw();
    EXPECT_EQ(drawn, 1);
  }
}

TEST_F(Document, RedrawLeavesDerivedDataAloneWhenNothingIsStale) {
  load(test::cube());
  test::meshOf(doc).faceNormals[0] = 9.0F;
  doc.redraw();
  EXPECT_EQ(doc.mesh()->faceNormals[0], 9.0F);
}

TEST_F(Document, RedrawClearsTheFlagAlsoWithoutAMesh) {
  doc.needsRecompute = true;
  doc.redraw();
  EXPECT_FALSE(doc.needsRecompute);
  EXPECT_THAT(outside.calls, ElementsAre("redraw"));
}

// --- Undo ---

TEST_F(Document, UndoBringsTheGeometryBackBitForBitWithFreshTopologyAndNormals) {
  const TriangleMesh before = test::bumpyGrid(4, 3);
  load(before);
  moveVertexZero(0.123F);
  doc.OnEditUndo();
  EXPECT_EQ(doc.mesh()->vertices, before.vertices);
  EXPECT_EQ(doc.mesh()->faces, before.faces);
  EXPECT_EQ(doc.mesh()->boxMax, before.boxMax);
  EXPECT_EQ(doc.mesh()->boxMin, before.boxMin);
  EXPECT_EQ(doc.mesh()->extentTolerance, before.extentTolerance);
  EXPECT_EQ(doc.mesh()->vertexNeighbours.items, before.vertexNeighbours.items);
  EXPECT_EQ(doc.mesh()->faceAdjacency, before.faceAdjacency);
  EXPECT_EQ(doc.mesh()->faceNormals, before.faceNormals);
  EXPECT_EQ(doc.mesh()->vertexNormals, before.vertexNormals);
}

TEST_F(Document, UndoLeavesCurvatureMarksAndPickedFaceAbsent) {
  load(test::icosphere(1));
  doc.keepUndoCopy();
  test::meshOf(doc).maxCurvature.assign(42, 1.0);
  test::meshOf(doc).ridgeMarks.assign(42, 1);
  test::meshOf(doc).pickedFace = 3;
  doc.OnEditUndo();
  EXPECT_THAT(doc.mesh()->maxCurvature, IsEmpty());
  EXPECT_THAT(doc.mesh()->ridgeMarks, IsEmpty());
  EXPECT_EQ(doc.mesh()->pickedFace, std::nullopt);
}

TEST_F(Document, UndoTwiceInARowDoesNothingTheSecondTime) {
  load(test::cube());
  moveVertexZero(0.5F);
  doc.OnEditUndo();
  EXPECT_EQ(doc.undoMesh, nullptr);
  outside.forget();
  doc.OnEditUndo();
  EXPECT_THAT(outside.calls, IsEmpty());
  EXPECT_EQ(doc.mesh()->vertices[0], -1.0F);
}

TEST_F(Document, UndoKeepsOneStepOnly) {
  load(test::cube());
  moveVertexZero(0.5F);
  moveVertexZero(0.25F);
  doc.OnEditUndo();
  EXPECT_EQ(doc.mesh()->vertices[0], 0.5F);
  EXPECT_EQ(doc.undoMesh, nullptr);
}

TEST_F(Document, UndoWhileFeatureLinesAreShownReturnsToFlatShading) {
  load(test::cube());
  doc.keepUndoCopy();
  doc.displayMode = FeatureLines;
  doc.OnEditUndo();
  EXPECT_EQ(doc.displayMode, FlatShading);
}

TEST_F(Document, UndoKeepsEveryOtherMode) {
  for (const int mode : test::everyDisplayMode()) {
    if (mode == FeatureLines) continue;
    load(test::cube());
    doc.keepUndoCopy();
    doc.displayMode = mode;
    doc.OnEditUndo();
    EXPECT_EQ(doc.displayMode, mode);
  }
}

TEST_F(Document, TheUndoCopyHoldsGeometryOnly) {
  load(test::icosphere(1));
  test::meshOf(doc).maxCurvature.assign(42, 1.0);
  doc.keepUndoCopy();
  ASSERT_NE(doc.undoMesh, nullptr);
  EXPECT_EQ(doc.undoMesh->vertices, doc.mesh()->vertices);
  EXPECT_EQ(doc.undoMesh->faces, doc.mesh()->faces);
  EXPECT_THAT(doc.undoMesh->maxCurvature, IsEmpty());
  EXPECT_THAT(doc.undoMesh->vertexNormals, IsEmpty());
  EXPECT_FALSE(doc.undoMesh->vertexNeighbours.built());
}

TEST_F(Document, UndoBringsAHostileMeshBackBitForBitWithItsTopology) {
  for (const test::NamedMesh& hostile : test::hostileMeshes()) {
    SCOPED_TRACE(hostile.name);
    load(hostile.mesh);
    doc.keepUndoCopy();
    std::ranges::fill(test::meshOf(doc).vertices, 7.0F);
    doc.OnEditUndo();
    EXPECT_TRUE(test::sameVertices(*doc.mesh(), hostile.mesh));
    EXPECT_EQ(doc.mesh()->faces, hostile.mesh.faces);
    EXPECT_EQ(doc.mesh()->vertexKind, hostile.mesh.vertexKind);
    EXPECT_EQ(doc.mesh()->faceAdjacency, hostile.mesh.faceAdjacency);
    EXPECT_EQ(doc.undoMesh, nullptr);
  }
}

// --- The modified flag ---

TEST_F(Document, IsModifiedByAnUndoableCommandAndNoLongerAfterItsUndo) {
  load(test::cube());
  moveVertexZero(0.5F);
  EXPECT_TRUE(doc.modified);
  doc.OnEditUndo();
  EXPECT_FALSE(doc.modified);
}

TEST_F(Document, StaysModifiedWhenUndoReachesOnlyAnEarlierChange) {
  load(test::cube());
  moveVertexZero(0.5F);
  moveVertexZero(0.25F);
  doc.OnEditUndo();
  EXPECT_TRUE(doc.modified);
}

// --- Positions that are not finite ---

TEST_F(Document, TellsWhenPositionsAreNoLongerFiniteAndNamesUndo) {
  for (const float broken :
       {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
        -std::numeric_limits<float>::infinity()}) {
    load(test::cube());
    outside.forget();
    moveVertexZero(broken);
    EXPECT_THAT(outside.statuses, ElementsAre(HasSubstr("Undo")));
    EXPECT_THAT(outside.messages, IsEmpty());
  }
}

TEST_F(Document, DoesNotNameUndoWhereItWouldNotHelp) {
  load(test::cube());
  moveVertexZero(std::numeric_limits<float>::quiet_NaN());
  outside.forget();
  moveVertexZero(std::numeric_limits<float>::infinity());
  EXPECT_THAT(outside.statuses, ElementsAre("Some positions are not finite numbers."));
  outside.forget();
  doc.OnEditUndo();
  EXPECT_EQ(outside.statuses.back(), "Some positions are not finite numbers.");
}

TEST_F(Document, SaysNothingWhilePositionsAreFinite) {
  load(test::cube());
  moveVertexZero(std::numeric_limits<float>::max());
  EXPECT_THAT(outside.statuses, IsEmpty());
}

// --- Picking ---

TEST_F(Document, PickingShowsTheFaceAndTellsAboutIt) {
  load(test::twoTriangles());
  test::meshOf(doc).extentTolerance = 2.0;  // one unit in memory is two in the file
  EXPECT_TRUE(doc.pickFace(Ray{{0.25, 0.75, 5.0}, {0.0, 0.0, -1.0}}));
  EXPECT_EQ(doc.mesh()->pickedFace, 1);
  EXPECT_EQ(doc.displayMode, PickedFace);
  EXPECT_THAT(outside.calls,
              ElementsAre("status Face 1: corners 0, 2, 3; area 2; normal (0, 0, 1)", "redraw"));
}

TEST_F(Document, PickingBesideTheMeshDoesNothing) {
  load(test::twoTriangles());
  doc.displayMode = WireFrame;
  EXPECT_FALSE(doc.pickFace(Ray{{2.0, 2.0, 5.0}, {0.0, 0.0, -1.0}}));
  EXPECT_EQ(doc.mesh()->pickedFace, std::nullopt);
  EXPECT_EQ(doc.displayMode, WireFrame);
  EXPECT_THAT(outside.calls, IsEmpty());
}

TEST_F(Document, PickingWithoutAMeshDoesNothing) {
  EXPECT_FALSE(doc.pickFace(Ray{{0.0, 0.0, 5.0}, {0.0, 0.0, -1.0}}));
  EXPECT_THAT(outside.calls, IsEmpty());
}

TEST_F(Document, PickingAgainReplacesTheMark) {
  load(test::twoTriangles());
  doc.pickFace(0);
  doc.pickFace(1);
  EXPECT_EQ(doc.mesh()->pickedFace, 1);
}

TEST_F(Document, TheSentenceAboutAFaceGoesWhenAnotherPictureIsShown) {
  for (void (CGravlinDoc::*show)() :
       {&CGravlinDoc::OnFlatShading, &CGravlinDoc::OnWireFrame, &CGravlinDoc::OnCurvatureMean,
        &CGravlinDoc::OnEdgeCurvature, &CGravlinDoc::OnStrokeMax, &CGravlinDoc::OnSilhouette}) {
    load(test::octahedron());
    doc.pickFace(0);
    outside.dialogAnswers = {test::okWith({})};
    outside.forget();
    (doc.*show)();
    EXPECT_THAT(outside.statuses, ElementsAre(""));
    doc.OnPoints();
    EXPECT_THAT(outside.statuses, ElementsAre("")) << "it is gone once";
  }
}

TEST_F(Document, TheSentenceAboutAFaceStaysWithItsPicture) {
  load(test::octahedron());
  doc.pickFace(0);
  outside.forget();
  doc.OnEdge();
  doc.OnLightingRed();
  EXPECT_THAT(outside.statuses, IsEmpty());
}

TEST_F(Document, TheSentenceAboutAFaceGoesWhenTheShapeChanges) {
  load(test::cube());
  doc.pickFace(0);
  moveVertexZero(0.5F);
  EXPECT_THAT(outside.statuses, ElementsAre(HasSubstr("Face 0"), ""));
  moveVertexZero(0.25F);
  EXPECT_THAT(outside.statuses, SizeIs(2));
}

// --- The histogram window ---

TEST_F(Document, TheHistogramTellsThatItsValuesAreOfAnEarlierShape) {
  load(test::bumpyGrid(6, 6));
  doc.OnCurvatureMax();
  EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
  const std::vector<double> values = outside.histogramValues;
  doc.OnFlatShading();
  EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
  moveVertexZero(0.5F);
  EXPECT_EQ(outside.histogramAge, HistogramAge::EarlierShape);
  EXPECT_EQ(outside.histogramValues, values) << "deliberate: the window keeps what it has";
}

TEST_F(Document, ShowingAnOlderEstimateAgainDoesNotMakeItOneOfThisShape) {
  load(test::bumpyGrid(6, 6));
  doc.OnCurvatureMax();
  doc.OnEdgeCurvature();
  doc.OnFlatShading();
  moveVertexZero(0.5F);
  doc.OnCurvatureMean();  // made of what was estimated before
  EXPECT_EQ(outside.histogramAge, HistogramAge::EarlierShape);
  doc.OnEdgeCurvature();  // always found anew
  EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
  doc.OnCurvatureMax();
  EXPECT_EQ(outside.histogramAge, HistogramAge::EarlierShape);
  moveVertexZero(0.25F);
  EXPECT_EQ(outside.histogramAge, HistogramAge::Current) << "a field on show comes anew";
}

TEST_F(Document, TheHistogramIsOfThisShapeAgainWhenUndoBringsItBack) {
  load(test::bumpyGrid(6, 6));
  moveVertexZero(0.75F);
  doc.OnCurvatureMax();
  doc.OnFlatShading();
  moveVertexZero(0.5F);
  doc.OnEditUndo();
  EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
  moveVertexZero(0.5F);
  doc.OnCurvatureMax();
  moveVertexZero(0.25F);
  doc.OnFlatShading();
  EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
  doc.OnEditUndo();
  EXPECT_EQ(outside.histogramAge, HistogramAge::EarlierShape);
}

TEST_F(Document, ACommandThatChangesNothingLeavesEverythingOfThisShape) {
  load(test::bumpyGrid(6, 6));
  doc.OnCurvatureMax();
  doc.OnFlatShading();
  outside.dialogAnswers = {test::okWith({{"noiseSize", "0"}})};
  doc.OnSmoothingNoise();
  EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
  EXPECT_EQ(doc.mesh()->curvatureOrigin.shape, doc.mesh()->shape);
  outside.dialogAnswers = {test::okWith({{"noiseSize", "0.1"}})};
  doc.OnSmoothingNoise();
  EXPECT_EQ(outside.histogramAge, HistogramAge::EarlierShape);
}

TEST_F(Document, EveryCommandThatChangesTheShapeMakesItAnother) {
  for (const auto& [name, command] :
       {std::pair<const char*, void (CGravlinDoc::*)()>{"noise", &CGravlinDoc::OnSmoothingNoise},
        {"smoothing", &CGravlinDoc::OnSmoothingShape},
        {"adaptive", &CGravlinDoc::OnSmoothingShapeAdaptive},
        {"subdivision", &CGravlinDoc::OnSubdivision},
        {"simplification", &CGravlinDoc::OnSimplification}}) {
    SCOPED_TRACE(name);
    load(test::bumpyGrid(6, 6));
    moveVertexZero(0.5F);
    doc.OnCurvatureMax();
    doc.OnFlatShading();
    outside.dialogAnswers = {test::ok()};
    (doc.*command)();
    EXPECT_EQ(outside.histogramAge, HistogramAge::EarlierShape);
    doc.OnEditUndo();
    EXPECT_EQ(outside.histogramAge, HistogramAge::Current);
  }
}

// --- Without memory for a redraw ---

TEST_F(Document, ARedrawThatFailsBehindACommandLosesNothing) {
  for (const auto& [name, command] :
       {std::pair<const char*, void (CGravlinDoc::*)()>{"noise", &CGravlinDoc::OnSmoothingNoise},
        {"smoothing", &CGravlinDoc::OnSmoothingShape},
        {"adaptive", &CGravlinDoc::OnSmoothingShapeAdaptive},
        {"subdivision", &CGravlinDoc::OnSubdivision},
        {"simplification", &CGravlinDoc::OnSimplification}}) {
    SCOPED_TRACE(name);
    load(test::bumpyGrid(6, 6));
    doc.modified = false;
    doc.undoMesh = nullptr;
    const std::vector<float> before = doc.mesh()->vertices;
    outside.dialogAnswers = {test::ok()};
    outside.whenRedrawn = [] { throw std::bad_alloc(); };
    try {
      (doc.*command)();
    } catch (const std::bad_alloc&) {
      // Some commands tell about it themselves and go on to the next redraw.
    }
    outside.whenRedrawn = nullptr;
    EXPECT_TRUE(doc.modified);
    EXPECT_NE(doc.mesh()->vertices, before);
    doc.redraw();
    EXPECT_FALSE(doc.needsRecompute);
    EXPECT_EQ(doc.mesh()->faceNormals.size(), doc.mesh()->faces.size());
    doc.OnEditUndo();
    EXPECT_EQ(doc.mesh()->vertices, before);
    EXPECT_FALSE(doc.modified);
  }
}

TEST(DocumentWithoutMemory, FindsDerivedDataAtTheNextRedrawAndHasViewsDrawAnew) {
  struct FullOutside : test::ScriptedOutside {
    bool full = false;
    void setHistogramValues(const std::vector<double>& values) override {
      if (full) throw std::bad_alloc();
      ScriptedOutside::setHistogramValues(values);
    }
  };
  FullOutside outside;
  CGravlinDoc doc(outside);
  test::setMesh(doc, test::bumpyGrid(6, 6));
  doc.OnCurvatureMax();
  const std::vector<double> before = outside.histogramValues;
  test::meshOf(doc).vertices[0] += 1.0F;
  doc.geometryChanged();
  outside.full = true;
  const auto revision = doc.revision;
  EXPECT_THROW(doc.redraw(), std::bad_alloc);
  EXPECT_TRUE(doc.needsRecompute);
  EXPECT_GT(doc.revision, revision);
  outside.full = false;
  doc.redraw();
  EXPECT_FALSE(doc.needsRecompute);
  EXPECT_NE(outside.histogramValues, before);
}

TEST_F(Document, AnUndoWithoutMemoryKeepsBothShapesAndSaysSo) {
  int refusals = 0;
  for (std::size_t n = 1;; ++n) {
    load(test::cube());
    const std::vector<float> before = doc.mesh()->vertices;
    moveVertexZero(0.5F);
    const std::vector<float> after = doc.mesh()->vertices;
    outside.forget();
    {
      const test::AllocationFailure failure(n);
      try {
        doc.OnEditUndo();
      } catch (const std::bad_alloc&) {
        break;  // the shape is back, and only its redraw is missing
      }
    }
    ASSERT_EQ(outside.messages.size(), 1U) << n;
    ++refusals;
    EXPECT_THAT(outside.messages[0], HasSubstr("memory"));
    EXPECT_EQ(doc.mesh()->vertices, after);
    EXPECT_TRUE(doc.modified);
    ASSERT_NE(doc.undoMesh, nullptr);
    EXPECT_EQ(doc.undoMesh->vertices, before);
    EXPECT_FALSE(doc.undoMesh->vertexFaces.built()) << "what was built of it takes memory";
    doc.OnEditUndo();
    EXPECT_EQ(doc.mesh()->vertices, before);
  }
  EXPECT_GT(refusals, 5);
}

TEST_F(Document, WithoutMemoryForTheUndoCopyACommandIsNotRun) {
  for (const bool hadCopy : {false, true}) {
    load(test::cube());
    doc.undoMesh = nullptr;
    doc.modified = false;
    if (hadCopy) doc.undoMesh = std::make_unique<TriangleMesh>(test::octahedron());
    const std::vector<float> before = doc.mesh()->vertices;
    outside.forget();
    std::optional<test::AllocationFailure> failure;
    outside.dialogAnswers = {[&](const Form&) {
      failure.emplace(1);
      return true;
    }};
    doc.OnSmoothingNoise();
    failure.reset();
    ASSERT_EQ(outside.messages.size(), 1U);
    EXPECT_THAT(outside.messages[0], HasSubstr("The mesh stays as it is"));
    EXPECT_EQ(outside.messages[0].find("given up") != std::string::npos, hadCopy);
    EXPECT_EQ(doc.mesh()->vertices, before);
    EXPECT_EQ(doc.undoMesh, nullptr);
    EXPECT_FALSE(findStep("undo")->hasWork(doc));
    EXPECT_FALSE(doc.modified);
  }
}

TEST_F(Document, AnUndoCopyOfTheSameCountsIsReplacedWithoutTakingMemory) {
  load(test::cube());
  moveVertexZero(0.5F);
  const std::vector<float> before = doc.mesh()->vertices;
  const std::size_t earlier = test::allocationCount();
  EXPECT_TRUE(doc.keepUndoCopy());
  EXPECT_EQ(test::allocationCount(), earlier);
  EXPECT_EQ(doc.undoMesh->vertices, before);
}

TEST_F(Document, PickingFindsTheNormalsThatARedrawDidNot) {
  load(test::cube());
  moveVertexZero(0.5F);
  doc.undoMesh = std::make_unique<TriangleMesh>();
  doc.undoMesh->copyGeometryFrom(test::twoTriangles());
  std::size_t n = 1;
  for (bool redrawn = true; redrawn; ++n) {  // up to the first allocation of the redraw
    const test::AllocationFailure failure(n);
    try {
      doc.OnEditUndo();
    } catch (const std::bad_alloc&) {
      redrawn = false;
    }
  }
  ASSERT_TRUE(doc.mesh()->faceNormals.empty());
  outside.forget();
  EXPECT_TRUE(doc.pickFace(Ray{{0.25, 0.75, 5.0}, {0.0, 0.0, -1.0}}));
  EXPECT_THAT(outside.statuses, ElementsAre(HasSubstr("normal (0, 0, 1)")));
}

/// Whether a face is there for a ray to hit: its corners are finite and not on one line.
bool canBeHit(const TriangleMesh& mesh, int f) {
  if (!mesh.validFace(f)) return false;
  const auto c = mesh.corners(f);
  const Vec3 a = mesh.position(c[0]);
  const double size = length(cross(mesh.position(c[1]) - a, mesh.position(c[2]) - a));
  return std::isfinite(size) && size > 0.0;
}

TEST_F(Document, PickingInAHostileMeshFindsAProperFaceOrNone) {
  for (const test::NamedMesh& hostile : test::hostileMeshes()) {
    SCOPED_TRACE(hostile.name);
    load(hostile.mesh);
    for (const Vec3& direction : {Vec3{0, 0, -1}, Vec3{1, 0, 0}, Vec3{0, -0.6, 0.8}}) {
      const bool hit = doc.pickFace(Ray{{0.2, 0.2, 0.2}, direction});
      EXPECT_EQ(hit, outside.statuses.size() == 1);
      if (hit) {
        EXPECT_TRUE(canBeHit(*doc.mesh(), *doc.mesh()->pickedFace));
      }
      EXPECT_TRUE(test::sameVertices(*doc.mesh(), hostile.mesh));
      outside.forget();
    }
  }
}

}  // namespace
}  // namespace gravlin
