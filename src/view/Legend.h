#pragma once

#include <vector>

#include "view/Camera.h"
#include "view/ColourScale.h"
#include "view/Overlay.h"

namespace gravlin {

/// A bar of the scale in the upper right corner of a view, with the values at its ends and in its
/// middle: the mean, and 1.4 deviations above and below it.
struct LegendLayout {
  std::vector<Label> labels;
  Swatch bar;
};
LegendLayout legendOf(const FieldColours& colours, const ViewSize& size);

}  // namespace gravlin
