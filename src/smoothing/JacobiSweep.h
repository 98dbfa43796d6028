#pragma once

#include <vector>

#include "mesh/TriangleMesh.h"
#include "numeric/Index.h"
#include "numeric/ParallelLoop.h"

namespace gravlin {

/// Writes next(i) into the positions of every interior vertex i and leaves those of all others, in
/// a parallel loop.
template <class Next>
void setInteriorPositions(const TriangleMesh& mesh, std::vector<float>& positions, Next next) {
  float* out = positions.data();
  parallelFor(mesh.vertexCount, [&mesh, out, next](int i) {
    if (mesh.vertexKind[toIndex(i)] == InteriorVertex) storeVec3(out + 3 * toIndex(i), next(i));
  });
}

/// Moves the interior vertices of a mesh by simultaneous updates: every new position is computed
/// from the positions at the start of the sweep, and only then do all of them take effect. Keeps
/// its buffer, 3V floats, from sweep to sweep.
class JacobiSweep {
 public:
  /// Requires buildAdjacency. The mesh must outlive the object, and nothing else may move its
  /// vertices in the meantime.
  explicit JacobiSweep(TriangleMesh& swept) : mesh(swept), moved(swept.vertices) {}

  /// x_i += factor x displacement(i) for every interior vertex i, in double precision and rounded
  /// when stored. Vertices of any other kind keep their bits. `displacement` maps a vertex index to
  /// a Vec3, for several vertices at the same time, and must not change the mesh.
  template <class Displacement>
  void run(double factor, Displacement displacement) {
    setInteriorPositions(mesh, moved, [this, factor, displacement](int i) {
      return mesh.position(i) + factor * displacement(i);
    });
    mesh.vertices.swap(moved);
  }

 private:
  TriangleMesh& mesh;
  std::vector<float> moved;  ///< both buffers hold the same bits for vertices that do not move
};

}  // namespace gravlin
