#pragma once

#include "generator/Shape.h"

namespace gravlin::examples {

/// A twisted gourd, axis along z: closed and smooth, with six ridges that wind from pole to pole
/// and six valleys between them.
Shape gourd();

}  // namespace gravlin::examples
