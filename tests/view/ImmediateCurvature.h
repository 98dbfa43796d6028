#pragma once

#include "doc/CGravlinDoc.h"

namespace gravlin::test {

/// Draws a document in one of the modes of curvature into the current context, vertex by vertex.
/// False, and nothing drawn, in any other mode. The data that the mode shows must be there.
bool drawCurvatureImmediately(const CGravlinDoc& document);

/// Gives a document whose mesh is set all data that the modes of curvature show.
void computeAllCurvature(CGravlinDoc& document);

}  // namespace gravlin::test
