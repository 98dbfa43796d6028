#pragma once

namespace gravlin {

/// How the faces around a vertex hang together.
enum VertexKind : int {
  InteriorVertex = 0,     ///< one closed fan
  BoundaryVertex = 1,     ///< one open fan
  NonManifoldVertex = 2,  ///< anything else, also a vertex that no valid face uses
};

}  // namespace gravlin
