#include "remesh/FaceSplit.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>

#include "numeric/AvailableMemory.h"

namespace gravlin {
namespace {

constexpr std::array<int, 3> following = {1, 2, 0};  // the number of the next corner or side
constexpr std::array<int, 3> preceding = {2, 0, 1};

/// The number of `vertex` among a face's corners.
int cornerOf(const TriangleMesh& mesh, int f, int vertex) {
  const auto corners = mesh.corners(f);
  if (corners[0] == vertex) return 0;
  return corners[1] == vertex ? 1 : 2;
}

/// Whether every vertex that a face uses is manifold and no two faces share more than one edge.
/// Then an edge point's six or four neighbours are all different and its faces form one fan.
bool splitsIntoFans(const TriangleMesh& mesh) {
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (mesh.vertexKind[toIndex(i)] == NonManifoldVertex && mesh.vertexFaceCount(i) > 0) {
      return false;
    }
  }
  for (int f = 0; f < mesh.faceCount; ++f) {
    const int* g = mesh.faceAdjacency.data() + 3 * toIndex(f);
    if ((g[0] >= 0 && (g[0] == g[1] || g[0] == g[2])) || (g[1] >= 0 && g[1] == g[2])) return false;
  }
  return true;
}

/// Appends rings to compressed rows, vertex after vertex.
class RingWriter {
 public:
  RingWriter(TriangleMesh& written, std::size_t corners, std::size_t openFans) : mesh(written) {
    const std::size_t rows = toIndex(mesh.vertexCount) + 1;
    mesh.vertexKind.reserve(toIndex(mesh.vertexCount));
    for (CompressedRows* ring : {&mesh.vertexFaces, &mesh.vertexNeighbours}) {
      ring->offsets.reserve(rows);
      ring->offsets.push_back(0);
    }
    mesh.vertexFaces.items.reserve(corners);
    mesh.vertexNeighbours.items.reserve(corners + openFans);
  }

  /// The next face of the vertex and its corner behind the vertex.
  void face(int f, int next) {
    mesh.vertexFaces.items.push_back(f);
    mesh.vertexNeighbours.items.push_back(next);
  }
  /// The last neighbour of an open fan.
  void lastNeighbour(int vertex) { mesh.vertexNeighbours.items.push_back(vertex); }

  void endVertex(int kind) {
    mesh.vertexKind.push_back(kind);
    for (CompressedRows* ring : {&mesh.vertexFaces, &mesh.vertexNeighbours}) {
      ring->offsets.push_back(static_cast<int>(ring->items.size()));
    }
  }

 private:
  TriangleMesh& mesh;
};

/// An old vertex keeps its fan, each face replaced by its child at the vertex.
void writeOldRings(const TriangleMesh& old, const std::vector<int>& edgePoints, RingWriter& rings) {
  for (int i = 0; i < old.vertexCount; ++i) {
    const int kind = old.vertexKind[toIndex(i)];
    const auto fan = old.vertexFaces[i];
    for (const int f : fan) {
      const int corner = cornerOf(old, f, i);
      rings.face(4 * f + corner, edgePoints[3 * toIndex(f) + toIndex(corner)]);
    }
    if (kind == BoundaryVertex) {
      const int before = preceding[toIndex(cornerOf(old, fan.back(), i))];
      rings.lastNeighbour(edgePoints[3 * toIndex(fan.back()) + toIndex(before)]);
    }
    rings.endVertex(kind);
  }
}

/// The half of an edge point's fan that lies in one old face: the child at the edge's end, the
/// middle child, the child at the edge's beginning, each with its corner behind the point.
struct HalfFan {
  std::array<int, 3> faces;
  std::array<int, 3> neighbours;
};

HalfFan halfFan(const TriangleMesh& old, const std::vector<int>& edgePoints, int f, int side) {
  const int* points = edgePoints.data() + 3 * toIndex(f);
  const int end = following[toIndex(side)];
  return {{4 * f + end, 4 * f + 3, 4 * f + side},
          {old.corners(f)[toIndex(end)], points[end], points[preceding[toIndex(side)]]}};
}

void writeEdgePointRings(const TriangleMesh& old, const std::vector<int>& edgePoints,
                         RingWriter& rings) {
  visitSplitEdges(old, [&](const SplitEdge& edge) {
    const HalfFan near = halfFan(old, edgePoints, edge.face, edge.side);
    if (edge.other < 0) {
      for (std::size_t k = 0; k < 3; ++k) rings.face(near.faces[k], near.neighbours[k]);
      rings.lastNeighbour(edge.a);
      rings.endVertex(BoundaryVertex);
      return;
    }
    // A closed ring starts at its face of lowest index, which lies in the old face of lower index
    // and there at the edge's beginning, except that child 0 comes before child 2.
    const HalfFan far = halfFan(old, edgePoints, edge.other, edge.otherSide);
    const std::size_t start = edge.otherSide == 2 ? 0 : 2;
    for (std::size_t step = start; step < start + 6; ++step) {
      const HalfFan& half = step % 6 < 3 ? far : near;
      rings.face(half.faces[step % 3], half.neighbours[step % 3]);
    }
    rings.endVertex(InteriorVertex);
  });
}

void writeSplitAdjacency(const TriangleMesh& old, TriangleMesh& mesh) {
  mesh.faceAdjacency.assign(mesh.faces.size(), -1);
  for (int f = 0; f < old.faceCount; ++f) {
    if (!old.validFace(f)) continue;
    int* of = mesh.faceAdjacency.data() + 12 * toIndex(f);
    const auto corners = old.corners(f);
    for (int j = 0; j < 3; ++j) {
      const int next = following[toIndex(j)];
      of[3 * j + 1] = 4 * f + 3;  // child j across the side between its two edge points
      of[9 + j] = 4 * f + next;   // the middle child across its side from e_j on
      const int g = old.faceAdjacency[3 * toIndex(f) + toIndex(j)];
      if (g < 0) continue;
      const int k = sharedSide(old, g, corners[toIndex(j)], corners[toIndex(next)]);
      of[3 * j] = 4 * g + following[toIndex(k)];  // the first half of side j
      of[3 * next + 2] = 4 * g + k;               // the second half
    }
  }
}

}  // namespace

SplitCounts splitCounts(const TriangleMesh& mesh) {
  std::int64_t edges = 0;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    for (std::size_t j = 0; j < 3; ++j) {
      edges += mesh.faceAdjacency[3 * toIndex(f) + j] < f ? 1 : 0;
    }
  }
  const std::int64_t vertices = mesh.vertexCount + edges;
  const std::int64_t faces = 4 * static_cast<std::int64_t>(mesh.faceCount);
  // A fan has at most one neighbour more than faces, a non-manifold ring two for each face.
  return {vertices, faces, splitsIntoFans(mesh) ? 3 * faces + vertices : 6 * faces};
}

void requireIndexable(const SplitCounts& counts) {
  constexpr std::int64_t most = std::numeric_limits<int>::max();
  if (3 * counts.vertices > most || 3 * counts.faces > most || counts.ringEntries > most) {
    throw std::length_error("The refined mesh would have too many faces.");
  }
}

void requireMemoryFor(const SplitCounts& counts) {
  // A vertex has a position, a normal and its sum, a kind and two offsets of rings; a face corners,
  // adjacency, a normal and the ring entries of its corners.
  constexpr std::uint64_t bytesEach = 60;
  requireMemory(bytesEach * static_cast<std::uint64_t>(counts.vertices + counts.faces));
}

void writeSplitFaces(const TriangleMesh& old, FaceSplit& split) {
  for (int f = 0; f < old.faceCount; ++f) {
    int* corner = split.mesh.faces.data() + 12 * toIndex(f);
    if (!old.validFace(f)) {
      std::fill_n(corner, 12, -1);
      continue;
    }
    const auto c = old.corners(f);
    const int* e = split.edgePoints.data() + 3 * toIndex(f);
    const std::array<int, 12> children = {c[0], e[0], e[2], c[1], e[1], e[0],
                                          c[2], e[2], e[1], e[0], e[1], e[2]};
    std::copy(children.begin(), children.end(), corner);
  }
}

void buildSplitTopology(const TriangleMesh& old, FaceSplit& split) {
  TriangleMesh& mesh = split.mesh;
  if (!splitsIntoFans(old)) {
    mesh.buildAdjacency();
    mesh.buildFaceAdjacency();
    return;
  }
  // An open fan has one neighbour more than faces: at the old boundary vertices and at the points
  // of the boundary edges, of which there are no more than of the former's faces' sides.
  std::size_t openFans = 0;
  for (const int kind : old.vertexKind) openFans += kind == BoundaryVertex ? 1 : 0;
  for (int f = 0; f < old.faceCount; ++f) {
    for (std::size_t j = 0; j < 3 && old.validFace(f); ++j) {
      openFans += old.faceAdjacency[3 * toIndex(f) + j] < 0 ? 1 : 0;
    }
  }
  RingWriter rings(mesh, 12 * toIndex(old.countValidFaces()), openFans);
  writeOldRings(old, split.edgePoints, rings);
  writeEdgePointRings(old, split.edgePoints, rings);
  writeSplitAdjacency(old, mesh);
}

}  // namespace gravlin
