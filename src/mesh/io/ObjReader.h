#pragma once

#include <string_view>

#include "mesh/io/ImportedMesh.h"

namespace gravlin {

/// Whether the first statement of the text is one of an OBJ file.
bool looksLikeObj(std::string_view text);

/// Reads an OBJ file from its whole text, which a NUL follows. Vertices are the first three numbers
/// of each "v"; faces the numbers of vertices in each "f", counted from 1 or, below 0, backwards
/// from the last vertex before; what follows a slash is not read, nor is any other statement. A
/// backslash at the end of a line joins the next one to it, but not in a comment.
///
/// Throws ImportError with line and reason, std::length_error for more than can be held and
/// std::bad_alloc.
ImportedMesh importObj(std::string_view text);

}  // namespace gravlin
