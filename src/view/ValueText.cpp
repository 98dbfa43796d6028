#include "view/ValueText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace gravlin {
namespace {

std::string text(double value, std::chars_format format, int precision) {
  if (std::isnan(value)) return "nan";
  std::array<char, 400> characters = {};  // the largest double has 309 digits before the point
  const auto end = std::to_chars(characters.data(), characters.data() + characters.size(), value,
                                 format, precision);
  return {characters.data(), end.ptr};
}

}  // namespace

std::string fixedText(double value) {
  return text(value, std::chars_format::fixed, 6);
}

std::string shortText(double value, int digits) {
  const double withoutNegativeZero = value + 0.0;
  return text(withoutNegativeZero, std::chars_format::general, digits);
}

}  // namespace gravlin
