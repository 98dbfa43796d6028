#pragma once

#include <span>

namespace gravlin {

/// Red, green and blue, each from 0 to 1.
struct Colour {
  float r = 0.0F;
  float g = 0.0F;
  float b = 0.0F;
  bool operator==(const Colour&) const = default;
};

/// Where the values of a field lie and how far they spread.
struct Spread {
  double mean = 0.0;       ///< sum / n, not a number without values
  double deviation = 0.0;  ///< sqrt(sum of (v - mean)^2 / n), of the whole population
};
Spread spreadOf(std::span<const double> values);

/// The place of a value on the scales below: 1.5 times its distance from the mean in deviations.
/// Not a number where all values are equal.
double scalePlace(double value, const Spread& spread);

/// The colour at place t: black below -2.1, then blue, cyan, green at the mean, yellow, red,
/// magenta up to a pale magenta from 2.1 on. A t that is not a number is black.
Colour scaleColour(double t);

/// The grey at place t: black up to -2.1, white from 2.1 on. A t that is not a number is black.
Colour scaleGrey(double t);

/// The colour scale, or the grey scale, laid over a field of values.
struct FieldColours {
  FieldColours(std::span<const double> values, bool useGrayScale);
  /// The colour of a value of the field.
  Colour operator[](double value) const;

  Spread spread;  ///< of the values, its deviation rounded to single precision
  bool grayScale;
};

}  // namespace gravlin
