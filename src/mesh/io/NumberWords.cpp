#include "mesh/io/NumberWords.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <locale.h>  // newlocale, strtod_l
#include <string>
#include <system_error>

namespace gravlin {
namespace {

/// Nineteen decimal digits always fit into 64 bits, eighteen also with a sign.
constexpr std::ptrdiff_t maxExactDigits = 19;
constexpr std::ptrdiff_t maxSignedDigits = 18;

/// All powers of ten that a double holds exactly.
constexpr std::array<double, 23> powersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int largestExactPower = 22;
constexpr std::uint64_t largestWholeRun = std::uint64_t{1} << 53;  // a double holds all of 0 to it

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

std::uint64_t digitValue(char c) {
  return static_cast<std::uint64_t>(c - '0');
}

bool endsWord(const char* c, const char* end) {
  return isSpaceCharacter(*c) || c == end;
}

/// Any number, slowly.
const char* readUnusualDouble(const char* word, const char* end, double& value) {
  const char* behind = word;
  while (!endsWord(behind, end)) ++behind;
  if (*word == '+' && word[1] != '-') ++word;
  const std::from_chars_result result = std::from_chars(word, behind, value);
  if (result.ptr != behind || result.ec == std::errc::invalid_argument) return nullptr;
  if (result.ec == std::errc::result_out_of_range) {
    static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
    value = strtod_l(std::string(word, behind).c_str(), nullptr, cLocale);
  }
  return behind;
}

}  // namespace

const char* readDouble(const char* word, const char* end, double& value) {
  const char* c = word;
  const bool negative = *c == '-';
  if (negative || *c == '+') ++c;
  const char* const first = c;
  std::uint64_t digits = 0;
  for (; isDigit(*c); ++c) digits = 10 * digits + digitValue(*c);
  std::ptrdiff_t digitCount = c - first;
  int exponent = 0;
  if (*c == '.') {
    const char* const fraction = ++c;
    for (; isDigit(*c); ++c) digits = 10 * digits + digitValue(*c);
    digitCount += c - fraction;
    exponent = static_cast<int>(-std::min<std::ptrdiff_t>(c - fraction, 1000));
  }
  if (digitCount == 0 || digitCount > maxExactDigits) return readUnusualDouble(word, end, value);
  if (*c == 'e' || *c == 'E') {
    ++c;
    const bool down = *c == '-';
    if (down || *c == '+') ++c;
    const char* const power = c;
    int given = 0;
    for (; isDigit(*c) && c - power < 4; ++c) given = 10 * given + (*c - '0');
    if (c == power) return nullptr;
    exponent += down ? -given : given;
  }
  if (!endsWord(c, end) || digits > largestWholeRun || exponent < -largestExactPower ||
      exponent > largestExactPower) {
    return readUnusualDouble(word, end, value);
  }
  // Both factors are exact, so the one operation rounds once.
  const auto whole = static_cast<double>(digits);
  const double magnitude = exponent < 0 ? whole / powersOfTen[static_cast<std::size_t>(-exponent)]
                                        : whole * powersOfTen[static_cast<std::size_t>(exponent)];
  value = negative ? -magnitude : magnitude;
  return c;
}

const char* readDigits(const char* word, std::int64_t& value) {
  const char* c = word;
  const bool negative = *c == '-';
  if (negative || *c == '+') ++c;
  const char* const first = c;
  std::uint64_t digits = 0;
  for (; isDigit(*c); ++c) digits = 10 * digits + digitValue(*c);
  if (c == first) return nullptr;
  if (c - first > maxSignedDigits) {
    using Limits = std::numeric_limits<std::int64_t>;
    const std::from_chars_result result = std::from_chars(negative ? first - 1 : first, c, value);
    if (result.ec == std::errc::result_out_of_range)
      value = negative ? Limits::min() : Limits::max();
    return c;
  }
  value = negative ? -static_cast<std::int64_t>(digits) : static_cast<std::int64_t>(digits);
  return c;
}

const char* readInteger(const char* word, const char* end, std::int64_t& value) {
  const char* const behind = readDigits(word, value);
  if (behind != nullptr && endsWord(behind, end)) return behind;
  double number = 0.0;
  const char* const behindNumber = readDouble(word, end, number);
  if (behindNumber == nullptr || number != std::floor(number)) return nullptr;
  // 2^62 is far beyond every count and every vertex, and certain to fit.
  constexpr double limit = 4611686018427387904.0;
  value = static_cast<std::int64_t>(std::clamp(number, -limit, limit));
  return behindNumber;
}

}  // namespace gravlin
