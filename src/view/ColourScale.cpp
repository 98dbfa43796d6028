#include "view/ColourScale.h"

#include <algorithm>
#include <cmath>

namespace gravlin {
namespace {

Colour colour(double r, double g, double b) {
  return {static_cast<float>(r), static_cast<float>(g), static_cast<float>(b)};
}

}  // namespace

Spread spreadOf(std::span<const double> values) {
  // The mean of equal values is that value: the rounding of their sum must not look like a spread.
  const auto equalsFirst = [&](double v) { return v == values.front(); };
  if (!values.empty() && std::isfinite(values.front()) &&
      std::ranges::all_of(values, equalsFirst)) {
    return {values.front(), 0.0};
  }
  const auto n = static_cast<double>(values.size());
  double sum = 0.0;
  for (const double v : values) sum += v;
  const double mean = sum / n;
  double squares = 0.0;
  for (const double v : values) squares += (v - mean) * (v - mean);
  return {mean, std::sqrt(squares / n)};
}

double scalePlace(double value, const Spread& spread) {
  return (value - spread.mean) / spread.deviation * 1.5;
}

Colour scaleColour(double t) {
  constexpr double slope = 1.6666666;  // a band is 0.6 wide
  if (!(t >= -2.1)) return colour(0.0, 0.0, 0.0);
  if (!(t >= -1.5)) return colour(0.0, 0.0, (t + 2.1) * slope);
  if (!(t >= -0.9)) return colour(0.0, (t + 1.5) * slope, 1.0);
  if (!(t >= -0.3)) return colour(0.0, 1.0, (t + 0.3) * -slope);
  if (!(t >= 0.3)) return colour((t + 0.3) * slope, 1.0, 0.0);
  if (!(t >= 0.9)) return colour(1.0, (t - 0.9) * -slope, 0.0);
  if (!(t >= 1.5)) return colour(1.0, 0.0, (t - 0.9) * slope);
  if (!(t >= 2.1)) return colour(1.0, (t - 1.5) * 1.25, 1.0);
  return colour(1.0, 0.75, 1.0);
}

Colour scaleGrey(double t) {
  const double g = (t + 2.1) * 0.23809525;  // 1 / 4.2, the whole width of the scale
  if (!(g > 0.0)) return colour(0.0, 0.0, 0.0);
  return g < 1.0 ? colour(g, g, g) : colour(1.0, 1.0, 1.0);
}

FieldColours::FieldColours(std::span<const double> values, bool useGrayScale)
    : spread(spreadOf(values)), grayScale(useGrayScale) {
  spread.deviation = static_cast<float>(spread.deviation);
}

Colour FieldColours::operator[](double value) const {
  const double t = scalePlace(value, spread);
  return grayScale ? scaleGrey(t) : scaleColour(t);
}

}  // namespace gravlin
