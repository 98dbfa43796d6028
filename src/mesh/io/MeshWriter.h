#pragma once

#include <string>
#include <string_view>

#include "mesh/io/MeshStream.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Whether meshes are written with this extension.
bool hasWriter(std::string_view extension);

/// Writes used vertices and valid faces, renumbered in index order, with six decimals; nothing for
/// an extension without a writer. A mark on an unused vertex is written as -1. Requires
/// buildAdjacency. Whether everything arrived is for the owner of the stream to see.
///
/// Returns what was odd, as the end of a sentence; empty when the mesh was written.
std::string writeMesh(const MeshFile& file, const TriangleMesh& mesh);

}  // namespace gravlin
