#include "mesh/io/NumberText.h"

#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace gravlin {
namespace {

__extension__ using Wide = unsigned __int128;  // holds every finite float without its fraction

constexpr std::uint64_t million = 1'000'000;
constexpr std::uint64_t tenToThe19 = 10'000'000'000'000'000'000U;

char* writeText(char* out, std::string_view text) {
  std::memcpy(out, text.data(), text.size());
  return out + text.size();
}

char* writeWhole(char* out, std::uint64_t value) {
  return std::to_chars(out, out + maxNumberLength, value).ptr;
}

/// Exactly `count` digits, zeros in front.
char* writePadded(char* out, std::uint64_t value, int count) {
  for (int k = count; k-- > 0; value /= 10) out[k] = static_cast<char>('0' + value % 10);
  return out + count;
}

char* writeWhole(char* out, Wide value) {
  if (value < tenToThe19) return writeWhole(out, static_cast<std::uint64_t>(value));
  out = writeWhole(out, value / tenToThe19);
  return writePadded(out, static_cast<std::uint64_t>(value % tenToThe19), 19);
}

/// value x 2^-shift, rounded to the nearest integer, ties to even.
std::uint64_t shiftRounded(std::uint64_t value, int shift) {
  if (shift >= 64) return 0;  // only used for values far below 2^63
  const std::uint64_t half = std::uint64_t{1} << (shift - 1);
  const std::uint64_t rest = value & (2 * half - 1);
  const std::uint64_t whole = value >> shift;
  return whole + (rest > half || (rest == half && whole % 2 != 0) ? 1 : 0);
}

}  // namespace

char* writeInt(char* out, int value) {
  return std::to_chars(out, out + maxNumberLength, value).ptr;
}

char* writeFloat(char* out, float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  const std::uint32_t fraction = bits & 0x7FFFFFU;
  const int exponent = static_cast<int>(bits >> 23 & 0xFFU);
  if (bits >> 31 != 0) *out++ = '-';
  if (exponent == 255) return writeText(out, fraction == 0 ? "inf" : "nan");

  // |value| = mantissa x 2^power
  const std::uint64_t mantissa = exponent == 0 ? fraction : fraction | 0x800000U;
  const int power = exponent == 0 ? -149 : exponent - 150;
  if (power >= 0) return writeText(writeWhole(out, Wide{mantissa} << power), ".000000");
  const std::uint64_t millionths = shiftRounded(mantissa * million, -power);
  out = writeWhole(out, millionths / million);
  *out++ = '.';
  return writePadded(out, millionths % million, 6);
}

}  // namespace gravlin
