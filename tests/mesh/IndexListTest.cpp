#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mesh/IndexList.h"

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

}  // namespace
}  // namespace gravlin
