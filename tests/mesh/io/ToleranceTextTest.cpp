#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "mesh/io/ToleranceText.h"

namespace gravlin {
namespace {

std::string textOf(double value, double tolerance) {
  std::array<char, maxToleranceText> room;
  const char* const end = ToleranceText(tolerance).write(room.data(), value);
  return std::string(static_cast<const char*>(room.data()), end);
}

/// The fewest decimals with which printf comes within the tolerance.
int fewestDecimals(double value, double tolerance) {
  for (int decimals = 0; decimals < 20; ++decimals) {
    std::array<char, 512> text;
    std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
    if (std::abs(std::strtod(text.data(), nullptr) - value) <= tolerance) return decimals;
  }
  return 20;
}

int decimalsOf(const std::string& text) {
  const std::size_t point = text.find('.');
  return point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1);
}

TEST(ToleranceText, HandMadeNumbersKeepNoMoreDigitsThanTheyNeed) {
  EXPECT_EQ(textOf(0.5, 1e-6), "0.5");
  EXPECT_EQ(textOf(0.0, 1e-6), "0");
  EXPECT_EQ(textOf(-0.25, 1e-6), "-0.25");
  EXPECT_EQ(textOf(12.0, 1e-6), "12");
  EXPECT_EQ(textOf(120.0, 1e-6), "120");
  EXPECT_EQ(textOf(1.0 / 3.0, 1e-3), "0.333");
  EXPECT_EQ(textOf(2.0 / 3.0, 0.004), "0.67");
  EXPECT_EQ(textOf(0.05, 1e-6), "0.05");
  EXPECT_EQ(textOf(-0.001, 1e-6), "-0.001");
  EXPECT_EQ(textOf(9.99996, 1e-4), "10");
  EXPECT_EQ(textOf(-1e-9, 1e-6), "0");
  EXPECT_EQ(textOf(500000.123, 1e-6), "500000.123");
}

/// Compared with printf at every number of decimals. A number that lies on the tolerance itself may
/// come out either way, so the limits are a hair inside and outside.
TEST(ToleranceText, NoOtherNumberWithinTheToleranceHasFewerDecimals) {
  std::uint64_t state = 99;
  const auto next = [&state] {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<double>(state >> 11) / 9007199254740992.0;
  };
  for (int k = 0; k < 20000; ++k) {
    const double tolerance = std::pow(10.0, -8.0 * next()) * 0.5;
    const double value = (next() - 0.5) * std::pow(10.0, 6.0 * next() - 2.0);
    const std::string text = textOf(value, tolerance);
    ASSERT_LE(std::abs(std::strtod(text.c_str(), nullptr) - value), tolerance) << text;
    ASSERT_GE(decimalsOf(text), fewestDecimals(value, tolerance)) << text << " " << tolerance;
    // Three of fifty parts of the tolerance are kept back for rounding.
    ASSERT_LE(decimalsOf(text), fewestDecimals(value, 0.93 * tolerance))
        << text << " " << tolerance;
  }
}

TEST(ToleranceText, WithoutAToleranceTheNumberComesBackAsItWas) {
  for (const double tolerance :
       {0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity(), 1e-40, 1e-14}) {
    for (const double value : {0.1, 1.0 / 3.0, -1e300, 5e-324, 500000.123, 1e15 + 0.5}) {
      EXPECT_EQ(std::strtod(textOf(value, tolerance).c_str(), nullptr), value) << tolerance;
    }
  }
}

TEST(ToleranceText, NumbersTooLargeForTheToleranceComeBackAsTheyWere) {
  for (const double value : {1e15 / 3.0, -1e20 / 7.0, 1.7976931348623157e308}) {
    const std::string text = textOf(value, 1e-6);
    EXPECT_EQ(std::strtod(text.c_str(), nullptr), value);
    EXPECT_LE(text.size(), static_cast<std::size_t>(maxToleranceText));
  }
}

TEST(ToleranceText, WhatIsNoNumberHasAName) {
  EXPECT_EQ(textOf(std::numeric_limits<double>::infinity(), 1e-6), "inf");
  EXPECT_EQ(textOf(-std::numeric_limits<double>::infinity(), 1e-6), "-inf");
  EXPECT_EQ(textOf(std::numeric_limits<double>::quiet_NaN(), 1e-6), "nan");
}

}  // namespace
}  // namespace gravlin
