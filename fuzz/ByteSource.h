#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

namespace gravlin::fuzz {

/// Decisions taken from the bytes of an input, one after the other. Behind the last byte every
/// decision is the first of the choices, so every input means something.
class ByteSource {
 public:
  ByteSource(const std::uint8_t* data, std::size_t size) : bytes(data, size) {}

  bool empty() const { return next >= bytes.size(); }
  std::uint8_t byte() { return empty() ? std::uint8_t{0} : bytes[next++]; }
  /// 0 <= result < n, n at least 1.
  int below(int n) { return (n <= 256 ? byte() : 256 * byte() + byte()) % n; }
  bool flip() { return byte() % 2 != 0; }

  /// One of the items, of which there is at least one.
  template <class Items>
  const auto& anyOf(const Items& items) {
    return items[static_cast<std::size_t>(below(static_cast<int>(items.size())))];
  }

  /// A coordinate or parameter: mostly one at which arithmetic changes its ways, else any bits.
  float number() {
    using Limits = std::numeric_limits<float>;
    static constexpr std::array<float, 24> special = {
        0.0F,   1.0F,   -1.0F,  0.5F,  -0.0F,  2.0F,        0.1F,          90.0F,
        180.0F, -3.0F,  20.0F,  1e-3F, 100.0F, 1e10F,       1e30F,         -1e30F,
        1e-30F, 1e-45F, 1e-20F, 1e-6F, -1e-3F, 16777216.0F, Limits::max(), Limits::lowest()};
    const std::uint8_t kind = byte();
    if (kind < 240) return special[kind % special.size()];
    std::uint32_t bits = 0;
    for (int k = 0; k < 4; ++k) bits = bits << 8 | byte();
    return std::bit_cast<float>(bits);
  }

 private:
  std::span<const std::uint8_t> bytes;
  std::size_t next = 0;
};

}  // namespace gravlin::fuzz
