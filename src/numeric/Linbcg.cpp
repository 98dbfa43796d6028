#include "numeric/Linbcg.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "numeric/LinbcgSweeps.h"
#include "numeric/TextSink.h"

namespace gravlin {
namespace {

constexpr std::string_view mismatchInProduct = "dsprsax: mismatched vector and matrix";
constexpr std::string_view mismatchInTransposedProduct = "mismatched vector and matrix in dsprstx";

void checkOrder(std::span<const int> ija, int n, std::string_view message) {
  if (ija[1] != n + 2) nrerror(message);
}

double preconditioned(double residual, double diagonal) {
  return diagonal != 0.0 ? residual / diagonal : residual;
}

/// Euclidean norm of v(0) .. v(n - 1) for itol <= 3, largest |v(j)| otherwise.
template <class Function>
double normOf(std::size_t n, int itol, const Function& v) {
  double norm = 0.0;
  if (itol <= 3) {
    for (std::size_t j = 0; j < n; ++j) norm += v(j) * v(j);
    return std::sqrt(norm);
  }
  for (std::size_t j = 0; j < n; ++j) {
    if (j == 0 || std::abs(v(j)) > norm) norm = std::abs(v(j));
  }
  return norm;
}

/// One of the systems that are solved side by side.
struct OneSystem {
  const Systems& systems;
  std::size_t place;  ///< which of them

  std::size_t index(std::size_t j) const { return systems.count * j + place; }
  bool isZero(std::span<const double> v) const {
    for (std::size_t j = 0; j < systems.n; ++j) {
      if (v[index(j)] != 0.0) return false;
    }
    return true;
  }
  /// Of the vector that has v(at) at each place.
  template <class Function>
  double norm(int itol, const Function& v) const {
    return normOf(systems.n, itol, [&](std::size_t j) { return v(index(j)); });
  }
  double preconditionedNorm(int itol, std::span<const double> v) const {
    return normOf(systems.n, itol, [&](std::size_t j) {
      return preconditioned(v[index(j)], systems.matrix.sa[j + 1]);
    });
  }
};

/// The error estimate that `itol` selects, and the norms it carries from pass to pass.
class StoppingTest {
 public:
  StoppingTest(const OneSystem& tested, std::span<const double> b, std::span<const double> r,
               int kind)
      : system(tested), itol(kind) {
    if (itol == 1) {
      bnrm = system.norm(itol, [&](std::size_t at) { return b[at]; });
    } else if (itol >= 2 && itol <= 4) {
      bnrm = system.preconditionedNorm(itol, b);
    } else {
      nrerror("illegal itol in linbcg");
    }
    if (itol == 3 || itol == 4) znrm = system.preconditionedNorm(itol, r);
  }

  /// Sets err after x moved by ak p. False if the pass ends without a look at err: the step is
  /// then still too large, or the residual's change too small, for err to mean anything.
  bool estimate(const Sweeps& sweeps, const PerSystem& ak, double& err) {
    if (itol == 1 || itol == 2) {
      err = std::sqrt(sweeps.residuals().squaredR[system.place]) / bnrm;
      return true;
    }
    if (itol != 3 && itol != 4) {
      err = 0.0;
      return true;
    }
    const double zm1nrm = znrm;
    znrm = system.norm(itol, [&](std::size_t at) { return sweeps.vectors().z[at]; });
    if (std::abs(zm1nrm - znrm) > 1e-14 * znrm) {
      const double pnrm = system.norm(itol, [&](std::size_t at) { return sweeps.vectors().p[at]; });
      const double dxnrm = std::abs(ak[system.place]) * pnrm;
      err = znrm / std::abs(zm1nrm - znrm) * dxnrm;
      const double xnrm = system.norm(itol, [&](std::size_t at) { return sweeps.x(at); });
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

/// With spaces in front up to this width.
std::string aligned(const std::string& text, std::size_t width) {
  return std::string(std::max(width, text.size()) - text.size(), ' ') + text;
}

/// "iter=%4d err=%12.6f\n" with a point in every locale, which printf does not promise.
std::string lineOf(const LinbcgResult& result) {
  // Room for the longest double in fixed notation: 309 digits before the point.
  std::array<char, 384> digits;
  const char* const begin = digits.data();
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), result.err,
                                        std::chars_format::fixed, 6)
                              .ptr;
  return "iter=" + aligned(std::to_string(result.iter), 4) +
         " err=" + aligned(std::string(begin, end), 12) + "\n";
}

/// One of the systems from its first pass to its last. The sweeps go on over all of them until the
/// last has ended; what an earlier one came to has to be put aside before.
class Course {
 public:
  /// A system without a residual r has ended before its first pass.
  Course(const OneSystem& followed, std::span<const double> b, const Sweeps& sweeps, int itol)
      : system(followed),
        test(system, b, sweeps.vectors().r, itol),
        ended(system.isZero(sweeps.vectors().r)) {}

  bool running() const { return !ended; }
  const LinbcgResult& outcome() const { return result; }

  /// Takes note of a pass and ends after it if the error is small enough.
  void follow(const Sweeps& sweeps, const PerSystem& ak, double tol) {
    ++result.iter;
    if (!test.estimate(sweeps, ak, result.err)) return;
    print(lineOf(result));
    ended = !(result.err > tol);
  }

  /// Before the sweeps go on: keeps the solution of a system that has ended.
  void putAside(const Sweeps& sweeps) {
    if (!ended || !solution.empty()) return;
    solution = unfilledDvector(system.systems.n);
    for (std::size_t j = 0; j < system.systems.n; ++j) solution[j] = sweeps.x(system.index(j));
  }

  /// Writes the solution into x, which the sweeps must not look at any more, and the lines that had
  /// to wait for those of the systems before.
  void close(const Sweeps& sweeps, std::span<double> x) const {
    for (std::size_t j = 0; j < system.systems.n; ++j) {
      const std::size_t at = system.index(j);
      x[at] = solution.empty() ? sweeps.x(at) : solution[j];
    }
    if (!waiting.empty()) writeText(TextStream::Output, waiting);
  }

 private:
  void print(const std::string& line) {
    if (system.place == 0) {
      writeText(TextStream::Output, line);
    } else {
      waiting += line;
    }
  }

  OneSystem system;
  StoppingTest test;
  bool ended;
  LinbcgResult result;
  UnfilledVector<double> solution;  ///< empty until it is put aside; 0-based
  std::string waiting;
};

PerSystem quotients(const PerSystem& a, const PerSystem& b) {
  return {a[0] / b[0], a[1] / b[1], a[2] / b[2]};
}

/// Solves the systems. b and x count from 0.
std::vector<LinbcgResult> solve(const Systems& systems, std::span<const double> b,
                                std::span<double> x, const LinbcgSettings& settings) {
  const std::span<const int> ija = systems.matrix.ija;
  const int n = static_cast<int>(systems.n);
  checkOrder(ija, n, mismatchInProduct);
  Sweeps sweeps(systems, b, x);
  std::vector<Course> courses;
  for (std::size_t place = 0; place < systems.count; ++place) {
    courses.emplace_back(OneSystem{systems, place}, b, sweeps, settings.itol);
  }

  PerSystem bk = {};
  for (int pass = 0; pass <= settings.itmax; ++pass) {
    if (std::ranges::none_of(courses, &Course::running)) break;
    for (Course& course : courses) course.putAside(sweeps);
    checkOrder(ija, n, mismatchInProduct);
    checkOrder(ija, n, mismatchInTransposedProduct);
    const PerSystem bknum = sweeps.residuals().bknum;
    const PerSystem ak = quotients(bknum, sweeps.turnAndMultiply(bk));
    sweeps.advance(ak);
    bk = quotients(sweeps.residuals().bknum, bknum);
    for (Course& course : courses) {
      if (course.running()) course.follow(sweeps, ak, settings.tol);
    }
  }

  std::vector<LinbcgResult> results;
  results.reserve(courses.size());
  for (const Course& course : courses) {
    course.close(sweeps, x);
    results.push_back(course.outcome());
  }
  return results;
}

}  // namespace

LinbcgResult linbcg(const SparseMatrix& matrix, int n, std::span<const double> b,
                    std::span<double> x, const LinbcgSettings& settings) {
  const Systems systems = {.matrix = matrix, .n = static_cast<std::size_t>(n), .count = 1};
  return solve(systems, b.subspan(1), x.subspan(1), settings)[0];
}

std::array<LinbcgResult, 3> linbcgForThree(const SparseMatrix& matrix, int n,
                                           std::span<const double> b, std::span<double> x,
                                           const LinbcgSettings& settings) {
  const Systems systems = {.matrix = matrix, .n = static_cast<std::size_t>(n), .count = 3};
  const std::vector<LinbcgResult> results = solve(systems, b.subspan(1), x.subspan(1), settings);
  return {results[0], results[1], results[2]};
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
  return normOf(static_cast<std::size_t>(n), itol, [&](std::size_t j) { return v[j + 1]; });
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

}  // namespace gravlin
