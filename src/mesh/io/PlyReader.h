#pragma once

#include <string_view>

#include "mesh/io/ImportedMesh.h"

namespace gravlin {

/// Reads a Stanford PLY file, ascii or binary of either byte order, from its whole text, which a
/// NUL follows. Positions are the properties x, y and z of the element "vertex", in whatever order
/// and of whatever types; its other numbers become properties of the mesh. Faces are the list
/// "vertex_indices" or "vertex_index" of the element "face". Everything else is skipped.
///
/// In ascii files numbers are taken one after the other, wherever lines end. Throws ImportError
/// with the line or byte and the reason, std::length_error for more than can be held and
/// std::bad_alloc; nothing is allocated for counts that the file is too short for.
ImportedMesh importPly(std::string_view text);

}  // namespace gravlin
