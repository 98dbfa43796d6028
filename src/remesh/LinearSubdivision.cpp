#include "remesh/LinearSubdivision.h"

#include "remesh/FaceSplit.h"

namespace gravlin {

TriangleMesh linearSubdivision(const TriangleMesh& mesh) {
  return splitEveryFace(
      mesh, [&](int i) { return mesh.position(i); },
      [&](const SplitEdge& edge) { return midpoint(mesh, edge); });
}

}  // namespace gravlin
