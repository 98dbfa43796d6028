#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <gtest/gtest.h>
#include <initializer_list>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "numeric/LinbcgSweeps.h"
#include "numeric/Random.h"

namespace gravlin {
namespace {

double uniform(Random& random) {
  return random.rand() * (2.0 / Random::largest) - 1.0;
}

std::vector<double> someNumbers(Random& random, std::size_t count) {
  std::vector<double> numbers;
  for (std::size_t k = 0; k < count; ++k) numbers.push_back(uniform(random));
  return numbers;
}

/// A ring of unknowns, each with its neighbours on both sides and one far away; every seventh
/// diagonal element is 0.
SparseMatrix someMatrix(Random& random, std::size_t n) {
  SparseMatrix matrix;
  matrix.sa.resize(n + 2);
  matrix.ija.resize(n + 2);
  matrix.ija[1] = static_cast<int>(n) + 2;
  for (std::size_t row = 0; row < n; ++row) {
    std::vector<std::size_t> columns = {(row + 1) % n, (row + n - 1) % n, (row * 5 + 3) % n};
    std::ranges::sort(columns);
    columns.erase(std::unique(columns.begin(), columns.end()), columns.end());
    for (const std::size_t column : columns) {
      if (column == row) continue;
      matrix.sa.push_back(uniform(random));
      matrix.ija.push_back(static_cast<int>(column) + 1);
    }
    matrix.sa[row + 1] = row % 7 == 6 ? 0.0 : 4.0 + uniform(random);
    matrix.ija[row + 2] = static_cast<int>(matrix.ija.size());
  }
  return matrix;
}

std::vector<std::uint64_t> bitsOf(std::span<const double> numbers) {
  std::vector<std::uint64_t> bits;
  for (const double number : numbers) bits.push_back(std::bit_cast<std::uint64_t>(number));
  return bits;
}

struct Problem {
  std::size_t n;
  std::size_t systems;
};

class LinbcgSweeps : public testing::TestWithParam<Problem> {
 protected:
  std::size_t n = GetParam().n;
  std::size_t systems = GetParam().systems;
  Random random{static_cast<unsigned>(17 + n)};
  SparseMatrix matrix = someMatrix(random, n);
  std::vector<double> b = someNumbers(random, n* systems);
  std::vector<double> start = someNumbers(random, n* systems);

  Systems solved() const { return {.matrix = matrix, .n = n, .count = systems}; }
};

// One unknown; below, at and above a block of them; several blocks.
INSTANTIATE_TEST_SUITE_P(Sizes, LinbcgSweeps,
                         testing::Values(Problem{1, 1}, Problem{1, 3}, Problem{5, 1}, Problem{5, 3},
                                         Problem{63, 3}, Problem{64, 1}, Problem{64, 3},
                                         Problem{65, 3}, Problem{400, 1}, Problem{401, 3}),
                         [](const auto& of) {
                           return std::to_string(of.param.n) + "UnknownsOf" +
                                  std::to_string(of.param.systems);
                         });

/// All that the sweeps tell after some passes with steps that do not depend on it.
std::vector<std::uint64_t> bitsAfterPasses(const Systems& systems, std::span<const double> b,
                                           std::vector<double> x, Registers registers) {
  Sweeps sweeps(systems, b, x, registers);
  std::vector<std::uint64_t> bits;
  const auto add = [&](std::span<const double> numbers) {
    std::ranges::copy(bitsOf(numbers), std::back_inserter(bits));
  };
  const WorkVectors& work = sweeps.vectors();
  for (int pass = 0; pass < 4; ++pass) {
    add(sweeps.turnAndMultiply({0.3, -0.7, 1.1}));
    sweeps.advance({0.25, 0.5, -0.125});
    add(sweeps.residuals().bknum);
    add(sweeps.residuals().squaredR);
    for (const auto& v : {work.p, work.pp, work.r, work.rr, work.z, work.zz}) {
      add(v.first(systems.doubles()));
    }
    for (std::size_t at = 0; at < systems.doubles(); ++at) add(std::array{sweeps.x(at)});
  }
  return bits;
}

TEST_P(LinbcgSweeps, GiveTheSameBitsInRegistersOfAnyLength) {
  if (longestRegisters() == Registers::OfTwo) GTEST_SKIP() << "this machine has only one length";
  EXPECT_EQ(bitsAfterPasses(solved(), b, start, Registers::OfTwo),
            bitsAfterPasses(solved(), b, start, longestRegisters()));
}

TEST_P(LinbcgSweeps, TellWhereXIsBeforeItMovesInMemory) {
  std::vector<double> x = start;
  Sweeps sweeps(solved(), b, x);
  for (std::size_t at = 0; at < x.size(); ++at) EXPECT_EQ(sweeps.x(at), start[at]);
  sweeps.turnAndMultiply({});
  const PerSystem ak = {0.5, -2.0, 3.0};
  sweeps.advance(ak);
  std::vector<double> moved;
  for (std::size_t at = 0; at < x.size(); ++at) {
    moved.push_back(sweeps.x(at));
    EXPECT_EQ(moved.back(), start[at] + ak[at % systems] * sweeps.vectors().p[at]);
  }
  sweeps.turnAndMultiply({1.0, 1.0, 1.0});
  EXPECT_EQ(bitsOf(x), bitsOf(moved));
}

TEST(WorkVectors, AreApartAndHaveOneDoubleMore) {
  // Below and above the size from which they are spread over the cache.
  for (const std::size_t size :
       std::initializer_list<std::size_t>{0, 1, 7, 8, 16383, 16384, 100000}) {
    SCOPED_TRACE(size);
    WorkVectors work(size);
    const std::array all = {work.p, work.pp, work.r, work.rr, work.z, work.zz};
    for (std::size_t k = 0; k < all.size(); ++k) {
      ASSERT_EQ(all[k].size(), size + 1);
      std::ranges::fill(all[k], static_cast<double>(k));
    }
    for (std::size_t k = 0; k < all.size(); ++k) {
      EXPECT_EQ(std::ranges::count(all[k], static_cast<double>(k)), all[k].size());
    }
  }
}

}  // namespace
}  // namespace gravlin
