#pragma once

#include <span>

#include "mesh/VertexKind.h"

namespace gravlin {

/// One face at a vertex: the two corners that follow the vertex in the face's own order.
struct Wedge {
  int next;  ///< the corner behind the vertex
  int prev;  ///< the corner before it
  int face;
  bool operator==(const Wedge&) const = default;
};

/// Sorts the wedges of one vertex, given in face order, into the order in which they lie around it
/// and tells how they hang together. A fan with an end starts at the last given wedge that nothing
/// lies before; a closed one at the first given. Interior and boundary rings then chain: the prev
/// of a wedge is the next of the one behind it. The wedges of a non-manifold vertex stay where the
/// attempt to chain them left them. No wedges are a non-manifold vertex.
///
/// Needs no memory for up to 32 wedges; larger rings take n log n steps.
VertexKind orderRing(std::span<Wedge> ring);

}  // namespace gravlin
