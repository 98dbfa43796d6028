#include "mesh/Ring.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>
#include <vector>

namespace gravlin {
namespace {

/// Up to this many wedges comparing all pairs is faster than any search structure.
constexpr std::size_t smallRing = 32;

// --- Small rings: all pairs, no memory ---

bool isPrevOfAny(std::span<const Wedge> ring, int vertex) {
  return std::any_of(ring.begin(), ring.end(),
                     [vertex](const Wedge& wedge) { return wedge.prev == vertex; });
}

/// Position of the last wedge that no wedge lies before; ring.size() when there is none.
std::size_t findStartInSmall(std::span<const Wedge> ring) {
  for (std::size_t k = ring.size(); k-- > 0;) {
    if (!isPrevOfAny(ring, ring[k].next)) return k;
  }
  return ring.size();
}

/// Brings behind each wedge the first of the later ones that continues it. True when every wedge
/// continues the one before it.
bool chainSmall(std::span<Wedge> ring) {
  bool intact = true;
  for (std::size_t k = 1; k < ring.size(); ++k) {
    std::size_t found = k;
    while (found < ring.size() && ring[found].next != ring[k - 1].prev) ++found;
    if (found == ring.size()) {
      intact = false;
    } else {
      std::swap(ring[k], ring[found]);
    }
  }
  return intact;
}

/// Whether a chained ring passes every neighbour once.
bool distinctInSmall(std::span<const Wedge> ring) {
  for (std::size_t k = 1; k < ring.size(); ++k) {
    for (std::size_t l = 0; l < k; ++l) {
      if (ring[l].next == ring[k].next) return false;
    }
  }
  const int last = ring.back().prev;
  return std::none_of(ring.begin() + 1, ring.end(),
                      [last](const Wedge& wedge) { return wedge.next == last; });
}

// --- Large rings: the same results by sorting ---

std::size_t findStartInLarge(std::span<const Wedge> ring) {
  std::vector<int> prevs;
  prevs.reserve(ring.size());
  for (const Wedge& wedge : ring) prevs.push_back(wedge.prev);
  std::sort(prevs.begin(), prevs.end());
  for (std::size_t k = ring.size(); k-- > 0;) {
    if (!std::binary_search(prevs.begin(), prevs.end(), ring[k].next)) return k;
  }
  return ring.size();
}

bool chainLarge(std::span<Wedge> ring) {
  // The wedges not yet in their place, by (next, position): the first that continues a wedge is
  // the smallest entry with that next.
  std::set<std::pair<int, std::size_t>> open;
  for (std::size_t k = 1; k < ring.size(); ++k) open.emplace(ring[k].next, k);
  bool intact = true;
  for (std::size_t k = 1; k < ring.size(); ++k) {
    const int wanted = ring[k - 1].prev;
    const auto found = open.lower_bound({wanted, 0});
    if (found == open.end() || found->first != wanted) {
      intact = false;
      open.erase({ring[k].next, k});
      continue;
    }
    const std::size_t position = found->second;
    open.erase(found);
    if (position != k) {
      open.erase({ring[k].next, k});
      open.emplace(ring[k].next, position);
      std::swap(ring[k], ring[position]);
    }
  }
  return intact;
}

bool distinctInLarge(std::span<const Wedge> ring) {
  std::vector<int> neighbours;
  neighbours.reserve(ring.size() + 1);
  for (const Wedge& wedge : ring) neighbours.push_back(wedge.next);
  if (ring.back().prev != ring.front().next) neighbours.push_back(ring.back().prev);
  std::sort(neighbours.begin(), neighbours.end());
  return std::adjacent_find(neighbours.begin(), neighbours.end()) == neighbours.end();
}

}  // namespace

VertexKind orderRing(std::span<Wedge> ring) {
  if (ring.empty()) return NonManifoldVertex;
  const bool small = ring.size() <= smallRing;

  const std::size_t start = small ? findStartInSmall(ring) : findStartInLarge(ring);
  const bool closed = start == ring.size();
  if (!closed) std::swap(ring.front(), ring[start]);

  const bool intact = small ? chainSmall(ring) : chainLarge(ring);
  if (!intact) return NonManifoldVertex;
  if (closed && ring.front().next != ring.back().prev) return NonManifoldVertex;
  // In a chain every next but the first is the prev of the wedge before it. That it is the prev of
  // no other wedge is the same as that no neighbour occurs twice.
  if (!(small ? distinctInSmall(ring) : distinctInLarge(ring))) return NonManifoldVertex;
  return closed ? InteriorVertex : BoundaryVertex;
}

}  // namespace gravlin
