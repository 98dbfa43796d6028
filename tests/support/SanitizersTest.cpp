// What the sanitizers are built in for: each test does what must not be done, and has to end.

#include <gtest/gtest.h>
#include <vector>

namespace gravlin {
namespace {

/// Uses a value, so that the compiler has to find it.
[[gnu::noipa]] void keep(int) {
}

TEST(Sanitizers, AFloatThatNoIntegerHoldsIsNotConverted) {
  volatile float large = 1e30F;
  EXPECT_DEATH(keep(static_cast<int>(large)), "outside the range of representable values");
}

TEST(Sanitizers, NoIndexReachesBeyondAVector) {
  const std::vector<int> three = {1, 2, 3};
  std::vector<int> roomForFour = three;
  roomForFour.reserve(4);  // so that the address alone is none to complain about
  volatile std::size_t beyond = 3;
  EXPECT_DEATH(keep(roomForFour[beyond]), "Assertion '__n < this->size\\(\\)' failed");
}

TEST(Sanitizers, NoReadReachesBeyondAnAllocation) {
  const std::vector<int> three = {1, 2, 3};
  volatile std::size_t beyond = 3;
  EXPECT_DEATH(keep(*(three.data() + beyond)), "heap-buffer-overflow");
}

TEST(Sanitizers, NoIntegerOverflows) {
  volatile int largest = 2147483647;
  EXPECT_DEATH(keep(largest + 1), "signed integer overflow");
}

}  // namespace
}  // namespace gravlin
