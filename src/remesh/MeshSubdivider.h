#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// How the new vertices of a refined mesh, and the old ones, are placed.
enum class SubdivisionScheme { Loop, Butterfly, Linear };

/// Refines the document's current mesh: every triangle is split into four by a new vertex on each
/// of its sides. Each scheme is a free function of a mesh in a file of its own; this object knows
/// the mesh and puts the result in its place. When counts or memory are refused (std::length_error,
/// std::bad_alloc) the mesh stays as it was. Every operation requires a mesh.
class MeshSubdivider {
 public:
  /// Points to the mesh that the operations work on from now on; null for none, and then none may
  /// be called. The mesh is not owned. Requires buildAdjacency and buildFaceAdjacency.
  void attach(TriangleMesh* current) { mesh = current; }

  void refine(SubdivisionScheme scheme);
  void loopSubdivision();
  void butterflySubdivision();
  void linearSubdivision();

 private:
  TriangleMesh* mesh = nullptr;
};

}  // namespace gravlin
