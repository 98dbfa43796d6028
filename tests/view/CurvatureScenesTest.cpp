#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "ImmediateCurvature.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"
#include "support/ScriptedOutside.h"
#include "view/CurvatureScenes.h"
#include "view/RenderDispatcher.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr int curvatureModes[] = {DirectionMax,   DirectionMin,  TensorMax,     TensorMin,
                                  CurvatureMax,   CurvatureMin,  CurvatureMean, CurvatureGauss,
                                  CurvatureTotal, EdgeCurvature, StrokeMax,     StrokeMin,
                                  VertexError,    FaceError,     FaceValues};

class CurvatureScenes : public ::testing::Test {
 protected:
  void load(TriangleMesh mesh) {
    test::setMesh(document, std::move(mesh));
    document.vertexErrors.clear();
    document.faceErrors.clear();
  }
  TriangleMesh& mesh() { return test::meshOf(document); }
  Scene scene(int mode) {
    document.displayMode = mode;
    document.redraw();
    return gatherScene(document.shown());
  }

  test::ScriptedOutside outside;
  CGravlinDoc document{outside};
};

TEST_F(CurvatureScenes, DrawOnlyWhatIsFiniteOfAnyMesh) {
  for (const test::NamedMesh& each : test::everyMesh()) {
    load(each.mesh);
    test::computeAllCurvature(document);
    for (const int mode : curvatureModes) {
      SCOPED_TRACE(each.name + ", mode " + std::to_string(mode));
      for (const Batch& batch : scene(mode).batches) {
        const std::size_t n = batch.vertexCount();
        EXPECT_TRUE(batch.colours.empty() || batch.colours.size() == 3 * n);
        for (const float c : batch.colours) EXPECT_TRUE(c >= 0.0F && c <= 1.0F);
        for (std::size_t k = 0; k < batch.drawnCount(); ++k) {
          const std::size_t i = batch.indices.empty() ? k : batch.indices[k];
          ASSERT_LT(i, n);
          for (std::size_t axis = 0; axis < 3; ++axis) {
            EXPECT_TRUE(std::isfinite(batch.positions[3 * i + axis]));
          }
        }
      }
    }
  }
}

TEST_F(CurvatureScenes, ShowTheFlatSurfaceWhereTheDataIsNotThere) {
  load(test::cube());
  for (const int mode : curvatureModes) {
    if (mode == StrokeMax || mode == StrokeMin) continue;  // no stroke is a picture, too
    SCOPED_TRACE(mode);
    const Scene shown = scene(mode);
    ASSERT_THAT(shown.batches, SizeIs(1));
    EXPECT_TRUE(shown.batches[0].lit);
    EXPECT_EQ(shown.batches[0].drawnCount(), 36U);
  }
}

TEST_F(CurvatureScenes, DirectionsAreSegmentsOfATenthEachWay) {
  load(test::singleTriangle());
  mesh().maxDirection = {1, 0, 0, 0, 1, 0, 0, 0, 0};
  mesh().minDirection = {0, 0, 1, 0, 0, 1, 0, 0, std::nan("")};
  const Scene max = scene(DirectionMax);
  ASSERT_THAT(max.batches, SizeIs(2));
  EXPECT_EQ(max.batches[0].colour, (Colour{1, 0, 0}));
  EXPECT_THAT(max.batches[0].positions,
              ElementsAre(-0.1F, 0, 0, 0.1F, 0, 0, 1, -0.1F, 0, 1, 0.1F, 0));
  EXPECT_EQ(max.batches[1].colour, (Colour{1, 1, 1}));
  EXPECT_THAT(max.batches[1].setBackAlong, IsEmpty()) << "normals may point inwards";
  EXPECT_GT(max.batches[1].depthOffset, 0.0F);
  const Scene min = scene(DirectionMin);
  EXPECT_EQ(min.batches[0].colour, (Colour{0, 0, 1}));
  EXPECT_EQ(min.batches[0].vertexCount(), 4U);
}

TEST_F(CurvatureScenes, TensorsHaveTheColourOfTheirCurvatureAlsoWithGrayScale) {
  load(test::singleTriangle());
  mesh().maxDirection = mesh().minDirection = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  mesh().maxCurvature = {-100.0, 1.0, 102.0};
  mesh().minCurvature = {102.0, 1.0, -100.0};
  document.visualizationParameters.grayScale = true;
  for (const int mode : {TensorMax, TensorMin}) {
    const std::vector<float> colours = scene(mode).batches.at(0).colours;
    ASSERT_THAT(colours, SizeIs(18));
    // The middle value is the mean; the others lie 1.22 deviations beside it, in places
    // -1.84, 1.84.
    EXPECT_THAT(std::vector<float>(colours.begin() + 6, colours.begin() + 9),
                ElementsAre(::testing::FloatEq(0.49999998F), 1.0F, 0.0F));
    const std::size_t low = mode == TensorMax ? 0 : 12;
    EXPECT_EQ(colours[low], 0.0F);
    EXPECT_EQ(colours[low + 1], 0.0F);
    EXPECT_GT(colours[low + 2], 0.0F);
    EXPECT_EQ(colours[12 - low], 1.0F);
  }
}

TEST_F(CurvatureScenes, FaceFieldsHaveOneColourAFace) {
  load(test::twoTriangles());
  document.faceErrors = {0.0, 1.0};
  const Scene shown = scene(FaceError);
  ASSERT_THAT(shown.batches, SizeIs(1));
  const std::vector<float>& c = shown.batches[0].colours;
  ASSERT_THAT(c, SizeIs(18));
  for (const std::size_t face : {0U, 9U}) {
    for (std::size_t k = 3; k < 9; ++k) EXPECT_EQ(c[face + k], c[face + k % 3]);
  }
  EXPECT_NE(std::vector<float>(c.begin(), c.begin() + 3),
            std::vector<float>(c.begin() + 9, c.begin() + 12));
  EXPECT_FALSE(shown.batches[0].lit);
}

TEST_F(CurvatureScenes, EdgesAreDrawnOnceInTheirColour) {
  load(test::cube());
  test::computeAllCurvature(document);
  const Scene shown = scene(EdgeCurvature);
  ASSERT_THAT(shown.batches, SizeIs(2));
  EXPECT_EQ(shown.batches[0].primitive, Primitive::Lines);
  EXPECT_EQ(shown.batches[0].vertexCount(), 2U * 18U);
  load(test::singleTriangle());
  test::computeAllCurvature(document);
  EXPECT_EQ(scene(EdgeCurvature).batches[0].vertexCount(), 6U) << "border edges, too";
}

TEST_F(CurvatureScenes, FaceValuesAreMeansOfThreeEdges) {
  load(test::twoTriangles());
  mesh().edgeCurvatures = {3, 3, 3, 0, 9, 0};
  EXPECT_THAT(scene(FaceValues).batches.at(0).colours, Each(0.0F)) << "equal means are black";
  mesh().edgeCurvatures = {3, 3, 3, 0, 9, 1};
  EXPECT_THAT(scene(FaceValues).batches.at(0).colours, ::testing::Contains(1.0F));
}

TEST_F(CurvatureScenes, StrokesBreakWhereTheirFacesAreGone) {
  load(test::twoTriangles());
  mesh().strokes.maxStrokes = {
      {{0, 0.1, 0.1}, {0, 0.2, 0.1}, {7, 0.1, 0.1}, {1, 0.1, 0.1}, {1, 0.2, 0.1}, {-1, 0.2, 0.1}},
      {{0, 0.5, 0.1}}};
  mesh().strokes.minStrokes = {{{7, 0.1, 0.1}}};
  EXPECT_THAT(scene(StrokeMax).batches.at(0).indices, ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(scene(StrokeMin).batches.at(0).positions, IsEmpty());
  EXPECT_EQ(scene(StrokeMin).batches.at(1).drawnCount(), 6U);
}

}  // namespace
}  // namespace gravlin
