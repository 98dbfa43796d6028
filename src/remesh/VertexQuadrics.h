#pragma once

#include <vector>

#include "mesh/TriangleMesh.h"
#include "remesh/Quadric.h"

namespace gravlin {

/// Per vertex [V] the mean, weighted by area, of the fundamental quadrics of its faces' planes. A
/// boundary vertex adds ten times that of the plane of its two boundary edges, so that the boundary
/// resists leaving it. Where these are nearly parallel (their cross product is shorter than 1e-6)
/// the plane holds the longer of them and the normal of the fan; without such a normal nothing is
/// added. Zero for a vertex without faces or without area.
///
/// Requires buildAdjacency and face normals.
std::vector<Quadric> vertexQuadrics(const TriangleMesh& mesh);

}  // namespace gravlin
