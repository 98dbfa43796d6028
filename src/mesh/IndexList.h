#pragma once

#include <cstddef>
#include <iterator>
#include <vector>

namespace gravlin {

/// The vertices that one vertex is linked to along a ridge, valley or crease line, in the order in
/// which they were appended. An empty list owns no memory; appending is amortised constant time.
/// Duplicates are kept.
class IndexList {
 public:
  using value_type = int;
  using const_iterator = std::vector<int>::const_iterator;

  void append(int vertex) { items.push_back(vertex); }
  void clear() { items.clear(); }
  bool empty() const { return items.empty(); }
  int size() const { return static_cast<int>(items.size()); }
  int operator[](int position) const { return items[static_cast<std::size_t>(position)]; }
  const_iterator begin() const { return items.begin(); }
  const_iterator end() const { return items.end(); }
  bool operator==(const IndexList&) const = default;

  /// Removes every entry equal to `vertex`; the others keep their order.
  void remove(int vertex);

 private:
  std::vector<int> items;
};

}  // namespace gravlin
