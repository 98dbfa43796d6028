#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "numeric/LargeVector.h"
#include "numeric/SparseMatrix.h"

namespace gravlin {

// What a pass of `linbcg` does to its vectors, for one system and for three with the same matrix
// side by side. Here unknowns and the doubles of vectors count from 0.

/// Systems that are solved side by side: 1 or 3. The values of unknown j are at count x j and, for
/// three, the two places behind.
struct Systems {
  const SparseMatrix& matrix;
  std::size_t n;  ///< unknowns of each
  std::size_t count;

  std::size_t doubles() const { return count * n; }
};

/// One number for each of the systems. Of a single one it is the first; the others mean nothing.
using PerSystem = std::array<double, 3>;

/// The six work vectors of a solve: search directions, residuals and products, each with its
/// counterpart for the transposed system. Not set; each has one double more than asked for.
class WorkVectors {
 public:
  explicit WorkVectors(std::size_t doubles);
  WorkVectors(const WorkVectors&) = delete;
  WorkVectors& operator=(const WorkVectors&) = delete;
  ~WorkVectors() = default;

  std::span<double> p, pp, r, rr, z, zz;

 private:
  UnfilledVector<double> memory;
};

/// In which order a product that goes through the rows of a matrix first meets the unknowns, both
/// in blocks of this many. Work on an unknown that is put off until then finds it, and leaves it,
/// in the cache.
class Meetings {
 public:
  static constexpr std::size_t blockSize = 64;

  Meetings(const SparseMatrix& matrix, std::size_t n);

  std::size_t blockCount() const { return ends.size(); }
  /// The blocks that rows of this block are the first to meet.
  std::span<const std::size_t> firstMetIn(std::size_t block) const {
    const std::size_t begin = block == 0 ? 0 : ends[block - 1];
    return std::span(blocks).subspan(begin, ends[block] - begin);
  }
  /// The block that is the next to be met after that; when all have been, one that does not exist.
  std::size_t nextAfter(std::size_t block) const {
    return ends[block] < blocks.size() ? blocks[ends[block]] : blocks.size();
  }

 private:
  std::vector<std::size_t> blocks;
  std::vector<std::size_t> ends;  ///< one past the last entry of each block of rows in `blocks`
};

/// Vector registers that the sweeps are compiled for. The bits are the same with each.
enum class Registers {
  OfTwo,  ///< two doubles long, as every machine has them
  OfFour  ///< four doubles long; only for a machine where they are the longest
};

/// The longest that this machine has.
Registers longestRegisters();

/// What the sweeps read and write: the matrix as it is stored, the vectors from their first
/// unknown.
struct SweptArrays {
  const double* sa;
  const int* ija;
  std::size_t n;
  const Meetings& meetings;
  double *p, *pp, *r, *rr, *z, *zz, *x;
};

/// What the residuals come to after a move of x.
struct Residuals {
  PerSystem bknum = {};     ///< z . rr, with z the preconditioned r
  PerSystem squaredR = {};  ///< r . r
};

/// The two sweeps that a pass consists of, and what they work on from the first pass to the last.
/// Each does at once what the textbook does in several, so that every vector travels through memory
/// as seldom as possible; every sum is formed in the textbook's order.
class Sweeps {
 public:
  /// Begins with r = rr = b - A x, x = `start`. In `start` x then moves.
  Sweeps(const Systems& solved, std::span<const double> b, std::span<double> start,
         Registers registers = longestRegisters());

  /// The first sweep. p = bk p + z and pp = bk pp + zz, or p = z and pp = zz in the first pass,
  /// when bk means nothing; then z = A p and zz = the transpose of A times pp. Returns z . pp.
  PerSystem turnAndMultiply(const PerSystem& bk);

  /// The second. x += ak p, r -= ak z and rr -= ak zz; then z and zz become the preconditioned r
  /// and rr. In memory x moves only in the first sweep of the next pass, which has to read p
  /// anyway: `x` tells where it is.
  void advance(const PerSystem& ak);

  double x(std::size_t at) const {
    return pendingMove ? xBefore[at] + (*pendingMove)[at % systems.count] * work.p[at]
                       : xBefore[at];
  }
  const WorkVectors& vectors() const { return work; }
  const Residuals& residuals() const { return sums; }

 private:
  SweptArrays arrays() const;

  Systems systems;
  Registers registersUsed;
  Meetings meetings;
  WorkVectors work;
  std::span<double> xBefore;
  std::optional<PerSystem> pendingMove;  ///< the ak that x has still to move by
  Residuals sums;
};

}  // namespace gravlin
