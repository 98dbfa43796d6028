#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/DocumentAccess.h"
#include "support/ImageComparison.h"
#include "support/OffscreenView.h"
#include "support/TemporaryFolder.h"
#include "view/Legend.h"
#include "view/RenderDispatcher.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Eq;
using ::testing::SizeIs;

std::vector<std::string> textsOf(const LegendLayout& layout) {
  std::vector<std::string> texts;
  for (const Label& label : layout.labels) texts.push_back(label.text);
  return texts;
}

const std::vector<double> twoAndFour = {2.0, 4.0};  // mean 3, deviation 1

TEST(Legend, NamesTheMeanAndTheEndsOfTheRamp) {
  EXPECT_THAT(textsOf(legendOf({twoAndFour, false}, {300, 300})), ElementsAre("4.4", "3", "1.6"));
}

TEST(Legend, RunsFromTheTopOfTheScaleDownToItsBottom) {
  const std::vector<Colour> rows = legendOf({twoAndFour, false}, {300, 300}).bar.rows;
  ASSERT_THAT(rows, SizeIs(141));
  EXPECT_NEAR(rows.front().g, 0.75, 1e-6);
  EXPECT_EQ(rows.front().b, 1.0F);
  EXPECT_NEAR(rows[70].r, 0.5, 1e-6);
  EXPECT_EQ(rows[70].g, 1.0F);
  EXPECT_NEAR(rows.back().b, 0.0, 1e-6);
  const std::vector<Colour> greys = legendOf({twoAndFour, true}, {300, 300}).bar.rows;
  EXPECT_NEAR(greys.front().r, 1.0, 1e-6);
  EXPECT_NEAR(greys[70].r, 0.5, 1e-6);
  EXPECT_NEAR(greys.back().r, 0.0, 1e-6);
}

TEST(Legend, IsBlackForAFieldOfEqualValues) {
  const std::vector<double> equal = {3.0, 3.0};
  const LegendLayout layout = legendOf({equal, false}, {300, 300});
  EXPECT_THAT(layout.bar.rows, Each(Eq(Colour{0, 0, 0})));
  EXPECT_THAT(textsOf(layout), ElementsAre("3", "3", "3"));
}

TEST(Legend, NamesNoValuesWhereThereAreNone) {
  const std::vector<double> notANumber = {1.0, std::nan("")};
  for (const std::vector<double>& values : {std::vector<double>(), notANumber}) {
    EXPECT_THAT(textsOf(legendOf({values, false}, {300, 300})), ElementsAre("-", "-", "-"));
  }
}

TEST(Legend, NamesTheSameValuesAfterTheMeshWasSaved) {
  const test::TemporaryFolder folder;
  test::OffscreenView offscreen;
  offscreen.show(test::bumpySphere(), FlatShading);
  for (float& x : test::meshOf(offscreen.document).vertices) x *= 0.5F;
  offscreen.document.geometryChanged();
  offscreen.document.OnCurvatureMax();
  const auto texts = [&] {
    return textsOf(legendOf(*gatherScene(offscreen.document.shown()).scale, {300, 300}));
  };
  const std::vector<std::string> before = texts();
  const float x = offscreen.document.mesh()->vertices[0];
  ASSERT_TRUE(offscreen.document.saveFile(folder.file("sphere.ply2")));
  ASSERT_NE(offscreen.document.mesh()->vertices[0], x) << "it fills the view again";
  EXPECT_EQ(texts(), before);
}

TEST(Legend, StandsInTheUpperRightCorner) {
  for (const int width : {300, 1920, 10}) {
    const LegendLayout layout = legendOf({twoAndFour, false}, {width, 300});
    EXPECT_EQ(layout.bar.x + layout.bar.width, width - 8);
    EXPECT_EQ(layout.bar.y, 8);
    for (const Label& label : layout.labels) {
      EXPECT_TRUE(label.rightAligned);
      EXPECT_LT(label.x, layout.bar.x);
    }
  }
}

TEST(Legend, IsDrawnOnlyWhenItIsTickedAndOnlyInPicturesOfAField) {
  test::OffscreenView offscreen;
  offscreen.show(test::bumpySphere(), FlatShading);
  const Image flat = offscreen.draw();
  offscreen.document.OnCurvatureMax();
  const Image field = offscreen.draw();
  offscreen.document.OnColourLegend();
  const Image withLegend = offscreen.draw();
  EXPECT_GT(test::differentPixels(field, withLegend), 14 * 141);
  offscreen.document.OnFlatShading();
  EXPECT_EQ(test::differentPixels(flat, offscreen.draw()), 0);
  offscreen.document.OnTensorMin();
  const Image tensors = offscreen.draw();
  offscreen.document.OnColourLegend();
  EXPECT_GT(test::differentPixels(tensors, offscreen.draw()), 14 * 141);
  offscreen.document.OnCurvatureMax();
  EXPECT_EQ(test::differentPixels(field, offscreen.draw()), 0);
}

TEST(Legend, LooksLikeItsBaseline) {
  test::OffscreenView offscreen;
  offscreen.show(test::bumpySphere(), FlatShading);
  offscreen.document.OnCurvatureMean();
  offscreen.document.OnColourLegend();
  test::expectLikeBaseline(offscreen.draw(), "colour-legend", test::usualThreshold);
  offscreen.document.visualizationParameters.grayScale = true;
  offscreen.target = {.size = {150, 150}, .pixelRatio = 2.0, .overlay = false};
  test::expectLikeBaseline(offscreen.draw(), "colour-legend-grey", test::usualThreshold);
}

}  // namespace
}  // namespace gravlin
