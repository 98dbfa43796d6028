// Line building and joining compared with the two algorithms written down as plainly as possible:
// with recursion, lists that are scanned, and arrays of V entries for every search.

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <utility>
#include <vector>

#include "features/LineConnection.h"
#include "features/LineGraph.h"
#include "features/MarkedMeshes.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using namespace gravlin::test;

using Lists = std::vector<std::vector<int>>;

Lists listsOf(const std::vector<IndexList>& links) {
  Lists lists;
  for (const IndexList& list : links) lists.emplace_back(list.begin(), list.end());
  return lists;
}

/// Ridges, or with `valleys` the mirror image. Arrays are indexed by vertex.
struct Reference {
  const TriangleMesh& mesh;
  bool valleys;
  std::vector<double> kappa;
  std::vector<double> other;
  std::vector<int> marks;
  Lists links;
  std::vector<int> visited;
  std::vector<int> degree;
  std::vector<int> component;
  int joins = 0;

  Reference(const TriangleMesh& m, bool ofValleys)
      : mesh(m),
        valleys(ofValleys),
        kappa(ofValleys ? m.minCurvature : m.maxCurvature),
        other(ofValleys ? m.maxCurvature : m.minCurvature),
        marks(ofValleys ? m.valleyMarks : m.ridgeMarks),
        links(marks.size()),
        visited(marks.size()),
        degree(marks.size()),
        component(marks.size()) {}

  static std::size_t at(int v) { return static_cast<std::size_t>(v); }
  int count() const { return mesh.vertexCount; }

  void link(int a, int b) {
    links[at(a)].push_back(b);
    links[at(b)].push_back(a);
  }

  double cost(int u, int w, double k0) const {
    const double ku = kappa[at(u)];
    const double kw = kappa[at(w)];
    return (((ku - k0) * (ku - k0) + (kw - k0) * (kw - k0)) * 0.5 + (ku - kw) * (ku - kw) / 6.0) *
           length(mesh.position(u) - mesh.position(w));
  }

  /// By key, equal ones by index.
  static std::vector<int> sorted(std::vector<std::pair<float, int>> keyed) {
    std::sort(keyed.begin(), keyed.end());
    std::vector<int> order;
    for (const auto& entry : keyed) order.push_back(entry.second);
    return order;
  }

  void growTree(int seed) {
    std::vector<int> queue = {seed};
    while (!queue.empty()) {
      const int u = queue.front();
      queue.erase(queue.begin());
      std::vector<std::pair<double, int>> candidates;
      for (const int w : mesh.getNeighbours(u)) {
        if (marks[at(w)] == 0 || !links[at(w)].empty()) continue;
        candidates.emplace_back(cost(u, w, kappa[at(seed)]), w);
        link(u, w);
      }
      for (std::size_t times = 0; times < candidates.size(); ++times) {
        std::size_t best = 0;
        for (std::size_t k = 1; k < candidates.size(); ++k) {
          if (candidates[k].first < candidates[best].first) best = k;
        }
        candidates[best].first = 1e8;
        queue.push_back(candidates[best].second);
      }
    }
  }

  void removeBranch(int from, int to) {
    const std::vector<int> copy = links[at(to)];
    for (const int x : copy) {
      if (x != from) removeBranch(to, x);
    }
    std::erase(links[at(to)], from);
    std::erase(links[at(from)], to);
  }

  double pruneTree(int v, double minLength) {
    visited[at(v)] = 1;
    double total = 0.0;
    const std::vector<int> entries = links[at(v)];
    std::vector<double> len;
    for (const int w : entries) {
      if (visited[at(w)] != 0) {
        len.push_back(1e8);
      } else {
        len.push_back(1.0 + pruneTree(w, minLength));
        total += len.back();
      }
    }
    for (std::size_t times = 2; times < entries.size(); ++times) {
      std::size_t least = 1;
      for (std::size_t m = 2; m < entries.size(); ++m) {
        if (len[m] < len[least]) least = m;
      }
      if (len[least] < minLength) removeBranch(v, entries[least]);
      total -= len[least];
      len[least] = 1e6;
    }
    return total;
  }

  void buildLineGraph() {
    std::vector<std::pair<float, int>> keyed;
    for (int i = 0; i < count(); ++i) {
      const double key = valleys ? kappa[at(i)] : -kappa[at(i)];
      if (marks[at(i)] != 0) keyed.emplace_back(static_cast<float>(key), i);
    }
    const std::vector<int> seeds = sorted(keyed);
    for (const int s : seeds) {
      if (links[at(s)].empty()) growTree(s);
    }
    for (const int s : seeds) {
      if (visited[at(s)] == 0) pruneTree(s, 2.5);
    }
  }

  void labelComponent(int v, int from, int to) {
    component[at(v)] = to;
    for (const int w : mesh.getNeighbours(v)) {
      if (component[at(w)] == from) labelComponent(w, from, to);
    }
  }

  bool isEnd(int v) const { return degree[at(v)] == 0 || degree[at(v)] == 1; }

  std::vector<int> findJoinPath(int s, float threshold, double low) const {
    std::vector<float> dist(marks.size(), 1e6F);
    std::vector<int> prev(marks.size());
    for (int i = 0; i < count(); ++i) prev[at(i)] = i;
    std::vector<int> pos(marks.size(), -1);
    std::vector<bool> popped(marks.size(), false);
    std::vector<int> heap = {-1};
    const auto exchange = [&](std::size_t a, std::size_t b) {
      std::swap(heap[a], heap[b]);
      pos[at(heap[a])] = static_cast<int>(a);
      pos[at(heap[b])] = static_cast<int>(b);
    };
    const auto rise = [&](int v) {
      auto here = at(pos[at(v)]);
      for (; here > 1 && dist[at(heap[here])] < dist[at(heap[here / 2])]; here /= 2) {
        exchange(here, here / 2);
      }
    };
    dist[at(s)] = 0.0F;
    int u = s;
    while (true) {
      for (const int w : mesh.getNeighbours(u)) {
        if (valleys ? kappa[at(w)] > low : kappa[at(w)] < low) continue;
        if (std::abs(other[at(w)]) > std::abs(kappa[at(w)])) continue;
        if (component[at(w)] == component[at(s)] || popped[at(w)]) continue;
        const double nd = static_cast<double>(dist[at(u)]) + cost(u, w, valleys ? -30.0 : 30.0);
        if (pos[at(w)] >= 0) {
          if (nd >= static_cast<double>(dist[at(w)])) continue;
        } else {
          pos[at(w)] = static_cast<int>(heap.size());
          heap.push_back(w);
        }
        dist[at(w)] = static_cast<float>(nd);
        prev[at(w)] = u;
        rise(w);
      }
      if (heap.size() == 1) return {};
      const int t = heap[1];
      if (isEnd(t)) {
        std::vector<int> path = {t};
        while (path.back() != s) path.push_back(prev[at(path.back())]);
        return path;
      }
      if (dist[at(t)] > threshold) return {};
      exchange(1, heap.size() - 1);
      heap.pop_back();
      popped[at(t)] = true;
      for (std::size_t here = 1; 2 * here < heap.size();) {
        std::size_t child = 2 * here;
        if (child + 1 < heap.size() && dist[at(heap[child + 1])] < dist[at(heap[child])]) ++child;
        if (!(dist[at(heap[child])] < dist[at(heap[here])])) break;
        exchange(here, child);
        here = child;
      }
      if (t == u) return {};
      u = t;
    }
  }

  void connectLines(float threshold, double low) {
    int labels = 0;
    for (int i = 0; i < count(); ++i) {
      if (links[at(i)].empty()) marks[at(i)] = 0;
      degree[at(i)] = marks[at(i)] != 0 ? static_cast<int>(links[at(i)].size()) : -1;
      component[at(i)] = marks[at(i)] != 0 ? -1 : -2;
    }
    for (int i = 0; i < count(); ++i) {
      if (component[at(i)] == -1) labelComponent(i, -1, labels++);
    }
    std::vector<float> weight(at(labels), 0.0F);
    for (int i = 0; i < count(); ++i) {
      for (const int u : links[at(i)]) {
        float& sum = weight[at(component[at(i)])];
        sum = static_cast<float>(static_cast<double>(sum) -
                                 length(mesh.position(u) - mesh.position(i)) *
                                     std::abs(kappa[at(i)]) * 0.5);
      }
    }
    std::vector<std::pair<float, int>> keyed;
    for (int i = 0; i < count(); ++i) {
      if (isEnd(i)) keyed.emplace_back(weight[at(component[at(i)])], i);
    }
    for (const int s : sorted(keyed)) {
      if (isEnd(s)) join(findJoinPath(s, threshold, low));
    }
    for (int i = 0; i < count(); ++i) {
      if (degree[at(i)] == 0) marks[at(i)] = 0;
    }
  }

  void join(const std::vector<int>& path) {
    if (path.empty()) return;
    ++joins;
    const int s = path.back();
    const int label = component[at(path[0])];
    ++degree[at(path[0])];
    link(path[0], path[1]);
    for (std::size_t k = 1; path[k] != s; ++k) {
      marks[at(path[k])] = 1;
      degree[at(path[k])] = 2;
      component[at(path[k])] = label;
      link(path[k], path[k + 1]);
    }
    ++degree[at(s)];
    labelComponent(s, component[at(s)], label);
  }
};

/// A small mesh with random marks on `share` of the vertices. Curvatures have few values, so that
/// ties are frequent, times `scale`.
TriangleMesh randomLines(std::mt19937& random, double scale) {
  TriangleMesh mesh =
      random() % 3 == 0 ? icosphere(2, 5.0) : jittered(grid(9, 7), random() % 2 == 0 ? 0.0 : 0.2);
  prepareLines(mesh, 0.0, 0.0);
  const auto oneIn = 2 + random() % 4;
  const auto values = 2 + random() % 12;
  for (std::size_t i = 0; i < mesh.maxCurvature.size(); ++i) {
    mesh.maxCurvature[i] = scale * (20.0 + static_cast<double>(random() % values));
    mesh.minCurvature[i] = -scale * (20.0 + static_cast<double>(random() % values));
    mesh.ridgeMarks[i] = random() % oneIn == 0 ? 1 : 0;
    mesh.valleyMarks[i] = random() % oneIn != 0 ? 1 : 0;
  }
  return mesh;
}

TEST(LineReference, LineGraphsAreThoseOfThePlainAlgorithm) {
  std::mt19937 random(2024);
  for (int round = 0; round < 400; ++round) {
    SCOPED_TRACE(round);
    // Ten thousand times the curvature: costs on either side of the mark of queued children.
    TriangleMesh mesh = randomLines(random, round % 4 == 0 ? 1e4 : 1.0);
    Reference ridges(mesh, false);
    Reference valleys(mesh, true);
    buildLineGraph(mesh);
    ridges.buildLineGraph();
    valleys.buildLineGraph();
    ASSERT_EQ(listsOf(mesh.ridgeLinks), ridges.links);
    ASSERT_EQ(listsOf(mesh.valleyLinks), valleys.links);
  }
}

TEST(LineReference, JoinedLinesAreThoseOfThePlainAlgorithm) {
  std::mt19937 random(4711);
  int joins = 0;
  for (int round = 0; round < 600; ++round) {
    SCOPED_TRACE(round);
    TriangleMesh mesh = randomLines(random, 1.0);
    const LowThresholds low = {static_cast<double>(18 + random() % 8),
                               -static_cast<double>(18 + random() % 8)};
    const auto threshold = static_cast<float>(random() % 400);
    Reference ridges(mesh, false);
    Reference valleys(mesh, true);
    // Twice: the second run starts from joined lines, sides linked twice among them.
    buildLineGraph(mesh);
    ridges.buildLineGraph();
    valleys.buildLineGraph();
    for (int run = 0; run < 2; ++run) {
      connectLines(mesh, threshold, low);
      ridges.connectLines(threshold, low.ridgeLow);
      valleys.connectLines(threshold, low.valleyLow);
      ASSERT_EQ(listsOf(mesh.ridgeLinks), ridges.links);
      ASSERT_EQ(listsOf(mesh.valleyLinks), valleys.links);
      ASSERT_EQ(mesh.ridgeMarks, ridges.marks);
      ASSERT_EQ(mesh.valleyMarks, valleys.marks);
    }
    joins += ridges.joins + valleys.joins;
  }
  EXPECT_GT(joins, 600) << "on average one per mesh, or the comparison says little";
}

// After joins the marks have grown; building anew from the marks as they were gives the same again.
TEST(LineReference, ASecondRunAfterJoinsReplacesEverything) {
  std::mt19937 random(99);
  int joined = 0;
  for (int round = 0; round < 50; ++round) {
    TriangleMesh mesh = randomLines(random, 1.0);
    const auto ridgeMarks = mesh.ridgeMarks;
    const auto valleyMarks = mesh.valleyMarks;
    buildLineGraph(mesh);
    const auto unjoined = mesh.ridgeLinks;
    connectLines(mesh, 300.0F, {20.0, -20.0});
    const TriangleMesh first = mesh;
    joined += first.ridgeLinks != unjoined ? 1 : 0;
    mesh.ridgeMarks = ridgeMarks;
    mesh.valleyMarks = valleyMarks;
    buildLineGraph(mesh);
    EXPECT_EQ(mesh.ridgeLinks, unjoined);
    connectLines(mesh, 300.0F, {20.0, -20.0});
    EXPECT_EQ(mesh.ridgeLinks, first.ridgeLinks);
    EXPECT_EQ(mesh.valleyLinks, first.valleyLinks);
    EXPECT_EQ(mesh.ridgeMarks, first.ridgeMarks);
  }
  EXPECT_GT(joined, 25);
}

}  // namespace
}  // namespace gravlin
