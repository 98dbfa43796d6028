#pragma once

#include <string_view>

#include "mesh/io/ImportedMesh.h"

namespace gravlin {

/// Whether the first word of the text, comments left aside, is "OFF", also with the letters "ST",
/// "C", "N", "4" and "n" before it.
bool looksLikeOff(std::string_view text);

/// Reads an OFF file from its whole text, which a NUL follows: positions and faces. Colours,
/// normals and texture coordinates are not read, and comments go from # to the end of their line.
/// Records that have more than the format asks for must each stand on a line of their own.
///
/// Throws ImportError with line and reason, also for OFF files that are binary or of other than
/// three dimensions, std::length_error for more than can be held and std::bad_alloc; nothing is
/// allocated for counts that the file is too short for.
ImportedMesh importOff(std::string_view text);

}  // namespace gravlin
