#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Signed volume by the divergence theorem: positive for a closed mesh whose normals point outward.
/// The same sum is taken over the faces of an open mesh. Invalid faces add nothing.
double enclosedVolume(const TriangleMesh& mesh);

/// Whether the mesh is closed, every edge of a valid face having a face behind it, and its normals
/// point inwards, so that the volume is negative. Requires buildFaceAdjacency; false without it.
bool isInsideOut(const TriangleMesh& mesh);

/// Length of the shortest edge that is longer than 0, over the rings; 1000000 if there is none.
/// Requires buildAdjacency.
double shortestEdgeLength(const TriangleMesh& mesh);

/// How many vertices have a coordinate that is infinite or not a number.
int countNonFiniteVertices(const TriangleMesh& mesh);

/// Whether all positions are finite, in memory and in the units of a file.
bool hasFiniteShape(const TriangleMesh& mesh);

/// Multiplies every coordinate by s.
void scaleVertices(TriangleMesh& mesh, double s);

/// Scales about the origin so that `enclosedVolume` becomes `volume` (up to rounding). A mesh
/// without volume is left as it is; one whose volume has the other sign gets positions that are not
/// numbers.
void rescaleToVolume(TriangleMesh& mesh, double volume);

}  // namespace gravlin
