#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "mesh/TriangleMesh.h"
#include "numeric/Index.h"

namespace gravlin {

/// An edge from one end of a collapsed edge, as the collapse left it.
struct LabelledEdge {
  int label;      ///< of the edge, not negative
  int neighbour;  ///< the vertex at its other end
};

/// What became of the labelled edges around the two ends of a collapsed edge.
struct CollapsedEdges {
  std::vector<LabelledEdge> kept;   ///< of the surviving vertex, to its old neighbours
  std::vector<LabelledEdge> moved;  ///< of the surviving vertex, from the vanished one
  std::vector<LabelledEdge> lost;   ///< of the vanished vertex, fallen together with kept ones
  int faces = 0;                    ///< how many faces vanished, 1 or 2
};

/// A triangle mesh while its edges are being collapsed. The fan of a vertex is walked from face to
/// face instead of being stored, so that a collapse touches only the faces of its two ends; what a
/// walk reads of a face or a vertex lies together, because nearly every step misses the caches.
///
/// Every side of a face may carry a label, the same on both sides of an edge, that follows the edge
/// through the collapses.
class CollapsibleMesh {
 public:
  /// Copies what it needs of a mesh with rings, kinds and face adjacency. All labels are -1.
  explicit CollapsibleMesh(const TriangleMesh& mesh);

  /// Labels side `side` of face `face`, numbered as in faceAdjacency.
  void setLabel(int face, std::size_t side, int label) {
    faces[toIndex(face)].labels[side] = label;
  }

  Vec3 position(int i) const { return loadVec3(vertices[toIndex(i)].xyz.data()); }

  /// Tests whether edge i-j may collapse into vertex i placed at x, and if so collapses it: in
  /// every other face of j the corner j becomes i, the one or two faces on the edge become invalid
  /// and vertex j is left without faces. x must hold values of single precision. False when a test
  /// fails or there is no such edge; then nothing has changed.
  ///
  /// In this order: neither end is non-manifold; the rings of both together have 7 to 17 vertices
  /// (on the boundary at least 6, across from boundary to boundary at least 7); no corner opposite
  /// the edge is non-manifold; the ends have no neighbour in common but those corners; each of
  /// these has at least 4 neighbours; and of the other faces, with the end moved to x, none gets a
  /// quality 4 sqrt(3) area / (sum of squared sides) below 0.001 or has x on the far side of, or
  /// on, the line through its two other corners, seen in the face's plane.
  bool collapse(int i, int j, const Vec3& x);

  /// Of the last edge that collapsed.
  const CollapsedEdges& collapsedEdges() const { return edges; }

  /// Writes positions, faces and kinds back to the mesh that was copied; the rest of it is stale.
  void writeTo(TriangleMesh& mesh) const;

  // --- Hints that an edge's collapse is near, the nearer the later ---
  void prefetchVertex(int i) const { __builtin_prefetch(&vertices[toIndex(i)]); }
  /// Reads the vertex.
  void prefetchFan(int i) const {
    const int face = vertices[toIndex(i)].anyFace;
    if (face >= 0) __builtin_prefetch(&faces[toIndex(face)]);
  }

 private:
  struct Face {
    std::array<int, 3> corners;
    std::array<int, 3> adjacent;  ///< across the side from corner k to corner k + 1, or -1
    std::array<int, 3> labels;    ///< of the sides
  };
  struct Vertex {
    std::array<float, 3> xyz;
    int anyFace;       ///< one of its faces, -1 without any
    int ringSize;      ///< number of neighbours
    std::int8_t kind;  ///< a VertexKind
    bool marked;       ///< for the time of one test
  };
  /// One face of a fan and which of its corners the fan's vertex is.
  struct Wedge {
    int face;
    std::size_t corner;
  };
  using Fan = std::vector<Wedge>;

  /// The one or two faces on an edge.
  struct EdgeFaces {
    int count = 0;
    std::array<int, 2> faces = {-1, -1};
    std::array<int, 2> opposite = {-1, -1};  ///< their corners that are not on the edge
    bool has(int face) const { return face == faces[0] || face == faces[1]; }
    bool isOpposite(int v) const { return v == opposite[0] || v == opposite[1]; }
  };

  Vertex& vertex(int i) { return vertices[toIndex(i)]; }
  const Vertex& vertex(int i) const { return vertices[toIndex(i)]; }
  Face& face(int f) { return faces[toIndex(f)]; }
  const Face& face(int f) const { return faces[toIndex(f)]; }

  Wedge wedgeAt(int v, int f) const;
  void walkFan(int v, Fan& fan) const;
  /// Calls visit(neighbour, label of the edge to it) for every neighbour of the fan's vertex.
  template <class Visit>
  void visitRing(const Fan& fan, const Visit& visit) const;

  EdgeFaces facesOnEdge(int j) const;
  bool ringsAllow(int i, int j) const;
  bool shareOnlyOpposite(const EdgeFaces& on);
  bool facesStayProper(const Fan& fan, const EdgeFaces& on, const Vec3& x) const;

  void recordEdges(int i, int j, const EdgeFaces& on);
  void closeGap(int i, int j, int f);
  void perform(int i, int j, const Vec3& x, const EdgeFaces& on);

  std::vector<Face> faces;       ///< [F]
  std::vector<Vertex> vertices;  ///< [V]
  Fan fanI;                      ///< of the two ends of the edge in question
  Fan fanJ;
  CollapsedEdges edges;
};

}  // namespace gravlin
