#pragma once

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace gravlin::test {

/// A square matrix written out in full, 0-based: the plain counterpart of whatever is sparse.
class DenseMatrix {
 public:
  explicit DenseMatrix(int order) : n(order), values(slot(order, 0), 0.0) {}

  int order() const { return n; }
  double& at(int row, int column) { return values[slot(row, column)]; }
  double at(int row, int column) const { return values[slot(row, column)]; }

  std::vector<double> times(const std::vector<double>& x) const {
    std::vector<double> product(static_cast<std::size_t>(n), 0.0);
    for (int row = 0; row < n; ++row) {
      for (int column = 0; column < n; ++column) {
        product[static_cast<std::size_t>(row)] +=
            at(row, column) * x[static_cast<std::size_t>(column)];
      }
    }
    return product;
  }

  DenseMatrix transposed() const {
    DenseMatrix result(n);
    for (int row = 0; row < n; ++row) {
      for (int column = 0; column < n; ++column) result.at(column, row) = at(row, column);
    }
    return result;
  }

  /// The x of (this) x = b by Gaussian elimination with partial pivoting.
  std::vector<double> solve(std::vector<double> b) const {
    DenseMatrix work = *this;
    for (int step = 0; step < n; ++step) {
      int pivot = step;
      for (int row = step + 1; row < n; ++row) {
        if (std::abs(work.at(row, step)) > std::abs(work.at(pivot, step))) pivot = row;
      }
      std::swap(b[static_cast<std::size_t>(step)], b[static_cast<std::size_t>(pivot)]);
      for (int column = 0; column < n; ++column) {
        std::swap(work.at(step, column), work.at(pivot, column));
      }
      for (int row = step + 1; row < n; ++row) {
        const double factor = work.at(row, step) / work.at(step, step);
        for (int column = step; column < n; ++column) {
          work.at(row, column) -= factor * work.at(step, column);
        }
        b[static_cast<std::size_t>(row)] -= factor * b[static_cast<std::size_t>(step)];
      }
    }
    for (int row = n - 1; row >= 0; --row) {
      double& x = b[static_cast<std::size_t>(row)];
      for (int column = row + 1; column < n; ++column) {
        x -= work.at(row, column) * b[static_cast<std::size_t>(column)];
      }
      x /= work.at(row, row);
    }
    return b;
  }

 private:
  std::size_t slot(int row, int column) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(n) +
           static_cast<std::size_t>(column);
  }

  int n;
  std::vector<double> values;
};

}  // namespace gravlin::test
