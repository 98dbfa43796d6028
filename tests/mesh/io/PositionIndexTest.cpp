#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <tuple>

#include "mesh/io/PositionIndex.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;

TEST(PositionIndex, NumbersFollowTheFirstMeeting) {
  UnfilledVector<double> positions;
  PositionIndex index(positions, 0);
  EXPECT_EQ(index.indexOf(1, 2, 3), 0);
  EXPECT_EQ(index.indexOf(3, 2, 1), 1);
  EXPECT_EQ(index.indexOf(1, 2, 3), 0);
  EXPECT_EQ(index.indexOf(2, 1, 3), 2);
  EXPECT_THAT(positions, ElementsAre(1, 2, 3, 3, 2, 1, 2, 1, 3));
}

TEST(PositionIndex, ZeroHasNoSignAndNothingElseIsNearEnough) {
  UnfilledVector<double> positions;
  PositionIndex index(positions, 4);
  EXPECT_EQ(index.indexOf(-0.0, 0.0, 1.0), 0);
  EXPECT_EQ(index.indexOf(0.0, -0.0, 1.0), 0);
  EXPECT_TRUE(std::signbit(positions[0])) << "the first one stays as it was";
  EXPECT_EQ(index.indexOf(0.0, 0.0, std::nextafter(1.0, 2.0)), 1);
  EXPECT_EQ(index.indexOf(5e-324, 0.0, 1.0), 2);
}

TEST(PositionIndex, NumbersThatAreNoneAreEqualByTheirBits) {
  UnfilledVector<double> positions;
  PositionIndex index(positions, 4);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(index.indexOf(nan, 0, 0), 0);
  EXPECT_EQ(index.indexOf(nan, 0, 0), 0);
  EXPECT_EQ(index.indexOf(-nan, 0, 0), 1);
}

/// Compared with an ordered map, over more positions than were expected.
TEST(PositionIndex, AgreesWithAMapHoweverManyThereAre) {
  UnfilledVector<double> positions;
  PositionIndex index(positions, 3);
  std::map<std::tuple<double, double, double>, int> known;
  unsigned state = 7;
  const auto next = [&state] {
    state = state * 1664525U + 1013904223U;
    return static_cast<double>(state >> 28) / 8.0;
  };
  for (int k = 0; k < 20000; ++k) {
    const double x = next();
    const double y = next();
    const double z = next();
    const auto [entry, isNew] = known.try_emplace({x, y, z}, static_cast<int>(known.size()));
    ASSERT_EQ(index.indexOf(x, y, z), entry->second) << k;
  }
  EXPECT_EQ(positions.size(), 3 * known.size());
  EXPECT_GT(known.size(), 3000U);
}

}  // namespace
}  // namespace gravlin
