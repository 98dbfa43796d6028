#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// How a mesh hangs together, over its used vertices and valid faces.
struct MeshTopology {
  int usedVertices = 0;
  int validFaces = 0;
  int edges = 0;             ///< each counted once, however many faces share it
  int boundaryEdges = 0;     ///< edges of one face
  int nonManifoldEdges = 0;  ///< edges of more than two faces
  int boundaryLoops = 0;     ///< closed chains of boundary edges; loops that touch count as one
  int components = 0;        ///< parts that share no vertex

  /// V - E + F.
  int eulerCharacteristic() const { return usedVertices - edges + validFaces; }
};

/// Requires buildAdjacency. n log n in the faces; 24 bytes a face of scratch memory.
MeshTopology measureTopology(const TriangleMesh& mesh);

}  // namespace gravlin
