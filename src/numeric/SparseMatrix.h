#pragma once

#include "numeric/LargeVector.h"

namespace gravlin {

/// A square matrix in row-indexed sparse storage. Every index is 1-based, so element 0 of both
/// arrays is unused. For an n x n matrix:
///
///   position      sa                          ija
///   1 .. n        diagonal of row i, even 0   position of the first off-diagonal of row i
///   n + 1         not used                    one past the last off-diagonal of row n
///   n + 2 ..      off-diagonals, row by row   column of the value at the same position
///
/// ija[1] is therefore always n + 2, and the off-diagonals of row i are at the positions
/// ija[i] .. ija[i + 1] - 1. Both arrays may be longer than what is stored, and what is not used
/// may be unset.
class SparseMatrix {
 public:
  SparseMatrix() = default;
  SparseMatrix(const SparseMatrix&) = default;
  SparseMatrix(SparseMatrix&&) = default;
  SparseMatrix& operator=(const SparseMatrix&) = default;
  SparseMatrix& operator=(SparseMatrix&&) = default;
  virtual ~SparseMatrix() = default;

  UnfilledVector<int> ija;
  UnfilledVector<double> sa;
};

}  // namespace gravlin
