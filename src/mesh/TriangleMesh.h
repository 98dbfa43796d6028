#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "mesh/CompressedRows.h"
#include "mesh/FacePoint.h"
#include "mesh/FileFrame.h"
#include "mesh/IndexList.h"
#include "mesh/VertexKind.h"
#include "numeric/Vec3.h"

namespace gravlin {

/// The hatching lines on a mesh: per seed one line along the direction of maximum curvature and one
/// along the minimum, each from its far backward end through the seed to its far forward end.
struct Strokes {
  std::vector<FacePoint> strokeSeeds;              ///< [strokeCount]
  std::vector<std::vector<FacePoint>> maxStrokes;  ///< [strokeCount], none of them empty
  std::vector<std::vector<FacePoint>> minStrokes;  ///< [strokeCount], none of them empty
};

/// The shape that a field was found on, and what has become of it.
struct FieldOrigin {
  std::uint64_t shape = 0;  ///< the mesh's `shape` then
  double unit = 0.0;        ///< its `extentTolerance` then: a length of 1 in units of the file
  /// 0 for values as they were found. Whoever smooths them gives every smoothing its own number.
  std::uint64_t smoothing = 0;
};

/// An indexed triangle set with everything derived from it that commands and drawing read.
/// Positions and normals are single precision, all geometry in between is double. An empty array
/// has not been built (or belongs to an empty mesh). V and F below are `vertexCount` and
/// `faceCount`.
///
/// Order of building: geometry set (`setVertexCount` ... `setFace`), `normalize`, `buildAdjacency`,
/// `buildFaceAdjacency`, `computeFaceNormals`, `computeVertexNormals`. Whatever moves vertices
/// calls the last two again; whatever changes faces starts again at `buildAdjacency`.
class TriangleMesh {
 public:
  // --- Geometry ---
  int faceCount = 0;
  int vertexCount = 0;
  std::vector<float> vertices;  ///< [3V] x, y, z
  std::vector<int> faces;       ///< [3F] corners; (-1, -1, -1) is an invalid (removed) face
  /// Which shape positions and faces make up, to whatever scale. Kept by the mesh's owner, who
  /// gives every new shape a number of its own.
  std::uint64_t shape = 0;

  // --- Topology, filled by buildAdjacency and buildFaceAdjacency ---
  /// One-ring of each vertex. Consecutive neighbours v(k), v(k+1) of vertex i form the stored face
  /// (i, v(k), v(k+1)), so a ring turns as the faces do: counter-clockwise seen from the side that
  /// the normals point to. n faces give n neighbours around an interior vertex, n + 1 around a
  /// boundary vertex and 2n (with repeats) around a non-manifold one.
  CompressedRows vertexNeighbours;
  CompressedRows vertexFaces;  ///< incident faces in ring order: face k lies between v(k), v(k+1)
  std::vector<int> faceAdjacency;  ///< [3F] face across the edge corner j - corner j+1, or -1
  std::vector<int> vertexKind;     ///< [V] a VertexKind
  /// Per face the faces that meet it at a corner only; built by adaptive smoothing, empty
  /// otherwise.
  CompressedRows cornerNeighbourFaces;

  // --- Normals ---
  std::vector<float> vertexNormals;  ///< [3V] unit, weighted by face area; 0 where undefined
  std::vector<float> faceNormals;    ///< [3F] unit; 0 for a degenerate or invalid face

  // --- Curvature ---
  std::vector<double> maxCurvature, minCurvature;  ///< [V] principal curvatures, 1/length
  /// [3V] Right-handed with the normal. Unit, or 0 where there are none. Of a smoothed pair the one
  /// that is rebuilt as a cross product is shorter where the other leans out of the tangent plane.
  std::vector<double> maxDirection, minDirection;
  std::vector<double> maxDerivativeGradient;  ///< [3V] unit direction in which a ridge runs
  std::vector<double> minDerivativeGradient;  ///< [3V] unit direction in which a valley runs
  FieldOrigin curvatureOrigin;                ///< of the principal curvatures
  std::vector<double> edgeCurvatures;         ///< [3F] numbered as faceAdjacency
  FieldOrigin edgeCurvatureOrigin;
  std::vector<int> coherentFaces;  ///< [F] 1 where maxDirection turns slowly

  // --- Feature lines and strokes ---
  std::vector<int> ridgeMarks, valleyMarks;        ///< [V] 0 or 1
  std::vector<IndexList> ridgeLinks, valleyLinks;  ///< [V] neighbours along the lines, both ways
  Strokes strokes;

  // --- Place and size in the file's units ---
  std::array<float, 3> boxMax = {0.0F, 0.0F, 0.0F};  ///< found by the last normalize
  std::array<float, 3> boxMin = {0.0F, 0.0F, 0.0F};
  double extentTolerance = 0.0;  ///< 0.05 x the largest box extent; one unit in memory
  /// Of an imported mesh, exact where the box is rounded; `normalize` knows nothing of it. Nothing
  /// for a mesh whose place is told by its box.
  std::optional<FileFrame> importFrame;

  std::optional<int> pickedFace;  ///< the face last picked by a double click

  // --- Setting the geometry ---
  /// Sets V and makes room for 3V floats, all zero. Derived arrays are left as they are.
  void setVertexCount(int n);
  /// Sets F and makes room for 3F ints, all zero. Derived arrays are left as they are.
  void setFaceCount(int n);
  int getFaceCount() const { return faceCount; }
  void setVertex(int i, std::span<const float, 3> xyz);
  void setFace(int f, std::span<const int, 3> abc);

  /// Moves the box's centre to the origin and scales its largest extent to 20. The box and
  /// `extentTolerance` keep the values in the units found. A coordinate that raises the maximum of
  /// its axis is not compared with the minimum, so with coordinates that only ever rise the minimum
  /// of that axis stays at 1000000.
  void normalize();
  /// The inverse of `normalize`: back to the units of the box. The box stays as it is.
  void denormalize();

  /// How positions lie in the units of the file that the mesh came from.
  FileFrame fileFrame() const;

  // --- Building topology ---
  /// Makes faces with an index out of range or a repeated corner invalid, then builds
  /// `vertexNeighbours`, `vertexFaces` and `vertexKind`. Linear in V + F (quadratic in a valence
  /// only where a fan is traversed).
  void buildAdjacency();
  /// Builds `faceAdjacency` from the rings. Requires buildAdjacency.
  void buildFaceAdjacency();

  // --- Queries ---
  int neighbourCount(int i) const { return vertexNeighbours.length(i); }
  int vertexFaceCount(int i) const { return vertexFaces.length(i); }
  std::span<const int> getNeighbours(int i) const { return vertexNeighbours[i]; }
  /// Number of vertices with a non-empty ring.
  int countUsedVertices() const;
  /// Per vertex its index among those with a non-empty ring, or -1: how copies and files renumber.
  std::vector<int> usedVertexIndices() const;
  /// Number of faces whose first index is not -1.
  int countValidFaces() const;
  bool validFace(int f) const { return faces[3 * static_cast<std::size_t>(f)] >= 0; }
  std::span<const int, 3> corners(int f) const {
    return std::span<const int, 3>(faces.data() + 3 * static_cast<std::size_t>(f), 3);
  }
  Vec3 position(int i) const { return loadVec3(vertices.data() + 3 * static_cast<std::size_t>(i)); }
  Vec3 vertexNormal(int i) const {
    return loadVec3(vertexNormals.data() + 3 * static_cast<std::size_t>(i));
  }
  Vec3 faceNormal(int f) const {
    return loadVec3(faceNormals.data() + 3 * static_cast<std::size_t>(f));
  }
  void setPosition(int i, const Vec3& p) {
    storeVec3(vertices.data() + 3 * static_cast<std::size_t>(i), p);
  }

  // --- Normals and operators ---
  /// Unit normal (pb - pa) x (pc - pa) of every face; 0 where that is 0 and for invalid faces.
  void computeFaceNormals();
  /// Sum of (pa - pb) x (pa - pc) over the incident faces in face order, normalised.
  void computeVertexNormals();
  /// Both in one pass over the faces, with the same results as one after the other.
  void computeNormals();
  /// Mean of the ring minus the vertex; 0 for an empty ring. Does not look at the kind.
  Vec3 umbrellaLaplacian(int i) const;
  /// -4 / (ring area) x the sum over the ring of (cot alpha + cot beta) (x_j - x_i): points outward
  /// on a convex surface. 0 unless the vertex is interior, and 0 when the ring area is 0 or NaN.
  Vec3 meanCurvatureNormal(int i) const;

  /// Of a field that is found on the mesh as it is.
  FieldOrigin here() const { return {shape, extentTolerance}; }

  // --- Copies ---
  /// Copies positions, faces, their shape's number, box and place in the file. Nothing derived is
  /// copied, and what this mesh had derived is dropped. Into a mesh of the same counts it takes no
  /// memory and cannot fail; otherwise this mesh is as it was when memory is refused.
  void copyGeometryFrom(const TriangleMesh& other);
  /// Drops whatever is derived: positions, faces, their number, box and place in the file stay.
  void dropDerived() noexcept;
  /// A mesh of the used vertices and the valid faces only, renumbered in index order, with this
  /// mesh's box and place in the file and nothing derived. Needs no topology, but faces whose
  /// corners cannot be used must be invalid, as buildAdjacency makes them.
  TriangleMesh compactCopy() const;
};

// Inline, because a flow takes less time for a vertex than a call would add.
inline Vec3 TriangleMesh::umbrellaLaplacian(int i) const {
  const std::span<const int> ring = getNeighbours(i);
  if (ring.empty()) return {};
  Vec3 sum;
  for (const int j : ring) sum += position(j);
  return sum / static_cast<double>(ring.size()) - position(i);
}

}  // namespace gravlin
