#include "remesh/Decimator.h"

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "features/CreasesByAngle.h"
#include "mesh/Corner.h"
#include "numeric/AvailableMemory.h"
#include "numeric/Index.h"
#include "remesh/CollapsibleMesh.h"
#include "remesh/EdgeHeap.h"
#include "remesh/VertexQuadrics.h"

namespace gravlin {
namespace {

/// What a decimation takes beside the mesh: a quadric, three edges with their places in the heap,
/// two faces and the vertex itself.
constexpr std::uint64_t bytesPerVertex = 250;

/// The ends of a candidate edge; the first one survives its collapse.
struct Ends {
  int i;
  int j;
};

/// The edges from vertex i to ring neighbours of lower index that may become candidates: neither
/// end is non-manifold. Calls visit(j, place of j in the ring).
template <class Visit>
void visitCandidates(const TriangleMesh& mesh, int i, const Visit& visit) {
  const auto mayCollapse = [&](int v) { return mesh.vertexKind[toIndex(v)] != NonManifoldVertex; };
  if (!mayCollapse(i)) return;
  const auto ring = mesh.vertexNeighbours[i];
  for (std::size_t k = 0; k < ring.size(); ++k) {
    if (ring[k] < i && mayCollapse(ring[k])) visit(ring[k], k);
  }
}

int countCandidates(const TriangleMesh& mesh) {
  int count = 0;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    visitCandidates(mesh, i, [&](int, std::size_t) { ++count; });
  }
  return count;
}

/// One run of the decimation: candidate edges, their costs and the mesh that they belong to.
class Decimation {
 public:
  Decimation(const TriangleMesh& mesh, CollapsibleMesh& copyOfMesh)
      : surface(copyOfMesh), quadrics(vertexQuadrics(mesh)), heap(countCandidates(mesh)) {
    listCandidates(mesh);
  }

  DecimationResult run(double target, int vertexCount) {
    DecimationResult result;
    while (!heap.empty()) {
      const Ends ends = edges[toIndex(heap.pop())];
      prepareNext();
      if (!surface.collapse(ends.i, ends.j, roundedToSingle(placeFor(ends)))) continue;
      updateAround(ends);
      ++result.vertices;
      result.faces += surface.collapsedEdges().faces;
      if (vertexCount - result.vertices <= target) break;
    }
    result.targetReached = vertexCount - result.vertices <= target;
    return result;
  }

 private:
  /// Numbers the candidates by the vertices in index order and their rings in order, and labels the
  /// sides of the faces with them.
  void listCandidates(const TriangleMesh& mesh) {
    edges.reserve(toIndex(countCandidates(mesh)));
    for (int i = 0; i < mesh.vertexCount; ++i) {
      visitCandidates(mesh, i, [&](int j, std::size_t k) {
        const int edge = static_cast<int>(edges.size());
        edges.push_back({i, j});
        labelSides(mesh, i, k, edge);
        heap.insert(edge, costOf({i, j}));
      });
    }
  }

  /// The edge to neighbour k of vertex i leaves i in face k of its fan and arrives in the face
  /// before it.
  void labelSides(const TriangleMesh& mesh, int i, std::size_t k, int edge) {
    const auto fan = mesh.vertexFaces[i];
    const bool closed = mesh.vertexKind[toIndex(i)] == InteriorVertex;
    const auto cornerIn = [&](int f) { return cornerOf(mesh.corners(f), i); };
    if (k < fan.size()) surface.setLabel(fan[k], cornerIn(fan[k]), edge);
    if (k == 0 && !closed) return;
    const int before = fan[k == 0 ? fan.size() - 1 : k - 1];
    surface.setLabel(before, previousCorner(cornerIn(before)), edge);
  }

  Quadric quadricOf(const Ends& ends) const {
    return quadrics[toIndex(ends.i)] + quadrics[toIndex(ends.j)];
  }

  /// Where an edge's ends go. Its quadrics and positions are those that its cost was taken from, as
  /// a collapse renews the costs of all edges whose ends it changes.
  Vec3 placeFor(const Ends& ends) const {
    return lowestPoint(quadricOf(ends),
                       0.5 * (surface.position(ends.i) + surface.position(ends.j)));
  }

  float costOf(const Ends& ends) const {
    return static_cast<float>(valueAt(quadricOf(ends), placeFor(ends)));
  }

  /// After the collapse of an edge: its survivor's quadric, and with it the costs of all edges that
  /// leave the survivor now.
  void updateAround(const Ends& collapsed) {
    const auto [i, j] = collapsed;
    const CollapsedEdges& changed = surface.collapsedEdges();
    for (const auto* list : {&changed.kept, &changed.moved}) {
      for (const LabelledEdge& edge : *list) {
        heap.prefetch(edge.label);
        prefetchQuadric(edge.neighbour);
      }
    }
    quadrics[toIndex(i)] += quadrics[toIndex(j)];
    for (const LabelledEdge& edge : changed.lost) {
      if (heap.contains(edge.label)) heap.remove(edge.label);
    }
    for (const LabelledEdge& edge : changed.moved) {
      Ends& ends = edges[toIndex(edge.label)];
      (ends.i == j ? ends.i : ends.j) = i;  // the first end stays the one that survives
    }
    for (const auto* list : {&changed.kept, &changed.moved}) {
      for (const LabelledEdge& edge : *list) {
        if (heap.contains(edge.label)) heap.changeCost(edge.label, costOf({i, edge.neighbour}));
      }
    }
  }

  // --- Hints to the caches ---

  void prefetchQuadric(int i) const {
    const char* begin = reinterpret_cast<const char*>(&quadrics[toIndex(i)]);
    __builtin_prefetch(begin);
    __builtin_prefetch(begin + sizeof(Quadric) - 1);
  }

  /// The edges that lie near the root now come next: fetches what the nearest needs, of the ones
  /// behind it what leads there.
  void prepareNext() const {
    heap.visitPlaces(4, 7, [&](int edge) { __builtin_prefetch(&edges[toIndex(edge)]); });
    heap.visitPlaces(2, 3, [&](int edge) {
      surface.prefetchVertex(edges[toIndex(edge)].i);
      surface.prefetchVertex(edges[toIndex(edge)].j);
    });
    heap.visitPlaces(1, 1, [&](int edge) {
      for (const int end : {edges[toIndex(edge)].i, edges[toIndex(edge)].j}) {
        prefetchQuadric(end);
        surface.prefetchFan(end);
      }
    });
  }

  CollapsibleMesh& surface;
  std::vector<Quadric> quadrics;  ///< [V]
  std::vector<Ends> edges;        ///< of all candidates, in the heap or not
  EdgeHeap heap;
};

/// The faces and positions of `surface`, which was made from `mesh`.
TriangleMesh shapeOf(const CollapsibleMesh& surface, const TriangleMesh& mesh) {
  TriangleMesh shape;
  shape.copyGeometryFrom(mesh);
  shape.vertexKind.resize(toIndex(shape.vertexCount));
  surface.writeTo(shape);
  return shape;
}

/// Exchanges positions and faces for those of a mesh of the same counts, and topology for theirs.
void takeShape(TriangleMesh& mesh, TriangleMesh& shape) {
  shape.buildAdjacency();
  shape.buildFaceAdjacency();
  mesh.vertices.swap(shape.vertices);
  mesh.faces.swap(shape.faces);
  std::swap(mesh.vertexNeighbours, shape.vertexNeighbours);
  std::swap(mesh.vertexFaces, shape.vertexFaces);
  mesh.vertexKind.swap(shape.vertexKind);
  mesh.faceAdjacency.swap(shape.faceAdjacency);
}

}  // namespace

DecimationResult Decimator::decimate(float rate) {
  DecimatedMesh decimated = decimatedCopy(rate);
  takeShape(*mesh, decimated.mesh);
  return decimated.result;
}

DecimatedMesh Decimator::decimatedCopy(float rate) {
  requireMemory(bytesPerVertex * static_cast<std::uint64_t>(mesh->vertexCount));
  mesh->computeFaceNormals();
  const int used = mesh->countUsedVertices();
  const double target = std::trunc((1.0 - static_cast<double>(rate)) * used);
  CollapsibleMesh surface(*mesh);
  const DecimationResult result = Decimation(*mesh, surface).run(target, used);
  return {shapeOf(surface, *mesh), result};
}

bool Decimator::collapseEdge(int i, int j, const Vec3& position) {
  const auto isVertex = [&](int v) { return v >= 0 && v < mesh->vertexCount; };
  if (!isVertex(i) || !isVertex(j) || i == j) return false;
  CollapsibleMesh surface(*mesh);
  if (!surface.collapse(i, j, roundedToSingle(position))) return false;
  TriangleMesh collapsed = shapeOf(surface, *mesh);
  takeShape(*mesh, collapsed);
  return true;
}

std::vector<IndexList> Decimator::detectCreasesByAngle(float cosThreshold) {
  return gravlin::detectCreasesByAngle(*mesh, cosThreshold);
}

}  // namespace gravlin
