#include "numeric/Linbcg.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <new>
#include <stdexcept>
#include <string>

#include "numeric/TextSink.h"

namespace gravlin {
namespace {

using Vector = std::vector<double>;

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

/// p = z + bk p and pp = zz + bk pp.
void turnDirections(WorkVectors& work, double bk, std::size_t n) {
  for (std::size_t j = 1; j <= n; ++j) {
    work.p[j] = bk * work.p[j] + work.z[j];
    work.pp[j] = bk * work.pp[j] + work.zz[j];
  }
}

/// x += ak p, r -= ak z and rr -= ak zz, where z = A p and zz = the transpose of A times pp.
void advance(WorkVectors& work, std::span<double> x, double ak, std::size_t n) {
  for (std::size_t j = 1; j <= n; ++j) {
    x[j] += ak * work.p[j];
    work.r[j] -= ak * work.z[j];
    work.rr[j] -= ak * work.zz[j];
  }
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
  bool estimate(const WorkVectors& work, std::span<const double> x, double ak, double& err) {
    if (itol == 1 || itol == 2) {
      err = snrm(order, work.r, itol) / bnrm;
      return true;
    }
    if (itol != 3 && itol != 4) {
      err = 0.0;
      return true;
    }
    const double zm1nrm = znrm;
    znrm = snrm(order, work.z, itol);
    if (std::abs(zm1nrm - znrm) > 1e-14 * znrm) {
      const double dxnrm = std::abs(ak) * snrm(order, work.p, itol);
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

  double bkden = 1.0;
  while (result.iter <= settings.itmax) {
    ++result.iter;
    asolve(matrix, n, work.rr, work.zz, 1);
    const double bknum = innerProduct(work.z, work.rr, size);
    if (result.iter == 1) {
      work.p = work.z;
      work.pp = work.zz;
    } else {
      turnDirections(work, bknum / bkden, size);
    }
    bkden = bknum;
    atimes(matrix, n, work.p, work.z, 0);
    const double ak = bknum / innerProduct(work.z, work.pp, size);
    atimes(matrix, n, work.pp, work.zz, 1);
    advance(work, x, ak, size);
    asolve(matrix, n, work.r, work.z, 0);
    if (!test.estimate(work, x, ak, result.err)) continue;
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
  const double* diagonal = matrix.sa.data();
  for (std::size_t i = 1; i <= static_cast<std::size_t>(n); ++i) {
    x[i] = diagonal[i] != 0.0 ? b[i] / diagonal[i] : b[i];
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
  if (ija[1] != n + 2) nrerror("dsprsax: mismatched vector and matrix");
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
  if (ija[1] != n + 2) nrerror("mismatched vector and matrix in dsprstx");
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
