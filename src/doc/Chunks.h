#pragma once

namespace gravlin {

/// How a command divides its iterations: after each of `count` chunks of `size` iterations the
/// progress bar advances and, if the command animates, the mesh is redrawn; `rest` iterations
/// follow without either.
struct Chunks {
  int size;   ///< at least 1
  int count;  ///< 0 or less: no chunk
  int rest;   ///< 0 or less: nothing follows
  bool operator==(const Chunks&) const = default;
};

/// Whether a command redraws as it goes, and after how many iterations.
struct Animation {
  bool on;
  int every;  ///< below 1 counts as 1
};

/// With animation one chunk is what lies between two redraws. Without, ten chunks are enough for a
/// bar, so that its updates cost nothing. A count below 1 gives chunks that run nothing.
constexpr Chunks chunksOf(int iterations, const Animation& animation) {
  int size = 1;
  if (animation.on) {
    if (animation.every > 1) size = animation.every;
  } else if (iterations > 9) {
    size = iterations / 10;
  }
  const int count = iterations / size;
  return {size, count, iterations - count * size};
}

}  // namespace gravlin
