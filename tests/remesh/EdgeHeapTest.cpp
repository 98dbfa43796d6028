#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

#include "remesh/EdgeHeap.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;

EdgeHeap heapOf(const std::vector<float>& costs) {
  EdgeHeap heap(static_cast<int>(costs.size()));
  for (int edge = 0; edge < static_cast<int>(costs.size()); ++edge) {
    heap.insert(edge, costs[static_cast<std::size_t>(edge)]);
  }
  return heap;
}

std::vector<int> popAll(EdgeHeap& heap) {
  std::vector<int> edges;
  while (!heap.empty()) edges.push_back(heap.pop());
  return edges;
}

std::vector<float> randomCosts(unsigned seed, int count) {
  std::minstd_rand random(seed);
  std::vector<float> costs;
  for (int k = 0; k < count; ++k) costs.push_back(static_cast<float>(random() % 100000));
  return costs;
}

TEST(EdgeHeap, PopsInOrderOfCost) {
  for (const int count : {0, 1, 2, 3, 10, 1000}) {
    const std::vector<float> costs = randomCosts(7, count);
    EdgeHeap heap = heapOf(costs);
    std::vector<float> popped;
    for (const int edge : popAll(heap)) popped.push_back(costs[static_cast<std::size_t>(edge)]);
    std::vector<float> sorted = costs;
    std::ranges::sort(sorted);
    EXPECT_EQ(popped, sorted);
  }
}

TEST(EdgeHeap, AmongEqualCostsFollowsTheStepsOfTheHeap) {
  // 0 1 2 3 4 lie as inserted. Popping 0 brings 4 to the root, where it stays: no child is smaller.
  // Then 3 comes to the root and so on, so that the others leave from the back.
  EdgeHeap heap = heapOf({1, 1, 1, 1, 1});
  EXPECT_THAT(popAll(heap), ElementsAre(0, 4, 3, 2, 1));
}

TEST(EdgeHeap, SinksToTheLeftOfTwoEqualChildren) {
  // Root 0 of cost 1, children 1 and 2 of cost 2, then 3 of cost 5, which becomes the root and
  // sinks to the left: edge 1 leaves next, with 3 in its place.
  EdgeHeap heap = heapOf({1, 2, 2, 5});
  EXPECT_THAT(popAll(heap), ElementsAre(0, 1, 2, 3));
  EdgeHeap right = heapOf({1, 3, 2, 5});
  EXPECT_THAT(popAll(right), ElementsAre(0, 2, 1, 3));
}

TEST(EdgeHeap, MovesAnEdgeThatChangesItsCostToItsPlace) {
  std::vector<float> costs = randomCosts(3, 200);
  EdgeHeap heap = heapOf(costs);
  const std::vector<float> others = randomCosts(4, 200);
  for (int edge = 0; edge < 200; edge += 3) {
    costs[static_cast<std::size_t>(edge)] = others[static_cast<std::size_t>(edge)];
    heap.changeCost(edge, costs[static_cast<std::size_t>(edge)]);
  }
  std::vector<float> popped;
  for (const int edge : popAll(heap)) popped.push_back(costs[static_cast<std::size_t>(edge)]);
  EXPECT_TRUE(std::ranges::is_sorted(popped));
  EXPECT_EQ(popped.size(), 200U);
}

TEST(EdgeHeap, TakesARemovedEdgeOutAndKeepsTheOrderOfTheOthers) {
  EdgeHeap heap = heapOf({4, 1, 3, 2, 5});
  heap.remove(3);
  EXPECT_FALSE(heap.contains(3));
  EXPECT_TRUE(heap.contains(2));
  EXPECT_THAT(popAll(heap), ElementsAre(1, 2, 0, 4));
}

TEST(EdgeHeap, RemovesTheEdgeThatWasMeantWhateverTheCosts) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float inf = std::numeric_limits<float>::infinity();
  const std::vector<float> costs = {nan, -inf, 2, nan, -inf, inf, nan, 0};
  for (int removed = 0; removed < 8; ++removed) {
    EdgeHeap heap = heapOf(costs);
    heap.remove(removed);
    EXPECT_FALSE(heap.contains(removed));
    std::vector<int> rest = popAll(heap);
    EXPECT_EQ(rest.size(), 7U);
    EXPECT_EQ(std::ranges::count(rest, removed), 0);
  }
}

}  // namespace
}  // namespace gravlin
