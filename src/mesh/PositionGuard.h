#pragma once

#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Gives a mesh the positions back that it has now, unless `keep` says that the work that moves
/// them has come to its end.
class PositionGuard {
 public:
  explicit PositionGuard(TriangleMesh& moved) : mesh(moved), before(moved.vertices) {}
  ~PositionGuard() {
    if (!kept) mesh.vertices.swap(before);
  }
  PositionGuard(const PositionGuard&) = delete;
  PositionGuard& operator=(const PositionGuard&) = delete;

  void keep() { kept = true; }

 private:
  TriangleMesh& mesh;
  std::vector<float> before;
  bool kept = false;
};

}  // namespace gravlin
