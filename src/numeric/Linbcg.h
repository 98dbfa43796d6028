#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "numeric/SolverVectors.h"
#include "numeric/SparseMatrix.h"

namespace gravlin {

// Vectors of the solver are 1-based: n + 1 doubles, used at 1 .. n.

/// When `linbcg` stops.
struct LinbcgSettings {
  /// What is measured against `tol`: 1 and 2 the residual relative to the right-hand side (2 takes
  /// the norm of the preconditioned right-hand side), 3 and 4 an estimate of the error of x
  /// relative to x, in the Euclidean (3) or the largest-component norm (4).
  int itol = 1;
  double tol = 0.0;
  int itmax = 0;  ///< the last pass that another may follow: at most itmax + 1 are made
};

struct LinbcgResult {
  int iter = 0;      ///< passes made
  double err = 0.0;  ///< error estimate of the last pass
};

/// Solves A x = b for any square A by biconjugate gradients, preconditioned by the diagonal of A.
/// On entry x is the starting value, on exit the last iterate, converged or not. b and x may be the
/// same memory: b is read only before x first moves. Columns of A are within 1 .. n.
///
/// A starting value that solves the system exactly is left as it is, without a pass. No other zero
/// denominator is guarded: it gives an infinity or NaN that spreads into x. With itol 1 and 2 an
/// error that is not a number then ends the iteration; with 3 and 4 all passes are made, since none
/// of them gets as far as looking at its error. Prints a line for each pass that does. An `itol`
/// outside 1 .. 4 is reported by `nrerror`, and the error then counts as 0.
LinbcgResult linbcg(const SparseMatrix& matrix, int n, std::span<const double> b,
                    std::span<double> x, const LinbcgSettings& settings);

/// Three solves by `linbcg` side by side, so that the matrix travels through memory once for the
/// three: the same bits and the same lines as one after the other. b and x hold the three values of
/// unknown j at 3 j - 2 .. 3 j, 3 n + 1 doubles each, and may be the same memory. `ija[1]` must be
/// n + 2 and `itol` 1 .. 4.
std::array<LinbcgResult, 3> linbcgForThree(const SparseMatrix& matrix, int n,
                                           std::span<const double> b, std::span<double> x,
                                           const LinbcgSettings& settings);

/// r = A x, or the transpose of A times x if `transpose` is not 0.
void atimes(const SparseMatrix& matrix, int n, std::span<const double> x, std::span<double> r,
            int transpose);

/// Solves D x = b with D the diagonal of A; a row whose diagonal is 0 gets x = b. D is its own
/// transpose, so `transpose` changes nothing.
void asolve(const SparseMatrix& matrix, int n, std::span<const double> b, std::span<double> x,
            int transpose);

/// Euclidean norm of v for itol <= 3, largest |v_i| otherwise (for n = 0 then |v_1|, if v has it).
double snrm(int n, std::span<const double> v, int itol);

/// b = A x. An ija[1] other than n + 2 is reported by `nrerror`; the product is formed all the
/// same.
void dsprsax(std::span<const double> sa, std::span<const int> ija, std::span<const double> x,
             std::span<double> b, int n);
/// b = transpose of A times x; otherwise as dsprsax.
void dsprstx(std::span<const double> sa, std::span<const int> ija, std::span<const double> x,
             std::span<double> b, int n);

}  // namespace gravlin
