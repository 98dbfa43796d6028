#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "numeric/LargeVector.h"

namespace gravlin {

/// Numbers positions in the order in which they are first met. Two are the same when all three
/// coordinates have equal bits, or are 0 with whatever sign.
class PositionIndex {
 public:
  /// New positions are appended to `destination`, which is empty; about `expected` of them.
  PositionIndex(UnfilledVector<double>& destination, std::size_t expected);

  /// The number of a position. Throws std::length_error when there are too many.
  int indexOf(double x, double y, double z);

 private:
  /// A place of the table: the number of a position plus 1, 0 where there is none, with as many
  /// bits of its hash above.
  using Entry = std::uint64_t;

  void grow();

  UnfilledVector<double>& positions;
  LargeVector<Entry> table;  ///< a power of two of places, at most half of them taken
  std::size_t count = 0;
};

}  // namespace gravlin
