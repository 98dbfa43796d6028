#include "remesh/EdgeHeap.h"

#include <limits>

namespace gravlin {
namespace {

constexpr std::size_t root = 1;

}  // namespace

EdgeHeap::EdgeHeap(int edgeCount) : places(toIndex(edgeCount), -1) {
  nodes.reserve(toIndex(edgeCount) + root);
  nodes.push_back({0.0F, -1});
}

void EdgeHeap::insert(int edge, float cost) {
  nodes.push_back({cost, edge});
  rise(nodes.size() - 1);
}

int EdgeHeap::pop() {
  const int edge = nodes[root].edge;
  places[toIndex(edge)] = -1;
  const Node last = nodes.back();
  nodes.pop_back();
  if (!empty()) {
    nodes[root] = last;
    sink(root);
  }
  return edge;
}

void EdgeHeap::changeCost(int edge, float cost) {
  const std::size_t at = toIndex(places[toIndex(edge)]);
  nodes[at].cost = cost;
  rise(at);
  sink(toIndex(places[toIndex(edge)]));
}

void EdgeHeap::remove(int edge) {
  // What costs less than everything rises past everything, also past a cost that is not a number.
  std::size_t at = toIndex(places[toIndex(edge)]);
  for (; at > root; at /= 2) place(at, nodes[at / 2]);
  place(root, {-std::numeric_limits<float>::infinity(), edge});
  pop();
}

void EdgeHeap::place(std::size_t at, const Node& node) {
  nodes[at] = node;
  places[toIndex(node.edge)] = static_cast<int>(at);
}

void EdgeHeap::rise(std::size_t at) {
  const Node node = nodes[at];
  while (at > root && node.cost < nodes[at / 2].cost) {
    place(at, nodes[at / 2]);
    at /= 2;
  }
  place(at, node);
}

void EdgeHeap::sink(std::size_t at) {
  const Node node = nodes[at];
  const std::size_t count = nodes.size();
  for (std::size_t child = 2 * at; child < count; child = 2 * at) {
    // The eight nodes three levels below are neighbours in memory; one of them comes soon.
    __builtin_prefetch(nodes.data() + std::min(8 * at, count));
    if (child + 1 < count && nodes[child + 1].cost < nodes[child].cost) ++child;
    if (!(nodes[child].cost < node.cost)) break;
    place(at, nodes[child]);
    at = child;
  }
  place(at, node);
}

}  // namespace gravlin
