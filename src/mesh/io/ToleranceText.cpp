#include "mesh/io/ToleranceText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace gravlin {
namespace {

constexpr int guardDecimals = 2;
constexpr int mostDecimals = 15;  // 10^15 and what it is multiplied with stay exact in a double
constexpr double largestExact = 9007199254740992.0;  // 2^53

char* writeShortest(char* out, double value) {
  return std::to_chars(out, out + maxToleranceText, value).ptr;
}

/// digits x 10^-decimals.
char* writeDecimal(char* out, std::uint64_t digits, int decimals) {
  std::array<char, 24> text;
  char* const end = std::to_chars(text.data(), text.data() + text.size(), digits).ptr;
  const auto count = static_cast<int>(end - text.data());
  const int whole = count - decimals;
  if (whole > 0) {
    std::memcpy(out, text.data(), static_cast<std::size_t>(whole));
    out += whole;
  } else {
    *out++ = '0';
  }
  if (decimals == 0) return out;
  *out++ = '.';
  for (int k = whole; k < 0; ++k) *out++ = '0';
  const int fraction = whole > 0 ? decimals : count;
  std::memcpy(out, end - fraction, static_cast<std::size_t>(fraction));
  return out + fraction;
}

}  // namespace

ToleranceText::ToleranceText(double tolerance) {
  if (!(tolerance > 0.0) || !std::isfinite(tolerance)) return;
  int needed = 0;
  double power = 1.0;
  for (; needed + guardDecimals <= mostDecimals && 0.5 / power > tolerance; ++needed) power *= 10.0;
  if (needed + guardDecimals > mostDecimals) return;
  decimals = needed + guardDecimals;
  for (int k = 0; k < guardDecimals; ++k) power *= 10.0;
  multiplier = power;
  // Rounding to a multiple may be off by one, half of it by the product.
  const double allowed = std::floor(tolerance * multiplier) - 2.0;
  mayDiffer = allowed >= largestExact ? static_cast<std::uint64_t>(largestExact)
                                      : static_cast<std::uint64_t>(allowed);
}

char* ToleranceText::write(char* out, double value) const {
  const double scaled = std::abs(value) * multiplier;
  if (decimals < 0 || !(scaled < largestExact)) return writeShortest(out, value);
  const auto all = static_cast<std::uint64_t>(std::llround(scaled));
  std::uint64_t digits = all;
  std::uint64_t below = all;  // without its last digits
  std::uint64_t step = 1;
  int left = decimals;
  while (left > 0) {
    below /= 10;
    step *= 10;
    const std::uint64_t over = all - below * step;
    if (over > mayDiffer && step - over > mayDiffer) break;
    // The nearer one of the two neighbours.
    digits = below + (2 * over > step ? 1 : 0);
    --left;
  }
  if (digits == 0) {
    *out = '0';
    return out + 1;
  }
  if (value < 0.0) *out++ = '-';
  return writeDecimal(out, digits, left);
}

}  // namespace gravlin
