#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "doc/CGravlinDoc.h"

namespace gravlin {

/// What the scalar of a display mode is called ("Maximum curvature"); empty for a mode that shows
/// none.
std::string_view shownFieldName(int displayMode);

/// The scalar that a document shows, which its histogram counts: double[V] for curvatures and
/// vertex errors, [3F] for edge curvatures, [F] for face errors. Empty without a mesh, in a mode
/// that shows none, and while the scalar has not been computed.
std::vector<double> shownFieldValues(const CGravlinDoc& doc);

/// Whether a display mode's scalar comes from the principal curvatures.
bool showsPrincipalCurvature(int displayMode);

/// The `shape` of the current mesh, which must exist, when the scalar on show was found.
std::uint64_t shownFieldShape(const CGravlinDoc& doc);

}  // namespace gravlin
