#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin::test {

/// Whether three corners make a face of so many vertices: all are in range and none occurs twice.
inline bool usableCorners(const int* c, int vertexCount) {
  return std::all_of(c, c + 3, [&](int i) { return i >= 0 && i < vertexCount; }) && c[0] != c[1] &&
         c[1] != c[2] && c[2] != c[0];
}

/// Whether `after` has the usable faces of `before` at the same places, corner by corner, and
/// invalid ones at all others.
inline bool sameUsableFaces(const std::vector<int>& before, const TriangleMesh& after) {
  if (before.size() != after.faces.size()) return false;
  for (std::size_t c = 0; c < before.size(); c += 3) {
    const bool usable = usableCorners(&before[c], after.vertexCount);
    for (std::size_t k = c; k < c + 3; ++k) {
      if (after.faces[k] != (usable ? before[k] : -1)) return false;
    }
  }
  return true;
}

}  // namespace gravlin::test
