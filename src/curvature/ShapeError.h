#pragma once

#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// How far each vertex lies from an ideal surface, double[V], in units of length: from the vertex
/// of the same index when both meshes have as many vertices, else from the nearest point of the
/// surface. Of `ideal` only positions and faces are read. 0 where there is no surface to measure
/// to.
std::vector<double> vertexErrors(const TriangleMesh& mesh, const TriangleMesh& ideal);

/// The angle in radians, 0 .. pi, between each face's normal and the ideal surface's, double[F]: of
/// the face of the same index when both meshes have as many vertices and faces, else of the face
/// nearest to the centroid. 0 for faces without a normal on either side. Requires the face normals
/// of `mesh`.
std::vector<double> faceErrors(const TriangleMesh& mesh, const TriangleMesh& ideal);

}  // namespace gravlin
