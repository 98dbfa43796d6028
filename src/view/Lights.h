#pragma once

#include "doc/Outside.h"

namespace gravlin {

/// Sets up clear colour, six directional lights, the material, depth test and smoothing in the
/// current context, and puts line width and point size back to 1 and 3.
///
/// The lights stand with the eye, not with the mesh, whatever matrix is loaded. They come in
/// opposite pairs, so both sides of a surface are lit: red, green and blue pairs in
/// `LightingMode::Rgb`, otherwise one pair of the mode's colour and two grey ones.
void initLights(LightingMode mode);

}  // namespace gravlin
