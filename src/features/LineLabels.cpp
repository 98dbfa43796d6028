#include "features/LineLabels.h"

#include <algorithm>

#include "numeric/Index.h"

namespace gravlin {
namespace {

constexpr int onNoLine = -1;

}  // namespace

LineLabels::LineLabels(const TriangleMesh& triangleMesh, std::span<const int> marks)
    : mesh(triangleMesh), given(marks.size(), onNoLine) {
  const auto unlabelled = [&](int v) {
    return marks[toIndex(v)] != 0 && given[toIndex(v)] == onNoLine;
  };
  for (int v = 0; v < mesh.vertexCount; ++v) {
    if (!unlabelled(v)) continue;
    const int label = count();
    spreadFrom(v, [&](int w) {
      if (!unlabelled(w)) return false;
      given[toIndex(w)] = label;
      return true;
    });
    renamedTo.push_back(label);
    inOnePiece.push_back(true);
  }
}

int LineLabels::labelOf(int vertex) {
  const int label = given[toIndex(vertex)];
  return label < 0 ? onNoLine : currentName(label);
}

void LineLabels::setLabel(int vertex, int label) {
  const int before = labelOf(vertex);
  if (before == label) return;
  if (before >= 0) inOnePiece[toIndex(before)] = false;  // it may have held the rest together
  if (!touches(vertex, label)) inOnePiece[toIndex(label)] = false;
  given[toIndex(vertex)] = label;
}

void LineLabels::flood(int start, int label) {
  const int before = labelOf(start);
  if (before == label) return;
  if (!touches(start, label)) inOnePiece[toIndex(label)] = false;
  if (inOnePiece[toIndex(before)]) {
    renamedTo[toIndex(before)] = label;
    return;
  }
  spreadFrom(start, [&](int v) {
    if (labelOf(v) != before) return false;
    given[toIndex(v)] = label;
    return true;
  });
}

/// Follows a label through its renamings, and shortens the way for the next time.
int LineLabels::currentName(int label) {
  while (renamedTo[toIndex(label)] != label) {
    int& next = renamedTo[toIndex(label)];
    next = renamedTo[toIndex(next)];
    label = next;
  }
  return label;
}

/// Whether a mesh edge leads from the vertex to one with the label.
bool LineLabels::touches(int vertex, int label) {
  const auto ring = mesh.getNeighbours(vertex);
  return std::any_of(ring.begin(), ring.end(), [&](int w) { return labelOf(w) == label; });
}

/// Calls `spread` for `start` and for the neighbours of every vertex for which it returns true.
template <class Spread>
void LineLabels::spreadFrom(int start, Spread spread) {
  if (spread(start)) pending.push_back(start);
  while (!pending.empty()) {
    const int v = pending.back();
    pending.pop_back();
    for (const int w : mesh.getNeighbours(v)) {
      if (spread(w)) pending.push_back(w);
    }
  }
}

}  // namespace gravlin
