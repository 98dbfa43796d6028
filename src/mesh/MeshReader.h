#pragma once

#include <string>

#include "mesh/MeshFile.h"

namespace gravlin {

/// No array of a mesh that is read may have more entries.
inline constexpr int maxArrayEntries = 500'000'000;

/// Reads the rest of the stream into `mesh`, which must be empty, then normalises it and builds
/// rings and face adjacency; an extension without a reader leaves no vertices and no faces. Returns
/// what was odd about the file ("the file ended in face 3 of 8"), or nothing for an ordinary one.
///
/// Numbers are taken as fscanf takes "%d" and "%f" in the "C" locale. One that cannot be read is 0,
/// a negative count too, and marks out of range are ignored. Throws std::length_error, with the
/// reason as its text, for counts whose arrays would pass `maxArrayEntries`, std::bad_alloc when
/// memory does not suffice, and std::system_error when the stream cannot be read.
std::string readMesh(const MeshFile& file, TriangleMesh& mesh);

}  // namespace gravlin
