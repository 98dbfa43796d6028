#pragma once

#include "generator/Shape.h"

namespace gravlin::examples {

/// A spur gear in millimetres, axis along z: bore with a keyway, hub, web with slots, rim, teeth.
/// Most edges are sharp, convex or concave; the foot of the hub is a fillet. Closed, of genus one
/// more than there are slots.
Shape gear();

/// Slots through the web of the gear.
constexpr int gearSlotCount = 4;

}  // namespace gravlin::examples
