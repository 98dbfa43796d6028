#include "numeric/LinbcgSweeps.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "numeric/SolverVectors.h"
#include "numeric/Triple.h"

namespace gravlin {
namespace {

constexpr std::size_t blockSize = Meetings::blockSize;
/// A part of a block: what is asked for while as many are worked on stays in the nearest cache.
constexpr std::size_t fewUnknowns = 16;
constexpr std::size_t cacheLine = 64 / sizeof(double);
/// How far ahead of its use the matrix is asked for: some rows.
constexpr std::size_t bytesAhead = 512;
/// Doubles this far apart compete for the same few places of a usual second-level cache.
constexpr std::size_t cachePeriod = (std::size_t{128} << 10) / sizeof(double);

constexpr std::size_t roundUp(std::size_t number, std::size_t multipleOf) {
  return (number + multipleOf - 1) / multipleOf * multipleOf;
}

using Arrays = SweptArrays;

/// Asks for what a sweep will need soon. Past the end of an array it asks in vain.
void fetch(const void* array, std::size_t bytes) {
  // By number, since no pointer may lead past the end.
  const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(array) + bytes;
  __builtin_prefetch(reinterpret_cast<const void*>(address));  // NOLINT(performance-no-int-to-ptr)
}

/// Some unknowns that follow each other, at most a block, and where their values begin in the
/// vectors.
template <class Value>
struct Unknowns {
  Unknowns(const Arrays& a, std::size_t from, std::size_t atMost)
      : first(from), count(std::min(atMost, a.n - first)) {}
  Unknowns(const Arrays& a, std::size_t block) : Unknowns(a, block * blockSize, blockSize) {}
  std::size_t begin() const { return places<Value> * first; }
  std::size_t doubles() const { return places<Value> * count; }

  std::size_t first, count;
};

/// Asks for an unknown of several vectors while another is worked on. In this way requests are
/// spread over the work; many at a time would have to wait for each other. Of every two unknowns
/// one is asked for, since two fill less than a line of the cache.
template <class Value, std::size_t count>
void fetchSome(const std::array<const double*, count>& vectors, std::size_t unknown) {
  if (unknown % 2 != 0) return;
  for (const double* v : vectors) fetch(v, places<Value> * unknown * sizeof(double));
}

/// A factor for each double of a block of unknowns: with them side by side, a plain loop over
/// doubles fills vector registers of any length.
template <class Value>
using Factors = std::array<double, places<Value> * blockSize>;

template <class Value>
Factors<Value> spread(const PerSystem& each) {
  Factors<Value> all;
  for (std::size_t k = 0; k < all.size(); ++k) all[k] = each[k % places<Value>];
  return all;
}

template <class Value>
void spreadDiagonal(const Arrays& a, Unknowns<Value> unknowns, Factors<Value>& diagonal) {
  for (std::size_t j = 0; j < unknowns.count; ++j) {
    for (std::size_t k = 0; k < places<Value>; ++k) {
      diagonal[places<Value> * j + k] = a.sa[unknowns.first + j + 1];
    }
  }
}

/// p = z and pp = zz. Leaves in zz, where the transposed product begins, diagonal x pp.
template <class Value>
void startDirections(const Arrays& a, std::size_t block) {
  const Unknowns<Value> unknowns(a, block);
  Factors<Value> diagonal;
  spreadDiagonal<Value>(a, unknowns, diagonal);
  for (std::size_t k = 0; k < unknowns.doubles(); ++k) {
    const std::size_t at = unknowns.begin() + k;
    a.p[at] = a.z[at];
    a.pp[at] = a.zz[at];
    a.zz[at] = diagonal[k] * a.pp[at];
  }
}

/// What x moves by, and the part of the directions before that stays in the new ones.
struct TurnFactors {
  PerSystem ak, bk;
};
template <class Value>
struct Turn {
  Factors<Value> ak, bk;
};

/// x += ak p, then p = bk p + z and pp = bk pp + zz. Leaves diagonal x pp in zz.
template <class Value>
void turnDirections(const Arrays& a, std::size_t block, const Turn<Value>& turn) {
  const Unknowns<Value> unknowns(a, block);
  Factors<Value> diagonal;
  spreadDiagonal<Value>(a, unknowns, diagonal);
  double* __restrict x = a.x + unknowns.begin();
  double* __restrict p = a.p + unknowns.begin();
  double* __restrict pp = a.pp + unknowns.begin();
  const double* __restrict z = a.z + unknowns.begin();
  double* __restrict zz = a.zz + unknowns.begin();
  for (std::size_t k = 0; k < unknowns.doubles(); ++k) {
    x[k] += turn.ak[k] * p[k];
    p[k] = turn.bk[k] * p[k] + z[k];
    pp[k] = turn.bk[k] * pp[k] + zz[k];
    zz[k] = diagonal[k] * pp[k];
  }
}

/// The part of a block of rows in both products. Adds its part of z . pp to `inner`.
template <class Value>
void multiplyRows(const Arrays& a, std::size_t block, Value& inner) {
  const double* __restrict sa = a.sa;
  const int* __restrict ija = a.ija;
  const double* __restrict p = a.p;
  const double* __restrict pp = a.pp;
  double* __restrict z = a.z;
  double* __restrict zz = a.zz;
  const Unknowns<Value> rows(a, block);
  const std::size_t nextMet = blockSize * a.meetings.nextAfter(block);
  const std::array<const double*, 5> soon = {a.x, p, pp, z, zz};
  for (std::size_t row = 0; row < rows.count; ++row) {
    const std::size_t i = rows.first + row + 1;
    fetchSome<Value>(soon, nextMet + row);
    auto k = static_cast<std::size_t>(ija[i]);
    const auto end = static_cast<std::size_t>(ija[i + 1]);
    fetch(sa + k, bytesAhead);
    fetch(ija + k, bytesAhead);
    const std::size_t at = rows.begin() + places<Value> * row;
    Value own, sum, entry;
    load(pp + at, own);
    load(p + at, sum);
    fill(entry, sa[i]);
    sum = entry * sum;
    for (; k < end; ++k) {
      const std::size_t column = places<Value> * (static_cast<std::size_t>(ija[k]) - 1);
      Value other;
      load(p + column, other);
      fill(entry, sa[k]);
      sum += entry * other;
      addTo(zz + column, entry * own);
    }
    store(z + at, sum);
    inner += sum * own;
  }
}

template <class Value>
PerSystem perSystem(const Value& value) {
  PerSystem each = {};
  store(each.data(), value);
  return each;
}

/// `by` is null the first time.
template <class Value>
PerSystem turnAndMultiply(const Arrays& a, const TurnFactors* by) {
  Turn<Value> turn = {};
  if (by != nullptr) turn = {.ak = spread<Value>(by->ak), .bk = spread<Value>(by->bk)};
  Value inner = {};
  for (std::size_t block = 0; block < a.meetings.blockCount(); ++block) {
    for (const std::size_t met : a.meetings.firstMetIn(block)) {
      if (by == nullptr) {
        startDirections<Value>(a, met);
      } else {
        turnDirections<Value>(a, met, turn);
      }
    }
    multiplyRows<Value>(a, block, inner);
  }
  return perSystem(inner);
}

/// r -= ak z and rr -= ak zz.
template <class Value>
void reduceResiduals(const Arrays& a, Unknowns<Value> unknowns, const Factors<Value>& ak) {
  double* __restrict r = a.r + unknowns.begin();
  double* __restrict rr = a.rr + unknowns.begin();
  const double* __restrict z = a.z + unknowns.begin();
  const double* __restrict zz = a.zz + unknowns.begin();
  for (std::size_t k = 0; k < unknowns.doubles(); ++k) {
    r[k] -= ak[k] * z[k];
    rr[k] -= ak[k] * zz[k];
  }
}

/// z and zz become r and rr over the diagonal, where it is not 0.
template <class Value>
void precondition(const Arrays& a, Unknowns<Value> unknowns) {
  Factors<Value> divisor;
  spreadDiagonal<Value>(a, unknowns, divisor);
  for (double& d : std::span(divisor).first(unknowns.doubles())) d = d != 0.0 ? d : 1.0;
  const double* __restrict r = a.r + unknowns.begin();
  const double* __restrict rr = a.rr + unknowns.begin();
  double* __restrict z = a.z + unknowns.begin();
  double* __restrict zz = a.zz + unknowns.begin();
  for (std::size_t k = 0; k < unknowns.doubles(); ++k) {
    z[k] = r[k] / divisor[k];
    zz[k] = rr[k] / divisor[k];
  }
}

template <class Value>
struct Sums {
  Value bknum = {};
  Value squaredR = {};
};

template <class Value>
void addProducts(const Arrays& a, Unknowns<Value> unknowns, Sums<Value>& sums) {
  for (std::size_t j = unknowns.first; j < unknowns.first + unknowns.count; ++j) {
    fetchSome<Value>(std::array<const double*, 4>{a.r, a.rr, a.z, a.zz}, j + fewUnknowns);
    const std::size_t at = places<Value> * j;
    Value r, rr, z;
    load(a.r + at, r);
    load(a.rr + at, rr);
    load(a.z + at, z);
    sums.bknum += z * rr;
    sums.squaredR += r * r;
  }
}

/// `ak` is null before the first pass, when r and rr stay.
template <class Value>
Residuals advance(const Arrays& a, const PerSystem* ak) {
  const Factors<Value> factors = spread<Value>(ak != nullptr ? *ak : PerSystem{});
  Sums<Value> sums;
  for (std::size_t first = 0; first < a.n; first += fewUnknowns) {
    const Unknowns<Value> unknowns(a, first, fewUnknowns);
    if (ak != nullptr) reduceResiduals<Value>(a, unknowns, factors);
    precondition<Value>(a, unknowns);
    addProducts<Value>(a, unknowns, sums);
  }
  return {.bknum = perSystem(sums.bknum), .squaredR = perSystem(sums.squaredR)};
}

/// The two sweeps, compiled for a number of systems and a length of registers.
struct Compiled {
  PerSystem (*turnAndMultiply)(const Arrays& a, const TurnFactors* by);
  Residuals (*advance)(const Arrays& a, const PerSystem* ak);
};

template <class Value>
[[gnu::flatten]] PerSystem turnByTwo(const Arrays& a, const TurnFactors* by) {
  return turnAndMultiply<Value>(a, by);
}
template <class Value>
[[gnu::flatten]] Residuals advanceByTwo(const Arrays& a, const PerSystem* ak) {
  return advance<Value>(a, ak);
}

#ifdef __x86_64__
template <class Value>
[[gnu::flatten, gnu::target("avx2")]] PerSystem turnByFour(const Arrays& a, const TurnFactors* by) {
  return turnAndMultiply<Value>(a, by);
}
template <class Value>
[[gnu::flatten, gnu::target("avx2")]] Residuals advanceByFour(const Arrays& a,
                                                              const PerSystem* ak) {
  return advance<Value>(a, ak);
}

bool hasRegistersOfFour() {
  return __builtin_cpu_supports("avx2") != 0;
}
Compiled compiledByFour(std::size_t systems) {
  if (systems == 1) return {turnByFour<double>, advanceByFour<double>};
  return {turnByFour<TripleInOne>, advanceByFour<TripleInOne>};
}
#else
bool hasRegistersOfFour() {
  return false;
}
#endif

Compiled compiledFor(std::size_t systems, [[maybe_unused]] Registers registers) {
#ifdef __x86_64__
  if (registers == Registers::OfFour) return compiledByFour(systems);
#endif
  if (systems == 1) return {turnByTwo<double>, advanceByTwo<double>};
  return {turnByTwo<TripleInTwo>, advanceByTwo<TripleInTwo>};
}

/// b - A x of one system for row i, which counts from 1.
double residual(const Systems& systems, std::size_t i, std::span<const double> b,
                std::span<const double> x) {
  const auto at = [&](std::size_t unknown) { return systems.count * (unknown - 1); };
  const SparseMatrix& matrix = systems.matrix;
  double sum = matrix.sa[i] * x[at(i)];
  const auto end = static_cast<std::size_t>(matrix.ija[i + 1]);
  for (auto k = static_cast<std::size_t>(matrix.ija[i]); k < end; ++k) {
    sum += matrix.sa[k] * x[at(static_cast<std::size_t>(matrix.ija[k]))];
  }
  return b[at(i)] - sum;
}

}  // namespace

// Sweeps read all vectors at the same place, so long ones begin where they get in each other's way
// least: on lines of the cache of their own, spread over its period.
WorkVectors::WorkVectors(std::size_t doubles) {
  const std::size_t stride = doubles < cachePeriod
                                 ? roundUp(doubles + 1, cacheLine)
                                 : roundUp(doubles + 1, cachePeriod) + cachePeriod / 8 + cacheLine;
  memory = unfilledDvector(6 * stride + cacheLine);
  const std::size_t address = reinterpret_cast<std::uintptr_t>(memory.data()) / sizeof(double);
  std::size_t begin = roundUp(address, cacheLine) - address;
  for (std::span<double>* v : {&p, &pp, &r, &rr, &z, &zz}) {
    *v = std::span(memory).subspan(begin, doubles + 1);
    begin += stride;
  }
}

Meetings::Meetings(const SparseMatrix& matrix, std::size_t n) {
  std::vector<char> met((n + blockSize - 1) / blockSize);
  const auto meet = [&](std::size_t block) {
    if (met[block] != 0) return;
    met[block] = 1;
    blocks.push_back(block);
  };
  for (std::size_t row = 1; row <= n; ++row) {
    meet((row - 1) / blockSize);
    const auto end = static_cast<std::size_t>(matrix.ija[row + 1]);
    for (auto k = static_cast<std::size_t>(matrix.ija[row]); k < end; ++k) {
      meet((static_cast<std::size_t>(matrix.ija[k]) - 1) / blockSize);
    }
    if (row % blockSize == 0 || row == n) ends.push_back(blocks.size());
  }
}

Registers longestRegisters() {
  return hasRegistersOfFour() ? Registers::OfFour : Registers::OfTwo;
}

Sweeps::Sweeps(const Systems& solved, std::span<const double> b, std::span<double> start,
               Registers registers)
    : systems(solved),
      registersUsed(registers),
      meetings(solved.matrix, solved.n),
      work(solved.doubles()),
      xBefore(start) {
  for (std::size_t i = 1; i <= systems.n; ++i) {
    for (std::size_t place = 0; place < systems.count; ++place) {
      const std::size_t at = systems.count * (i - 1) + place;
      work.r[at] = work.rr[at] = residual(systems, i, b.subspan(place), xBefore.subspan(place));
    }
  }
  sums = compiledFor(systems.count, registersUsed).advance(arrays(), nullptr);
}

PerSystem Sweeps::turnAndMultiply(const PerSystem& bk) {
  const Compiled compiled = compiledFor(systems.count, registersUsed);
  if (!pendingMove) return compiled.turnAndMultiply(arrays(), nullptr);
  const TurnFactors by = {.ak = *std::exchange(pendingMove, std::nullopt), .bk = bk};
  return compiled.turnAndMultiply(arrays(), &by);
}

void Sweeps::advance(const PerSystem& ak) {
  sums = compiledFor(systems.count, registersUsed).advance(arrays(), &ak);
  pendingMove = ak;
}

SweptArrays Sweeps::arrays() const {
  return {.sa = systems.matrix.sa.data(),
          .ija = systems.matrix.ija.data(),
          .n = systems.n,
          .meetings = meetings,
          .p = work.p.data(),
          .pp = work.pp.data(),
          .r = work.r.data(),
          .rr = work.rr.data(),
          .z = work.z.data(),
          .zz = work.zz.data(),
          .x = xBefore.data()};
}

}  // namespace gravlin
