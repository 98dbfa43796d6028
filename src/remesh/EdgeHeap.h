#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "numeric/Index.h"

namespace gravlin {

/// A binary min-heap of edge indices by cost. Which of several edges of equal cost comes first
/// follows from the heap's steps alone: an edge rises while its cost is smaller than its parent's,
/// and sinks while a child's is smaller than its own, to the left child where both are equal.
class EdgeHeap {
 public:
  /// For edges 0 .. edgeCount - 1; takes all its memory here.
  explicit EdgeHeap(int edgeCount);

  bool empty() const { return nodes.size() == 1; }
  bool contains(int edge) const { return places[toIndex(edge)] >= 0; }

  /// The edge must not be in the heap.
  void insert(int edge, float cost);
  /// Takes the edge of smallest cost out: the last one moves to the root and sinks. Not for an
  /// empty heap.
  int pop();
  /// Gives an edge of the heap another cost and moves it to its place.
  void changeCost(int edge, float cost);
  /// Takes an edge out of the heap: it gets the cost minus infinity, rises to the root and is
  /// popped.
  void remove(int edge);

  /// Calls visit(edge) for the edges at places `first` .. `last` of the heap, the root's being 1,
  /// as far as there are any. Those near the root are likely to be popped soon.
  template <class Visit>
  void visitPlaces(std::size_t first, std::size_t last, const Visit& visit) const {
    for (std::size_t at = first; at <= last && at < nodes.size(); ++at) visit(nodes[at].edge);
  }
  /// Hint that the edge will be looked for.
  void prefetch(int edge) const { __builtin_prefetch(&places[toIndex(edge)]); }

 private:
  struct Node {
    float cost;
    int edge;
  };

  void place(std::size_t at, const Node& node);
  void rise(std::size_t at);
  void sink(std::size_t at);

  std::vector<Node> nodes;  ///< the root at 1, the children of k at 2k and 2k + 1; 0 is not used
  std::vector<int> places;  ///< of each edge in `nodes`, -1 when it is not in the heap
};

}  // namespace gravlin
