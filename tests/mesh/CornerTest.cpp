#include <array>
#include <gtest/gtest.h>

#include "mesh/Corner.h"

namespace gravlin {
namespace {

constexpr std::array<int, 3> corners = {7, 4, 9};

TEST(Corner, FollowsTheOrderOfTheFaceAround) {
  EXPECT_EQ(nextCorner(0), 1);
  EXPECT_EQ(nextCorner(1), 2);
  EXPECT_EQ(nextCorner(2), 0);
  EXPECT_EQ(previousCorner(0), 2);
  EXPECT_EQ(previousCorner(1), 0);
  EXPECT_EQ(previousCorner(2), 1);
}

TEST(Corner, IsFoundByItsVertex) {
  EXPECT_EQ(cornerOf(corners, 7), 0U);
  EXPECT_EQ(cornerOf(corners, 4), 1U);
  EXPECT_EQ(cornerOf(corners, 9), 2U);
  EXPECT_EQ(cornerOf(corners, 5), noCorner);
  EXPECT_EQ(cornerOf(std::array{4, 4, 9}, 4), 0U);
}

TEST(Corner, ASideIsFoundInItsOwnDirectionOnly) {
  EXPECT_EQ(sideOf(corners, {.from = 7, .to = 4}), 0U);
  EXPECT_EQ(sideOf(corners, {.from = 4, .to = 9}), 1U);
  EXPECT_EQ(sideOf(corners, {.from = 9, .to = 7}), 2U);
  EXPECT_EQ(sideOf(corners, {.from = 4, .to = 7}), noCorner);
  EXPECT_EQ(sideOf(corners, {.from = 7, .to = 5}), noCorner);
}

}  // namespace
}  // namespace gravlin
