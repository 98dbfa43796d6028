#pragma once

#include <cstddef>
#include <string_view>

#include "numeric/LargeVector.h"

namespace gravlin {

/// A 1-based vector of n zeros: n + 1 doubles. If there is no memory for it, `nrerror` tells so and
/// std::bad_alloc is thrown.
LargeVector<double> dvector(std::size_t n);
/// The same without the zeros: nothing is set.
UnfilledVector<double> unfilledDvector(std::size_t n);

/// Writes `message` between the two fixed lines of a run-time error to the error stream and
/// returns. The program goes on, whatever the last line says.
void nrerror(std::string_view message);

}  // namespace gravlin
