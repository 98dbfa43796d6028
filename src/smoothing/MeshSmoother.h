#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Everything that moves the vertices of the document's current mesh and leaves its faces alone.
/// Each operation is a free function on a TriangleMesh in a file of its own; this object only
/// knows the mesh that they work on. Without a mesh an operation does nothing.
class MeshSmoother {
 public:
  /// Points to the mesh that the operations work on from now on; null for none. The mesh is not
  /// owned.
  void attach(TriangleMesh* current) { mesh = current; }

  // --- Explicit flows ---

  // --- Implicit flows ---

  // --- Adaptive smoothing ---

  // --- Noise ---

 private:
  TriangleMesh* mesh = nullptr;
};

}  // namespace gravlin
