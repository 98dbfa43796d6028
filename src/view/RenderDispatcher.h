#pragma once

#include "doc/CGravlinDoc.h"
#include "view/Scene.h"

namespace gravlin {

/// Gathers what the document's display mode shows. Empty without a mesh and in a mode that draws
/// nothing.
Scene gatherScene(const CGravlinDoc& document);

}  // namespace gravlin
