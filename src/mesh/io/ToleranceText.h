#pragma once

#include <cstdint>

namespace gravlin {

/// The most characters that `ToleranceText` writes for one number.
inline constexpr int maxToleranceText = 32;

/// Writes numbers with as few digits as a tolerance allows, in the "C" locale: of all decimal
/// numbers that lie within the tolerance one with the fewest decimals.
class ToleranceText {
 public:
  /// Without a tolerance, 0 or no finite number, every number reads back as the same double.
  explicit ToleranceText(double tolerance);

  /// Returns the end; needs `maxToleranceText` characters of room. Infinite numbers are "inf" and
  /// "-inf", others that are none "nan" or "-nan".
  char* write(char* out, double value) const;

 private:
  /// Numbers are rounded to whole multiples of 10^-decimals, two more than the tolerance asks for.
  int decimals = -1;            ///< -1: no tolerance that whole numbers of 64 bits can be used for
  double multiplier = 1.0;      ///< 10^decimals
  std::uint64_t mayDiffer = 0;  ///< the tolerance in these multiples
};

}  // namespace gravlin
