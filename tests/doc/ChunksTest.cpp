#include <gtest/gtest.h>
#include <limits>

#include "doc/Chunks.h"

namespace gravlin {
namespace {

constexpr Animation still = {.on = false, .every = 3};

Animation animatedEvery(int every) {
  return {.on = true, .every = every};
}

TEST(Chunks, AreAboutTenWithoutAnimation) {
  EXPECT_EQ(chunksOf(7, still), (Chunks{.size = 1, .count = 7, .rest = 0}));
  EXPECT_EQ(chunksOf(9, still), (Chunks{.size = 1, .count = 9, .rest = 0}));
  EXPECT_EQ(chunksOf(10, still), (Chunks{.size = 1, .count = 10, .rest = 0}));
  EXPECT_EQ(chunksOf(25, still), (Chunks{.size = 2, .count = 12, .rest = 1}));
  EXPECT_EQ(chunksOf(10000, still), (Chunks{.size = 1000, .count = 10, .rest = 0}));
}

TEST(Chunks, LieBetweenTwoRedrawsWithAnimation) {
  EXPECT_EQ(chunksOf(10, animatedEvery(3)), (Chunks{.size = 3, .count = 3, .rest = 1}));
  EXPECT_EQ(chunksOf(10, animatedEvery(1)), (Chunks{.size = 1, .count = 10, .rest = 0}));
  EXPECT_EQ(chunksOf(10, animatedEvery(20)), (Chunks{.size = 20, .count = 0, .rest = 10}));
}

TEST(Chunks, TakeAnIntervalBelowOneForOne) {
  for (const int every : {0, -1, std::numeric_limits<int>::min()}) {
    EXPECT_EQ(chunksOf(5, animatedEvery(every)), chunksOf(5, animatedEvery(1))) << every;
  }
}

TEST(Chunks, OfACountBelowOneRunNothing) {
  for (const int count : {0, -7, std::numeric_limits<int>::min()}) {
    for (const Animation& animation : {still, animatedEvery(3)}) {
      EXPECT_LE(chunksOf(count, animation).count, 0);
      EXPECT_LE(chunksOf(count, animation).rest, 0);
    }
  }
  // Division truncates: -7 / 3 = -2, and -1 is left.
  EXPECT_EQ(chunksOf(-7, animatedEvery(3)), (Chunks{.size = 3, .count = -2, .rest = -1}));
}

TEST(Chunks, AddUpToTheIterations) {
  for (int iterations = 1; iterations <= 200; ++iterations) {
    for (int every = 0; every <= 12; ++every) {
      const Chunks chunks = chunksOf(iterations, {.on = every != 0, .every = every});
      EXPECT_EQ(chunks.size * chunks.count + chunks.rest, iterations);
      EXPECT_LT(chunks.rest, chunks.size);
    }
  }
}

}  // namespace
}  // namespace gravlin
