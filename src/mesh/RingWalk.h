#pragma once

#include <cstddef>
#include <span>

#include "numeric/Vec3.h"

namespace gravlin {

/// A face (i, a, b) of an interior vertex i, where a and b are consecutive in its ring.
struct RingTriangle {
  Vec3 i;
  Vec3 a;
  Vec3 b;
  Vec3 toA;  ///< a - i
  Vec3 toB;  ///< b - i
};

/// Calls visit(triangle) for every face of vertex i in ring order, the one between the last and the
/// first neighbour at the end. Every position is read once. The vertex must be interior. A Mesh is
/// anything that knows getNeighbours(i) and position(i).
template <class Mesh, class Visit>
void walkRing(const Mesh& mesh, int i, Visit visit) {
  const std::span<const int> ring = mesh.getNeighbours(i);
  const Vec3 centre = mesh.position(i);
  const Vec3 first = mesh.position(ring.front());
  Vec3 a = first;
  Vec3 toA = a - centre;
  for (std::size_t k = 1; k <= ring.size(); ++k) {
    const Vec3 b = k < ring.size() ? mesh.position(ring[k]) : first;
    const Vec3 toB = b - centre;
    visit(RingTriangle{centre, a, b, toA, toB});
    a = b;
    toA = toB;
  }
}

}  // namespace gravlin
