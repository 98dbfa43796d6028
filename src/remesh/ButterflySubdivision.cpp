#include "remesh/ButterflySubdivision.h"

#include <array>
#include <cmath>
#include <unordered_map>
#include <vector>

#include "remesh/FaceSplit.h"

namespace gravlin {
namespace {

constexpr double fullTurn = 6.28318530717958;
constexpr double twoTurns = 12.56637061435916;

/// Where `vertex` stands in a ring.
int placeInRing(std::span<const int> ring, int vertex) {
  int place = 0;
  while (ring[toIndex(place)] != vertex) ++place;
  return place;
}

/// The weights of the ring of an interior vertex of valence K, from the neighbour at the edge's
/// other end on in ring order. With 0.75 for the vertex itself they sum to 1.
std::vector<double> extraordinaryWeights(int K) {
  if (K == 3) return {1.25 / 3.0, -0.25 / 3.0, -0.25 / 3.0};
  if (K == 4) return {0.375, 0.0, -0.125, 0.0};
  std::vector<double> weights;
  for (int j = 0; j < K; ++j) {
    weights.push_back((0.25 + std::cos(fullTurn * j / K) + 0.5 * std::cos(twoTurns * j / K)) / K);
  }
  return weights;
}

/// What the extraordinary rule takes from the ring of one vertex of high valence, once for all of
/// its edges: the weights are a constant and two cosines, so their sums for every starting point
/// follow from five sums over the ring.
class Hub {
 public:
  Hub(const TriangleMesh& mesh, std::span<const int> ring) : count(static_cast<int>(ring.size())) {
    for (int m = 0; m < count; ++m) {
      const int j = ring[toIndex(m)];
      const Vec3 x = mesh.position(j);
      place.emplace(j, m);
      sum += x;
      cosines[0] += std::cos(fullTurn * m / count) * x;
      sines[0] += std::sin(fullTurn * m / count) * x;
      cosines[1] += std::cos(twoTurns * m / count) * x;
      sines[1] += std::sin(twoTurns * m / count) * x;
    }
  }

  Vec3 weightedRing(int start) const {
    const int p = place.at(start);
    const double once = fullTurn * p / count;
    const double twice = twoTurns * p / count;
    const Vec3 first = std::cos(once) * cosines[0] + std::sin(once) * sines[0];
    const Vec3 second = std::cos(twice) * cosines[1] + std::sin(twice) * sines[1];
    return (0.25 * sum + first + 0.5 * second) / count;
  }

 private:
  int count;
  std::unordered_map<int, int> place;  ///< of each neighbour in the ring
  Vec3 sum;
  std::array<Vec3, 2> cosines;  ///< the ring's sums with the cosine of one turn and of two
  std::array<Vec3, 2> sines;
};

class Butterfly {
 public:
  explicit Butterfly(const TriangleMesh& refined) : mesh(refined) {}

  Vec3 edgePoint(const SplitEdge& edge) {
    if (edge.other < 0) {
      const bool alongBoundary =
          kindOf(edge.a) == BoundaryVertex && kindOf(edge.b) == BoundaryVertex;
      return alongBoundary ? boundaryPoint(edge) : midpoint(mesh, edge);
    }
    if (kindOf(edge.a) != InteriorVertex || kindOf(edge.b) != InteriorVertex) {
      return midpoint(mesh, edge);
    }
    const int valenceA = mesh.neighbourCount(edge.a);
    const int valenceB = mesh.neighbourCount(edge.b);
    if (valenceA == 2 || valenceB == 2) return midpoint(mesh, edge);
    if (valenceA == 6 && valenceB == 6) return regularPoint(edge);
    if (valenceB == 6) return extraordinaryPoint(edge.a, edge.b);
    if (valenceA == 6) return extraordinaryPoint(edge.b, edge.a);
    return (extraordinaryPoint(edge.a, edge.b) + extraordinaryPoint(edge.b, edge.a)) * 0.5;
  }

 private:
  static constexpr int hubValence = 64;  ///< from here on the rule's sums are shared

  int kindOf(int i) const { return mesh.vertexKind[toIndex(i)]; }

  /// The end of the open fan of v that is not `neighbour`.
  Vec3 farEnd(int v, int neighbour) const {
    const auto ring = mesh.vertexNeighbours[v];
    return mesh.position(ring.front() == neighbour ? ring.back() : ring.front());
  }

  Vec3 boundaryPoint(const SplitEdge& edge) const {
    return (9.0 * (mesh.position(edge.a) + mesh.position(edge.b)) -
            (farEnd(edge.a, edge.b) + farEnd(edge.b, edge.a))) *
           0.0625;
  }

  /// The neighbours of v, whose valence is 6, two places before and after `neighbour`.
  Vec3 wings(int v, int neighbour) const {
    const auto ring = mesh.vertexNeighbours[v];
    const int place = placeInRing(ring, neighbour);
    return mesh.position(ring[toIndex((place + 4) % 6)]) +
           mesh.position(ring[toIndex((place + 2) % 6)]);
  }

  Vec3 regularPoint(const SplitEdge& edge) const {
    return (8.0 * (mesh.position(edge.a) + mesh.position(edge.b)) +
            2.0 * (mesh.position(edge.c) + mesh.position(edge.d)) -
            (wings(edge.a, edge.b) + wings(edge.b, edge.a))) *
           0.0625;
  }

  /// The rule at v for its edge to `neighbour`.
  Vec3 extraordinaryPoint(int v, int neighbour) {
    const auto ring = mesh.vertexNeighbours[v];
    const int K = static_cast<int>(ring.size());
    const Vec3 own = 0.75 * mesh.position(v);
    if (K >= hubValence) {
      auto hub = hubs.find(v);
      if (hub == hubs.end()) hub = hubs.emplace(v, Hub(mesh, ring)).first;
      return own + hub->second.weightedRing(neighbour);
    }
    std::vector<double>& weights = weightsOf[toIndex(K)];
    if (weights.empty()) weights = extraordinaryWeights(K);
    int place = placeInRing(ring, neighbour);
    Vec3 sum;
    for (const double weight : weights) {
      sum += weight * mesh.position(ring[toIndex(place)]);
      place = place + 1 == K ? 0 : place + 1;
    }
    return own + sum;
  }

  const TriangleMesh& mesh;
  std::array<std::vector<double>, hubValence> weightsOf;  ///< by valence, made when first needed
  std::unordered_map<int, Hub> hubs;                      ///< by vertex, made when first needed
};

}  // namespace

TriangleMesh butterflySubdivision(const TriangleMesh& mesh) {
  Butterfly scheme(mesh);
  return splitEveryFace(
      mesh, [&](int i) { return mesh.position(i); },
      [&](const SplitEdge& edge) { return scheme.edgePoint(edge); });
}

}  // namespace gravlin
