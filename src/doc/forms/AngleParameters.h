#pragma once

#include "doc/forms/Form.h"
#include "features/CreasesByHistogram.h"

namespace gravlin {

/// What the "Angle" dialog of the crease detection edits.
struct AngleParameters {
  enum ThresholdMode : int { ConstantAngle = 0, Histogram = 1 };

  int angle = 165;            ///< degrees between two faces, 0 .. 180
  bool shadedSurface = true;  ///< draw the surface lit instead of white behind the lines
  bool preSmoothing = false;
  int thresholdMode = Histogram;
  int histogramHi = 90;   ///< percent of the edges that are less sharp than a strong crease
  int histogramLow = 80;  ///< percent of the edges that are less sharp than a weak crease

  Form form();
  /// The cosine that the normals of two faces must fall below, -cos(angle).
  float cosThreshold() const;
  /// The percentages as shares of 1.
  CreaseShares shares() const;
};

}  // namespace gravlin
