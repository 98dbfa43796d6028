#pragma once

#include "numeric/Form.h"

namespace gravlin {

/// Which error the integration of face normals reduces.
enum IntegrationError : int {
  DistanceError = 0,   ///< distance of a vertex to the planes of its faces
  DerivativeError = 1  ///< cotangent Laplacian of the ring against that of the flattened ring
};

/// How the weight of a neighbouring normal falls off with its difference k: T is the threshold.
enum WeightShape : int {
  SimilarWeight = 0,     ///< 1 / (T k^2 + 1)
  ExponentialWeight = 1  ///< exp(-T k^2)
};

/// What counts as the difference between the normals of two faces.
enum NormalDifference : int {
  CurvatureDifference = 0,  ///< the angle divided by the distance of the centroids
  AngleDifference = 1       ///< the angle
};

/// How the face normals are filtered.
enum AveragingKind : int {
  WeightFunctionAveraging = 0,  ///< a weighted mean of the neighbours' normals
  MedianAveraging = 1           ///< the neighbours' normal of middle difference
};

/// What the "Adaptive Smoothing" dialog edits. One outer iteration computes the face normals,
/// filters them `averagingIterations` times, then moves the vertices towards them
/// `integrationIterations` times. A count below 1 is none; the median adds a last chunk.
struct AdaptiveSmoothingParameters {
  int outerIterations = 10;
  float threshold = 1.0F;     ///< T of the weight functions
  float meetAtVertex = 0.5F;  ///< weight of faces that meet at a corner only, 0 .. 1
  bool animate = true;        ///< redraw between chunks
  int animateEvery = 1;       ///< outer iterations per redraw; below 1 counts as 1
  int integrationError = DerivativeError;
  int integrationIterations = 10;
  float integrationStep = 0.1F;  ///< share of the displacement that one step takes, 0 .. 1
  int averagingIterations = 1;
  int weightShape = ExponentialWeight;
  int derivativeVariant = 1;   ///< 1: plain sum; else a weighted mean, see NormalIntegration.h
  bool medianWeighted = true;  ///< an edge neighbour counts twice in the median
  int normalDifference = AngleDifference;
  int averagingKind = MedianAveraging;

  Form form();
};

}  // namespace gravlin
