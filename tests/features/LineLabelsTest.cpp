#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

#include "features/LineLabels.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using namespace gravlin::test;

/// The same by floods alone: a label for every vertex, written vertex by vertex.
struct FloodedLabels {
  const TriangleMesh& mesh;
  std::vector<int> labels;
  int count = 0;

  FloodedLabels(const TriangleMesh& triangleMesh, const std::vector<int>& marks)
      : mesh(triangleMesh), labels(marks.size(), -1) {
    constexpr int waiting = -2;
    for (std::size_t v = 0; v < marks.size(); ++v) {
      if (marks[v] != 0) labels[v] = waiting;
    }
    for (std::size_t v = 0; v < marks.size(); ++v) {
      if (labels[v] == waiting) flood(static_cast<int>(v), count++);
    }
  }

  void flood(int start, int label) {
    const int before = labels[static_cast<std::size_t>(start)];
    if (before == label) return;
    std::vector<int> pending = {start};
    while (!pending.empty()) {
      const int v = pending.back();
      pending.pop_back();
      if (labels[static_cast<std::size_t>(v)] != before) continue;
      labels[static_cast<std::size_t>(v)] = label;
      for (const int w : mesh.getNeighbours(v)) pending.push_back(w);
    }
  }
};

std::vector<int> allLabels(LineLabels& labels, int vertexCount) {
  std::vector<int> result;
  for (int v = 0; v < vertexCount; ++v) result.push_back(labels.labelOf(v));
  return result;
}

/// A row of so many vertices, each joined to the one before and the one after.
TriangleMesh rowOf(int vertices) {
  return grid(vertices - 1, 1);
}

TEST(LineLabels, GroupsHeldTogetherByMeshEdgesHaveLabelsInOrderOfTheirFirstVertices) {
  const TriangleMesh mesh = rowOf(7);
  std::vector<int> marks(14, 0);
  for (const int v : {0, 1, 3, 5, 6}) marks[static_cast<std::size_t>(v)] = 1;
  LineLabels labels(mesh, marks);
  EXPECT_EQ(labels.count(), 3);
  auto firstRow = allLabels(labels, 7);
  EXPECT_THAT(firstRow, ElementsAre(0, 0, -1, 1, -1, 2, 2));
}

TEST(LineLabels, AFloodStopsWhereOneVertexOfTheLineHasAnotherLabel) {
  const TriangleMesh mesh = rowOf(7);
  std::vector<int> marks(14, 0);
  for (const int v : {0, 1, 2, 3, 4, 6}) marks[static_cast<std::size_t>(v)] = 1;
  LineLabels labels(mesh, marks);
  labels.setLabel(2, 1);
  labels.flood(0, 1);
  EXPECT_THAT(allLabels(labels, 7), ElementsAre(1, 1, 1, 0, 0, -1, 1));
}

TEST(LineLabels, AnyChangesGiveTheLabelsOfFloodsFromVertexToVertex) {
  std::mt19937 random(17);
  for (const auto& meshes : {openMeshes(), closedMeshes(), hostileMeshes()}) {
    for (const auto& [name, mesh] : meshes) {
      SCOPED_TRACE(name);
      if (mesh.vertexCount == 0) continue;
      const auto vertex = [&, V = static_cast<unsigned>(mesh.vertexCount)] {
        return static_cast<int>(random() % V);
      };
      for (int round = 0; round < 20; ++round) {
        std::vector<int> marks;
        for (int v = 0; v < mesh.vertexCount; ++v) marks.push_back(random() % 2 == 0 ? 1 : 0);
        LineLabels labels(mesh, marks);
        FloodedLabels expected(mesh, marks);
        ASSERT_EQ(labels.count(), expected.count);
        for (int change = 0; change < 12; ++change) {
          const int from = vertex();
          const int to = labels.labelOf(vertex());
          if (to < 0) continue;
          if (labels.labelOf(from) >= 0 && random() % 3 != 0) {
            labels.flood(from, to);
            expected.flood(from, to);
          } else {
            labels.setLabel(from, to);
            expected.labels[static_cast<std::size_t>(from)] = to;
          }
          ASSERT_EQ(allLabels(labels, mesh.vertexCount), expected.labels);
        }
      }
    }
  }
}

// The whole of row 0 is joined to single vertices of row 2, one after the other. By floods alone
// that would be 30,000 floods over 60,000 vertices and more.
TEST(LineLabels, ALongLineJoinedToMoreAndMoreShortOnesIsOneLine) {
  constexpr int columns = 60000;
  const TriangleMesh mesh = grid(columns, 2);
  const auto at = [](int column, int row) { return row * (columns + 1) + column; };
  std::vector<int> marks(static_cast<std::size_t>(mesh.vertexCount), 0);
  for (int c = 0; c <= columns; ++c) {
    marks[static_cast<std::size_t>(at(c, 0))] = 1;
    if (c % 2 == 0) marks[static_cast<std::size_t>(at(c, 2))] = 1;
  }
  LineLabels labels(mesh, marks);
  ASSERT_EQ(labels.count(), 1 + columns / 2 + 1);
  for (int c = 0; c <= columns; c += 2) {
    const int label = labels.labelOf(at(c, 2));
    labels.setLabel(at(c, 1), label);
    labels.flood(at(c, 0), label);
  }
  EXPECT_EQ(labels.labelOf(at(0, 0)), labels.labelOf(at(columns, 0)));
  EXPECT_EQ(labels.labelOf(at(0, 2)), labels.labelOf(at(columns, 2)));
}

}  // namespace
}  // namespace gravlin
