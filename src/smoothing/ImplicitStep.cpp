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
  const std::size_t size = mesh.vertices.size();
  LargeVector<double> x = dvector(size);
  for (std::size_t i = 0; i < size; ++i) x[i + 1] = static_cast<double>(mesh.vertices[i]);
  // x is both the right-hand side and the starting value.
  const LinbcgSettings settings = {.itol = 1, .tol = tolerance, .itmax = 100};
  const ImplicitStep step = {linbcgForThree(matrix, mesh.vertexCount, x, x, settings)};
  for (std::size_t i = 0; i < size; ++i) mesh.vertices[i] = static_cast<float>(x[i + 1]);
  return step;
}

}  // namespace gravlin
