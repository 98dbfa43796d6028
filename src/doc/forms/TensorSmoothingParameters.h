#pragma once

#include "doc/forms/Form.h"

namespace gravlin {

/// What the "Tensor Smooth" dialog edits. Nothing is checked: counts below 1 do nothing.
struct TensorSmoothingParameters {
  /// "max", "min", "max + direction", "min + direction": which field is shown. Only the first
  /// counts as "max"; the last two behave exactly like "min".
  int displayChoice = 0;
  bool animate = false;             ///< redraw during the iterations
  int curvatureIterations = 10;     ///< of the curvature values
  int directionIterations = 5;      ///< of the directions
  float directionThreshold = 5.0F;  ///< sigma: radians per unit of length, see TensorSmoothing.h
  float curvatureThreshold = 0.1F;  ///< lambda: share of the neighbours' mean in a new value
  int animateEvery = 1;             ///< iterations between redraws; below 1 counts as 1

  Form form();
};

}  // namespace gravlin
