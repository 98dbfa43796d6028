#pragma once

namespace gravlin {

/// What a document's views draw: the names of the modes that the code speaks of. All modes are in
/// ModeTable.h; a number that is not there draws nothing.
enum DisplayMode : int {
  SmoothShading = 1,
  FlatShading = 2,
  WireFrame = 3,
  FlatShadingAlso = 4,
  DirectionMax = 5,
  RidgeVertices = 6,
  RidgeDirections = 7,
  RidgeMeshEdges = 8,
  CurvatureMax = 10,
  WeightedRidgeLines = 11,
  FeatureLines = 12,
  CreaseLines = 13,
  TensorMax = 14,
  TensorMin = 15,
  DirectionMin = 16,
  CurvatureTotal = 17,
  CurvatureMean = 18,
  CurvatureGauss = 19,
  CurvatureMin = 20,
  NonManifoldPoints = 21,
  EdgeCurvature = 22,
  Silhouette = 23,
  StrokeMax = 24,
  StrokeMin = 25,
  Points = 26,
  VertexError = 28,
  FaceError = 29,
  PickedFace = 30,
  FaceValues = 31,
};

}  // namespace gravlin
