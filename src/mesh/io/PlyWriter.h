#pragma once

#include <cstdio>

#include "mesh/io/MeshToWrite.h"

namespace gravlin {

// A Stanford PLY file with the mesh's comments, vertices, fields and faces. Whether everything
// arrived is for the owner of the stream to see.

/// Binary, lowest bytes first. Positions are floats where these suffice, otherwise doubles.
void writePlyBinary(std::FILE* stream, const MeshToWrite& mesh);

/// With as few digits as give every position back; fields read back as the same numbers.
void writePlyAscii(std::FILE* stream, const MeshToWrite& mesh);

}  // namespace gravlin
