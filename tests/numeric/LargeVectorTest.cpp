#include <gtest/gtest.h>
#include <limits>
#include <numeric>

#include "numeric/LargeVector.h"

namespace gravlin {
namespace {

TEST(LargeVector, HoldsWhatAVectorHoldsBelowAndAboveAHugePage) {
  for (const std::size_t size : {0, 1, 1000, 524'288, 524'289, 3'000'001}) {
    LargeVector<double> values(size);
    std::iota(values.begin(), values.end(), 0.0);
    const LargeVector<double> copy = values;
    values.push_back(-1.0);
    EXPECT_EQ(values.size(), size + 1);
    for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(copy[i], static_cast<double>(i));
    EXPECT_EQ(values.back(), -1.0);
  }
}

TEST(LargeVector, RefusesWhatNoMemoryHolds) {
  LargeAllocator<double> allocator;
  EXPECT_THROW(static_cast<void>(allocator.allocate(std::numeric_limits<std::size_t>::max() / 8)),
               std::bad_alloc);
}

}  // namespace
}  // namespace gravlin
