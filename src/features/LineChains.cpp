#include "features/LineChains.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace gravlin {
namespace {

/// The linked pairs of vertices, each once, and per vertex the pairs that it belongs to.
struct LinkGraph {
  std::vector<std::pair<int, int>> edges;
  CompressedRows edgesOf;

  int otherEnd(int edge, int vertex) const {
    const auto [a, b] = edges[static_cast<std::size_t>(edge)];
    return a == vertex ? b : a;
  }
};

LinkGraph graphOf(std::span<const IndexList> links) {
  LinkGraph graph;
  for (int v = 0; v < static_cast<int>(links.size()); ++v) {
    for (const int w : links[static_cast<std::size_t>(v)]) {
      if (v != w) graph.edges.push_back(std::minmax(v, w));
    }
  }
  std::sort(graph.edges.begin(), graph.edges.end());
  graph.edges.erase(std::unique(graph.edges.begin(), graph.edges.end()), graph.edges.end());

  auto& [offsets, items] = graph.edgesOf;
  offsets.assign(links.size() + 1, 0);
  for (const auto& [a, b] : graph.edges) {
    ++offsets[static_cast<std::size_t>(a) + 1];
    ++offsets[static_cast<std::size_t>(b) + 1];
  }
  for (std::size_t i = 1; i < offsets.size(); ++i) offsets[i] += offsets[i - 1];
  items.resize(2 * graph.edges.size());
  std::vector<int> end(offsets.begin(), offsets.end() - 1);
  for (int edge = 0; edge < static_cast<int>(graph.edges.size()); ++edge) {
    const auto [a, b] = graph.edges[static_cast<std::size_t>(edge)];
    for (const int v : {a, b}) {
      items[static_cast<std::size_t>(end[static_cast<std::size_t>(v)]++)] = edge;
    }
  }
  return graph;
}

class Chainer {
 public:
  explicit Chainer(std::span<const IndexList> links)
      : graph(graphOf(links)), used(graph.edges.size(), false) {}

  std::vector<Polyline> chain() {
    const int vertexCount = graph.edgesOf.rowCount();
    for (int v = 0; v < vertexCount; ++v) {
      if (graph.edgesOf.length(v) != 2) followAllFrom(v);
    }
    for (int v = 0; v < vertexCount; ++v) followAllFrom(v);
    return std::move(lines);
  }

 private:
  void followAllFrom(int vertex) {
    for (const int edge : graph.edgesOf[vertex]) {
      if (!used[static_cast<std::size_t>(edge)]) follow(vertex, edge);
    }
  }

  /// Walks from `start` over `edge` until the line ends, branches or comes back.
  void follow(int start, int edge) {
    Polyline line;
    line.vertices.push_back(start);
    int v = start;
    while (true) {
      used[static_cast<std::size_t>(edge)] = true;
      v = graph.otherEnd(edge, v);
      if (v == start) break;
      line.vertices.push_back(v);
      if (graph.edgesOf.length(v) != 2) break;
      const auto both = graph.edgesOf[v];
      edge = both[0] == edge ? both[1] : both[0];
    }
    line.closed = v == start;
    lines.push_back(std::move(line));
  }

  LinkGraph graph;
  std::vector<bool> used;
  std::vector<Polyline> lines;
};

}  // namespace

std::vector<Polyline> chainLinks(std::span<const IndexList> links) {
  return Chainer(links).chain();
}

double polylineLength(const TriangleMesh& mesh, const Polyline& line) {
  double sum = 0.0;
  for (std::size_t k = 1; k < line.vertices.size(); ++k) {
    sum += length(mesh.position(line.vertices[k]) - mesh.position(line.vertices[k - 1]));
  }
  if (line.closed) {
    sum += length(mesh.position(line.vertices.front()) - mesh.position(line.vertices.back()));
  }
  return sum;
}

}  // namespace gravlin
