#include "features/GapFilling.h"

#include <cmath>

#include "features/LineFields.h"

namespace gravlin {
namespace {

void fillGapsAround(int vertex, std::span<const int> ring, LineFields& line) {
  const std::size_t n = ring.size();
  for (std::size_t k = 0; k < n; ++k) {
    const int between = ring[(k + 1) % n];
    const bool gap =
        line.marked(ring[k]) && !line.marked(between) && line.marked(ring[(k + 2) % n]);
    if (!gap) continue;
    const bool neighbourIsStronger =
        std::abs(line.curvatureAt(between)) >= std::abs(line.curvatureAt(vertex));
    line.mark(neighbourIsStronger ? between : vertex, true);
  }
}

}  // namespace

void fillGaps(TriangleMesh& mesh) {
  for (const LineKind kind : bothLineKinds) {
    LineFields line = lineFields(mesh, kind);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      if (!line.marked(i)) fillGapsAround(i, mesh.getNeighbours(i), line);
    }
  }
}

}  // namespace gravlin
