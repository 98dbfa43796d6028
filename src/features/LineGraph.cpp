#include "features/LineGraph.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "features/LineFields.h"

namespace gravlin {
namespace {

/// A branch hanging at a junction is cut off when it is shorter, counted in edges.
constexpr double shortestBranch = 2.5;
/// The length that stands for the way back to the parent: longer than any branch.
constexpr double parentLength = 1e8;
/// The length that stands for a branch already dealt with.
constexpr double handledLength = 1e6;

/// Marked vertices, strongest curvature first, equal ones in index order. Keys are compared in
/// single precision.
std::vector<int> markedByStrength(const TriangleMesh& mesh, const LineFields& line) {
  const double sign = line.kind == LineKind::Ridge ? -1.0 : 1.0;
  struct Entry {
    float key;
    int vertex;
  };
  std::vector<Entry> entries;
  std::vector<int> withoutOrder;  // not a number compares with nothing
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (!line.marked(i)) continue;
    const auto key = static_cast<float>(sign * line.curvatureAt(i));
    if (key == key) {
      entries.push_back({key, i});
    } else {
      withoutOrder.push_back(i);
    }
  }
  std::stable_sort(entries.begin(), entries.end(),
                   [](const Entry& a, const Entry& b) { return a.key < b.key; });
  std::vector<int> order;
  order.reserve(entries.size() + withoutOrder.size());
  for (const Entry& entry : entries) order.push_back(entry.vertex);
  order.insert(order.end(), withoutOrder.begin(), withoutOrder.end());
  return order;
}

/// The cost that stands for a child that has its place in the queue.
constexpr double queuedCost = 1e8;

struct Child {
  double cost;
  int vertex;
};

/// Appends as many vertices to the queue as there are children, cheapest first, equal ones in the
/// order found. A queued child competes on with `queuedCost`: where no other is cheaper, the first
/// such child takes all places that are left, and what hangs at the others grows from seeds of its
/// own. Costs that are not numbers are above all others.
void enqueue(std::vector<int>& queue, std::vector<Child>& children) {
  const auto cheaper = [](const Child& a, const Child& b) {
    if (b.cost != b.cost) return a.cost == a.cost;
    return a.cost < b.cost;
  };
  if (children.empty()) return;
  const std::size_t places = queue.size() + children.size();
  const auto cheapest = std::min_element(children.begin(), children.end(), cheaper);
  if (!(cheapest->cost < queuedCost)) cheapest->cost = queuedCost;
  const auto contender = std::find_if(children.begin(), children.end(),
                                      [](const Child& c) { return c.cost <= queuedCost; });
  const int everyOtherPlace = contender->vertex;
  std::stable_sort(children.begin(), children.end(), cheaper);
  for (const Child& child : children) {
    if (child.cost < queuedCost) queue.push_back(child.vertex);
  }
  queue.resize(places, everyOtherPlace);
}

/// A breadth-first tree from `seed` over marked vertices without links.
void growTree(const TriangleMesh& mesh, const LineFields& line, int seed) {
  const double seedCurvature = line.curvatureAt(seed);
  std::vector<int> queue = {seed};
  std::vector<Child> children;
  for (std::size_t front = 0; front < queue.size(); ++front) {
    const int u = queue[front];
    children.clear();
    for (const int w : mesh.getNeighbours(u)) {
      if (!line.marked(w) || !line.linksOf(w).empty()) continue;
      children.push_back({deviationCost(mesh, line, u, w, seedCurvature), w});
      line.link(u, w);
    }
    enqueue(queue, children);
  }
}

/// Empties the link lists of everything that hangs at `branch`, seen from `junction`, whose own
/// list is left to the caller.
void removeBranch(const LineFields& line, int junction, int branch) {
  line.linksOf(branch).remove(junction);
  std::vector<int> pending = {branch};
  while (!pending.empty()) {
    const int v = pending.back();
    pending.pop_back();
    IndexList cut;
    std::swap(cut, line.linksOf(v));
    for (const int x : cut) {
      if (line.linksOf(x).empty()) continue;
      line.linksOf(x).remove(v);
      pending.push_back(x);
    }
  }
}

/// Positions 1 .. count - 1 by length, shortest first, equal ones in order.
std::vector<std::size_t> shortestFirst(std::span<const double> lengths) {
  std::vector<std::size_t> positions;
  for (std::size_t m = 1; m < lengths.size(); ++m) positions.push_back(m);
  std::stable_sort(positions.begin(), positions.end(),
                   [&](std::size_t a, std::size_t b) { return lengths[a] < lengths[b]; });
  return positions;
}

/// Cuts off the short branches at `v`, whose links have the given lengths in list order; the first
/// link and the longest other one are kept in any case. Returns the length that remains: branches
/// dealt with do not count, cut off or not.
double pruneJunction(const LineFields& line, int v, std::span<const double> lengths, double total) {
  const std::size_t count = lengths.size();
  if (count < 3) return total;
  std::vector<std::size_t> handled = shortestFirst(lengths);
  handled.pop_back();
  std::vector<bool> cut(count, false);
  for (std::size_t k = 0; k < handled.size(); ++k) {
    const double branch = lengths[handled[k]];
    // A branch longer than the mark for handled ones loses against the first of those.
    const bool alreadyHandled = k > 0 && branch > handledLength;
    total -= alreadyHandled ? handledLength : branch;
    cut[handled[k]] = branch < shortestBranch;
  }
  IndexList kept;
  for (std::size_t m = 0; m < count; ++m) {
    const int w = line.linksOf(v)[static_cast<int>(m)];
    if (cut[m]) {
      removeBranch(line, v, w);
    } else {
      kept.append(w);
    }
  }
  line.linksOf(v) = std::move(kept);
  return total;
}

/// Walks a tree depth first in list order, cutting short branches on the way back.
class TreePruner {
 public:
  TreePruner(const LineFields& fields, std::size_t vertexCount)
      : line(fields), visited(vertexCount, false) {}

  bool seen(int v) const { return visited[static_cast<std::size_t>(v)]; }

  void prune(int seed) {
    enter(seed);
    while (!frames.empty()) {
      Frame& top = frames.back();
      if (top.nextLink == line.linksOf(top.vertex).size()) {
        leave();
        continue;
      }
      const int w = line.linksOf(top.vertex)[top.nextLink++];
      if (seen(w)) {
        lengths.push_back(parentLength);
      } else {
        enter(w);
      }
    }
  }

 private:
  struct Frame {
    int vertex;
    int nextLink = 0;
    double total = 0.0;
    std::size_t firstLength;  ///< where the lengths of this vertex's links begin
  };

  void enter(int v) {
    visited[static_cast<std::size_t>(v)] = true;
    frames.push_back({.vertex = v, .firstLength = lengths.size()});
  }

  void leave() {
    const Frame done = frames.back();
    frames.pop_back();
    const double total = pruneJunction(
        line, done.vertex, std::span<const double>(lengths).subspan(done.firstLength), done.total);
    lengths.resize(done.firstLength);
    if (frames.empty()) return;
    lengths.push_back(1.0 + total);
    frames.back().total += 1.0 + total;
  }

  const LineFields& line;
  std::vector<bool> visited;
  std::vector<Frame> frames;
  std::vector<double> lengths;  ///< of the links walked so far, for all frames in one stack
};

}  // namespace

void buildLineGraph(TriangleMesh& mesh) {
  const auto V = static_cast<std::size_t>(mesh.vertexCount);
  for (const LineKind kind : bothLineKinds) {
    const LineFields line = lineFields(mesh, kind);
    line.links.assign(V, IndexList());
    const std::vector<int> seeds = markedByStrength(mesh, line);
    for (const int seed : seeds) {
      if (line.linksOf(seed).empty()) growTree(mesh, line, seed);
    }
    TreePruner pruner(line, V);
    for (const int seed : seeds) {
      if (!pruner.seen(seed)) pruner.prune(seed);
    }
  }
}

}  // namespace gravlin
