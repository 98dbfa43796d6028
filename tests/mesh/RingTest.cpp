#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <utility>
#include <vector>

#include "mesh/Ring.h"
#include "mesh/RingDefinition.h"

namespace gravlin {
namespace {

using test::orderByDefinition;

/// A fan about one vertex, open or closed, in random order and then damaged `damage` times.
std::vector<Wedge> randomRing(int faces, int damage, std::mt19937& random) {
  const auto below = [&random](int n) {
    return static_cast<int>(random() % static_cast<unsigned>(n));
  };
  std::vector<Wedge> ring;
  const bool closed = below(2) == 0;
  for (int k = 0; k < faces; ++k) ring.push_back({k, k + 1, k});
  if (closed && !ring.empty()) ring.back().prev = 0;
  std::shuffle(ring.begin(), ring.end(), random);
  for (int d = 0; d < damage && !ring.empty(); ++d) {
    Wedge& wedge = ring[static_cast<std::size_t>(below(faces))];
    (below(2) == 0 ? wedge.next : wedge.prev) = below(faces + 2);
  }
  for (int k = 0; k < faces; ++k) ring[static_cast<std::size_t>(k)].face = k;
  return ring;
}

TEST(Ring, AgreesWithTheDefinitionOnRandomRingsOfEverySize) {
  std::mt19937 random(1);
  int seen[3] = {0, 0, 0};
  for (int round = 0; round < 20000; ++round) {
    // Small, around the size where the method changes, and well beyond it.
    const int sizes[] = {round % 9, 28 + round % 9, 100};
    const int faces = sizes[round % 20 == 0 ? 2 : round % 2];
    std::vector<Wedge> ring = randomRing(faces, round % 4, random);
    std::vector<Wedge> expected = ring;
    const VertexKind expectedKind = orderByDefinition(expected);
    ASSERT_EQ(orderRing(ring), expectedKind) << "round " << round;
    ASSERT_EQ(ring, expected) << "round " << round;
    ++seen[expectedKind];
  }
  for (const int count : seen) EXPECT_GT(count, 500);
}

TEST(Ring, AgreesWithTheDefinitionOnWedgesOfNoOrderAtAll) {
  std::mt19937 random(2);
  const auto below = [&random](int n) {
    return static_cast<int>(random() % static_cast<unsigned>(n));
  };
  for (int round = 0; round < 5000; ++round) {
    const int names = 2 + below(40);
    std::vector<Wedge> ring(static_cast<std::size_t>(below(60)));
    for (std::size_t k = 0; k < ring.size(); ++k) {
      ring[k] = {below(names), below(names), static_cast<int>(k)};
    }
    std::vector<Wedge> expected = ring;
    const VertexKind expectedKind = orderByDefinition(expected);
    ASSERT_EQ(orderRing(ring), expectedKind) << "round " << round;
    ASSERT_EQ(ring, expected) << "round " << round;
  }
}

TEST(Ring, AnOpenFanStartsAtItsEndWhateverTheOrderGiven) {
  std::vector<Wedge> ring = {{2, 3, 0}, {1, 2, 1}, {3, 4, 2}};
  EXPECT_EQ(orderRing(ring), BoundaryVertex);
  EXPECT_EQ(ring, (std::vector<Wedge>{{1, 2, 1}, {2, 3, 0}, {3, 4, 2}}));
}

TEST(Ring, AClosedFanStartsAtTheFirstGivenWedge) {
  std::vector<Wedge> ring = {{2, 3, 0}, {1, 2, 1}, {3, 1, 2}};
  EXPECT_EQ(orderRing(ring), InteriorVertex);
  EXPECT_EQ(ring, (std::vector<Wedge>{{2, 3, 0}, {3, 1, 2}, {1, 2, 1}}));
}

TEST(Ring, OfTwoFansTheLastGivenEndComesFirst) {
  std::vector<Wedge> ring = {{1, 2, 0}, {3, 4, 1}};
  EXPECT_EQ(orderRing(ring), NonManifoldVertex);
  EXPECT_EQ(ring, (std::vector<Wedge>{{3, 4, 1}, {1, 2, 0}}));
}

TEST(Ring, ManyShuffledWedgesAreOneFan) {
  std::mt19937 random(3);
  constexpr int n = 300000;
  std::vector<Wedge> ring;
  for (int k = 0; k < n; ++k) ring.push_back({k, (k + 1) % n, k});
  std::shuffle(ring.begin(), ring.end(), random);
  const int first = ring.front().next;
  ASSERT_EQ(orderRing(ring), InteriorVertex);
  for (int k = 0; k < n; ++k) ASSERT_EQ(ring[static_cast<std::size_t>(k)].next, (first + k) % n);
}

}  // namespace
}  // namespace gravlin
