#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>

#include "view/Histogram.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Eq;
using ::testing::IsEmpty;
using ::testing::SizeIs;

Histogram histogramOf(const std::vector<double>& values, int windowWidth) {
  Histogram histogram;
  histogram.setWindowWidth(windowWidth);
  histogram.setValues(values);
  return histogram;
}

int total(const Histogram& histogram) {
  return std::accumulate(histogram.bins.begin(), histogram.bins.end(), 0);
}

TEST(Histogram, ClipsThreeDeviationsBesideTheMean) {
  const Histogram histogram = histogramOf({1, 1, 5, 5}, 36);
  EXPECT_EQ(histogram.spread.mean, 3.0);
  EXPECT_EQ(histogram.spread.deviation, 2.0);
  EXPECT_EQ(histogram.clipMin, -3.0);
  EXPECT_EQ(histogram.clipMax, 9.0);
  EXPECT_EQ(histogram.binCount, 6);
  EXPECT_THAT(histogram.binStart, ElementsAre(-3, -1, 1, 3, 5, 7));
  // A value at the edge of two bins belongs to the upper one.
  EXPECT_THAT(histogram.bins, ElementsAre(0, 0, 2, 0, 2, 0));
  EXPECT_EQ(histogram.maxBin, 2);
}

TEST(Histogram, PilesUpInTheEndBinsWhatLiesBeyond) {
  std::vector<double> values(98, 0.0);
  values.push_back(100.0);
  values.push_back(-100.0);
  const Histogram histogram = histogramOf(values, 40);
  EXPECT_EQ(histogram.bins.front(), 1);
  EXPECT_EQ(histogram.bins.back(), 1);
  EXPECT_EQ(histogram.bins[5], 98);
  EXPECT_EQ(total(histogram), 100);
}

TEST(Histogram, PutsOneFarValueInTheLastBin) {
  std::vector<double> values(50, 1.0);
  values.push_back(1e6);
  const Histogram histogram = histogramOf(values, 330);
  EXPECT_EQ(histogram.bins.back(), 1);
  EXPECT_EQ(histogram.maxBin, 50);
}

TEST(Histogram, PutsEqualValuesInTheFirstBin) {
  const Histogram histogram = histogramOf({2.5, 2.5, 2.5}, 330);
  EXPECT_EQ(histogram.spread.deviation, 0.0);
  EXPECT_EQ(histogram.clipMin, histogram.clipMax);
  EXPECT_EQ(histogram.bins.front(), 3);
  EXPECT_EQ(total(histogram), 3);
  EXPECT_THAT(histogram.binStart, Each(Eq(2.5)));
}

TEST(Histogram, PutsEverythingInTheFirstBinWhenAValueIsNotFinite) {
  for (const double bad : {std::nan(""), std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity()}) {
    const Histogram histogram = histogramOf({1.0, bad, 3.0}, 330);
    EXPECT_EQ(histogram.bins.front(), 3);
    EXPECT_EQ(total(histogram), 3);
  }
  EXPECT_EQ(total(histogramOf({-1.7e308, 1.7e308, 1.7e308}, 330)), 3);
}

TEST(Histogram, BinsNothingInAWindowNarrowerThan31Pixels) {
  for (const int width : {30, 1, 0, -5, std::numeric_limits<int>::min()}) {
    const Histogram histogram = histogramOf({1, 2, 3}, width);
    EXPECT_LE(histogram.binCount, 0);
    EXPECT_THAT(histogram.bins, IsEmpty());
    EXPECT_EQ(histogram.maxBin, 0);
  }
  EXPECT_EQ(histogramOf({1, 2, 3}, 30).binCount, 0);
  EXPECT_EQ(histogramOf({1, 2, 3}, 0).binCount, -29) << "the width counts as 1 at least";
  const Histogram one = histogramOf({1, 2, 3}, 31);
  EXPECT_THAT(one.bins, ElementsAre(3));
}

TEST(Histogram, KeepsItsValuesWhenTheWindowChanges) {
  Histogram histogram = histogramOf({1, 2, 3, 4}, 330);
  EXPECT_THAT(histogram.bins, SizeIs(300));
  histogram.setWindowWidth(130);
  EXPECT_THAT(histogram.bins, SizeIs(100));
  EXPECT_EQ(total(histogram), 4);
  histogram.setWindowWidth(10);
  histogram.setWindowWidth(330);
  EXPECT_EQ(total(histogram), 4);
}

TEST(Histogram, IsEmptyWithoutValues) {
  const Histogram histogram = histogramOf({}, 330);
  EXPECT_THAT(histogram.bins, Each(Eq(0)));
  EXPECT_EQ(histogram.maxBin, 0);
}

TEST(Histogram, CountsEveryValueOnceInTheBinOfItsRange) {
  std::vector<double> values;
  for (int n = 0; n < 5000; ++n) values.push_back(std::sin(0.1 * n) + 0.001 * n);
  const Histogram histogram = histogramOf(values, 77);
  std::vector<int> expected(47, 0);
  for (const double v : values) {
    std::size_t bin = 0;
    while (bin + 1 < histogram.binStart.size() && v >= histogram.binStart[bin + 1]) ++bin;
    ++expected[bin];
  }
  EXPECT_EQ(histogram.bins, expected);
}

}  // namespace
}  // namespace gravlin
