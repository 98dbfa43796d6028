#include <array>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>

#include "numeric/Triple.h"

namespace gravlin {
namespace {

template <class Value>
class TripleForm : public testing::Test {
 protected:
  /// The three places of a value, by way of memory.
  static std::array<double, 3> placesOf(const Value& value) {
    std::array<double, 3> stored = {};
    store(stored.data(), value);
    return stored;
  }
  static void set(Value& value, const std::array<double, 3>& numbers) {
    // A fourth double that must not matter.
    const std::array<double, 4> memory = {numbers[0], numbers[1], numbers[2], 1e300};
    load(memory.data(), value);
  }
};

using Forms = testing::Types<TripleInOne, TripleInTwo>;
TYPED_TEST_SUITE(TripleForm, Forms);

TYPED_TEST(TripleForm, CalculatesPlaceByPlace) {
  TypeParam a, b;
  this->set(a, {1.0, 2.0, 3.0});
  this->set(b, {4.0, 16.0, 64.0});
  EXPECT_EQ(this->placesOf(a * b), (std::array<double, 3>{4.0, 32.0, 192.0}));
  TypeParam sum = a;
  sum += b;
  EXPECT_EQ(this->placesOf(sum), (std::array<double, 3>{5.0, 18.0, 67.0}));
}

TYPED_TEST(TripleForm, HoldsTheSameNumberThreeTimes) {
  TypeParam value;
  fill(value, -7.5);
  EXPECT_EQ(this->placesOf(value), (std::array<double, 3>{-7.5, -7.5, -7.5}));
  fill(value, -0.0);
  for (const double place : this->placesOf(value)) EXPECT_TRUE(std::signbit(place));
}

TYPED_TEST(TripleForm, TouchesOnlyThreeDoublesOfAnyAlignment) {
  std::array<double, 6> memory = {-1.0, 1.0, 2.0, 3.0, -2.0, -3.0};
  for (std::size_t begin = 0; begin <= 2; ++begin) {
    SCOPED_TRACE(begin);
    std::array<double, 6> expected = memory;
    for (std::size_t k = 0; k < 3; ++k) expected[begin + k] += 10.0 * static_cast<double>(k + 1);
    TypeParam value;
    this->set(value, {10.0, 20.0, 30.0});
    addTo(&memory[begin], value);
    EXPECT_EQ(memory, expected);

    for (std::size_t k = 0; k < 3; ++k) expected[begin + k] = 0.5;
    fill(value, 0.5);
    store(&memory[begin], value);
    EXPECT_EQ(memory, expected);
  }
}

}  // namespace
}  // namespace gravlin
