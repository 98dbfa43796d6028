#pragma once

#include "doc/forms/Form.h"

namespace gravlin {

/// What "Ridge Dialog" edits: the six stages of ridge and valley detection.
struct RidgeParameters {
  enum PreSmoothing : int { NoPreSmoothing = 0, Common = 1, Adaptive = 2 };
  enum ThresholdMode : int { NoThreshold = 0, Histogram = 1, Constant = 2 };
  enum ExtractOn : int { OnVertex = 0, OnEdge = 1, OnFace = 2 };

  int preSmoothing = NoPreSmoothing;
  int thresholdMode = Histogram;
  int extractOn = OnVertex;
  bool showRidgeDirection = false;
  bool extraction = true;          ///< shown disabled; no stage reads it
  float constantThreshold = 2.0F;  ///< curvature, 1/length
  bool smoothTensor = true;
  bool connect = true;
  bool smoothRidgeEdges = false;
  float connectThreshold = 200.0F;  ///< largest cost of a way across a gap
  int ridgeSmoothIterations = 10;
  bool absoluteComparison = true;
  float histogramUpper = 0.6F;  ///< share of the distribution, 0 .. 1
  float histogramLower = 0.3F;  ///< share of the distribution, 0 .. 1

  Form form();
};

}  // namespace gravlin
