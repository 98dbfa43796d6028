#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

// One pass of filtering the unit normals in `faceNormals`. All new normals are computed from the
// old ones and then replace them as a whole; positions stay as they are. The difference of two
// faces is the angle between their normals in radians or that angle per distance of their
// centroids, as `difference` says. Requires face adjacency and face normals. An invalid face keeps
// its normal.

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

/// The weight of a neighbour: its area times a function of its difference k.
struct NormalWeight {
  double threshold = 1.0;                 ///< T; what a difference of 1 counts
  WeightShape shape = ExponentialWeight;  ///< exp(-T k^2) or 1 / (T k^2 + 1)
  NormalDifference difference = AngleDifference;
};

/// Every normal becomes the normalised weighted mean of its edge neighbours' normals. A neighbour
/// at no distance has no weight where the difference is taken per distance. A face whose weights or
/// whose mean vanish keeps its normal.
void averageNormalsWeighted(TriangleMesh& mesh, const NormalWeight& weight);

/// As above, with the faces that meet at a corner only taken in as well, their weight multiplied by
/// `meetAtVertex`. A neighbour at no distance is left out. Requires buildCornerNeighbourFaces.
void averageNormalsVertexWeighted(TriangleMesh& mesh, const NormalWeight& weight,
                                  double meetAtVertex);

/// Which candidates a median chooses from, and by what.
struct MedianFilter {
  bool weighted = true;  ///< every edge neighbour stands in the list twice in a row
  NormalDifference difference = AngleDifference;
};

/// Every normal becomes that of the neighbour of middle difference. The n candidates are the edge
/// neighbours and the faces that meet at a corner only; the rank taken, counted from 1 at the
/// smallest difference, is n / 2 made even by adding 1 where it is odd. Equal differences keep the
/// candidates' order; one that is not a number ranks last; no distance makes it 0. A face without a
/// candidate of that rank (none or one in all) keeps its normal. Requires
/// buildCornerNeighbourFaces.
void averageNormalsMedian(TriangleMesh& mesh, const MedianFilter& filter);

}  // namespace gravlin
