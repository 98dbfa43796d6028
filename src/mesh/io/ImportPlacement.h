#pragma once

#include <memory>

#include "mesh/io/ImportedMesh.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Joins vertices whose coordinates have equal bits, or are 0 with whatever sign, to the first of
/// them; the others are gone, and with them their properties. Faces keep their order. Returns how
/// many vertices are gone.
int weldVertices(ImportedMesh& mesh);

/// The mesh with its finite positions in the view's cube: the middle of their box at the origin,
/// its largest extent 20, rounded once to floats. `importFrame` tells the way back, `boxMin` and
/// `boxMax` are the box rounded, `extentTolerance` is the frame's scale. Where all are at one place
/// the scale is 1. Builds topology and both normals. What `imported` holds is given up on the way.
std::unique_ptr<TriangleMesh> placeInCube(ImportedMesh imported);

/// How many sides that only one face uses lie on another one between other vertices: what welding
/// would join. Requires buildFaceAdjacency.
int countCoincidingSides(const TriangleMesh& mesh);

}  // namespace gravlin
