#include <gtest/gtest.h>

#include "numeric/Random.h"

namespace gravlin {
namespace {

TEST(Random, FollowsItsRecurrence) {
  // 100 x 214013 + 2531011 = 23932311; 23932311 / 65536 = 365 and a rest.
  // 23932311 x 214013 + 2531011 = 5121828205254 = 1192 x 2^32 + 2227188222; 2227188222 / 65536 =
  // 33984 and a rest; less 32768 = 1216.
  Random random(100);
  EXPECT_EQ(random.rand(), 365);
  EXPECT_EQ(random.rand(), 1216);
}

TEST(Random, StartsAgainWithTheSameSeed) {
  Random random(7);
  const int first = random.rand();
  random.rand();
  random.srand(7);
  EXPECT_EQ(random.rand(), first);
  EXPECT_EQ(Random(7).rand(), first);
}

TEST(Random, FillsItsRangeEvenly) {
  constexpr int draws = 320000;
  constexpr int bins = 32;
  int count[bins] = {};
  Random random(100);
  for (int i = 0; i < draws; ++i) {
    const int value = random.rand();
    ASSERT_GE(value, 0);
    ASSERT_LE(value, Random::largest);
    ++count[value / 1024];
  }
  // 10000 a bin with a standard deviation of about 98.
  for (const int n : count) EXPECT_NEAR(n, draws / bins, 500);
}

}  // namespace
}  // namespace gravlin
