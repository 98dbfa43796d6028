#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "view/ColourScale.h"

namespace gravlin {
namespace {

/// The largest number below t.
double below(double t) {
  return std::nextafter(t, -std::numeric_limits<double>::infinity());
}

void expectColour(double t, const Colour& expected) {
  const Colour colour = scaleColour(t);
  // The slope is 1.6666666, not 5/3: a band that is 0.6 wide falls short of 1 by 4e-8.
  constexpr float tolerance = 2e-7F;
  EXPECT_NEAR(colour.r, expected.r, tolerance) << "t = " << t;
  EXPECT_NEAR(colour.g, expected.g, tolerance) << "t = " << t;
  EXPECT_NEAR(colour.b, expected.b, tolerance) << "t = " << t;
}

TEST(ColourScale, EachLimitBelongsToTheBandAboveIt) {
  const struct {
    double limit;
    Colour justBelow;
    Colour at;
  } limits[] = {{-2.1, {0, 0, 0}, {0, 0, 0}}, {-1.5, {0, 0, 1}, {0, 0, 1}},
                {-0.9, {0, 1, 1}, {0, 1, 1}}, {-0.3, {0, 1, 0}, {0, 1, 0}},
                {0.3, {1, 1, 0}, {1, 1, 0}},  {0.9, {1, 0, 0}, {1, 0, 0}},
                {1.5, {1, 0, 1}, {1, 0, 1}},  {2.1, {1, 0.75F, 1}, {1, 0.75F, 1}}};
  for (const auto& [limit, justBelow, at] : limits) {
    expectColour(below(limit), justBelow);
    expectColour(limit, at);
  }
}

TEST(ColourScale, LimitsThemselvesHaveTheExactValuesOfTheirOwnBand) {
  EXPECT_EQ(scaleColour(-1.5), (Colour{0, 0, 1}));
  EXPECT_EQ(scaleColour(2.1), (Colour{1, 0.75F, 1}));
  EXPECT_EQ(scaleColour(1.5), (Colour{1, 0, 1}));
  // Just below, the band falls short of 1 by what its slope falls short of 5/3.
  EXPECT_LT(scaleColour(below(-1.5)).b, 1.0F);
  EXPECT_LT(scaleColour(below(1.5)).b, 1.0F);
}

TEST(ColourScale, MiddlesOfTheBands) {
  expectColour(-1.8, {0, 0, 0.5F});
  expectColour(-1.2, {0, 0.5F, 1});
  expectColour(-0.6, {0, 1, 0.5F});
  expectColour(0.0, {0.5F, 1, 0});
  expectColour(0.6, {1, 0.5F, 0});
  expectColour(1.2, {1, 0, 0.5F});
  expectColour(1.8, {1, 0.375F, 1});
}

TEST(ColourScale, StaysWithinItsEndsAndBounds) {
  EXPECT_EQ(scaleColour(-1e300), (Colour{0, 0, 0}));
  EXPECT_EQ(scaleColour(-std::numeric_limits<double>::infinity()), (Colour{0, 0, 0}));
  EXPECT_EQ(scaleColour(std::numeric_limits<double>::infinity()), (Colour{1, 0.75F, 1}));
  for (double t = -2.5; t < 2.5; t += 0.001) {
    const Colour c = scaleColour(t);
    for (const float part : {c.r, c.g, c.b}) {
      EXPECT_GE(part, 0.0F) << "t = " << t;
      EXPECT_LE(part, 1.0F) << "t = " << t;
    }
  }
}

TEST(ColourScale, WhatIsNoNumberIsBlack) {
  EXPECT_EQ(scaleColour(std::nan("")), (Colour{0, 0, 0}));
  EXPECT_EQ(scaleGrey(std::nan("")), (Colour{0, 0, 0}));
}

TEST(ColourScale, GreyRunsFromBlackToWhiteAndIsClamped) {
  EXPECT_EQ(scaleGrey(-2.1), (Colour{0, 0, 0}));
  EXPECT_EQ(scaleGrey(below(-2.1)), (Colour{0, 0, 0}));
  EXPECT_EQ(scaleGrey(-100.0), (Colour{0, 0, 0}));
  EXPECT_NEAR(scaleGrey(0.0).r, 0.5F, 1e-7F);
  EXPECT_EQ(scaleGrey(0.7).r, scaleGrey(0.7).g);
  EXPECT_EQ(scaleGrey(0.7).r, scaleGrey(0.7).b);
  EXPECT_EQ(scaleGrey(2.1), (Colour{1, 1, 1}));
  EXPECT_EQ(scaleGrey(100.0), (Colour{1, 1, 1}));
}

TEST(ColourScale, SpreadIsThatOfThePopulation) {
  const Spread spread = spreadOf(std::vector<double>{2, 4, 4, 4, 5, 5, 7, 9});
  EXPECT_EQ(spread.mean, 5.0);
  EXPECT_EQ(spread.deviation, 2.0);
  EXPECT_EQ(scalePlace(9.0, spread), 3.0);
  EXPECT_EQ(scalePlace(4.0, spread), -0.75);
}

TEST(ColourScale, VertexAtTheMeanIsYellowishGreen) {
  const Spread spread = spreadOf(std::vector<double>{1, 2, 3});
  expectColour(scalePlace(2.0, spread), {0.5F, 1, 0});
}

TEST(ColourScale, ConstantFieldIsBlackInBothScales) {
  const Spread spread = spreadOf(std::vector<double>{3, 3, 3});
  EXPECT_EQ(spread.deviation, 0.0);
  const double t = scalePlace(3.0, spread);
  EXPECT_TRUE(std::isnan(t));
  EXPECT_EQ(scaleColour(t), (Colour{0, 0, 0}));
  EXPECT_EQ(scaleGrey(t), (Colour{0, 0, 0}));
}

TEST(ColourScale, EqualValuesHaveNoSpreadAlsoWhereTheirSumIsRounded) {
  for (const double value : {0.1, 0.05, 1.0 / 3.0}) {
    const Spread spread = spreadOf(std::vector<double>(642, value));
    EXPECT_EQ(spread.mean, value);
    EXPECT_EQ(spread.deviation, 0.0);
  }
}

TEST(ColourScale, NoValuesHaveNoMean) {
  EXPECT_TRUE(std::isnan(spreadOf({}).mean));
}

}  // namespace
}  // namespace gravlin
