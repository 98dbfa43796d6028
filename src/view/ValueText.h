#pragma once

#include <string>

namespace gravlin {

/// A value with six decimals in any locale, "inf", "-inf" or "nan".
std::string fixedText(double value);

/// A value with up to so many significant digits in any locale, "inf", "-inf" or "nan". Zero has no
/// sign.
std::string shortText(double value, int digits = 6);

}  // namespace gravlin
