#pragma once

#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <vector>

#include "mesh/TriangleMesh.h"
#include "numeric/Index.h"

namespace gravlin::test {

/// Expects a list for every vertex, links between ring neighbours only, and each link at both of
/// its ends and at neither twice.
inline void expectLinksAlongEdges(const TriangleMesh& mesh, const std::vector<IndexList>& links) {
  ASSERT_EQ(links.size(), toIndex(mesh.vertexCount));
  for (int v = 0; v < mesh.vertexCount; ++v) {
    const IndexList& list = links[toIndex(v)];
    for (const int u : list) {
      ASSERT_TRUE(u >= 0 && u < mesh.vertexCount);
      const IndexList& back = links[toIndex(u)];
      EXPECT_EQ(std::ranges::count(list, u), 1) << v << " - " << u;
      EXPECT_EQ(std::ranges::count(back, v), 1) << v << " - " << u;
      EXPECT_GT(std::ranges::count(mesh.getNeighbours(v), u), 0) << v << " - " << u;
    }
  }
}

/// Whether links lead from no vertex back to itself but by the way they came.
inline bool isForest(const std::vector<IndexList>& links) {
  std::vector<int> tree(links.size());
  std::iota(tree.begin(), tree.end(), 0);
  const auto rootOf = [&](int v) {
    while (tree[toIndex(v)] != v) v = tree[toIndex(v)];
    return v;
  };
  for (int v = 0; v < static_cast<int>(links.size()); ++v) {
    for (const int u : links[toIndex(v)]) {
      if (u < v) continue;
      const int a = rootOf(v);
      const int b = rootOf(u);
      if (a == b) return false;
      tree[toIndex(a)] = b;
    }
  }
  return true;
}

}  // namespace gravlin::test
