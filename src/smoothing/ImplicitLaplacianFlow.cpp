#include "smoothing/ImplicitLaplacianFlow.h"

#include <algorithm>
#include <vector>

#include "numeric/Index.h"

namespace gravlin {

ImplicitLaplacianFlow::ImplicitLaplacianFlow(TriangleMesh& smoothed, float dt) : mesh(smoothed) {
  const auto step = static_cast<double>(dt);
  RowWriter writer(matrix, mesh);
  std::vector<int> ring;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (mesh.vertexKind[toIndex(i)] != InteriorVertex) {
      writer.closeRow(1.0);
      continue;
    }
    ring.assign(mesh.getNeighbours(i).begin(), mesh.getNeighbours(i).end());
    std::sort(ring.begin(), ring.end());
    const double value = -step / static_cast<double>(ring.size());
    for (const int j : ring) writer.append(j, value);
    writer.closeRow(1.0 + step);
  }
}

ImplicitStep ImplicitLaplacianFlow::step() {
  return solveForPositions(mesh, matrix, 0.001);
}

}  // namespace gravlin
