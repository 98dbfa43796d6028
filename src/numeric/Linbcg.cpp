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

#include "numeric/LinbcgSweeps.h"
#include "numeric/TextSink.h"

namespace gravlin {
namespace {

constexpr std::string_view mismatchInProduct = "dsprsax: mismatched vector and matrix";
constexpr std::string_view mismatchInTransposedProduct = "mismatched vector and matrix in dsprstx";

void checkOrder(std::span<const int> ija, int n, std::string_view message) {
  if (ija[1] != n + 2) nrerror(message);
}

/// Euclidean norm of v(1) .. v(n) for itol <= 3, largest |v(j)| otherwise.
template <class Function>
double normOf(std::size_t n, int itol, const Function& v) {
  double norm = 0.0;
  if (itol <= 3) {
    for (std::size_t j = 1; j <= n; ++j) norm += v(j) * v(j);
    return std::sqrt(norm);
  }
  for (std::size_t j = 1; j <= n; ++j) {
    if (j == 1 || std::abs(v(j)) > norm) norm = std::abs(v(j));
  }
  return norm;
}

/// One of the systems that are solved side by side, as it is seen by its stopping test.
struct OneSystem {
  const SparseMatrix& matrix;
  std::size_t n;
  std::size_t place;   ///< which of them
  std::size_t stride;  ///< how many there are

  std::size_t index(std::size_t j) const { return stride * (j - 1) + 1 + place; }
  bool isZero(std::span<const double> v) const {
    for (std::size_t j = 1; j <= n; ++j) {
      if (v[index(j)] != 0.0) return false;
    }
    return true;
  }
  double norm(std::span<const double> v, int itol) const {
    return normOf(n, itol, [&](std::size_t j) { return v[index(j)]; });
  }
  double preconditionedNorm(std::span<const double> v, int itol) const {
    return normOf(n, itol,
                  [&](std::size_t j) { return preconditioned(v[index(j)], matrix.sa[j]); });
  }
};

/// The error estimate that `itol` selects, and the norms it carries from pass to pass.
class StoppingTest {
 public:
  StoppingTest(const OneSystem& tested, std::span<const double> b, std::span<const double> r,
               int kind)
      : system(tested), itol(kind) {
    if (itol == 1) {
      bnrm = system.norm(b, itol);
    } else if (itol >= 2 && itol <= 4) {
      bnrm = system.preconditionedNorm(b, itol);
    } else {
      nrerror("illegal itol in linbcg");
    }
    if (itol == 3 || itol == 4) znrm = system.preconditionedNorm(r, itol);
  }

  /// Sets err after x moved by ak p. False if the pass ends without a look at err: the step is
  /// then still too large, or the residual's change too small, for err to mean anything.
  template <class Value>
  bool estimate(const WorkVectors& work, std::span<const double> x, const Move<Value>& move,
                double& err) {
    if (itol == 1 || itol == 2) {
      err = std::sqrt(placeOf(move.squaredR, system.place)) / bnrm;
      return true;
    }
    if (itol != 3 && itol != 4) {
      err = 0.0;
      return true;
    }
    const double zm1nrm = znrm;
    znrm = system.preconditionedNorm(work.r, itol);
    if (std::abs(zm1nrm - znrm) > 1e-14 * znrm) {
      const double dxnrm = std::abs(placeOf(move.ak, system.place)) * system.norm(work.p, itol);
      err = znrm / std::abs(zm1nrm - znrm) * dxnrm;
      const double xnrm = system.norm(x, itol);
      if (err <= 0.5 * xnrm) {
        err /= xnrm;
        return true;
      }
    }
    err = znrm / bnrm;
    return false;
  }

 private:
  OneSystem system;
  int itol;
  double bnrm = 0.0;
  double znrm = 0.0;
};

std::string lineOf(const LinbcgResult& result) {
  // Room for the longest double in fixed notation: 309 digits before the point.
  std::array<char, 384> line;
  const int written =
      std::snprintf(line.data(), line.size(), "iter=%4d err=%12.6f\n", result.iter, result.err);
  return {line.data(), static_cast<std::size_t>(written)};
}

/// One of the systems from its first pass to its last. The sweeps go on over all of them until the
/// last has ended, so what an earlier one came to is put aside.
class Course {
 public:
  /// A system without a residual r has ended before its first pass.
  Course(const OneSystem& followed, std::span<const double> b, std::span<const double> x,
         std::span<const double> r, int itol)
      : system(followed) {
    if (system.isZero(r)) {
      end(x);
    } else {
      test.emplace(system, b, r, itol);
    }
  }

  bool running() const { return !ended; }
  const LinbcgResult& outcome() const { return result; }

  /// Takes note of a pass and ends after it if the error is small enough.
  template <class Value>
  void follow(const WorkVectors& work, std::span<const double> x, const Move<Value>& move,
              double tol) {
    ++result.iter;
    if (!test->estimate(work, x, move, result.err)) return;
    print(lineOf(result));
    if (!(result.err > tol)) end(x);
  }

  /// Writes the solution back into x, and the lines that had to wait for those of the systems
  /// before it.
  void close(std::span<double> x) const {
    for (std::size_t j = 1; j <= solution.size(); ++j) x[system.index(j)] = solution[j - 1];
    if (!waiting.empty()) writeText(TextStream::Output, waiting);
  }

 private:
  void end(std::span<const double> x) {
    ended = true;
    if (system.stride == 1) return;
    solution.resize(system.n);
    for (std::size_t j = 1; j <= system.n; ++j) solution[j - 1] = x[system.index(j)];
  }

  void print(const std::string& line) {
    if (system.place == 0) {
      writeText(TextStream::Output, line);
    } else {
      waiting += line;
    }
  }

  OneSystem system;
  std::optional<StoppingTest> test;
  LinbcgResult result;
  bool ended = false;
  std::vector<double> solution;  ///< of a system that has ended, while others go on; 0-based
  std::string waiting;
};

template <class Value>
std::array<LinbcgResult, places<Value>> solve(const SparseMatrix& matrix, int n,
                                              std::span<const double> b, std::span<double> x,
                                              const LinbcgSettings& settings) {
  const auto size = static_cast<std::size_t>(n);
  WorkVectors work(places<Value> * size);
  Sweeps<Value> sweeps(matrix, size, work);

  checkOrder(matrix.ija, n, mismatchInProduct);
  Value bknum = sweeps.begin(b, x);
  std::vector<Course> courses;
  for (std::size_t place = 0; place < places<Value>; ++place) {
    const OneSystem system = {matrix, size, place, places<Value>};
    courses.emplace_back(system, b, x, work.r, settings.itol);
  }

  std::optional<Value> bk;
  for (int pass = 0; pass <= settings.itmax; ++pass) {
    if (std::ranges::none_of(courses, &Course::running)) break;
    checkOrder(matrix.ija, n, mismatchInProduct);
    checkOrder(matrix.ija, n, mismatchInTransposedProduct);
    const Value akden = sweeps.turnAndMultiply(bk);
    const Move<Value> move = sweeps.advance(x, bknum / akden);
    bk = move.bknum / std::exchange(bknum, move.bknum);
    for (Course& course : courses) {
      if (course.running()) course.follow(work, x, move, settings.tol);
    }
  }

  std::array<LinbcgResult, places<Value>> results;
  for (std::size_t place = 0; place < places<Value>; ++place) {
    courses[place].close(x);
    results[place] = courses[place].outcome();
  }
  return results;
}

}  // namespace

LinbcgResult linbcg(const SparseMatrix& matrix, int n, std::span<const double> b,
                    std::span<double> x, const LinbcgSettings& settings) {
  return solve<double>(matrix, n, b, x, settings)[0];
}

std::array<LinbcgResult, 3> linbcgForThree(const SparseMatrix& matrix, int n,
                                           std::span<const double> b, std::span<double> x,
                                           const LinbcgSettings& settings) {
  return solve<Triple>(matrix, n, b, x, settings);
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
  if (n == 0 && itol > 3) return v.size() < 2 ? 0.0 : std::abs(v[1]);
  return normOf(static_cast<std::size_t>(n), itol, [&](std::size_t j) { return v[j]; });
}

void dsprsax(std::span<const double> sa, std::span<const int> ija, std::span<const double> x,
             std::span<double> b, int n) {
  checkOrder(ija, n, mismatchInProduct);
  multiply<double>(sa, ija, static_cast<std::size_t>(n), x, b);
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

LargeVector<double> dvector(std::size_t n) {
  try {
    return LargeVector<double>(n + 1);
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
