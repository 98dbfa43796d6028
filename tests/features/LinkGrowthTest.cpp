#include <algorithm>
#include <cstddef>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

#include "features/LinkGrowth.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Links = std::vector<IndexList>;

bool contains(const IndexList& list, int v) {
  return std::find(list.begin(), list.end(), v) != list.end();
}

/// Passes over all vertices until one changes nothing.
void growByRepeatedPasses(Links& strong, const Links& weak) {
  for (bool changed = true; changed;) {
    changed = false;
    for (std::size_t v = 0; v < strong.size(); ++v) {
      if (strong[v].empty()) continue;
      for (const int w : weak[v]) {
        if (contains(strong[v], w)) continue;
        link(strong, static_cast<int>(v), w);
        changed = true;
      }
    }
  }
}

TEST(LinkGrowth, WeakLinksJoinOnlyWhereAChainLeadsToAStrongOne) {
  Links strong(6);
  Links weak(6);
  link(strong, 0, 1);
  for (const auto& [a, b] : {std::pair{0, 1}, {1, 2}, {2, 3}, {4, 5}}) link(weak, a, b);
  growAlongWeakLinks(strong, weak);
  EXPECT_THAT(strong[2], ElementsAre(1, 3));
  EXPECT_THAT(strong[3], ElementsAre(2));
  EXPECT_THAT(strong[4], IsEmpty());
}

TEST(LinkGrowth, GivesTheListsOfRepeatedPassesInTheSameOrder) {
  std::mt19937 random(3);
  for (int round = 0; round < 500; ++round) {
    const int vertices = 2 + static_cast<int>(random() % 12);
    const auto vertex = [&] {
      return static_cast<int>(random() % static_cast<unsigned>(vertices));
    };
    Links strong(static_cast<std::size_t>(vertices));
    Links weak(static_cast<std::size_t>(vertices));
    for (int edge = 0; edge < vertices; ++edge) {
      const int a = vertex();
      const int b = vertex();
      if (a == b || contains(weak[static_cast<std::size_t>(a)], b)) continue;
      link(weak, a, b);
      if (random() % 5 == 0) link(strong, a, b);
    }
    Links expected = strong;
    growByRepeatedPasses(expected, weak);
    growAlongWeakLinks(strong, weak);
    EXPECT_EQ(strong, expected);
  }
}

// Against the order of the vertices every repeated pass would add one link only.
TEST(LinkGrowth, AChainAgainstTheOrderOfTheVerticesIsStrongToItsEnd) {
  constexpr int vertices = 200000;
  Links strong(vertices);
  Links weak(vertices);
  for (int v = 1; v < vertices; ++v) link(weak, v - 1, v);
  link(strong, vertices - 2, vertices - 1);
  growAlongWeakLinks(strong, weak);
  EXPECT_THAT(strong[0], ElementsAre(1));
}

}  // namespace
}  // namespace gravlin
