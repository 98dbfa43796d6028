#pragma once

#include <cstddef>
#include <span>

namespace gravlin {

// A face has the corners 0, 1, 2 in its own order, and side j runs from corner j to the next one.
// Corner and side numbers below may be of any integer type; `corners` are a face's vertices.

/// The corner or side behind j.
template <class Number>
constexpr Number nextCorner(Number j) {
  return j == Number{2} ? Number{0} : static_cast<Number>(j + Number{1});
}

/// The corner or side before j; of a side, also the corner opposite.
template <class Number>
constexpr Number previousCorner(Number j) {
  return j == Number{0} ? Number{2} : static_cast<Number>(j - Number{1});
}

/// No corner or side of a face.
constexpr std::size_t noCorner = 3;

/// Which corner `vertex` is, the first if it is several, `noCorner` if it is none.
constexpr std::size_t cornerOf(std::span<const int, 3> corners, int vertex) {
  // Without branches, because which of the three it is cannot be foretold.
  const auto isNot = [&](std::size_t j) { return static_cast<std::size_t>(corners[j] != vertex); };
  return isNot(0) * (1 + isNot(1) * (1 + isNot(2)));
}

/// A side by its ends, in the direction in which it runs.
struct SideEnds {
  int from;
  int to;
};

/// Which side runs so, `noCorner` if none does.
constexpr std::size_t sideOf(std::span<const int, 3> corners, const SideEnds& ends) {
  const auto isNot = [&](std::size_t j) {
    const bool runsSo = corners[j] == ends.from && corners[nextCorner(j)] == ends.to;
    return static_cast<std::size_t>(!runsSo);
  };
  return isNot(0) * (1 + isNot(1) * (1 + isNot(2)));
}

}  // namespace gravlin
