#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <utility>

#include "features/LineChains.h"
#include "features/LinkGrowth.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<IndexList> linked(int vertices, std::initializer_list<std::pair<int, int>> pairs) {
  std::vector<IndexList> links(static_cast<std::size_t>(vertices));
  for (const auto& [a, b] : pairs) link(links, a, b);
  return links;
}

TEST(LineChains, AnOpenLineRunsFromItsEndWithTheSmallerIndex) {
  EXPECT_THAT(chainLinks(linked(5, {{3, 1}, {1, 4}, {4, 0}})),
              ElementsAre(Polyline{{0, 4, 1, 3}, false}));
}

TEST(LineChains, ALoopIsClosedAndDoesNotRepeatItsFirstVertex) {
  EXPECT_THAT(chainLinks(linked(4, {{0, 1}, {1, 2}, {2, 3}, {3, 0}})),
              ElementsAre(Polyline{{0, 1, 2, 3}, true}));
}

//  1   2
//   \ /
//    0 --- 3
TEST(LineChains, LinesEndAtAJunction) {
  EXPECT_THAT(
      chainLinks(linked(4, {{0, 1}, {0, 2}, {0, 3}})),
      ElementsAre(Polyline{{0, 1}, false}, Polyline{{0, 2}, false}, Polyline{{0, 3}, false}));
}

TEST(LineChains, ALoopThroughAJunctionIsClosedThere) {
  EXPECT_THAT(chainLinks(linked(4, {{0, 1}, {1, 2}, {2, 0}, {0, 3}})),
              ElementsAre(Polyline{{0, 1, 2}, true}, Polyline{{0, 3}, false}));
}

TEST(LineChains, DuplicateLinksCountOnce) {
  EXPECT_THAT(chainLinks(linked(2, {{0, 1}, {0, 1}, {1, 0}})),
              ElementsAre(Polyline{{0, 1}, false}));
}

TEST(LineChains, NoLinksGiveNoLines) {
  EXPECT_THAT(chainLinks({}), IsEmpty());
  EXPECT_THAT(chainLinks(linked(3, {})), IsEmpty());
}

TEST(LineChains, EveryLinkedPairLiesInExactlyOneLine) {
  std::mt19937 random(5);
  for (int round = 0; round < 200; ++round) {
    const std::size_t vertices = 2 + random() % 15;
    std::vector<IndexList> links(vertices);
    std::multiset<std::pair<int, int>> expected;
    for (std::size_t k = 0; k < vertices; ++k) {
      const int a = static_cast<int>(random() % vertices);
      const int b = static_cast<int>(random() % vertices);
      if (a == b || expected.contains(std::minmax(a, b))) continue;
      link(links, a, b);
      expected.insert(std::minmax(a, b));
    }
    std::multiset<std::pair<int, int>> found;
    for (const Polyline& line : chainLinks(links)) {
      const std::size_t n = line.vertices.size();
      for (std::size_t k = 0; k + (line.closed ? 0 : 1) < n; ++k) {
        found.insert(std::minmax(line.vertices[k], line.vertices[(k + 1) % n]));
      }
    }
    EXPECT_EQ(found, expected);
  }
}

TEST(LineChains, TheLengthOfALoopIncludesItsClosingSide) {
  const TriangleMesh square = test::twoTriangles();
  EXPECT_EQ(polylineLength(square, {{0, 1, 2, 3}, true}), 4.0);
  EXPECT_EQ(polylineLength(square, {{0, 1, 2, 3}, false}), 3.0);
}

}  // namespace
}  // namespace gravlin
