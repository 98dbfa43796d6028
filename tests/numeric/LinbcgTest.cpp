#include <algorithm>
#include <array>
#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <span>
#include <string>

#include "numeric/Linbcg.h"
#include "numeric/Random.h"
#include "support/CapturedText.h"
#include "support/DenseMatrix.h"
#include "support/GermanLocale.h"

namespace gravlin {
namespace {

using test::CapturedText;
using test::DenseMatrix;
using ::testing::ElementsAre;

/// Row-indexed storage of the non-zero entries of a dense matrix and its diagonal.
SparseMatrix sparse(const DenseMatrix& dense) {
  const int n = dense.order();
  SparseMatrix matrix;
  matrix.sa.assign(static_cast<std::size_t>(n) + 2, 0.0);
  matrix.ija.assign(static_cast<std::size_t>(n) + 2, n + 2);
  for (int row = 0; row < n; ++row) {
    matrix.sa[static_cast<std::size_t>(row) + 1] = dense.at(row, row);
    for (int column = 0; column < n; ++column) {
      if (column == row || dense.at(row, column) == 0.0) continue;
      matrix.sa.push_back(dense.at(row, column));
      matrix.ija.push_back(column + 1);
    }
    matrix.ija[static_cast<std::size_t>(row) + 2] = static_cast<int>(matrix.ija.size());
  }
  return matrix;
}

/// v at 1 .. n of a vector whose element 0 is not a number, so that any use of it is seen.
std::vector<double> oneBased(std::vector<double> v) {
  v.insert(v.begin(), std::numeric_limits<double>::quiet_NaN());
  return v;
}

/// The three lines by which `nrerror` reports.
std::string runTimeError(const std::string& message) {
  return "Numerical Recipes run-time error...\n" + message + "\n...now exiting to system...\n";
}

double uniform(Random& random) {
  return random.rand() * (2.0 / Random::largest) - 1.0;
}

std::vector<double> randomVector(Random& random, int n) {
  std::vector<double> v;
  for (int i = 0; i < n; ++i) v.push_back(uniform(random));
  return v;
}

/// About four entries of size up to 1 a row beside the diagonal.
DenseMatrix randomMatrix(Random& random, int n, double diagonal) {
  DenseMatrix matrix(n);
  for (int row = 0; row < n; ++row) {
    for (int entry = 0; entry < 4; ++entry) matrix.at(row, random.rand() % n) = uniform(random);
    matrix.at(row, row) = diagonal;
  }
  return matrix;
}

DenseMatrix randomSymmetricMatrix(Random& random, int n) {
  DenseMatrix matrix = randomMatrix(random, n, 5.0);
  for (int row = 0; row < n; ++row) {
    for (int column = 0; column < row; ++column) matrix.at(row, column) = matrix.at(column, row);
  }
  return matrix;
}

/// Every second diagonal element is 0; what couples the rows in pairs makes it regular.
DenseMatrix matrixWithZeroDiagonals(Random& random, int n) {
  DenseMatrix matrix = randomMatrix(random, n, 6.0);
  for (int row = 0; row + 1 < n; row += 2) {
    matrix.at(row, row) = 0.0;
    matrix.at(row, row + 1) = 7.0;
    matrix.at(row + 1, row) = -7.0;
  }
  return matrix;
}

/// 2 on the diagonal, -1 beside it: the second difference on n points, whose condition number grows
/// with n squared.
DenseMatrix poisson(int n) {
  DenseMatrix matrix(n);
  for (int row = 0; row < n; ++row) {
    matrix.at(row, row) = 2.0;
    if (row > 0) matrix.at(row, row - 1) = -1.0;
    if (row + 1 < n) matrix.at(row, row + 1) = -1.0;
  }
  return matrix;
}

bool sameBits(const std::vector<double>& a, const std::vector<double>& b) {
  return std::ranges::equal(a, b, {}, std::bit_cast<std::uint64_t, double>,
                            std::bit_cast<std::uint64_t, double>);
}

struct Solution {
  LinbcgResult result;
  std::vector<double> x;  ///< 0-based
};

Solution solve(const DenseMatrix& dense, const std::vector<double>& b,
               const LinbcgSettings& settings, std::vector<double> start = {}) {
  if (start.empty()) start.assign(b.size(), 0.0);
  std::vector<double> x = oneBased(start);
  const LinbcgResult result = linbcg(sparse(dense), dense.order(), oneBased(b), x, settings);
  x.erase(x.begin());
  return {result, x};
}

/// [2 1; 1 2] x = (3, 0), whose first pass from 0 by hand is: r = (3, 0), z = (1.5, 0), ak = 1,
/// x = (1.5, 0), r = (0, -1.5), z = (0, -0.75). The second reaches x = (2, -1).
Solution solveTwoByTwo(int itol, int itmax = 10) {
  DenseMatrix matrix(2);
  matrix.at(0, 0) = matrix.at(1, 1) = 2.0;
  matrix.at(0, 1) = matrix.at(1, 0) = 1.0;
  return solve(matrix, {3.0, 0.0}, {.itol = itol, .tol = 1e-6, .itmax = itmax});
}

void expectSolved(const DenseMatrix& dense, const std::vector<double>& b, int itol) {
  const CapturedText text;
  const Solution found = solve(dense, b, {.itol = itol, .tol = 1e-12, .itmax = 100});
  const std::vector<double> exact = dense.solve(b);
  EXPECT_LE(found.result.err, 1e-12);
  EXPECT_LE(found.result.iter, 100);
  // The error is the residual, at most 1e-12 of a right-hand side of size about 3, times a
  // condition number below 1000.
  for (std::size_t i = 0; i < b.size(); ++i) EXPECT_NEAR(found.x[i], exact[i], 1e-8);
}

class LinbcgItol : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(All, LinbcgItol, testing::Values(1, 2, 3, 4));

TEST_P(LinbcgItol, SolvesSymmetricSystems) {
  Random random(1);
  for (int n = 1; n <= 30; ++n) {
    SCOPED_TRACE(n);
    const DenseMatrix matrix = randomSymmetricMatrix(random, n);
    expectSolved(matrix, randomVector(random, n), GetParam());
  }
}

TEST_P(LinbcgItol, SolvesNonSymmetricSystems) {
  Random random(2);
  for (int n = 2; n <= 30; ++n) {
    SCOPED_TRACE(n);
    const DenseMatrix matrix = randomMatrix(random, n, 5.0);
    expectSolved(matrix, randomVector(random, n), GetParam());
  }
}

TEST_P(LinbcgItol, SolvesSystemsWithZerosOnTheDiagonal) {
  Random random(3);
  for (int n = 2; n <= 20; n += 2) {
    SCOPED_TRACE(n);
    const DenseMatrix matrix = matrixWithZeroDiagonals(random, n);
    expectSolved(matrix, randomVector(random, n), GetParam());
  }
}

TEST_P(LinbcgItol, LeavesAnExactStartAloneAndPrintsNothing) {
  const CapturedText text;
  const std::vector<double> b = {1.0, -2.0, 3.0};
  DenseMatrix identity(3);
  for (int i = 0; i < 3; ++i) identity.at(i, i) = 1.0;
  const Solution found = solve(identity, b, {.itol = GetParam(), .tol = 1e-6, .itmax = 100}, b);
  EXPECT_EQ(found.x, b);
  EXPECT_EQ(found.result.iter, 0);
  EXPECT_EQ(found.result.err, 0.0);
  EXPECT_EQ(text.output + text.error, "");
}

/// The error estimate after a pass, and whether the pass looks at it.
struct PlainEstimate {
  double err;
  bool looked;
};

/// The norms that a stopping test carries from pass to pass.
struct PlainNorms {
  double b = 0.0;
  double z = 0.0;
};

/// What a pass moved x by, and where it arrived.
struct PlainMove {
  double ak;
  std::span<const double> p, x, r, z;
};

PlainEstimate plainEstimate(int n, int itol, const PlainMove& move, PlainNorms& norms) {
  if (itol <= 2) return {snrm(n, move.r, itol) / norms.b, true};
  const double before = norms.z;
  norms.z = snrm(n, move.z, itol);
  if (std::abs(before - norms.z) <= 1e-14 * norms.z) return {norms.z / norms.b, false};
  const double step = std::abs(move.ak) * snrm(n, move.p, itol);
  const double err = norms.z / std::abs(before - norms.z) * step;
  const double size = snrm(n, move.x, itol);
  if (err <= 0.5 * size) return {err / size, true};
  return {norms.z / norms.b, false};
}

/// The method step by step as textbooks give it, each step a loop of its own.
LinbcgResult plainLinbcg(const SparseMatrix& matrix, int order, const std::vector<double>& b,
                         std::vector<double>& x, const LinbcgSettings& settings) {
  const auto n = static_cast<std::size_t>(order);
  LargeVector<double> p = dvector(n);
  LargeVector<double> pp = p;
  LargeVector<double> r = p;
  LargeVector<double> z = p;
  LargeVector<double> zz = p;
  atimes(matrix, order, x, r, 0);
  for (std::size_t j = 1; j <= n; ++j) r[j] = b[j] - r[j];
  LargeVector<double> rr = r;
  PlainNorms norms;
  asolve(matrix, order, b, z, 0);
  norms.b = settings.itol == 1 ? snrm(order, b, 1) : snrm(order, z, settings.itol);
  asolve(matrix, order, r, z, 0);
  norms.z = snrm(order, z, settings.itol);
  double bkden = 1.0;
  LinbcgResult result;
  while (result.iter <= settings.itmax) {
    ++result.iter;
    asolve(matrix, order, rr, zz, 1);
    double bknum = 0.0;
    for (std::size_t j = 1; j <= n; ++j) bknum += z[j] * rr[j];
    for (std::size_t j = 1; j <= n; ++j) {
      p[j] = result.iter == 1 ? z[j] : bknum / bkden * p[j] + z[j];
      pp[j] = result.iter == 1 ? zz[j] : bknum / bkden * pp[j] + zz[j];
    }
    bkden = bknum;
    atimes(matrix, order, p, z, 0);
    double akden = 0.0;
    for (std::size_t j = 1; j <= n; ++j) akden += z[j] * pp[j];
    const double ak = bknum / akden;
    atimes(matrix, order, pp, zz, 1);
    for (std::size_t j = 1; j <= n; ++j) x[j] += ak * p[j];
    for (std::size_t j = 1; j <= n; ++j) r[j] -= ak * z[j];
    for (std::size_t j = 1; j <= n; ++j) rr[j] -= ak * zz[j];
    asolve(matrix, order, r, z, 0);
    const PlainEstimate estimate =
        plainEstimate(order, settings.itol, {.ak = ak, .p = p, .x = x, .r = r, .z = z}, norms);
    result.err = estimate.err;
    if (estimate.looked && !(result.err > settings.tol)) break;
  }
  return result;
}

struct Compared {
  const SparseMatrix& matrix;
  std::vector<double> b;
  std::vector<double> start;
  LinbcgSettings settings;
};

/// Vectors are 1-based.
void expectBitsOfTheMethodTakenStepByStep(const Compared& compared) {
  const CapturedText text;
  const int n = static_cast<int>(compared.b.size()) - 1;
  std::vector<double> x = compared.start;
  std::vector<double> expected = compared.start;
  const LinbcgResult result = linbcg(compared.matrix, n, compared.b, x, compared.settings);
  const LinbcgResult plain =
      plainLinbcg(compared.matrix, n, compared.b, expected, compared.settings);
  EXPECT_EQ(result.iter, plain.iter);
  EXPECT_TRUE(sameBits({result.err}, {plain.err})) << result.err << ' ' << plain.err;
  EXPECT_TRUE(sameBits(x, expected));
}

TEST_P(LinbcgItol, GivesTheBitsOfTheMethodTakenStepByStep) {
  Random random(5);
  std::vector<int> sizes = {63, 64, 65, 130, 300};  // at and beyond a block of unknowns
  for (int n = 1; n <= 40; ++n) sizes.push_back(n);
  for (const int n : sizes) {
    SCOPED_TRACE(n);
    for (const DenseMatrix& dense : {randomSymmetricMatrix(random, n), randomMatrix(random, n, 1.5),
                                     matrixWithZeroDiagonals(random, n)}) {
      expectBitsOfTheMethodTakenStepByStep(
          {.matrix = sparse(dense),
           .b = oneBased(randomVector(random, n)),
           .start = oneBased(randomVector(random, n)),
           .settings = {.itol = GetParam(), .tol = 1e-9, .itmax = 100}});
    }
  }
}

/// Each unknown with those beside it and one `stride` further on, which makes the pattern
/// unsymmetric and leads far away.
SparseMatrix wideMatrix(Random& random, int n, int stride) {
  SparseMatrix matrix;
  matrix.sa.assign(static_cast<std::size_t>(n) + 2, 0.0);
  matrix.ija.assign(static_cast<std::size_t>(n) + 2, n + 2);
  for (int row = 0; row < n; ++row) {
    std::array<int, 3> columns = {(row + n - 1) % n, (row + 1) % n, (row + stride) % n};
    std::ranges::sort(columns);
    for (const int column : columns) {
      matrix.sa.push_back(uniform(random));
      matrix.ija.push_back(column + 1);
    }
    matrix.sa[static_cast<std::size_t>(row) + 1] = 4.0 + uniform(random);
    matrix.ija[static_cast<std::size_t>(row) + 2] = static_cast<int>(matrix.ija.size());
  }
  return matrix;
}

TEST(Linbcg, GivesTheBitsOfTheMethodWhereVectorsAreSpreadOverTheCache) {
  // From 16,384 doubles on.
  Random random(8);
  const int n = 17'000;
  expectBitsOfTheMethodTakenStepByStep({.matrix = wideMatrix(random, n, 5'000),
                                        .b = oneBased(randomVector(random, n)),
                                        .start = oneBased(randomVector(random, n)),
                                        .settings = {.itol = 1, .tol = 1e-12, .itmax = 10}});
}

TEST(Linbcg, TakesRowsThatNameAColumnTwiceOrTheirOwn) {
  // The entries of a column named twice add up, and so do the diagonal and an entry in its column.
  Random random(9);
  const int n = 100;
  SparseMatrix matrix = wideMatrix(random, n, 1);
  for (std::size_t row = 1; row <= n; row += 10) {
    matrix.ija[static_cast<std::size_t>(matrix.ija[row])] = static_cast<int>(row);
  }
  expectBitsOfTheMethodTakenStepByStep({.matrix = matrix,
                                        .b = oneBased(randomVector(random, n)),
                                        .start = oneBased(randomVector(random, n)),
                                        .settings = {.itol = 1, .tol = 1e-12, .itmax = 20}});
}

TEST_P(LinbcgItol, SolvesWithTheRightHandSideInTheMemoryOfX) {
  const CapturedText text;
  Random random(10);
  const int n = 90;
  const SparseMatrix matrix = sparse(randomMatrix(random, n, 3.0));
  const std::vector<double> b = oneBased(randomVector(random, n));
  const LinbcgSettings settings = {.itol = GetParam(), .tol = 1e-9, .itmax = 100};
  std::vector<double> expected = b;
  linbcg(matrix, n, b, expected, settings);
  std::vector<double> both = b;
  linbcg(matrix, n, both, both, settings);
  EXPECT_TRUE(sameBits(both, expected));

  const std::vector<double> three = oneBased(randomVector(random, 3 * n));
  std::vector<double> expectedThree = three;
  linbcgForThree(matrix, n, three, expectedThree, settings);
  std::vector<double> bothThree = three;
  linbcgForThree(matrix, n, bothThree, bothThree, settings);
  EXPECT_TRUE(sameBits(bothThree, expectedThree));
}

TEST(Linbcg, ReportsAMismatchedMatrixBeforeEachProduct) {
  // One product to begin with, and two in each pass; all of them are formed.
  const CapturedText text;
  SparseMatrix matrix = sparse(poisson(2));
  // The first row begins one later, behind its only element: it has none beside the diagonal.
  ++matrix.ija[1];
  std::vector<double> x = oneBased({0.0, 0.0});
  const LinbcgResult result =
      linbcg(matrix, 2, oneBased({2.0, 1.0}), x, {.itol = 1, .tol = 1e-12, .itmax = 10});
  const std::string forward = runTimeError("dsprsax: mismatched vector and matrix");
  const std::string transposed = runTimeError("mismatched vector and matrix in dsprstx");
  std::string expected = forward;
  for (int pass = 0; pass < result.iter; ++pass) expected += forward + transposed;
  EXPECT_EQ(text.error, expected);
  // 2 x = 2 and -x + 2 y = 1.
  EXPECT_NEAR(x[1], 1.0, 1e-12);
  EXPECT_NEAR(x[2], 1.0, 1e-12);
}

/// Solves one after the other: the measure for solving side by side.
std::vector<Solution> solveInTurn(const DenseMatrix& matrix,
                                  const std::array<std::vector<double>, 3>& b,
                                  const std::array<std::vector<double>, 3>& starts,
                                  const LinbcgSettings& settings) {
  std::vector<Solution> solutions;
  for (std::size_t k = 0; k < 3; ++k) {
    solutions.push_back(solve(matrix, b[k], settings, starts[k]));
  }
  return solutions;
}

std::vector<Solution> solveSideBySide(const DenseMatrix& matrix,
                                      const std::array<std::vector<double>, 3>& b,
                                      const std::array<std::vector<double>, 3>& starts,
                                      const LinbcgSettings& settings) {
  const auto interleaved = [](const std::array<std::vector<double>, 3>& v) {
    std::vector<double> all;
    for (std::size_t j = 0; j < v[0].size(); ++j)
      all.insert(all.end(), {v[0][j], v[1][j], v[2][j]});
    return oneBased(all);
  };
  std::vector<double> x = interleaved(starts);
  const auto results = linbcgForThree(sparse(matrix), matrix.order(), interleaved(b), x, settings);
  std::vector<Solution> solutions;
  for (std::size_t k = 0; k < 3; ++k) {
    solutions.push_back({results[k], {}});
    for (std::size_t j = 1 + k; j < x.size(); j += 3) solutions[k].x.push_back(x[j]);
  }
  return solutions;
}

void expectSideBySideAsInTurn(const DenseMatrix& matrix,
                              const std::array<std::vector<double>, 3>& b,
                              const std::array<std::vector<double>, 3>& starts,
                              const LinbcgSettings& settings) {
  CapturedText text;
  const std::vector<Solution> expected = solveInTurn(matrix, b, starts, settings);
  const std::string lines = text.output;
  text.output.clear();
  const std::vector<Solution> found = solveSideBySide(matrix, b, starts, settings);
  EXPECT_EQ(text.output, lines);
  EXPECT_EQ(text.error, "");
  for (std::size_t k = 0; k < 3; ++k) {
    SCOPED_TRACE(k);
    EXPECT_EQ(found[k].result.iter, expected[k].result.iter);
    EXPECT_TRUE(sameBits({found[k].result.err}, {expected[k].result.err}));
    EXPECT_TRUE(sameBits(found[k].x, expected[k].x));
  }
}

TEST_P(LinbcgItol, SolvesThreeSystemsSideBySideAsInTurn) {
  Random random(6);
  // More than one block of unknowns, several, and several with a rest.
  for (const int n : {1, 2, 64, 65, 300}) {
    SCOPED_TRACE(n);
    for (const DenseMatrix& matrix :
         {randomSymmetricMatrix(random, n), randomMatrix(random, n, 3.0)}) {
      const auto some = [&] { return randomVector(random, n); };
      expectSideBySideAsInTurn(matrix, {some(), some(), some()}, {some(), some(), some()},
                               {.itol = GetParam(), .tol = 1e-7, .itmax = 50});
    }
  }
}

TEST_P(LinbcgItol, LetsEachOfThreeSystemsEndInItsOwnPass) {
  const CapturedText text;
  Random random(7);
  const int n = 100;
  const DenseMatrix matrix = randomMatrix(random, n, 4.0);
  const std::vector<double> b = randomVector(random, n);
  std::vector<double> solution = solve(matrix, b, {.itol = 1, .tol = 1e-14, .itmax = 200}).x;
  std::vector<double> nearSolution = solution;
  for (double& value : nearSolution) value *= 1.0 + 1e-4;
  const std::vector<double> zero(n, 0.0);
  std::vector<double> broken = b;
  broken[3] = std::nan("");
  const LinbcgSettings settings = {.itol = GetParam(), .tol = 1e-6, .itmax = 100};
  // Far and near starts in turn; a system that is solved from the start; one whose numbers are
  // none, which itol 1 and 2 end at once and 3 and 4 never.
  expectSideBySideAsInTurn(matrix, {b, b, b}, {zero, nearSolution, zero}, settings);
  expectSideBySideAsInTurn(matrix, {b, b, b}, {nearSolution, zero, nearSolution}, settings);
  expectSideBySideAsInTurn(matrix, {zero, b, zero}, {zero, zero, zero}, settings);
  expectSideBySideAsInTurn(matrix, {b, broken, b}, {zero, zero, nearSolution}, settings);
}

TEST(Linbcg, GivesEachOfThreeSystemsAllItsPasses) {
  const int n = 2000;
  std::array<std::vector<double>, 3> b;
  for (std::size_t k = 0; k < 3; ++k) {
    b[k].assign(n, 0.0);
    b[k][k] = 1.0;
  }
  const std::vector<double> zero(n, 0.0);
  const CapturedText text;
  for (const Solution& found : solveSideBySide(poisson(n), b, {zero, zero, zero},
                                               {.itol = 1, .tol = 1e-12, .itmax = 100})) {
    EXPECT_EQ(found.result.iter, 101);
  }
  EXPECT_EQ(text.outputLines(), 303);
}

TEST(Linbcg, PrintsEveryPass) {
  const CapturedText text;
  const Solution found = solveTwoByTwo(1);
  EXPECT_EQ(text.output, "iter=   1 err=    0.500000\niter=   2 err=    0.000000\n");
  EXPECT_EQ(text.error, "");
  EXPECT_EQ(found.result.iter, 2);
  EXPECT_NEAR(found.x[0], 2.0, 1e-15);
  EXPECT_NEAR(found.x[1], -1.0, 1e-15);
}

TEST(Linbcg, PrintsAPointWhereNumbersHaveAComma) {
  const test::GermanLocale locale;
  ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
  ASSERT_STREQ(std::localeconv()->decimal_point, ",");
  const CapturedText text;
  solveTwoByTwo(1);
  EXPECT_EQ(text.output, "iter=   1 err=    0.500000\niter=   2 err=    0.000000\n");
}

TEST(Linbcg, PrintsErrorsOfAnySizeAsPrintfDoes) {
  DenseMatrix matrix(2);
  matrix.at(0, 0) = matrix.at(1, 1) = 2.0;
  matrix.at(0, 1) = matrix.at(1, 0) = 1.0;
  // Measured against 0 the residual is infinite first, and in the end not a number.
  for (const double b : {0.0, 1e-300, 1e-12, 3.0}) {
    for (const int itmax : {0, 1, 2, 3}) {
      const CapturedText text;
      const LinbcgResult result =
          solve(matrix, {b, b}, {.itol = 1, .tol = 1e-30, .itmax = itmax}, {7.0, -2.0}).result;
      std::array<char, 400> last;
      std::snprintf(last.data(), last.size(), "iter=%4d err=%12.6f\n", result.iter, result.err);
      EXPECT_THAT(text.output, testing::EndsWith(last.data()));
    }
  }
}

TEST(Linbcg, MeasuresTheResidualAgainstThePreconditionedRightHandSideWithItol2) {
  const CapturedText text;
  solveTwoByTwo(2);
  EXPECT_EQ(text.output, "iter=   1 err=    1.000000\niter=   2 err=    0.000000\n");
}

TEST(Linbcg, PrintsNothingForAPassWhoseStepIsStillTooLarge) {
  // The first step is as long as x itself, so itol 3 and 4 give no error estimate for it.
  for (const int itol : {3, 4}) {
    const CapturedText text;
    const Solution found = solveTwoByTwo(itol);
    EXPECT_EQ(text.output, "iter=   2 err=    0.000000\n") << itol;
    EXPECT_EQ(found.result.iter, 2) << itol;
  }
}

TEST(Linbcg, GivesTheResidualRatioOfAPassLeftEarly) {
  const CapturedText text;
  // One pass only: |z| / |z of b| = 0.75 / 1.5.
  for (const int itol : {3, 4}) EXPECT_EQ(solveTwoByTwo(itol, 0).result.err, 0.5) << itol;
  EXPECT_EQ(text.output, "");
}

TEST(Linbcg, EstimatesTheErrorFromTheShrinkingStep) {
  // Started near the solution, so that the first step is short against x.
  const CapturedText text;
  DenseMatrix matrix(2);
  matrix.at(0, 0) = matrix.at(1, 1) = 2.0;
  matrix.at(0, 1) = matrix.at(1, 0) = 1.0;
  // x = (8.5, -1) leaves r = (3, 0): the pass by hand above, moved to x = (10, -1).
  // err = 0.75 / |1.5 - 0.75| x 1.5 = 1.5, against |x| = 10 in the largest component: 0.15.
  const Solution found =
      solve(matrix, {19.0, 6.5}, {.itol = 4, .tol = 0.2, .itmax = 10}, {8.5, -1.0});
  EXPECT_EQ(text.output, "iter=   1 err=    0.150000\n");
  EXPECT_EQ(found.result.iter, 1);
}

TEST(Linbcg, GivesUpAfterOnePassMoreThanItmax) {
  const CapturedText text;
  const int n = 2000;
  std::vector<double> b(n, 0.0);
  b.front() = 1.0;
  const Solution found = solve(poisson(n), b, {.itol = 1, .tol = 1e-12, .itmax = 100});
  EXPECT_EQ(found.result.iter, 101);
  EXPECT_GT(found.result.err, 1e-12);
  EXPECT_EQ(text.outputLines(), 101);
  EXPECT_EQ(text.output.substr(0, 14), "iter=   1 err=");
  EXPECT_THAT(text.output, testing::HasSubstr("\niter= 100 err="));
  EXPECT_THAT(text.output, testing::HasSubstr("\niter= 101 err="));
  // "iter=", 4 digits, " err=", 12 digits and the line end, for errors below 100000.
  EXPECT_EQ(text.output.size(), 101U * 27U);
}

TEST(Linbcg, MakesNoPassWithANegativeItmax) {
  const CapturedText text;
  const Solution found = solveTwoByTwo(1, -1);
  EXPECT_EQ(found.result.iter, 0);
  EXPECT_EQ(found.x, (std::vector<double>{0.0, 0.0}));
}

TEST(Linbcg, ReportsAnIllegalItolAndMakesOnePass) {
  for (const int itol : {-1, 0, 5}) {
    const CapturedText text;
    const Solution found = solveTwoByTwo(itol);
    EXPECT_EQ(text.error, runTimeError("illegal itol in linbcg"));
    EXPECT_EQ(text.output, "iter=   1 err=    0.000000\n");
    EXPECT_EQ(found.result.iter, 1);
    EXPECT_EQ(found.result.err, 0.0);
    EXPECT_THAT(found.x, ElementsAre(1.5, 0.0));
  }
}

TEST(Linbcg, EndsOnAnErrorThatIsNotANumber) {
  const CapturedText text;
  DenseMatrix matrix(2);
  matrix.at(0, 0) = matrix.at(1, 1) = 1.0;
  const Solution found = solve(matrix, {std::nan(""), 1.0}, {.itol = 1, .tol = 1e-6, .itmax = 100});
  EXPECT_EQ(found.result.iter, 1);
  EXPECT_TRUE(std::isnan(found.result.err));
  EXPECT_TRUE(std::isnan(found.x[1]));
}

TEST(Linbcg, NeverLooksAtAnErrorThatIsNotANumberWithItol3And4) {
  for (const int itol : {3, 4}) {
    const CapturedText text;
    DenseMatrix matrix(2);
    matrix.at(0, 0) = matrix.at(1, 1) = 1.0;
    const Solution found =
        solve(matrix, {std::nan(""), 1.0}, {.itol = itol, .tol = 1e-6, .itmax = 100});
    EXPECT_EQ(found.result.iter, 101);
    EXPECT_TRUE(std::isnan(found.result.err));
    EXPECT_EQ(text.output, "");
  }
}

TEST(Linbcg, ReportsAnIllegalItolOfASystemThatIsSolvedFromTheStart) {
  const CapturedText text;
  DenseMatrix matrix(2);
  matrix.at(0, 0) = matrix.at(1, 1) = 1.0;
  const Solution found =
      solve(matrix, {2.0, 3.0}, {.itol = 7, .tol = 1e-6, .itmax = 10}, {2.0, 3.0});
  EXPECT_EQ(text.error, runTimeError("illegal itol in linbcg"));
  EXPECT_EQ(text.output, "");
  EXPECT_EQ(found.result.iter, 0);
  EXPECT_THAT(found.x, ElementsAre(2.0, 3.0));
}

TEST(Linbcg, SpreadsAZeroDenominatorIntoTheResult) {
  // [0 1; -1 0] turns p by a right angle, so pp . A p is 0 in the first pass.
  const CapturedText text;
  DenseMatrix matrix(2);
  matrix.at(0, 1) = 1.0;
  matrix.at(1, 0) = -1.0;
  const Solution found = solve(matrix, {1.0, 0.0}, {.itol = 1, .tol = 1e-6, .itmax = 100});
  EXPECT_FALSE(std::isfinite(found.x[0]));
  EXPECT_LE(found.result.iter, 2);
}

TEST(Linbcg, HasNothingToDoForAnEmptySystem) {
  const CapturedText text;
  EXPECT_EQ(solve(DenseMatrix(0), {}, {.itol = 1, .tol = 1e-6, .itmax = 100}).result.iter, 0);
}

TEST(Linbcg, MultipliesByTheMatrixAndItsTranspose) {
  Random random(4);
  for (int n = 1; n <= 12; ++n) {
    const DenseMatrix dense = randomMatrix(random, n, 2.0);
    const SparseMatrix matrix = sparse(dense);
    const std::vector<double> x = randomVector(random, n);
    LargeVector<double> product = dvector(static_cast<std::size_t>(n));
    for (const int transpose : {0, 1}) {
      const std::vector<double> expected = (transpose == 0 ? dense : dense.transposed()).times(x);
      atimes(matrix, n, oneBased(x), product, transpose);
      // Sums of at most 12 products of size 2, in another order.
      for (int i = 0; i < n; ++i) {
        EXPECT_NEAR(product[static_cast<std::size_t>(i) + 1], expected[static_cast<std::size_t>(i)],
                    1e-14);
      }
    }
  }
}

TEST(Linbcg, ReportsAMatrixOfAnotherOrderAndMultipliesAllTheSame) {
  DenseMatrix dense(3);
  for (int i = 0; i < 3; ++i) dense.at(i, i) = i + 1.0;
  const SparseMatrix matrix = sparse(dense);
  const std::vector<double> x = oneBased({1.0, 1.0, 1.0});
  LargeVector<double> b = dvector(3);
  {
    const CapturedText text;
    dsprsax(matrix.sa, matrix.ija, x, b, 2);
    EXPECT_EQ(text.error, runTimeError("dsprsax: mismatched vector and matrix"));
    EXPECT_THAT(b, ElementsAre(0.0, 1.0, 2.0, 0.0));
  }
  b = dvector(3);
  const CapturedText text;
  dsprstx(matrix.sa, matrix.ija, x, b, 2);
  EXPECT_EQ(text.error, runTimeError("mismatched vector and matrix in dsprstx"));
  EXPECT_THAT(b, ElementsAre(0.0, 1.0, 2.0, 0.0));
}

TEST(Linbcg, PreconditionsARowWithoutADiagonalByOne) {
  DenseMatrix dense(3);
  dense.at(0, 0) = 4.0;
  dense.at(1, 2) = 9.0;
  dense.at(2, 2) = -2.0;
  for (const int transpose : {0, 1}) {
    LargeVector<double> x = dvector(3);
    asolve(sparse(dense), 3, oneBased({8.0, 5.0, 6.0}), x, transpose);
    EXPECT_THAT(x, ElementsAre(0.0, 2.0, 5.0, -3.0));
  }
}

TEST(Linbcg, MeasuresInTheEuclideanOrTheLargestComponentNorm) {
  const std::vector<double> v = oneBased({3.0, -4.0, 4.0});
  for (const int itol : {0, 1, 2, 3}) EXPECT_EQ(snrm(3, v, itol), std::sqrt(41.0));
  for (const int itol : {4, 5}) EXPECT_EQ(snrm(3, v, itol), 4.0);
  EXPECT_EQ(snrm(0, v, 1), 0.0);
  EXPECT_EQ(snrm(0, v, 4), 3.0);
  EXPECT_EQ(snrm(0, dvector(0), 4), 0.0);
}

}  // namespace
}  // namespace gravlin
