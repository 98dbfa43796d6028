#pragma once

#include <cstddef>

namespace gravlin {

/// The place of element i, which is not negative, in a vector or span.
constexpr std::size_t toIndex(int i) {
  return static_cast<std::size_t>(i);
}

}  // namespace gravlin
