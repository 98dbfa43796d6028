#include <algorithm>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <numeric>

#include "numeric/LargeVector.h"

namespace gravlin {
namespace {

TEST(LargeVector, HoldsWhatAVectorHoldsBelowAndAboveAHugePage) {
  for (const std::size_t size :
       std::initializer_list<std::size_t>{0, 1, 1000, 524'288, 524'289, 3'000'001}) {
    LargeVector<double> values(size);
    std::iota(values.begin(), values.end(), 0.0);
    const LargeVector<double> copy = values;
    values.push_back(-1.0);
    EXPECT_EQ(values.size(), size + 1);
    for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(copy[i], static_cast<double>(i));
    EXPECT_EQ(values.back(), -1.0);
  }
}

TEST(UnfilledVector, HoldsWhatItIsGiven) {
  for (const std::size_t size : std::initializer_list<std::size_t>{0, 1, 1000, 524'289}) {
    UnfilledVector<double> values(size, 3.0);
    values.resize(size + 2);
    values[size] = 4.0;
    values[size + 1] = 5.0;
    values.push_back(6.0);
    const UnfilledVector<double> copy = values;
    for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(copy[i], 3.0);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_EQ(copy[size + k], 4.0 + static_cast<double>(k));
  }
}

TEST(LargeVector, RefusesWhatNoMemoryHolds) {
  LargeAllocator<double> allocator;
  EXPECT_THROW(static_cast<void>(allocator.allocate(std::numeric_limits<std::size_t>::max() / 8)),
               std::bad_alloc);
}

TEST(LargeVector, ReservesRoomInAPlainVectorAndKeepsWhatIsThere) {
  for (const std::size_t count :
       std::initializer_list<std::size_t>{0, 1, 1000, 600'000, 3'000'000}) {
    std::vector<int> values = {1, 2, 3};
    reserveLarge(values, count);
    ASSERT_GE(values.capacity(), count);
    const std::size_t size = std::max<std::size_t>(count, 3);
    const int* data = values.data();
    values.resize(size, 7);
    EXPECT_EQ(values.data(), data) << "no second allocation";
    EXPECT_EQ(std::accumulate(values.begin(), values.end(), std::size_t{0}), 6 + 7 * (size - 3));
  }
}

TEST(LargeVector, HintForAnyPlaceAndSizeLeavesTheMemoryAlone) {
  constexpr std::size_t megabyte = std::size_t{1} << 20;
  std::vector<char> memory(10 * megabyte, 'x');
  for (const std::size_t begin : {std::size_t{0}, std::size_t{1}, 2 * megabyte - 1, 5 * megabyte}) {
    for (const std::size_t bytes : {std::size_t{0}, std::size_t{1}, 2 * megabyte, 5 * megabyte}) {
      preferHugePages(memory.data() + begin, bytes);
    }
  }
  EXPECT_EQ(std::ranges::count(memory, 'x'), 10L * long{megabyte});
}

}  // namespace
}  // namespace gravlin
