#include "view/Histogram.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace gravlin {
namespace {

struct Binning {
  double start;
  double range;
  double binCount;
};

/// In blocks: first all indices of a block, which the compiler does several at a time, then the
/// counting.
void countInto(std::vector<int>& bins, std::span<const double> values, const Binning& binning) {
  const auto [start, range, binCount] = binning;
  const double last = binCount - 1.0;
  std::array<int, 512> index;
  while (!values.empty()) {
    const std::size_t n = std::min(values.size(), index.size());
    for (std::size_t k = 0; k < n; ++k) {
      const double place = (values[k] - start) * binCount / range;
      // A place that is not a number fails both comparisons and counts as below the first bin.
      const double atLeast = place > 0.0 ? place : 0.0;
      index[k] = static_cast<int>(atLeast < last ? atLeast : last);
    }
    for (std::size_t k = 0; k < n; ++k) ++bins[static_cast<std::size_t>(index[k])];
    values = values.subspan(n);
  }
}

}  // namespace

void Histogram::setValues(std::span<const double> newValues) {
  values.assign(newValues.begin(), newValues.end());
  spread = spreadOf(values);
  clipMax = spread.mean + 3.0 * spread.deviation;
  clipMin = spread.mean - 3.0 * spread.deviation;
  rebuild();
}

void Histogram::setWindowWidth(int width) {
  binCount = std::max(width, 1) - 30;
  rebuild();
}

void Histogram::rebuild() {
  const auto n = static_cast<std::size_t>(std::max(binCount, 0));
  bins.assign(n, 0);
  binStart.assign(n, 0.0);
  maxBin = 0;
  if (n == 0) return;
  const double range = clipMax - clipMin;
  countInto(bins, values, {clipMin, range, static_cast<double>(binCount)});
  maxBin = *std::max_element(bins.begin(), bins.end());
  for (std::size_t i = 0; i < n; ++i) {
    binStart[i] = static_cast<double>(i) * range / binCount + clipMin;
  }
}

}  // namespace gravlin
