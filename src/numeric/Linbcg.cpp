#include "numeric/Linbcg.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "numeric/TextSink.h"

namespace gravlin {
namespace {

using Vector = std::vector<double>;

constexpr std::string_view mismatchInProduct = "dsprsax: mismatched vector and matrix";
constexpr std::string_view mismatchInTransposedProduct = "mismatched vector and matrix in dsprstx";

/// The six work vectors of a solve: search directions, residuals and preconditioned residuals, each
/// with its counterpart for the transposed system.
struct WorkVectors {
  explicit WorkVectors(std::size_t n)
      : p(dvector(n)),
        pp(dvector(n)),
        r(dvector(n)),
        rr(dvector(n)),
        z(dvector(n)),
        zz(dvector(n)) {}
  Vector p, pp, r, rr, z, zz;
};

/// r = b - r; true if the outcome is 0 throughout.
bool subtractFrom(std::span<const double> b, std::span<double> r, std::size_t n) {
  bool zero = true;
  for (std::size_t j = 1; j <= n; ++j) {
    r[j] = b[j] - r[j];
    zero = zero && r[j] == 0.0;
  }
  return zero;
}

double innerProduct(std::span<const double> u, std::span<const double> v, std::size_t n) {
  double sum = 0.0;
  for (std::size_t j = 1; j <= n; ++j) sum += u[j] * v[j];
  return sum;
}

void checkOrder(std::span<const int> ija, int n, std::string_view message) {
  if (ija[1] != n + 2) nrerror(message);
}

double preconditioned(double residual, double diagonal) {
  return diagonal != 0.0 ? residual / diagonal : residual;
}

// The three sweeps of a pass. Each does at once what the textbook does in several, so that every
// vector travels through memory as seldom as possible; every sum is formed in the textbook's order.

/// p = bk p + z and pp = bk pp + zz, in the first pass p = z and pp = zz. Leaves diagonal x pp in
/// zz, where the transposed product begins.
void turnDirections(WorkVectors& work, std::span<const double> diagonal, std::optional<double> bk) {
  for (std::size_t j = 1; j < work.p.size(); ++j) {
    work.p[j] = bk ? *bk * work.p[j] + work.z[j] : work.z[j];
    work.pp[j] = bk ? *bk * work.pp[j] + work.zz[j] : work.zz[j];
    work.zz[j] = diagonal[j] * work.pp[j];
  }
}

/// z = A p and zz = the transpose of A times pp in one walk through the matrix. Returns z . pp.
double multiplyDirections(const SparseMatrix& matrix, int n, WorkVectors& work) {
  checkOrder(matrix.ija, n, mismatchInProduct);
  checkOrder(matrix.ija, n, mismatchInTransposedProduct);
  double inner = 0.0;
  for (std::size_t i = 1; i <= static_cast<std::size_t>(n); ++i) {
    const double own = work.pp[i];
    double sum = matrix.sa[i] * work.p[i];
    const auto end = static_cast<std::size_t>(matrix.ija[i + 1]);
    for (auto k = static_cast<std::size_t>(matrix.ija[i]); k < end; ++k) {
      const auto column = static_cast<std::size_t>(matrix.ija[k]);
      sum += matrix.sa[k] * work.p[column];
      work.zz[column] += matrix.sa[k] * own;
    }
    work.z[i] = sum;
    inner += sum * own;
  }
  return inner;
}

/// A move of x by ak p, and what the residuals come to behind it.
struct Move {
  double ak = 0.0;
  double bknum = 0.0;     ///< z . rr
  double squaredR = 0.0;  ///< r . r
};

/// x += ak p, r -= ak z and rr -= ak zz, then z and zz = r and rr preconditioned.
Move advance(WorkVectors& work, std::span<const double> diagonal, std::span<double> x, double ak) {
  Move move = {.ak = ak};
  for (std::size_t j = 1; j < work.p.size(); ++j) {
    x[j] += ak * work.p[j];
    work.r[j] -= ak * work.z[j];
    work.rr[j] -= ak * work.zz[j];
    work.z[j] = preconditioned(work.r[j], diagonal[j]);
    work.zz[j] = preconditioned(work.rr[j], diagonal[j]);
    move.bknum += work.z[j] * work.rr[j];
    move.squaredR += work.r[j] * work.r[j];
  }
  return move;
}

/// The error estimate that `itol` selects, and the norms it carries from pass to pass.
class StoppingTest {
 public:
  /// Leaves the preconditioned residual in work.z.
  StoppingTest(const SparseMatrix& matrix, int n, std::span<const double> b, WorkVectors& work,
               int kind)
      : order(n), itol(kind) {
    if (itol == 1) {
      bnrm = snrm(n, b, itol);
    } else if (itol >= 2 && itol <= 4) {
      asolve(matrix, n, b, work.z, 0);
      bnrm = snrm(n, work.z, itol);
    } else {
      nrerror("illegal itol in linbcg");
    }
    asolve(matrix, n, work.r, work.z, 0);
    if (itol == 3 || itol == 4) znrm = snrm(n, work.z, itol);
  }

  /// Sets err after x moved by ak p. False if the pass ends without a look at err: the step is
  /// then still too large, or the residual's change too small, for err to mean anything.
  bool estimate(const WorkVectors& work, std::span<const double> x, const Move& move, double& err) {
    if (itol == 1 || itol == 2) {
      err = std::sqrt(move.squaredR) / bnrm;
      return true;
    }
    if (itol != 3 && itol != 4) {
      err = 0.0;
      return true;
    }
    const double zm1nrm = znrm;
    znrm = snrm(order, work.z, itol);
    if (std::abs(zm1nrm - znrm) > 1e-14 * znrm) {
      const double dxnrm = std::abs(move.ak) * snrm(order, work.p, itol);
      err = znrm / std::abs(zm1nrm - znrm) * dxnrm;
      const double xnrm = snrm(order, x, itol);
      if (err <= 0.5 * xnrm) {
        err /= xnrm;
        return true;
      }
    }
    err = znrm / bnrm;
    return false;
  }

 private:
  int order;
  int itol;
  double bnrm = 0.0;
  double znrm = 0.0;
};

void printPass(const LinbcgResult& result) {
  // Room for the longest double in fixed notation: 309 digits before the point.
  std::array<char, 384> line;
  const int written =
      std::snprintf(line.data(), line.size(), "iter=%4d err=%12.6f\n", result.iter, result.err);
  writeText(TextStream::Output, {line.data(), static_cast<std::size_t>(written)});
}

}  // namespace

LinbcgResult linbcg(const SparseMatrix& matrix, int n, std::span<const double> b,
                    std::span<double> x, const LinbcgSettings& settings) {
  const auto size = static_cast<std::size_t>(n);
  WorkVectors work(size);
  LinbcgResult result;

  atimes(matrix, n, x, work.r, 0);
  if (subtractFrom(b, work.r, size)) return result;
  work.rr = work.r;
  StoppingTest test(matrix, n, b, work, settings.itol);
  asolve(matrix, n, work.rr, work.zz, 1);
  double bknum = innerProduct(work.z, work.rr, size);

  std::optional<double> bk;
  while (result.iter <= settings.itmax) {
    ++result.iter;
    turnDirections(work, matrix.sa, bk);
    const double akden = multiplyDirections(matrix, n, work);
    const Move move = advance(work, matrix.sa, x, bknum / akden);
    bk = move.bknum / std::exchange(bknum, move.bknum);
    if (!test.estimate(work, x, move, result.err)) continue;
    printPass(result);
    if (!(result.err > settings.tol)) break;
  }
  return result;
}

void atimes(const SparseMatrix& matrix, int n, std::span<const double> x, std::span<double> r,
            int transpose) {
  if (transpose == 0) {
    dsprsax(matrix.sa, matrix.ija, x, r, n);
  } else {
    dsprstx(matrix.sa, matrix.ija, x, r, n);
  }
}

void asolve(const SparseMatrix& matrix, int n, std::span<const double> b, std::span<double> x,
            int /*transpose*/) {
  for (std::size_t i = 1; i <= static_cast<std::size_t>(n); ++i) {
    x[i] = preconditioned(b[i], matrix.sa[i]);
  }
}

double snrm(int n, std::span<const double> v, int itol) {
  const auto size = static_cast<std::size_t>(n);
  if (itol <= 3) return std::sqrt(innerProduct(v, v, size));
  if (v.size() < 2) return 0.0;
  double largest = std::abs(v[1]);
  for (std::size_t i = 2; i <= size; ++i) {
    if (std::abs(v[i]) > largest) largest = std::abs(v[i]);
  }
  return largest;
}

void dsprsax(std::span<const double> sa, std::span<const int> ija, std::span<const double> x,
             std::span<double> b, int n) {
  checkOrder(ija, n, mismatchInProduct);
  for (std::size_t i = 1; i <= static_cast<std::size_t>(n); ++i) {
    double sum = sa[i] * x[i];
    const auto end = static_cast<std::size_t>(ija[i + 1]);
    for (auto k = static_cast<std::size_t>(ija[i]); k < end; ++k) {
      sum += sa[k] * x[static_cast<std::size_t>(ija[k])];
    }
    b[i] = sum;
  }
}

void dsprstx(std::span<const double> sa, std::span<const int> ija, std::span<const double> x,
             std::span<double> b, int n) {
  checkOrder(ija, n, mismatchInTransposedProduct);
  const auto size = static_cast<std::size_t>(n);
  for (std::size_t i = 1; i <= size; ++i) b[i] = sa[i] * x[i];
  for (std::size_t i = 1; i <= size; ++i) {
    const auto end = static_cast<std::size_t>(ija[i + 1]);
    for (auto k = static_cast<std::size_t>(ija[i]); k < end; ++k) {
      b[static_cast<std::size_t>(ija[k])] += sa[k] * x[i];
    }
  }
}

std::vector<double> dvector(std::size_t n) {
  try {
    return std::vector<double>(n + 1);
  } catch (const std::exception&) {
    nrerror("allocation failure in dvector()");
    throw std::bad_alloc();
  }
}

void nrerror(std::string_view message) {
  writeText(TextStream::Error, "Numerical Recipes run-time error...\n" + std::string(message) +
                                   "\n...now exiting to system...\n");
}

}  // namespace gravlin
