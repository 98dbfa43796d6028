#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

#include "numeric/Rollback.h"

namespace gravlin {
namespace {

TEST(Rollback, EmptiesWhatItGuards) {
  std::vector<int> values = {1, 2};
  int number = 3;
  const Rollback guard(values, number);
  EXPECT_TRUE(values.empty());
  EXPECT_EQ(number, 0);
}

TEST(Rollback, GivesEverythingBackWhenTheWorkEndsHalfway) {
  std::vector<int> values = {1, 2};
  int number = 3;
  const int* memory = values.data();
  try {
    Rollback guard(values, number);
    values = {7, 8, 9};
    throw std::runtime_error("halfway");
  } catch (const std::runtime_error&) {
    number += 1;
  }
  EXPECT_EQ(values, (std::vector<int>{1, 2}));
  EXPECT_EQ(values.data(), memory) << "the values moved and were not copied";
  EXPECT_EQ(number, 4);
}

TEST(Rollback, LeavesWhatWasMadeOnceToldToKeepIt) {
  std::vector<int> values = {1, 2};
  int number = 3;
  {
    Rollback guard(values, number);
    values = {7};
    number = 5;
    guard.keep();
  }
  EXPECT_EQ(values, std::vector<int>{7});
  EXPECT_EQ(number, 5);
}

}  // namespace
}  // namespace gravlin
