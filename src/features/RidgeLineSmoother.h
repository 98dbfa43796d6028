#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Straightens ridge and valley lines and fairs the band of surface beside them. Requires a mesh.
class RidgeLineSmoother {
 public:
  void attach(TriangleMesh* triangleMesh) { mesh = triangleMesh; }

  /// Each iteration first moves every line vertex with exactly two links by `step` towards the
  /// midpoint of its two neighbours, within its tangent plane; then it moves every interior vertex
  /// one or two rings away from a line by `step` against the bilaplacian. Vertices farther away
  /// stay. Normals end as they were at the start of the last iteration. Does nothing without links.
  void smooth(int iterations, float step);

 private:
  TriangleMesh* mesh = nullptr;
};

}  // namespace gravlin
