#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <utility>

#include "features/EdgeFold.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using namespace gravlin::test;

// The centroids on both sides of an edge lie 2/3 from it, and at the same place along it or 2/3
// apart: each normal leans away by acos(-1 / sqrt 2) or acos(-1 / sqrt 3).
TEST(EdgeFold, TheFoldSumOfACubesEdgeIsAsFarAbovePiAsItIsBelowSeenFromInside) {
  const TriangleMesh outside = cube();
  const TriangleMesh inside = insideOutCube();
  const double level = 1.5 * std::numbers::pi;
  const double shifted = 2.0 * std::acos(-1.0 / std::sqrt(3.0));
  int edges = 0;
  for (std::size_t e = 0; e < outside.faceAdjacency.size(); ++e) {
    const int f = static_cast<int>(e / 3);
    const int g = outside.faceAdjacency[e];
    if (f / 2 == g / 2) continue;  // the diagonal between the two halves of a side
    ++edges;
    const double sum = edgeFold(outside, f, g).foldSum;
    // Centroids are rounded to single precision, six digits of angles below 5.
    EXPECT_LT(std::min(std::abs(sum - level), std::abs(sum - shifted)), 1e-5);
    EXPECT_NEAR(sum + edgeFold(inside, f, g).foldSum, 2.0 * std::numbers::pi, 1e-5);
  }
  EXPECT_EQ(edges, 24) << "twelve, from either side";
}

/// Calls `visit` with the two faces of every interior edge.
template <class Visit>
void forEachFold(const TriangleMesh& mesh, Visit visit) {
  for (std::size_t e = 0; e < mesh.faceAdjacency.size(); ++e) {
    if (mesh.faceAdjacency[e] >= 0) visit(static_cast<int>(e / 3), mesh.faceAdjacency[e]);
  }
}

// pi as the crease detections compare with it.
TEST(EdgeFold, WhatIsClearWithoutTheAnglesIsWhatTheFoldSumSays) {
  constexpr double pi = 3.14159265;
  constexpr double twoPi = 6.2831853;
  int clear = 0;
  for (const double amplitude : {0.0, 1e-7, 1e-6, 1e-5, 1e-3, 0.1, 3.0}) {
    for (auto meshes : {openMeshes(), closedMeshes(), hostileMeshes()}) {
      for (auto& named : meshes) {
        SCOPED_TRACE(named.name);
        const TriangleMesh mesh = jittered(std::move(named.mesh), amplitude);
        forEachFold(mesh, [&](int f, int g) {
          const auto convex = clearlyConvex(mesh, f, g);
          if (!convex) return;
          ++clear;
          const EdgeFold fold = edgeFold(mesh, f, g);
          EXPECT_TRUE(fold.centroidsDiffer);
          const double sum = fold.foldSum;
          EXPECT_EQ(*convex, sum > pi);
          EXPECT_EQ(!*convex, sum < pi);
          EXPECT_TRUE(sum >= 0.0 && sum <= twoPi) << sum;
        });
      }
    }
  }
  EXPECT_GT(clear, 10000);
}

TEST(EdgeFold, AFlatOrAMissingFaceLeavesItOpen) {
  const TriangleMesh flat = grid(3, 3);
  forEachFold(flat, [&](int f, int g) { EXPECT_FALSE(clearlyConvex(flat, f, g)); });
  const TriangleMesh nan = withNan();
  int open = 0;
  forEachFold(nan, [&](int f, int g) { open += clearlyConvex(nan, f, g) ? 0 : 1; });
  EXPECT_GT(open, 0);
}

}  // namespace
}  // namespace gravlin
