#include "remesh/LoopSubdivision.h"

#include <array>
#include <cmath>

#include "remesh/FaceSplit.h"

namespace gravlin {
namespace {

/// The weight of each of the n neighbours of an interior vertex.
double neighbourWeight(std::size_t n) {
  constexpr double fullTurn = 6.28318530717958;
  const double count = static_cast<double>(n);
  const double root = 0.375 + 0.25 * std::cos(fullTurn / count);
  return (0.625 - root * root) / count;
}

/// The weights of the usual valences, computed once.
class NeighbourWeights {
 public:
  NeighbourWeights() {
    for (std::size_t n = 1; n < usual.size(); ++n) usual[n] = neighbourWeight(n);
  }
  double operator()(std::size_t n) const {
    return n < usual.size() ? usual[n] : neighbourWeight(n);
  }

 private:
  std::array<double, 32> usual = {};
};

Vec3 interiorPoint(const TriangleMesh& mesh, const NeighbourWeights& weights, int i) {
  const auto ring = mesh.vertexNeighbours[i];
  const double weight = weights(ring.size());
  Vec3 sum;
  for (const int j : ring) sum += mesh.position(j);
  return (1.0 - static_cast<double>(ring.size()) * weight) * mesh.position(i) + weight * sum;
}

Vec3 vertexPoint(const TriangleMesh& mesh, const NeighbourWeights& weights, int i) {
  const int kind = mesh.vertexKind[toIndex(i)];
  if (kind == InteriorVertex) return interiorPoint(mesh, weights, i);
  const Vec3 x = mesh.position(i);
  if (kind != BoundaryVertex) return x;
  const auto ring = mesh.vertexNeighbours[i];
  return (6.0 * x + mesh.position(ring.front()) + mesh.position(ring.back())) * 0.125;
}

Vec3 edgePoint(const TriangleMesh& mesh, const SplitEdge& edge) {
  if (edge.other < 0) return midpoint(mesh, edge);
  return ((mesh.position(edge.a) + mesh.position(edge.b)) * 3.0 + mesh.position(edge.c) +
          mesh.position(edge.d)) *
         0.125;
}

}  // namespace

TriangleMesh loopSubdivision(const TriangleMesh& mesh) {
  const NeighbourWeights weights;
  return splitEveryFace(
      mesh, [&](int i) { return vertexPoint(mesh, weights, i); },
      [&](const SplitEdge& edge) { return edgePoint(mesh, edge); });
}

}  // namespace gravlin
