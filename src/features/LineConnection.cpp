#include "features/LineConnection.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include "features/LineFields.h"
#include "features/LineLabels.h"

namespace gravlin {
namespace {

constexpr float farAway = 1e6F;

/// What `connectLines` keeps about the lines of one kind while it joins them.
struct LineState {
  std::vector<int> degree;  ///< [V] number of links, -1 for unmarked vertices
  LineLabels labels;

  int& degreeOf(int v) { return degree[static_cast<std::size_t>(v)]; }
  bool isEnd(int v) const {
    const int d = degree[static_cast<std::size_t>(v)];
    return d == 0 || d == 1;
  }
};

void clearUnlinkedMarks(LineFields& line, int vertexCount) {
  for (int i = 0; i < vertexCount; ++i) {
    if (line.marked(i) && line.linksOf(i).empty()) line.mark(i, false);
  }
}

/// Degrees and labels of the lines as they are linked.
LineState stateOf(const TriangleMesh& mesh, const LineFields& line) {
  LineState state{std::vector<int>(static_cast<std::size_t>(mesh.vertexCount), -1),
                  LineLabels(mesh, line.marks)};
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (line.marked(i)) state.degreeOf(i) = line.linksOf(i).size();
  }
  return state;
}

/// Line ends, those of the strongest lines first. A line's weight is minus the sum over its links
/// of their length times the mean magnitude of curvature, summed in single precision.
std::vector<int> endsByStrength(const TriangleMesh& mesh, const LineFields& line,
                                LineState& state) {
  std::vector<float> weight(static_cast<std::size_t>(state.labels.count()), 0.0F);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (!line.marked(i)) continue;
    float& sum = weight[static_cast<std::size_t>(state.labels.labelOf(i))];
    for (const int u : line.linksOf(i)) {
      const double share =
          length(mesh.position(u) - mesh.position(i)) * std::abs(line.curvatureAt(i)) * 0.5;
      sum = static_cast<float>(static_cast<double>(sum) - share);
    }
  }
  const auto weightOf = [&](int v) {
    return weight[static_cast<std::size_t>(state.labels.labelOf(v))];
  };
  std::vector<int> ends;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (state.isEnd(i)) ends.push_back(i);
  }
  std::stable_sort(ends.begin(), ends.end(), [&](int a, int b) {
    const float wa = weightOf(a);
    const float wb = weightOf(b);
    if (wb != wb) return wa == wa;  // not a number comes last
    return wa < wb;
  });
  return ends;
}

/// A binary min-heap of vertices with single-precision keys, the root at index 1. Comparisons are
/// strict and the left child is preferred. A vertex that was popped is not inserted again.
class VertexHeap {
 public:
  explicit VertexHeap(std::size_t vertexCount)
      : key(vertexCount, farAway), place(vertexCount, -1) {}

  bool empty() const { return items.size() == 1; }
  int top() const { return items[1]; }
  float keyOf(int v) const { return key[static_cast<std::size_t>(v)]; }
  bool entered(int v) const { return place[static_cast<std::size_t>(v)] != -1; }
  bool popped(int v) const { return place[static_cast<std::size_t>(v)] == gone; }

  void insert(int v, float value) {
    key[static_cast<std::size_t>(v)] = value;
    touched.push_back(v);
    items.push_back(v);
    rise(items.size() - 1);
  }

  void decrease(int v, float value) {
    key[static_cast<std::size_t>(v)] = value;
    rise(static_cast<std::size_t>(place[static_cast<std::size_t>(v)]));
  }

  int pop() {
    const int result = items[1];
    const int last = items.back();
    items.pop_back();
    if (!empty()) sink(last);
    place[static_cast<std::size_t>(result)] = gone;
    return result;
  }

  /// Forgets everything, in time that depends only on what was inserted.
  void clear() {
    for (const int v : touched) {
      key[static_cast<std::size_t>(v)] = farAway;
      place[static_cast<std::size_t>(v)] = -1;
    }
    touched.clear();
    items.resize(1);
  }

 private:
  static constexpr int gone = -3;

  void put(std::size_t at, int v) {
    items[at] = v;
    place[static_cast<std::size_t>(v)] = static_cast<int>(at);
  }

  void rise(std::size_t at) {
    const int v = items[at];
    while (at > 1 && keyOf(v) < keyOf(items[at / 2])) {
      put(at, items[at / 2]);
      at /= 2;
    }
    put(at, v);
  }

  void sink(int v) {
    std::size_t at = 1;
    while (2 * at < items.size()) {
      std::size_t child = 2 * at;
      if (child + 1 < items.size() && keyOf(items[child + 1]) < keyOf(items[child])) ++child;
      if (!(keyOf(items[child]) < keyOf(v))) break;
      put(at, items[child]);
      at = child;
    }
    put(at, v);
  }

  std::vector<float> key;
  std::vector<int> place;
  std::vector<int> items = {-1};  ///< index 0 is not used
  std::vector<int> touched;
};

/// What a search for a way may pass and what it may cost.
struct JoinRules {
  double reference;  ///< curvature that a way should follow
  double low;        ///< weakest curvature that a way may pass
  float threshold;   ///< largest cost of a way before its last step
};

/// Searches the cheapest way from one line end to the nearest end of another line.
class JoinSearch {
 public:
  JoinSearch(const TriangleMesh& triangleMesh, const LineFields& fields, const JoinRules& joinRules)
      : mesh(triangleMesh),
        line(fields),
        rules(joinRules),
        heap(static_cast<std::size_t>(mesh.vertexCount)),
        previous(static_cast<std::size_t>(mesh.vertexCount), -1) {}

  /// The way from the end reached back to `start`, both included; empty when there is none.
  std::vector<int> findJoinPath(int start, LineState& state) {
    heap.clear();
    std::vector<int> path;
    if (const std::optional<int> end = search(start, state)) {
      for (int v = *end; v != start; v = previous[static_cast<std::size_t>(v)]) path.push_back(v);
      path.push_back(start);
    }
    return path;
  }

 private:
  bool mayPass(int w) const {
    const double k = line.curvatureAt(w);
    const bool tooWeak = line.kind == LineKind::Ridge ? k < rules.low : k > rules.low;
    return !tooWeak && !(std::abs(line.otherCurvatureAt(w)) > std::abs(k));
  }

  void relax(int u, double distance, int w) {
    if (heap.popped(w)) return;
    const double reached = distance + deviationCost(mesh, line, u, w, rules.reference);
    const auto stored = static_cast<float>(reached);
    if (!heap.entered(w)) {
      heap.insert(w, stored);
    } else if (reached < static_cast<double>(heap.keyOf(w))) {
      heap.decrease(w, stored);
    } else {
      return;
    }
    previous[static_cast<std::size_t>(w)] = u;
  }

  std::optional<int> search(int start, LineState& state) {
    const int ownLine = state.labels.labelOf(start);
    int u = start;
    double distance = 0.0;
    while (true) {
      for (const int w : mesh.getNeighbours(u)) {
        if (mayPass(w) && state.labels.labelOf(w) != ownLine) relax(u, distance, w);
      }
      if (heap.empty()) return std::nullopt;
      // An end that is the nearest candidate is accepted even beyond the threshold.
      if (state.isEnd(heap.top())) return heap.top();
      if (heap.keyOf(heap.top()) > rules.threshold) return std::nullopt;
      u = heap.pop();
      distance = static_cast<double>(heap.keyOf(u));
    }
  }

  const TriangleMesh& mesh;
  const LineFields& line;
  JoinRules rules;
  VertexHeap heap;
  std::vector<int> previous;  ///< [V] the vertex from which each one was reached
};

/// Marks and links a way whose first vertex is the end of another line; both lines become that one.
void joinAlong(const std::vector<int>& path, LineFields& line, LineState& state) {
  const int reached = path.front();
  const int start = path.back();
  const int label = state.labels.labelOf(reached);
  ++state.degreeOf(reached);
  line.link(reached, path[1]);
  for (std::size_t k = 1; k + 1 < path.size(); ++k) {
    line.mark(path[k], true);
    state.degreeOf(path[k]) = 2;
    state.labels.setLabel(path[k], label);
    line.link(path[k], path[k + 1]);
  }
  ++state.degreeOf(start);
  state.labels.flood(start, label);
}

void connectLinesOfKind(TriangleMesh& mesh, LineFields& line, const JoinRules& rules) {
  clearUnlinkedMarks(line, mesh.vertexCount);
  LineState state = stateOf(mesh, line);
  JoinSearch joins(mesh, line, rules);
  for (const int end : endsByStrength(mesh, line, state)) {
    if (!state.isEnd(end)) continue;
    const std::vector<int> path = joins.findJoinPath(end, state);
    if (!path.empty()) joinAlong(path, line, state);
  }
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (state.degreeOf(i) == 0) line.mark(i, false);
  }
}

}  // namespace

void connectLines(TriangleMesh& mesh, float threshold, const LowThresholds& low) {
  LineFields ridges = lineFields(mesh, LineKind::Ridge);
  connectLinesOfKind(mesh, ridges, {30.0, low.ridgeLow, threshold});
  LineFields valleys = lineFields(mesh, LineKind::Valley);
  connectLinesOfKind(mesh, valleys, {-30.0, low.valleyLow, threshold});
}

}  // namespace gravlin
