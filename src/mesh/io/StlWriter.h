#pragma once

#include <cstdio>

#include "mesh/io/MeshToWrite.h"

namespace gravlin {

// An STL file with the mesh's faces and their normals; 0 0 0 where a face has none. Vertices have
// no numbers in it, unused ones are not there, and fields are not written. Whether everything
// arrived is for the owner of the stream to see.

/// Positions as floats. The first comment that fits stands in the header.
void writeStlBinary(std::FILE* stream, const MeshToWrite& mesh);

/// With as few digits as give every position back.
void writeStlAscii(std::FILE* stream, const MeshToWrite& mesh);

}  // namespace gravlin
