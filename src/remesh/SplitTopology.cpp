#include "remesh/SplitTopology.h"

#include <algorithm>
#include <array>

#include "mesh/Corner.h"
#include "numeric/BlockAppender.h"
#include "numeric/Index.h"
#include "numeric/LargeVector.h"

namespace gravlin {
namespace {

/// The side of face g that runs from `from` to `to`, as a part of a face's number.
int sharedSide(const TriangleMesh& mesh, int g, const SideEnds& ends) {
  return static_cast<int>(sideOf(mesh.corners(g), ends));
}

/// Makes room for the rings; with every vertex manifold those of boundary vertices have a neighbour
/// more than faces, and there is a new boundary vertex on the side that leaves each old one.
void reserveRings(const TriangleMesh& old, TriangleMesh& mesh) {
  const std::size_t corners = 12 * toIndex(old.countValidFaces());
  const auto openFans =
      2 * static_cast<std::size_t>(std::ranges::count(old.vertexKind, int{BoundaryVertex}));
  for (CompressedRows* rows : {&mesh.vertexFaces, &mesh.vertexNeighbours}) {
    rows->clear();
    reserveLarge(rows->offsets, toIndex(mesh.vertexCount) + 1);
  }
  reserveLarge(mesh.vertexFaces.items, corners);
  reserveLarge(mesh.vertexNeighbours.items, corners + openFans);
  mesh.vertexKind.clear();
  reserveLarge(mesh.vertexKind, toIndex(mesh.vertexCount));
}

/// Appends rings to compressed rows, vertex after vertex.
class RingWriter {
 public:
  explicit RingWriter(TriangleMesh& mesh)
      : fans(mesh.vertexFaces.items),
        rings(mesh.vertexNeighbours.items),
        fanOffsets(mesh.vertexFaces.offsets),
        ringOffsets(mesh.vertexNeighbours.offsets),
        kinds(mesh.vertexKind) {
    endRow();
  }

  /// Room for the next faces of the vertex and, for each, its corner behind the vertex.
  int* takeFaces(int count) {
    fanEnd += count;
    return fans.take(toIndex(count));
  }
  int* takeNeighbours(int count) {
    ringEnd += count;
    return rings.take(toIndex(count));
  }
  void endVertex(int kind) {
    kinds.append(kind);
    endRow();
  }

 private:
  void endRow() {
    fanOffsets.append(fanEnd);
    ringOffsets.append(ringEnd);
  }

  BlockAppender<int> fans;
  BlockAppender<int> rings;
  BlockAppender<int> fanOffsets;
  BlockAppender<int> ringOffsets;
  BlockAppender<int> kinds;
  int fanEnd = 0;
  int ringEnd = 0;
};

/// An old vertex keeps its fan, each face replaced by its child at the vertex.
void writeOldRings(const TriangleMesh& old, const std::vector<int>& edgePoints, RingWriter& rings) {
  for (int i = 0; i < old.vertexCount; ++i) {
    const int kind = old.vertexKind[toIndex(i)];
    const auto fan = old.vertexFaces[i];
    for (const int f : fan) {
      const std::size_t corner = cornerOf(old.corners(f), i);
      *rings.takeFaces(1) = 4 * f + static_cast<int>(corner);
      *rings.takeNeighbours(1) = edgePoints[3 * toIndex(f) + corner];
    }
    if (kind == BoundaryVertex) {
      const std::size_t before = previousCorner(cornerOf(old.corners(fan.back()), i));
      *rings.takeNeighbours(1) = edgePoints[3 * toIndex(fan.back()) + before];
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
  const int end = nextCorner(side);
  return {{4 * f + end, 4 * f + 3, 4 * f + side},
          {old.corners(f)[toIndex(end)], points[end], points[previousCorner(side)]}};
}

/// An open fan begins where the boundary does, with the child at the edge's end.
void writeBoundaryRing(const HalfFan& half, int lastNeighbour, RingWriter& rings) {
  std::ranges::copy(half.faces, rings.takeFaces(3));
  int* neighbours = rings.takeNeighbours(4);
  std::ranges::copy(half.neighbours, neighbours);
  neighbours[3] = lastNeighbour;
  rings.endVertex(BoundaryVertex);
}

/// A closed ring begins at its face of lowest index, which lies in the old face of lower index and
/// there at the edge's beginning, except that child 0 comes before child 2.
void writeInteriorRing(const HalfFan& lower, int sideThere, const HalfFan& higher,
                       RingWriter& rings) {
  int* faces = rings.takeFaces(6);
  int* neighbours = rings.takeNeighbours(6);
  const std::size_t start = sideThere == 2 ? 0 : 2;  // in the lower half
  for (std::size_t step = 0; step < 3; ++step) {
    const std::size_t inLower = (step + 6 - start) % 6;
    const std::size_t inHigher = step + 3 - start;
    faces[inLower] = lower.faces[step];
    neighbours[inLower] = lower.neighbours[step];
    faces[inHigher] = higher.faces[step];
    neighbours[inHigher] = higher.neighbours[step];
  }
  rings.endVertex(InteriorVertex);
}

void writeEdgePointRings(const TriangleMesh& old, const std::vector<int>& edgePoints,
                         RingWriter& rings) {
  for (int f = 0; f < old.faceCount; ++f) {
    if (!old.validFace(f)) continue;
    for (int j = 0; j < 3; ++j) {
      const int g = old.faceAdjacency[3 * toIndex(f) + toIndex(j)];
      if (g > f) continue;
      const int a = old.corners(f)[toIndex(j)];
      const HalfFan half = halfFan(old, edgePoints, f, j);
      if (g < 0) {
        writeBoundaryRing(half, a, rings);
        continue;
      }
      const int k = sharedSide(old, g, {.from = half.neighbours[0], .to = a});
      writeInteriorRing(halfFan(old, edgePoints, g, k), k, half, rings);
    }
  }
}

/// What lies beside the sides of the four children of face f.
void writeChildrenAdjacency(const TriangleMesh& old, int f, int* beside) {
  const auto corners = old.corners(f);
  for (int j = 0; j < 3; ++j) {
    const int next = nextCorner(j);
    beside[3 * j + 1] = 4 * f + 3;  // child j across the side between its two edge points
    beside[9 + j] = 4 * f + next;   // the middle child across its side from e_j on
    const int g = old.faceAdjacency[3 * toIndex(f) + toIndex(j)];
    int firstHalf = -1;
    int secondHalf = -1;
    if (g >= 0) {
      const int k = sharedSide(old, g, {.from = corners[toIndex(next)], .to = corners[toIndex(j)]});
      firstHalf = 4 * g + nextCorner(k);
      secondHalf = 4 * g + k;
    }
    beside[3 * toIndex(j)] = firstHalf;
    beside[3 * toIndex(next) + 2] = secondHalf;
  }
}

void writeSplitAdjacency(const TriangleMesh& old, TriangleMesh& mesh) {
  mesh.faceAdjacency.clear();
  reserveLarge(mesh.faceAdjacency, mesh.faces.size());
  BlockAppender<int> adjacency(mesh.faceAdjacency);
  for (int f = 0; f < old.faceCount; ++f) {
    int* beside = adjacency.take(12);
    if (old.validFace(f)) {
      writeChildrenAdjacency(old, f, beside);
    } else {
      std::fill_n(beside, 12, -1);
    }
  }
}

}  // namespace

bool splitsIntoFans(const TriangleMesh& old) {
  for (int i = 0; i < old.vertexCount; ++i) {
    if (old.vertexKind[toIndex(i)] == NonManifoldVertex && old.vertexFaceCount(i) > 0) return false;
  }
  for (int f = 0; f < old.faceCount; ++f) {
    const int* g = old.faceAdjacency.data() + 3 * toIndex(f);
    if ((g[0] >= 0 && (g[0] == g[1] || g[0] == g[2])) || (g[1] >= 0 && g[1] == g[2])) return false;
  }
  return true;
}

void writeSplitTopology(const TriangleMesh& old, const std::vector<int>& edgePoints,
                        TriangleMesh& mesh) {
  reserveRings(old, mesh);
  {
    RingWriter rings(mesh);
    writeOldRings(old, edgePoints, rings);
    writeEdgePointRings(old, edgePoints, rings);
  }
  writeSplitAdjacency(old, mesh);
}

}  // namespace gravlin
