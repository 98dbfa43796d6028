#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "mesh/IndexList.h"
#include "support/Allocations.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;

TEST(IndexList, KeepsOrderAndDuplicates) {
  IndexList list;
  for (const int vertex : {7, 3, 7}) list.append(vertex);
  EXPECT_THAT(list, ElementsAre(7, 3, 7));
}

TEST(IndexList, RemoveTakesEveryEqualEntryAndKeepsTheOrderOfTheOthers) {
  IndexList list;
  for (const int vertex : {5, 1, 5, 2}) list.append(vertex);
  list.remove(5);
  EXPECT_THAT(list, ElementsAre(1, 2));
}

TEST(IndexList, EmptyListsTakeNoMemory) {
  std::vector<IndexList> lists;
  lists.reserve(1000);
  const std::size_t before = test::allocationCount();
  for (int i = 0; i < 1000; ++i) lists.emplace_back();
  const std::vector<IndexList> moved = std::move(lists);
  EXPECT_EQ(test::allocationCount(), before);
  EXPECT_TRUE(moved.back().empty());
}

// A list that deleted the rest behind each of its nodes would run out of stack.
TEST(IndexList, AListOfTenMillionGoesAway) {
  constexpr int entries = 10000000;
  IndexList list;
  for (int i = 0; i < entries; ++i) list.append(i);
  EXPECT_EQ(list[entries - 1], entries - 1);
  list = IndexList();
  EXPECT_TRUE(list.empty());
}

}  // namespace
}  // namespace gravlin
