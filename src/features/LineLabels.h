#pragma once

#include <span>
#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Tells lines apart: every marked vertex carries the label of the line that it belongs to. Labels
/// are passed on by flooding from vertex to vertex along mesh edges. A line known to be in one
/// piece is renamed instead, which takes the same time however long it is.
class LineLabels {
 public:
  /// Gives each group of marked vertices that mesh edges hold together a label of its own: 0, 1, 2,
  /// ... by smallest vertex. `marks` has V entries. The mesh has to outlive the labels.
  LineLabels(const TriangleMesh& triangleMesh, std::span<const int> marks);

  /// The number of labels at the beginning.
  int count() const { return static_cast<int>(renamedTo.size()); }

  /// The label of a vertex, or -1 for one that is on no line.
  int labelOf(int vertex);

  /// Gives one vertex a label, whatever it had before.
  void setLabel(int vertex, int label);

  /// Gives `label` to `start`, which is on a line, and to every vertex with the same label that
  /// mesh edges lead to from there over vertices with that label.
  void flood(int start, int label);

 private:
  int currentName(int label);
  bool touches(int vertex, int label);
  template <class Spread>
  void spreadFrom(int start, Spread spread);

  const TriangleMesh& mesh;
  std::vector<int> given;        ///< [V] the label last written to a vertex, or -1
  std::vector<int> renamedTo;    ///< [count] another label, or itself
  std::vector<bool> inOnePiece;  ///< [count] certainly
  std::vector<int> pending;      ///< of the flood that is running
};

}  // namespace gravlin
