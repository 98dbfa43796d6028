#pragma once

#include <cstdint>

namespace gravlin {

/// A linear congruential generator of 15-bit numbers, the same on every machine:
/// state = state x 214013 + 2531011 modulo 2^32, value = bits 16 .. 30 of the state.
class Random {
 public:
  static constexpr int largest = 32767;

  explicit Random(std::uint32_t seed) { srand(seed); }

  /// Starts the sequence that belongs to `seed`.
  void srand(std::uint32_t seed) { state = seed; }

  /// The next number, 0 .. largest.
  int rand() {
    state = state * 214013U + 2531011U;
    return static_cast<int>((state >> 16U) & 0x7fffU);
  }

 private:
  std::uint32_t state = 0;
};

}  // namespace gravlin
