#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "numeric/Linbcg.h"
#include "numeric/SparseMatrix.h"
#include "numeric/Triple.h"

namespace gravlin {

// What a pass of `linbcg` does to its vectors, written once for one system (Value = double) and for
// three with the same matrix side by side (Value = Triple). A vector holds places<Value> doubles
// for each unknown j = 1 .. n, from position places<Value> x (j - 1) + 1 on.

/// The unknown j of a vector.
template <class Value>
Value get(std::span<const double> v, std::size_t j) {
  return load<Value>(v.data() + places<Value> * (j - 1) + 1);
}

template <class Value>
void set(std::span<double> v, std::size_t j, Value value) {
  store(v.data() + places<Value> * (j - 1) + 1, value);
}

/// Asks for what a sweep will need some hundred bytes on. Past the end of an array it asks in vain.
inline void fetchAhead(const void* address) {
  // By number, since no pointer may lead past the end.
  const std::uintptr_t ahead = reinterpret_cast<std::uintptr_t>(address) + 512;
  __builtin_prefetch(reinterpret_cast<const void*>(ahead));  // NOLINT(performance-no-int-to-ptr)
}

/// The six work vectors of a solve: search directions, residuals and products, each with its
/// counterpart for the transposed system.
struct WorkVectors {
  explicit WorkVectors(std::size_t doubles)
      : p(dvector(doubles)),
        pp(dvector(doubles)),
        r(dvector(doubles)),
        rr(dvector(doubles)),
        z(dvector(doubles)),
        zz(dvector(doubles)) {}
  LargeVector<double> p, pp, r, rr, z, zz;
};

template <class Value>
Value preconditioned(Value residual, double diagonal) {
  return diagonal != 0.0 ? residual / diagonal : residual;
}

/// b = A x.
template <class Value>
void multiply(std::span<const double> sa, std::span<const int> ija, std::size_t n,
              std::span<const double> x, std::span<double> b) {
  for (std::size_t i = 1; i <= n; ++i) {
    Value sum = sa[i] * get<Value>(x, i);
    const auto end = static_cast<std::size_t>(ija[i + 1]);
    for (auto k = static_cast<std::size_t>(ija[i]); k < end; ++k) {
      sum = sum + sa[k] * get<Value>(x, static_cast<std::size_t>(ija[k]));
    }
    set(b, i, sum);
  }
}

/// In which order a product that goes through the rows of a matrix first meets the unknowns, both
/// in blocks of this many. Work on an unknown that is put off until then finds it, and leaves it,
/// in the cache.
class Meetings {
 public:
  static constexpr std::size_t blockSize = 64;

  Meetings(const SparseMatrix& matrix, std::size_t n) {
    std::vector<bool> met((n + blockSize - 1) / blockSize);
    const auto meet = [&](std::size_t unknown) {
      const std::size_t block = (unknown - 1) / blockSize;
      if (met[block]) return;
      met[block] = true;
      blocks.push_back(block);
    };
    for (std::size_t row = 1; row <= n; ++row) {
      meet(row);
      const auto end = static_cast<std::size_t>(matrix.ija[row + 1]);
      for (auto k = static_cast<std::size_t>(matrix.ija[row]); k < end; ++k) {
        meet(static_cast<std::size_t>(matrix.ija[k]));
      }
      if (row % blockSize == 0 || row == n) ends.push_back(blocks.size());
    }
  }

  std::size_t blockCount() const { return ends.size(); }
  /// The blocks that rows of this block are the first to meet.
  std::span<const std::size_t> firstMetIn(std::size_t block) const {
    const std::size_t begin = block == 0 ? 0 : ends[block - 1];
    return std::span(blocks).subspan(begin, ends[block] - begin);
  }

 private:
  std::vector<std::size_t> blocks;
  std::vector<std::size_t> ends;  ///< one past the last entry of each block of rows in `blocks`
};

/// A move of x by ak p, and what the residuals come to behind it.
template <class Value>
struct Move {
  Value ak;
  Value bknum = Value(0.0);     ///< z . rr, with z the preconditioned r
  Value squaredR = Value(0.0);  ///< r . r
};

/// The two sweeps of a pass. Each does at once what the textbook does in several, so that every
/// vector travels through memory as seldom as possible; every sum is formed in the textbook's
/// order.
template <class Value>
class Sweeps {
 public:
  Sweeps(const SparseMatrix& whole, std::size_t n, WorkVectors& vectors)
      : matrix(whole), diagonal(whole.sa), size(n), meetings(whole, size), work(vectors) {}

  /// r = rr = b - A x. Returns z . rr, with z the preconditioned r.
  Value begin(std::span<const double> b, std::span<const double> x) {
    multiply<Value>(matrix.sa, matrix.ija, size, x, work.r);
    Value bknum(0.0);
    for (std::size_t j = 1; j <= size; ++j) {
      const Value r = get<Value>(b, j) - get<Value>(work.r, j);
      set(work.r, j, r);
      set(work.rr, j, r);
      bknum = bknum + preconditioned(r, diagonal[j]) * r;
    }
    return bknum;
  }

  /// p = bk p + (preconditioned r) and pp = bk pp + (preconditioned rr), without the first terms if
  /// there is no bk yet; then z = A p and zz = the transpose of A times pp. Returns z . pp.
  Value turnAndMultiply(const std::optional<Value>& bk) {
    Value inner(0.0);
    for (std::size_t block = 0; block < meetings.blockCount(); ++block) {
      for (const std::size_t met : meetings.firstMetIn(block)) turn(met, bk);
      inner = multiplyRows(block, inner);
    }
    return inner;
  }

  /// x += ak p, r -= ak z and rr -= ak zz.
  Move<Value> advance(std::span<double> x, Value ak) {
    Move<Value> move = {.ak = ak};
    for (std::size_t j = 1; j <= size; ++j) {
      set(x, j, get<Value>(x, j) + ak * get<Value>(work.p, j));
      const Value r = get<Value>(work.r, j) - ak * get<Value>(work.z, j);
      const Value rr = get<Value>(work.rr, j) - ak * get<Value>(work.zz, j);
      set(work.r, j, r);
      set(work.rr, j, rr);
      move.bknum = move.bknum + preconditioned(r, diagonal[j]) * rr;
      move.squaredR = move.squaredR + r * r;
    }
    return move;
  }

 private:
  /// Turns the directions of a block of unknowns and leaves in zz, where the transposed product
  /// begins, diagonal x pp.
  void turn(std::size_t block, const std::optional<Value>& bk) {
    for (std::size_t j = first(block); j <= last(block); ++j) {
      for (const auto* v : {&work.p, &work.pp, &work.r, &work.rr})
        fetchAhead(&(*v)[j * places<Value>]);
      Value p = preconditioned(get<Value>(work.r, j), diagonal[j]);
      Value pp = preconditioned(get<Value>(work.rr, j), diagonal[j]);
      if (bk) {
        p = *bk * get<Value>(work.p, j) + p;
        pp = *bk * get<Value>(work.pp, j) + pp;
      }
      set(work.p, j, p);
      set(work.pp, j, pp);
      set(work.zz, j, diagonal[j] * pp);
    }
  }

  /// The part of a block of rows in both products. Adds its part of z . pp to `inner`.
  Value multiplyRows(std::size_t block, Value inner) {
    for (std::size_t i = first(block); i <= last(block); ++i) {
      fetchAhead(matrix.sa.data() + matrix.ija[i]);
      fetchAhead(matrix.ija.data() + matrix.ija[i]);
      const Value own = get<Value>(work.pp, i);
      Value sum = diagonal[i] * get<Value>(work.p, i);
      const auto end = static_cast<std::size_t>(matrix.ija[i + 1]);
      for (auto k = static_cast<std::size_t>(matrix.ija[i]); k < end; ++k) {
        const auto column = static_cast<std::size_t>(matrix.ija[k]);
        sum = sum + matrix.sa[k] * get<Value>(work.p, column);
        set(work.zz, column, get<Value>(work.zz, column) + matrix.sa[k] * own);
      }
      set(work.z, i, sum);
      inner = inner + sum * own;
    }
    return inner;
  }

  std::size_t first(std::size_t block) const { return block * Meetings::blockSize + 1; }
  std::size_t last(std::size_t block) const {
    return std::min(size, (block + 1) * Meetings::blockSize);
  }

  const SparseMatrix& matrix;
  std::span<const double> diagonal;
  std::size_t size;
  Meetings meetings;
  WorkVectors& work;
};

}  // namespace gravlin
