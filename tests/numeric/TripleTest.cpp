#include <array>
#include <gtest/gtest.h>

#include "numeric/Triple.h"

namespace gravlin {
namespace {

void expectPlaces(Triple value, std::array<double, 3> expected) {
  for (std::size_t k = 0; k < 3; ++k) EXPECT_EQ(placeOf(value, k), expected[k]) << k;
}

TEST(Triple, CalculatesPlaceByPlace) {
  const Triple a(1.0, 2.0, 3.0);
  const Triple b(4.0, 16.0, 64.0);
  expectPlaces(a + b, {5.0, 18.0, 67.0});
  expectPlaces(a - b, {-3.0, -14.0, -61.0});
  expectPlaces(a * b, {4.0, 32.0, 192.0});
  expectPlaces(a / b, {0.25, 0.125, 0.046875});
  expectPlaces(2.0 * a, {2.0, 4.0, 6.0});
  expectPlaces(b / 4.0, {1.0, 4.0, 16.0});
  expectPlaces(Triple(7.0), {7.0, 7.0, 7.0});
}

TEST(Triple, TravelsThroughThreeDoublesOfAnyAlignment) {
  std::array<double, 5> memory = {-1.0, 1.0, 2.0, 3.0, -2.0};
  const Triple value = load<Triple>(&memory[1]);
  expectPlaces(value, {1.0, 2.0, 3.0});
  store(&memory[1], value + value);
  EXPECT_EQ(memory, (std::array<double, 5>{-1.0, 2.0, 4.0, 6.0, -2.0}));
}

}  // namespace
}  // namespace gravlin
