#pragma once

#include <cstdio>

#include "mesh/TriangleMesh.h"

namespace gravlin {

// The formats that are nothing but numbers separated by white space, see MeshFile: used vertices
// and valid faces, renumbered in index order, with six decimals; those of an imported mesh in the
// units of its file, in double precision. Require buildAdjacency. Whether
// everything arrived is for the owner of the stream to see.

void writePly2(std::FILE* stream, const TriangleMesh& mesh);
/// A mark on an unused vertex is written as -1.
void writePlyR(std::FILE* stream, const TriangleMesh& mesh);

}  // namespace gravlin
