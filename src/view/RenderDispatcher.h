#pragma once

#include "doc/Shown.h"
#include "view/Scene.h"

namespace gravlin {

/// Gathers what the display mode shows: the field of a mode that has one, by its site, and
/// otherwise what the mode's own row says. Empty without a mesh and in a mode that draws nothing.
/// Throws std::bad_alloc also when there was no memory for the field's values.
Scene gatherScene(const Shown& shown);

}  // namespace gravlin
