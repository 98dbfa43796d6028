#include "smoothing/ImplicitStep.h"

#include <vector>

#include "numeric/Index.h"

namespace gravlin {

RowWriter::RowWriter(SparseMatrix& written, const TriangleMesh& mesh)
    : matrix(written), last(toIndex(mesh.vertexCount) + 1) {
  const std::size_t stored = toIndex(mesh.vertexCount) + mesh.vertexNeighbours.items.size();
  matrix.sa.resize(stored + 3);
  matrix.ija.resize(stored + 3);
  matrix.ija[1] = mesh.vertexCount + 2;
}

ImplicitStep solveForPositions(TriangleMesh& mesh, const SparseMatrix& matrix, double tolerance) {
  const std::size_t n = toIndex(mesh.vertexCount);
  const LinbcgSettings settings = {.itol = 1, .tol = tolerance, .itmax = 100};
  std::vector<double> b = dvector(n);
  std::vector<double> x = dvector(n);
  ImplicitStep step;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    float* coordinate = mesh.vertices.data() + axis;
    for (std::size_t i = 0; i < n; ++i) {
      b[i + 1] = x[i + 1] = static_cast<double>(coordinate[3 * i]);
    }
    step.solves[axis] = linbcg(matrix, mesh.vertexCount, b, x, settings);
    for (std::size_t i = 0; i < n; ++i) coordinate[3 * i] = static_cast<float>(x[i + 1]);
  }
  return step;
}

}  // namespace gravlin
