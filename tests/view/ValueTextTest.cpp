#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>

#include "view/ValueText.h"

namespace gravlin {
namespace {

TEST(ValueText, FixedTextIsThatOfPrintf) {
  for (const double value : {0.0, -0.0, 1.0, -2.5, 0.0000005, 1.0 / 3.0, 123456789.0, 1e300}) {
    char expected[400];
    std::snprintf(expected, sizeof expected, "%f", value);
    EXPECT_EQ(fixedText(value), expected);
  }
}

TEST(ValueText, ShortTextHasSixSignificantDigitsOrAsManyAsAsked) {
  EXPECT_EQ(shortText(1.0 / 3.0), "0.333333");
  EXPECT_EQ(shortText(-1234567.0), "-1.23457e+06");
  EXPECT_EQ(shortText(4.0), "4");
  EXPECT_EQ(shortText(0.123456, 4), "0.1235");
  EXPECT_EQ(shortText(-0.0), "0");
}

TEST(ValueText, NamesWhatIsNotFiniteWithoutASignOfNan) {
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(fixedText(inf), "inf");
  EXPECT_EQ(shortText(-inf), "-inf");
  EXPECT_EQ(fixedText(std::nan("")), "nan");
  EXPECT_EQ(shortText(-std::nan("")), "nan");
}

}  // namespace
}  // namespace gravlin
