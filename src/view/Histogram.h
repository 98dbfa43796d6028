#pragma once

#include <span>
#include <vector>

#include "view/ColourScale.h"

namespace gravlin {

/// The distribution of a scalar field over equal bins from three standard deviations below its mean
/// to three above; what lies beyond piles up in the two end bins.
struct Histogram {
  std::vector<double> values;    ///< the histogram's own copy
  Spread spread;                 ///< of the values: mean and standard deviation
  double clipMax = 0.0;          ///< mean + 3 deviations
  double clipMin = 0.0;          ///< mean - 3 deviations
  int binCount = 0;              ///< 0 or less: nothing is binned
  std::vector<int> bins;         ///< [binCount] how many values
  std::vector<double> binStart;  ///< [binCount] lower edge value
  int maxBin = 0;                ///< the largest of `bins`

  /// Takes new values and bins them. Where they are all equal, or one is not finite, every value
  /// lands in the first bin. Linear in their number.
  void setValues(std::span<const double> newValues);
  /// One bin a pixel of the bar area, which is 30 pixels narrower than the window.
  void setWindowWidth(int width);

 private:
  void rebuild();
};
}  // namespace gravlin
