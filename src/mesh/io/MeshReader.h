#pragma once

#include <string_view>

#include "mesh/io/MeshStream.h"
#include "mesh/io/ReadReport.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Whether meshes of this extension can be read.
bool hasReader(std::string_view extension);

/// Reads the rest of the stream into `mesh`, which must be empty, then normalises it and builds
/// rings and face adjacency; an extension without a reader leaves no vertices and no faces.
///
/// Numbers are taken as fscanf takes "%d" and "%f" in the "C" locale. One that cannot be read is 0,
/// a negative count too, and marks out of range are ignored. Throws std::length_error, with the
/// reason as its text, for counts whose arrays would pass `maxArrayEntries`, and for counts whose
/// positions and corners would pass 64 MB with fewer than two bytes of text for each number;
/// std::bad_alloc when memory does not suffice, and std::system_error when the stream cannot be
/// read.
ReadReport readMesh(const MeshFile& file, TriangleMesh& mesh);

}  // namespace gravlin
