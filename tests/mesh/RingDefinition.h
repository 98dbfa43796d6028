#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "mesh/Ring.h"

namespace gravlin::test {

inline auto countPrev(const std::vector<Wedge>& ring, int vertex) {
  return std::count_if(ring.begin(), ring.end(),
                       [vertex](const Wedge& wedge) { return wedge.prev == vertex; });
}

/// The definition of the order around a vertex, followed word by word with a scan for every
/// question: what orderRing must agree with.
inline VertexKind orderByDefinition(std::vector<Wedge>& ring) {
  const std::size_t n = ring.size();
  if (n == 0) return NonManifoldVertex;
  bool startFound = false;
  std::size_t start = 0;
  for (std::size_t k = 0; k < n; ++k) {
    if (countPrev(ring, ring[k].next) == 0) {
      startFound = true;
      start = k;
    }
  }
  if (startFound) std::swap(ring[0], ring[start]);
  bool broken = false;
  for (std::size_t k = 1; k < n; ++k) {
    bool found = false;
    for (std::size_t l = k; l < n && !found; ++l) {
      if (ring[l].next != ring[k - 1].prev) continue;
      std::swap(ring[k], ring[l]);
      found = true;
    }
    if (!found) broken = true;
  }
  if ((!startFound || broken) && ring.front().next != ring.back().prev) return NonManifoldVertex;
  if (broken) return NonManifoldVertex;
  for (std::size_t k = startFound ? 1 : 0; k < n; ++k) {
    if (countPrev(ring, ring[k].next) != 1) return NonManifoldVertex;
  }
  return startFound ? BoundaryVertex : InteriorVertex;
}

}  // namespace gravlin::test
