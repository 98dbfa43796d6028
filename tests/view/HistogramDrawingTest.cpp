#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ImageComparison.h"
#include "view/HistogramDrawing.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

Histogram histogramOf(const std::vector<double>& values, int windowWidth) {
  Histogram histogram;
  histogram.setWindowWidth(windowWidth);
  histogram.setValues(values);
  return histogram;
}

std::vector<std::string> textsOf(const HistogramDrawing& drawing) {
  std::vector<std::string> texts;
  for (const HistogramDrawing::Text& text : drawing.texts) texts.push_back(text.text);
  return texts;
}

TEST(HistogramDrawing, WritesTheFourStatisticsWithSixDecimals) {
  EXPECT_THAT(textsOf(drawingOf(histogramOf({1, 1, 5, 5}, 330), {330, 300})),
              ElementsAre("Clip Min: -3.000000", "Clip Max: 9.000000", "Average : 3.000000",
                          "Varience: 2.000000"));
  EXPECT_THAT(textsOf(drawingOf(histogramOf({1, std::nan("")}, 330), {330, 300})),
              ElementsAre("Clip Min: nan", "Clip Max: nan", "Average : nan", "Varience: nan"));
  const std::string big = textsOf(drawingOf(histogramOf({1e300}, 330), {330, 300}))[2];
  EXPECT_EQ(big.size(), std::string("Average : ").size() + 301 + 7);
}

TEST(HistogramDrawing, HasABarForEveryBinInProportionToTheLargest) {
  const Histogram histogram = histogramOf({1, 1, 5, 5, 5, 5, 5, 5}, 36);
  const HistogramDrawing drawing = drawingOf(histogram, {36, 199});
  ASSERT_THAT(drawing.bars, SizeIs(6));
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(drawing.bars[i].x, 15 + static_cast<int>(i));
    EXPECT_EQ(drawing.bars[i].bottom, 199 - 15 - 1);
    // 100 pixels are left between the texts and the lower margin.
    EXPECT_EQ(drawing.bars[i].length, histogram.bins[i] * 100 / 6);
  }
  EXPECT_EQ(histogram.maxBin, 6);
}

TEST(HistogramDrawing, ColoursBarsAsTheMesh) {
  const Histogram histogram = histogramOf({1, 1, 5, 5}, 36);
  const HistogramDrawing drawing = drawingOf(histogram, {36, 300});
  // Bins start at -3, -1, 1 ... 7: at places -4.5, -3, -1.5, 0, 1.5, 3 of the scale.
  EXPECT_EQ(drawing.bars[0].colour, (Colour{0, 0, 0}));
  EXPECT_EQ(drawing.bars[2].colour, (Colour{0, 0, 1}));
  EXPECT_NEAR(drawing.bars[3].colour.r, 0.5F, 1e-6F);  // the slope is 1.6666666
  EXPECT_EQ(drawing.bars[3].colour.g, 1.0F);
  EXPECT_EQ(drawing.bars[4].colour, (Colour{1, 0, 1}));
  EXPECT_EQ(drawing.bars[5].colour, (Colour{1, 0.75F, 1}));
}

TEST(HistogramDrawing, HasBlackBarsWhereAllValuesAreEqual) {
  const HistogramDrawing drawing = drawingOf(histogramOf({2, 2}, 330), {330, 300});
  for (const HistogramDrawing::Bar& bar : drawing.bars) {
    EXPECT_EQ(bar.colour, (Colour{0, 0, 0}));
    EXPECT_EQ(bar.length > 0, bar.x == 15);
  }
}

TEST(HistogramDrawing, IsEmptyWithoutValuesAndHasNoBarsWhereItIsNarrow) {
  EXPECT_THAT(drawingOf(histogramOf({}, 330), {330, 300}).texts, IsEmpty());
  EXPECT_THAT(drawingOf(histogramOf({}, 330), {330, 300}).bars, IsEmpty());
  EXPECT_THAT(drawingOf(histogramOf({1, 2}, 30), {30, 300}).bars, IsEmpty());
  for (const HistogramDrawing::Bar& bar : drawingOf(histogramOf({1, 2}, 330), {330, 20}).bars) {
    EXPECT_EQ(bar.length, 0);
  }
}

TEST(HistogramDrawing, TellsValueAndCountOfTheBinUnderTheMouse) {
  const Histogram histogram = histogramOf({1, 1, 5, 5}, 36);
  EXPECT_EQ(binTextAt(histogram, 14), std::nullopt);
  EXPECT_EQ(binTextAt(histogram, 15), "-3: 0");
  EXPECT_EQ(binTextAt(histogram, 17), "1: 2");
  EXPECT_EQ(binTextAt(histogram, 20), "7: 0");
  EXPECT_EQ(binTextAt(histogram, 21), std::nullopt);
  EXPECT_EQ(binTextAt(histogramOf({1, 2}, 20), 15), std::nullopt);
  EXPECT_EQ(binTextAt(histogramOf({}, 330), 100), std::nullopt);
}

TEST(HistogramDrawing, LooksLikeItsBaseline) {
  std::vector<double> values;
  for (int n = 0; n < 20000; ++n) values.push_back(std::sin(0.1 * n) + std::sin(0.037 * n));
  Histogram histogram = histogramOf(values, 1);
  // The texts depend on the fonts of the machine a little.
  test::expectLikeBaseline(drawHistogram(histogram, {300, 300}), "histogram", 0.98);
}

TEST(HistogramDrawing, FitsAnySize) {
  Histogram histogram = histogramOf({1, 2, 3}, 330);
  for (const ViewSize& size : {ViewSize{1, 1}, {31, 200}, {330, 10}, {5, 400}}) {
    const Image image = drawHistogram(histogram, size);
    EXPECT_EQ(image.width, size.width);
    EXPECT_THAT(image.rgb, SizeIs(static_cast<std::size_t>(3 * size.width * size.height)));
  }
}

}  // namespace
}  // namespace gravlin
