#pragma once

#include <algorithm>
#include <gtest/gtest.h>

#include "mesh/TriangleMesh.h"

namespace gravlin::test {

inline double distance(const Vec3& a, const Vec3& b) {
  return length(a - b);
}

/// The point of the edge a-b: the vertex that both are joined to after the refinement.
inline Vec3 edgePoint(const TriangleMesh& refined, int a, int b) {
  for (const int p : refined.vertexNeighbours[a]) {
    const auto ofB = refined.vertexNeighbours[b];
    if (std::find(ofB.begin(), ofB.end(), p) != ofB.end()) return refined.position(p);
  }
  ADD_FAILURE() << a << " and " << b << " are not joined";
  return {};
}

}  // namespace gravlin::test
