#pragma once

#include "doc/forms/Form.h"
#include "smoothing/AdaptiveSmoothing.h"

namespace gravlin {

/// What the "Adaptive Smoothing" dialog edits: the options of the algorithm, how often it is run,
/// by which filter, and how it is shown. Radio groups are indices of their buttons.
struct AdaptiveSmoothingParameters {
  /// How the face normals are filtered.
  enum AveragingKind : int {
    WeightFunctionAveraging = 0,  ///< adaptiveSmoothing
    MedianAveraging = 1           ///< medianSmoothing, which adds a last chunk
  };

  int outerIterations = 10;   ///< below 1: none
  float threshold = 1.0F;     ///< T of the weight functions
  float meetAtVertex = 0.5F;  ///< weight of faces that meet at a corner only, 0 .. 1
  bool animate = true;        ///< redraw between chunks
  int animateEvery = 1;       ///< outer iterations per redraw; below 1 counts as 1
  int integrationError = DerivativeError;
  int integrationIterations = 10;
  float integrationStep = 0.1F;  ///< share of the displacement that one step takes, 0 .. 1
  int averagingIterations = 1;
  int weightShape = ExponentialWeight;
  int derivativeVariant = 1;   ///< 1: plain sum; else a weighted mean
  bool medianWeighted = true;  ///< an edge neighbour counts twice in the median
  int normalDifference = AngleDifference;
  int averagingKind = MedianAveraging;

  Form form();
  /// The part of the values that the algorithm knows.
  AdaptiveSmoothingOptions options() const;
};

}  // namespace gravlin
