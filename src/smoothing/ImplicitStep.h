#pragma once

#include <array>

#include "mesh/TriangleMesh.h"
#include "numeric/Linbcg.h"
#include "numeric/SparseMatrix.h"

namespace gravlin {

/// What the solver made of the three systems of one implicit time step.
struct ImplicitStep {
  std::array<LinbcgResult, 3> solves;  ///< x, y, z
};

/// Writes the rows of a matrix, one for each vertex of a mesh, in vertex order.
class RowWriter {
 public:
  /// Makes room for a diagonal and one entry per neighbour in every row.
  RowWriter(SparseMatrix& written, const TriangleMesh& mesh);

  /// Adds an off-diagonal entry to the row that is being written. Vertices come in rising order.
  void append(int vertex, double value) {
    ++last;
    matrix.sa[last] = value;
    matrix.ija[last] = vertex + 1;
  }

  /// Ends the row; the next vertex follows.
  void closeRow(double diagonal) {
    ++row;
    matrix.sa[row] = diagonal;
    matrix.ija[row + 1] = static_cast<int>(last) + 1;
  }

 private:
  SparseMatrix& matrix;
  std::size_t row = 0;
  std::size_t last;  ///< position of the last entry written
};

/// Solves A x = (present position) for each coordinate, starting from the present position, with
/// itol = 1 and itmax = 100, and moves the vertices there, whether the tolerance was reached or
/// not.
ImplicitStep solveForPositions(TriangleMesh& mesh, const SparseMatrix& matrix, double tolerance);

}  // namespace gravlin
