#pragma once

#include <cstdio>

#include "mesh/io/MeshToWrite.h"

namespace gravlin {

/// An OFF file with the mesh's comments, vertices and faces, and as few digits as give every
/// position back. Fields are not written. Whether everything arrived is for the owner of the stream
/// to see.
void writeOff(std::FILE* stream, const MeshToWrite& mesh);

}  // namespace gravlin
