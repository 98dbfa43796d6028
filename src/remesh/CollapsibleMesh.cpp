#include "remesh/CollapsibleMesh.h"

#include <algorithm>
#include <numbers>

namespace gravlin {
namespace {

constexpr double leastQuality = 0.001;

/// The number of the corner or side behind k and of the one before it.
constexpr std::array<std::size_t, 3> following = {1, 2, 0};
constexpr std::array<std::size_t, 3> preceding = {2, 0, 1};

/// 1 for an equilateral triangle, 0 for one without area, not a number for a point.
double quality(const Vec3& a, const Vec3& b, const Vec3& c) {
  const Vec3 toB = b - a;
  const Vec3 toC = c - a;
  const Vec3 across = c - b;
  const double area = 0.5 * length(cross(toB, toC));
  return 4.0 * std::numbers::sqrt3 * area / (dot(toB, toB) + dot(toC, toC) + dot(across, across));
}

/// Whether x lies on the same side of the line ab as p, seen in the plane of the triangle p a b.
bool onTheSameSide(const Vec3& p, const Vec3& x, const Vec3& a, const Vec3& b) {
  const Vec3 normal = unitOrZero(cross(a - p, b - p));
  const Vec3 acrossLine = unitOrZero(cross(normal, b - a));
  return dot(a - p, acrossLine) * dot(a - x, acrossLine) > 0.0;
}

}  // namespace

CollapsibleMesh::CollapsibleMesh(const TriangleMesh& mesh)
    : faces(toIndex(mesh.faceCount)), vertices(toIndex(mesh.vertexCount)) {
  for (int f = 0; f < mesh.faceCount; ++f) {
    const int* adjacent = mesh.faceAdjacency.data() + 3 * toIndex(f);
    const auto c = mesh.corners(f);
    face(f) = {{c[0], c[1], c[2]}, {adjacent[0], adjacent[1], adjacent[2]}, {-1, -1, -1}};
  }
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const float* xyz = mesh.vertices.data() + 3 * toIndex(i);
    const auto fan = mesh.vertexFaces[i];
    vertex(i) = {.xyz = {xyz[0], xyz[1], xyz[2]},
                 .anyFace = fan.empty() ? -1 : fan.front(),
                 .ringSize = mesh.neighbourCount(i),
                 .kind = static_cast<std::int8_t>(mesh.vertexKind[toIndex(i)]),
                 .marked = false};
  }
}

void CollapsibleMesh::writeTo(TriangleMesh& mesh) const {
  for (int f = 0; f < mesh.faceCount; ++f) mesh.setFace(f, face(f).corners);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    mesh.setVertex(i, vertex(i).xyz);
    mesh.vertexKind[toIndex(i)] = int{vertex(i).kind};
  }
}

// --- Walking ---

CollapsibleMesh::Wedge CollapsibleMesh::wedgeAt(int v, int f) const {
  const auto& corners = face(f).corners;
  if (corners[0] == v) return {f, 0};
  return {f, corners[1] == v ? 1U : 2U};
}

void CollapsibleMesh::walkFan(int v, Fan& fan) const {
  fan.clear();
  const Wedge start = wedgeAt(v, vertex(v).anyFace);
  Wedge wedge = start;
  for (;;) {
    fan.push_back(wedge);
    const int next = face(wedge.face).adjacent[preceding[wedge.corner]];
    if (next == start.face) return;
    if (next < 0) break;
    wedge = wedgeAt(v, next);
  }
  // An open fan: what lies before the start is missing yet.
  wedge = start;
  while (face(wedge.face).adjacent[wedge.corner] >= 0) {
    wedge = wedgeAt(v, face(wedge.face).adjacent[wedge.corner]);
    fan.push_back(wedge);
  }
}

template <class Visit>
void CollapsibleMesh::visitRing(const Fan& fan, const Visit& visit) const {
  for (const auto& [f, corner] : fan) {
    const Face& of = face(f);
    const std::size_t before = preceding[corner];
    visit(of.corners[following[corner]], of.labels[corner]);
    if (of.adjacent[before] < 0) visit(of.corners[before], of.labels[before]);
  }
}

// --- Testing ---

bool CollapsibleMesh::collapse(int i, int j, const Vec3& x) {
  if (vertex(i).kind == NonManifoldVertex || vertex(j).kind == NonManifoldVertex) return false;
  const bool bothOnBoundary = vertex(i).kind == BoundaryVertex && vertex(j).kind == BoundaryVertex;
  const int rings = vertex(i).ringSize + vertex(j).ringSize;
  if (!bothOnBoundary && (rings < 7 || rings > 17)) return false;
  walkFan(i, fanI);
  const EdgeFaces on = facesOnEdge(j);
  if (on.count == 0) return false;
  if (bothOnBoundary && rings < (on.count == 1 ? 6 : 7)) return false;

  const std::span<const int> opposite(on.opposite.data(), toIndex(on.count));
  const auto isManifold = [&](int v) { return vertex(v).kind != NonManifoldVertex; };
  const auto canLoseNeighbour = [&](int v) { return vertex(v).ringSize >= 4; };
  if (!std::ranges::all_of(opposite, isManifold)) return false;
  walkFan(j, fanJ);
  if (!shareOnlyOpposite(on) || !std::ranges::all_of(opposite, canLoseNeighbour)) return false;
  if (!facesStayProper(fanI, on, x) || !facesStayProper(fanJ, on, x)) return false;
  recordEdges(i, j, on);
  perform(i, j, x, on);
  return true;
}

CollapsibleMesh::EdgeFaces CollapsibleMesh::facesOnEdge(int j) const {
  EdgeFaces on;
  for (const auto& [f, corner] : fanI) {
    const int next = face(f).corners[following[corner]];
    const int prev = face(f).corners[preceding[corner]];
    if (next != j && prev != j) continue;
    on.faces[toIndex(on.count)] = f;
    on.opposite[toIndex(on.count)] = next == j ? prev : next;
    ++on.count;
  }
  return on;
}

bool CollapsibleMesh::shareOnlyOpposite(const EdgeFaces& on) {
  visitRing(fanI, [&](int v, int) { vertex(v).marked = true; });
  bool only = true;
  visitRing(fanJ, [&](int v, int) { only = only && (!vertex(v).marked || on.isOpposite(v)); });
  visitRing(fanI, [&](int v, int) { vertex(v).marked = false; });
  return only;
}

bool CollapsibleMesh::facesStayProper(const Fan& fan, const EdgeFaces& on, const Vec3& x) const {
  for (const auto& [f, corner] : fan) {
    if (on.has(f)) continue;
    const auto& corners = face(f).corners;
    const Vec3 p = position(corners[corner]);
    const Vec3 a = position(corners[following[corner]]);
    const Vec3 b = position(corners[preceding[corner]]);
    if (!(quality(x, a, b) >= leastQuality) || !onTheSameSide(p, x, a, b)) return false;
  }
  return true;
}

// --- Collapsing ---

void CollapsibleMesh::recordEdges(int i, int j, const EdgeFaces& on) {
  edges.kept.clear();
  edges.moved.clear();
  edges.lost.clear();
  edges.faces = on.count;
  visitRing(fanI, [&](int v, int label) {
    if (v != j && label >= 0) edges.kept.push_back({label, v});
  });
  visitRing(fanJ, [&](int v, int label) {
    if (v != i && label >= 0) (on.isOpposite(v) ? edges.lost : edges.moved).push_back({label, v});
  });
}

void CollapsibleMesh::perform(int i, int j, const Vec3& x, const EdgeFaces& on) {
  for (int k = 0; k < on.count; ++k) {
    closeGap(i, j, on.faces[toIndex(k)]);
    --vertex(on.opposite[toIndex(k)]).ringSize;
  }
  Vertex& survivor = vertex(i);
  Vertex& vanished = vertex(j);
  for (const auto& [f, corner] : fanJ) {
    if (on.has(f)) continue;
    face(f).corners[corner] = i;
    survivor.anyFace = f;
  }
  for (const Wedge& wedge : fanI) {
    if (!on.has(wedge.face)) survivor.anyFace = wedge.face;
  }
  storeVec3(survivor.xyz.data(), x);
  survivor.ringSize += vanished.ringSize - 2 - on.count;
  // Interior and boundary are 0 and 1: a boundary through either end runs through the survivor. An
  // edge across from boundary to boundary leaves it with two fans.
  const bool pinched =
      survivor.kind == BoundaryVertex && vanished.kind == BoundaryVertex && on.count == 2;
  survivor.kind = pinched ? std::int8_t{NonManifoldVertex} : std::max(survivor.kind, vanished.kind);
  vanished.anyFace = -1;
  vanished.ringSize = 0;
  vanished.kind = NonManifoldVertex;
}

/// Takes a face on the edge i-j out: its neighbours across its two other sides become each other's,
/// and these sides one edge with the label of i's.
void CollapsibleMesh::closeGap(int i, int j, int f) {
  Face& gone = face(f);
  const std::size_t cornerI = wedgeAt(i, f).corner;
  const std::size_t cornerJ = wedgeAt(j, f).corner;
  const std::size_t sideOfI = following[cornerJ];  // opposite j
  const int besideI = gone.adjacent[sideOfI];
  const int besideJ = gone.adjacent[following[cornerI]];
  const auto meet = [&](int one, int other) {
    if (one < 0) return;
    auto& adjacent = face(one).adjacent;
    const std::size_t side = adjacent[0] == f ? 0U : adjacent[1] == f ? 1U : 2U;
    adjacent[side] = other;
    face(one).labels[side] = gone.labels[sideOfI];
  };
  meet(besideI, besideJ);
  meet(besideJ, besideI);
  vertex(gone.corners[3 - cornerI - cornerJ]).anyFace = std::max(besideI, besideJ);
  gone = {{-1, -1, -1}, {-1, -1, -1}, {-1, -1, -1}};
}

}  // namespace gravlin
