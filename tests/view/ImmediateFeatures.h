#pragma once

#include "doc/CGravlinDoc.h"

namespace gravlin::test {

/// Draws a mode of feature lines vertex by vertex; false for any other mode. Lighting is on before
/// and after.
bool drawFeaturesImmediately(const CGravlinDoc& document, float lineWidth);

/// Ridge and valley lines, creases and a pen drawing of the current mesh, without dialogs.
void findAllLines(CGravlinDoc& document);

}  // namespace gravlin::test
