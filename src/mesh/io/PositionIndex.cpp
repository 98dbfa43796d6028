#include "mesh/io/PositionIndex.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <utility>

#include "mesh/io/ReadReport.h"

namespace gravlin {
namespace {

std::uint64_t bitsOf(double x) {
  return std::bit_cast<std::uint64_t>(x == 0.0 ? 0.0 : x);
}

/// Every bit of the coordinates moves about half of the bits of the result.
std::uint32_t hashOf(std::uint64_t x, std::uint64_t y, std::uint64_t z) {
  constexpr std::uint64_t odd = 0x9E3779B97F4A7C15U;  // 2^64 over the golden ratio
  std::uint64_t h = x * odd;
  h = (std::rotl(h, 29) ^ y) * odd;
  h = (std::rotl(h, 29) ^ z) * odd;
  h ^= h >> 32;
  h *= odd;
  return static_cast<std::uint32_t>(h >> 32);
}

constexpr std::uint64_t lowHalf = 0xFFFFFFFFU;

}  // namespace

PositionIndex::PositionIndex(UnfilledVector<double>& destination, std::size_t expected)
    : positions(destination), table(std::bit_ceil(std::max<std::size_t>(16, 2 * expected)), 0) {
  positions.resize(3 * std::max<std::size_t>(8, expected));
  positions.resize(0);
}

int PositionIndex::indexOf(double x, double y, double z) {
  const std::uint64_t bx = bitsOf(x);
  const std::uint64_t by = bitsOf(y);
  const std::uint64_t bz = bitsOf(z);
  const std::uint32_t hash = hashOf(bx, by, bz);
  const std::size_t mask = table.size() - 1;
  std::size_t place = hash & mask;
  for (; table[place] != 0; place = (place + 1) & mask) {
    if (table[place] >> 32 != hash) continue;
    const std::size_t i = (table[place] & lowHalf) - 1;
    const double* p = positions.data() + 3 * i;
    if (bitsOf(p[0]) == bx && bitsOf(p[1]) == by && bitsOf(p[2]) == bz) return static_cast<int>(i);
  }
  if (count == static_cast<std::size_t>(maxArrayEntries / 3)) {
    throw std::length_error("it has more vertices than can be held");
  }
  positions.insert(positions.end(), {x, y, z});
  ++count;
  table[place] = std::uint64_t{hash} << 32 | count;
  if (2 * count > table.size()) grow();
  return static_cast<int>(count - 1);
}

void PositionIndex::grow() {
  LargeVector<Entry> larger(2 * table.size(), 0);
  const std::size_t mask = larger.size() - 1;
  for (const Entry entry : table) {
    if (entry == 0) continue;
    std::size_t place = (entry >> 32) & mask;
    while (larger[place] != 0) place = (place + 1) & mask;
    larger[place] = entry;
  }
  table = std::move(larger);
}

}  // namespace gravlin
