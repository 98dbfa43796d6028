#pragma once

#include <string_view>

#include "mesh/io/ImportedMesh.h"

namespace gravlin {

/// Whether the text is an STL file: binary when its size is what the number of triangles in it asks
/// for, whatever it begins with, otherwise ascii when it begins with the word "solid".
bool looksLikeStl(std::string_view text);

/// Reads an STL file, ascii or binary, from its whole text, which a NUL follows. Corners become
/// vertices in the order in which they first appear; equal corners, see PositionIndex, are one.
/// Normals and attributes are not read.
///
/// A text that does not look like STL is taken for a binary file whose size is wrong. Throws
/// ImportError with the line or byte and the reason, std::length_error for more than can be held
/// and std::bad_alloc.
ImportedMesh importStl(std::string_view text);

}  // namespace gravlin
