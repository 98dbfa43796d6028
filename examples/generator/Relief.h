#pragma once

#include "generator/Shape.h"

namespace gravlin::examples {

/// A square tile in millimetres, z upwards, as a scanner would see it: a terrace, a dome, a ring
/// and ripples, and noise over everything. Open.
Shape relief();

}  // namespace gravlin::examples
