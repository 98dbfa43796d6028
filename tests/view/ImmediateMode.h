#pragma once

#include "doc/CGravlinDoc.h"
#include "view/Image.h"
#include "view/ViewState.h"

namespace gravlin::test {

/// Draws a document into the bound framebuffer vertex by vertex, in the plainest way there is and
/// with none of the program's drawing code, and reads the picture back. It is what the program's
/// pictures must equal, pixel for pixel.
Image drawImmediately(const CGravlinDoc& document, const ViewState& view, ViewSize size);

}  // namespace gravlin::test
