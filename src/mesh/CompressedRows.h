#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace gravlin {

/// Rows of ints of different lengths in two flat arrays. Row i is
/// items[offsets[i]] .. items[offsets[i + 1] - 1]; `offsets` has one entry more than there are rows
/// and is empty while the rows have not been built.
struct CompressedRows {
  std::vector<int> offsets;
  std::vector<int> items;

  bool built() const { return !offsets.empty(); }
  int rowCount() const { return built() ? static_cast<int>(offsets.size()) - 1 : 0; }

  int length(int row) const {
    return offsets[static_cast<std::size_t>(row) + 1] - offsets[static_cast<std::size_t>(row)];
  }

  std::span<const int> operator[](int row) const {
    return {items.data() + offsets[static_cast<std::size_t>(row)],
            static_cast<std::size_t>(length(row))};
  }

  void clear() { *this = {}; }
};

}  // namespace gravlin
