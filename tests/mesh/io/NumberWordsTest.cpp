#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <string>

#include "mesh/io/NumberWords.h"
#include "support/GermanLocale.h"

namespace gravlin {
namespace {

std::optional<double> doubleOf(const std::string& word) {
  double value = 0.0;
  const char* behind = readDouble(word.c_str(), word.c_str() + word.size(), value);
  if (behind == nullptr) return std::nullopt;
  EXPECT_EQ(behind, word.c_str() + word.size()) << word;
  return value;
}

std::optional<std::int64_t> integerOf(const std::string& word) {
  std::int64_t value = 0;
  const char* behind = readInteger(word.c_str(), word.c_str() + word.size(), value);
  if (behind == nullptr) return std::nullopt;
  EXPECT_EQ(behind, word.c_str() + word.size()) << word;
  return value;
}

/// The C library rounds exactly.
TEST(NumberWords, DoublesAreThoseOfTheCLibrary) {
  for (const char* word : {"0",
                           "-0",
                           "1",
                           "+1",
                           "-1.5",
                           ".5",
                           "5.",
                           "1e5",
                           "1E+5",
                           "1e-5",
                           "0.1",
                           "0.3",
                           "500000.123",
                           "9007199254740991",
                           "9007199254740993",
                           "9007199254740993e-22",
                           "123456789012345678",
                           "1234567890123456789012345",
                           "1e22",
                           "1e23",
                           "1e-22",
                           "1e-23",
                           "0.12345678901234567",
                           "2.2250738585072011e-308",
                           "4.9e-324",
                           "1e-400",
                           "1e400",
                           "-1e400",
                           "1.7976931348623157e308",
                           "0.1e1000",
                           "0e99999",
                           "00000000000000000000001",
                           "inf",
                           "-inf",
                           "Infinity",
                           "8.5e-45",
                           "3.4028235e38",
                           "100000000000000016777215"}) {
    const std::optional<double> value = doubleOf(word);
    ASSERT_TRUE(value) << word;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(*value),
              std::bit_cast<std::uint64_t>(std::strtod(word, nullptr)))
        << word;
  }
  EXPECT_TRUE(std::isnan(doubleOf("nan").value_or(0.0)));
  EXPECT_TRUE(std::isnan(doubleOf("-nan").value_or(0.0)));
}

TEST(NumberWords, ManyDecimalsAreRoundedAsTheCLibraryRoundsThem) {
  std::uint64_t state = 12345;
  char word[64];
  for (int k = 0; k < 20000; ++k) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    const auto fraction = static_cast<double>(state >> 11) / 9007199254740992.0;
    std::snprintf(word, sizeof word, "%.*g", 1 + k % 18,
                  (fraction - 0.5) * std::pow(10.0, k % 41 - 20));
    ASSERT_EQ(doubleOf(word), std::strtod(word, nullptr)) << word;
  }
}

TEST(NumberWords, AWordThatGoesOnBehindTheNumberIsNone) {
  for (const char* word : {"", "-", "+", ".", "e5", "1e", "1e+", "1x", "1,5", "0x10", "1.2.3",
                           "1-2", "--1", "+-1", "1/2", "nanx", "infi", "#"}) {
    EXPECT_EQ(doubleOf(word), std::nullopt) << word;
  }
  EXPECT_EQ(doubleOf(std::string("1\0", 2)), std::nullopt);
}

TEST(NumberWords, TheWordEndsAtABlankOrALineEnd) {
  for (const std::string behind : {" ", "\t", "\n", "\r\n", " x"}) {
    const std::string text = "12.5" + behind;
    double value = 0.0;
    EXPECT_EQ(readDouble(text.c_str(), text.c_str() + text.size(), value), text.c_str() + 4);
    EXPECT_EQ(value, 12.5);
  }
}

TEST(NumberWords, WholeNumbersMayBeWrittenWithAPoint) {
  EXPECT_EQ(integerOf("12"), 12);
  EXPECT_EQ(integerOf("-12"), -12);
  EXPECT_EQ(integerOf("+3"), 3);
  EXPECT_EQ(integerOf("12.0"), 12);
  EXPECT_EQ(integerOf("1e3"), 1000);
  EXPECT_EQ(integerOf("999999999999999999"), 999999999999999999);
  for (const char* word : {"", "1.5", "x", "3x", "nan", "1/2"}) {
    EXPECT_EQ(integerOf(word), std::nullopt) << word;
  }
}

TEST(NumberWords, WholeNumbersTooLargeAreTheNearestThatFit) {
  EXPECT_EQ(integerOf("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(integerOf("99999999999999999999"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(integerOf("-99999999999999999999"), std::numeric_limits<std::int64_t>::min());
  EXPECT_GT(integerOf("1e300").value_or(0), std::int64_t{1} << 61);
  EXPECT_GT(integerOf("inf").value_or(0), std::int64_t{1} << 61);
}

TEST(NumberWords, AnotherLocaleChangesNothing) {
  const test::GermanLocale locale;
  ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
  ASSERT_EQ(std::strtod("1,5", nullptr), 1.5) << "the locale is not in force";
  EXPECT_EQ(doubleOf("1.5"), 1.5);
  EXPECT_EQ(doubleOf("0.12345678901234567"), 0.12345678901234567);
  EXPECT_EQ(doubleOf("1e-310"), 1e-310);
  EXPECT_EQ(doubleOf("1,5"), std::nullopt);
}

}  // namespace
}  // namespace gravlin
