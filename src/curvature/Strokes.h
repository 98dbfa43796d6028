#pragma once

#include <optional>
#include <vector>

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// How far a stroke goes.
struct StrokeExtent {
  float length = 1.0F;  ///< of both halves together
  float step = 0.01F;   ///< between two points inside a face
};

/// Scatters `seedCount` seeds over the surface, as many per unit of area everywhere, and traces one
/// line along the direction of maximum curvature and one along the minimum through each. Replaces
/// `strokes`. The random sequence starts anew with every call, so the same mesh and count give the
/// same strokes. Inside its face a seed is not uniform: (a, b) with a uniform in 0 .. 1 and b
/// uniform in 0 .. 1 - a, which crowds towards corner 1.
///
/// A count below 1 or a mesh without faces gives no strokes. Requires `faceAdjacency` and
/// computeCurvatureTensor; computes the face normals when there are none.
void generateStrokes(TriangleMesh& mesh, int seedCount);

/// The line along `maxDirection` through a seed: from its far backward end through the seed to its
/// far forward end, never empty. A direction and its negative are the same line; signs are made to
/// agree from face to face.
///
/// Each half ends once it has covered half the length, after 200 points, at a border, where the
/// direction vanishes or the face has no area, where the line turns by a right angle or more, or at
/// a corner 1 or 2 of a face. Requires what generateStrokes does, and face normals.
std::vector<FacePoint> traceMaxStroke(const TriangleMesh& mesh, const FacePoint& seed,
                                      const StrokeExtent& extent);
/// The same along `minDirection`.
std::vector<FacePoint> traceMinStroke(const TriangleMesh& mesh, const FacePoint& seed,
                                      const StrokeExtent& extent);

/// A direction in the plane of a face as a step of barycentric coordinates.
struct BarycentricStep {
  double da;
  double db;
};

/// Writes v as da (c1 - c0) + db (c2 - c0) in the coordinate plane in which the face's projection
/// is largest. Nothing for an invalid face or one without area.
std::optional<BarycentricStep> directionToBarycentric(const TriangleMesh& mesh, int face,
                                                      const Vec3& v);

}  // namespace gravlin
