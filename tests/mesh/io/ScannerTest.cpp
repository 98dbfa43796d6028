#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

#include "mesh/io/Scanner.h"
#include "support/LibraryScan.h"

namespace gravlin {
namespace {

/// Runs both over the text with the given conversions, cyclically, until nothing is left.
void expectSameAsLibrary(const std::string& text, const std::string& conversions) {
  ASSERT_EQ(test::firstDifferenceFromLibrary(text, conversions), "");
}

class Generator {
 public:
  explicit Generator(unsigned seed) : random(seed) {}

  int below(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }

  std::string conversions() {
    std::string result;
    for (int k = 1 + below(4); k > 0; --k) result += below(2) == 0 ? 'd' : 'f';
    return result;
  }

  /// Bytes that mean something to a scanner, in no order.
  std::string noise() {
    static constexpr char alphabet[] =
        "0011234567899+-..eEexXpPaAfFiInNtTyY(_) \t\n\v\f\r,'gz\0\xff\x80";
    std::string text;
    for (int k = 1 + below(24); k > 0; --k) text += alphabet[below(sizeof alphabet)];
    return text;
  }

  std::string anyBytes() {
    std::string text;
    for (int k = 1 + below(16); k > 0; --k) text += static_cast<char>(below(256));
    return text;
  }

  std::string token() {
    static const char* const words[] = {"inf",
                                        "infinity",
                                        "nan",
                                        "nan(12)",
                                        "INF",
                                        "iNfInItY",
                                        "infi",
                                        "infinite",
                                        "na",
                                        "0x",
                                        "0x.",
                                        "0x1p",
                                        ".",
                                        "-",
                                        "+.",
                                        "1e",
                                        "1e+",
                                        "-0",
                                        "0x1.fffffep+127",
                                        "1.",
                                        ".5",
                                        "e5",
                                        "0X1P-149"};
    switch (below(7)) {
      case 0:
        return words[below(static_cast<int>(std::size(words)))];
      case 1:
        return printed("%d", below(2000) - 1000);
      case 2:
        return digits(1 + below(25));
      case 3:
        return digits(1 + below(12)) + "." + digits(below(12));
      case 4:
        return digits(1 + below(3)) + "." + digits(below(22)) + "e" +
               printed("%d", below(120) - 60);
      case 5:
        return printed("%a", std::ldexp(1.0 + below(1 << 30) * 0x1p-30, below(300) - 160));
      default:
        return printed("%.25g", nearlyBetweenFloats());
    }
  }

  /// Tokens, some of them damaged, with blanks between most of them.
  std::string tokens() {
    static const char* const blanks[] = {" ", "\n", "  ", "\t", "\r\n", ""};
    std::string text;
    for (int k = 1 + below(5); k > 0; --k) {
      if (below(4) == 0) text += below(2) == 0 ? "-" : "+";
      std::string word = token();
      if (below(5) == 0 && !word.empty()) {
        word[static_cast<std::size_t>(below(static_cast<int>(word.size())))] =
            "-+.exp0nif \0"[below(12)];
      }
      text += word + blanks[below(static_cast<int>(std::size(blanks)))];
    }
    return text;
  }

 private:
  template <class Value>
  std::string printed(const char* format, Value value) {
    char text[512];
    std::snprintf(text, sizeof text, format, value);
    return text;
  }

  std::string digits(int count) {
    std::string text;
    for (; count > 0; --count) text += static_cast<char>('0' + below(10));
    return text;
  }

  /// A point halfway between two floats, or the doubles next to it.
  double nearlyBetweenFloats() {
    const auto bits = static_cast<std::uint32_t>(random()) & 0x7FFFFFFFU;
    const float low = std::bit_cast<float>(bits);
    const float high = std::nextafter(low, std::numeric_limits<float>::infinity());
    const double middle = 0.5 * (static_cast<double>(low) + static_cast<double>(high));
    const double beside = below(2) == 0 ? 0.0 : 1e300;
    return below(2) == 0 ? middle : std::nextafter(middle, beside);
  }

  std::mt19937 random;
};

TEST(Scanner, AgreesWithFscanfOnTokensWholeAndDamaged) {
  Generator generator(1);
  for (int round = 0; round < 80000 && !HasFatalFailure(); ++round) {
    expectSameAsLibrary(generator.tokens(), generator.conversions());
  }
}

TEST(Scanner, AgreesWithFscanfOnNoise) {
  Generator generator(2);
  for (int round = 0; round < 80000 && !HasFatalFailure(); ++round) {
    expectSameAsLibrary(generator.noise(), generator.conversions());
  }
}

TEST(Scanner, AgreesWithFscanfOnAnyBytes) {
  Generator generator(3);
  for (int round = 0; round < 20000 && !HasFatalFailure(); ++round) {
    expectSameAsLibrary(generator.anyBytes(), generator.conversions());
  }
}

TEST(Scanner, AgreesWithFscanfOnWordsThatOnlyLookLikeNumbers) {
  for (const std::string word : {"-",
                                 "+",
                                 "+-1",
                                 "--1",
                                 "0x",
                                 "0x ",
                                 "0xg",
                                 "0x.",
                                 "0x.p1",
                                 "0x1.8p1",
                                 "0x1p",
                                 "0x1p+",
                                 "0x1p-+1",
                                 "00x1",
                                 "1e",
                                 "1e+",
                                 "1e+-1",
                                 "1e5.5",
                                 "1e5e5",
                                 ".",
                                 "..",
                                 "1..2",
                                 ".e5",
                                 "e5",
                                 "i",
                                 "in",
                                 "inx",
                                 "inf",
                                 "infx",
                                 "infin",
                                 "infinitx",
                                 "infinity",
                                 "infinityy",
                                 "n",
                                 "na",
                                 "nax",
                                 "nan",
                                 "nan(",
                                 "nan(12)",
                                 "-nan",
                                 "+inf",
                                 "-i",
                                 "1,5",
                                 "1'000",
                                 "1_000",
                                 "0b11",
                                 "0777",
                                 "2147483647",
                                 "2147483648",
                                 "-2147483649",
                                 "4294967296",
                                 "9223372036854775807",
                                 "9223372036854775808",
                                 "-9223372036854775808",
                                 "-9223372036854775809",
                                 "99999999999999999999999",
                                 "1e38",
                                 "3.4028235677973366e38",
                                 "3.4028235677973365e38",
                                 "1e39",
                                 "-1e999",
                                 "1e-45",
                                 "7e-46",
                                 "7.1e-46",
                                 "1e-99999",
                                 "1e99999999999999999999",
                                 "16777217",
                                 "16777219",
                                 "0.000000000000000000000000000000000000000000000000001",
                                 "8388608.5",
                                 "8388609.5"}) {
    for (const char* conversions : {"d", "f", "df", "fd"}) {
      expectSameAsLibrary(word, conversions);
      expectSameAsLibrary(word + " 7", conversions);
      expectSameAsLibrary("\n" + word + "x7", conversions);
      expectSameAsLibrary(word + std::string(1, '\0') + "7", conversions);
    }
  }
}

TEST(Scanner, RoundsOnceToTheNearestFloat) {
  // A hair above the point between two floats. Going through the nearest double would land on the
  // point itself and then round down to even.
  Scanner scanner("16777217.00000000000000000001");
  EXPECT_EQ(scanner.scanFloat(), 16777218.0F);
}

TEST(Scanner, AnEmptyTextGivesNothing) {
  Scanner scanner("");
  EXPECT_FALSE(scanner.scanInt());
  EXPECT_FALSE(scanner.scanFloat());
  EXPECT_TRUE(scanner.atEnd());
}

TEST(Scanner, FailedWordsStayExceptForWhatHadToBeRead) {
  Scanner scanner("  x");
  EXPECT_FALSE(scanner.scanInt());
  EXPECT_EQ(scanner.position(), 2U);
  Scanner letters("nax");
  EXPECT_FALSE(letters.scanFloat());
  EXPECT_EQ(letters.position(), 3U);
}

}  // namespace
}  // namespace gravlin
