#pragma once

#include "doc/forms/Form.h"

namespace gravlin {

/// What the "Visualization" dialog edits.
struct VisualizationParameters {
  float lineWidth = 1.0F;  ///< pixels, 0 .. 100
  float pointSize = 3.0F;  ///< pixels, 0 .. 100
  bool grayScale = false;  ///< scalars and feature lines in grey, white and black

  Form form();
};

/// What the "View Angle" dialog edits; filled with the view's angles each time it opens.
struct ViewAngleParameters {
  float rx = 0.0F;  ///< degrees
  float ry = 0.0F;
  float rz = 0.0F;

  Form form();
};

}  // namespace gravlin
