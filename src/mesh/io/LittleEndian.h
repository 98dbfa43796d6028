#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace gravlin {

/// A number out of bytes with the lowest first, on any machine.
template <class Number>
Number loadLittleEndian(const char* bytes) {
  std::array<char, sizeof(Number)> own;
  std::memcpy(own.data(), bytes, sizeof(Number));
  if constexpr (std::endian::native == std::endian::big) std::reverse(own.begin(), own.end());
  return std::bit_cast<Number>(own);
}

/// The inverse. Returns the end of what was written.
template <class Number>
char* storeLittleEndian(char* bytes, Number value) {
  auto own = std::bit_cast<std::array<char, sizeof(Number)>>(value);
  if constexpr (std::endian::native == std::endian::big) std::reverse(own.begin(), own.end());
  std::memcpy(bytes, own.data(), sizeof(Number));
  return bytes + sizeof(Number);
}

}  // namespace gravlin
