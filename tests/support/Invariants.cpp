#include "support/Invariants.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "numeric/Index.h"

namespace gravlin::test {
namespace {

/// Thrown at the first promise that is broken.
struct Broken {
  std::string words;
};

void require(bool holds, const std::string& words) {
  if (!holds) throw Broken{words};
}

std::string vertexCalled(int i) {
  return "vertex " + std::to_string(i);
}

bool inRange(int index, int count) {
  return index >= 0 && index < count;
}

/// One face around a vertex: the corners behind and before the vertex.
struct Corner {
  int next;
  int prev;
  int face;
};

/// Per vertex the faces around it, found from the faces alone.
std::vector<std::vector<Corner>> cornersAround(const TriangleMesh& mesh) {
  std::vector<std::vector<Corner>> around(toIndex(mesh.vertexCount));
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto c = mesh.corners(f);
    for (std::size_t k = 0; k < 3; ++k) {
      around[toIndex(c[k])].push_back({c[(k + 1) % 3], c[(k + 2) % 3], f});
    }
  }
  return around;
}

/// What the links next -> prev of a vertex form: one circle, one path, or anything else.
VertexKind kindOf(const std::vector<Corner>& corners) {
  std::map<int, int> behind;
  std::set<int> reached;
  for (const Corner& corner : corners) {
    const bool once =
        behind.emplace(corner.next, corner.prev).second && reached.insert(corner.prev).second;
    if (!once) return NonManifoldVertex;
  }
  std::vector<int> starts;
  for (const auto& [from, to] : behind) {
    if (!reached.contains(from)) starts.push_back(from);
  }
  if (behind.empty() || starts.size() > 1) return NonManifoldVertex;
  const int start = starts.empty() ? behind.begin()->first : starts.front();
  std::size_t steps = 0;
  int at = start;
  do {
    const auto link = behind.find(at);
    if (link == behind.end()) break;
    at = link->second;
    ++steps;
  } while (at != start);
  if (steps != behind.size()) return NonManifoldVertex;
  return starts.empty() ? InteriorVertex : BoundaryVertex;
}

void checkFaces(const TriangleMesh& mesh) {
  require(mesh.vertexCount >= 0 && mesh.faceCount >= 0, "a count is negative");
  require(mesh.vertices.size() == 3 * toIndex(mesh.vertexCount), "vertices is not float[3V]");
  require(mesh.faces.size() == 3 * toIndex(mesh.faceCount), "faces is not int[3F]");
  if (!mesh.vertexNeighbours.built()) return;  // before that, faces are as they were set
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    const std::string name = "face " + std::to_string(f);
    if (c[0] == -1) {
      require(c[1] == -1 && c[2] == -1, name + " is invalid in one corner only");
      continue;
    }
    for (const int corner : c)
      require(inRange(corner, mesh.vertexCount), name + " is out of range");
    require(c[0] != c[1] && c[1] != c[2] && c[2] != c[0], name + " repeats a corner");
  }
}

void checkRows(const CompressedRows& rows, int count, const std::string& name) {
  require(rows.rowCount() == count, name + " has not one row for each index");
  require(rows.offsets.front() == 0, name + " does not start at 0");
  require(std::is_sorted(rows.offsets.begin(), rows.offsets.end()), name + " has a negative row");
  require(toIndex(rows.offsets.back()) == rows.items.size(), name + " does not end with its items");
}

bool isCornerOf(const Corner& corner, const std::vector<Corner>& corners) {
  return std::any_of(corners.begin(), corners.end(), [&](const Corner& each) {
    return each.face == corner.face && each.next == corner.next && each.prev == corner.prev;
  });
}

void checkRing(const TriangleMesh& mesh, int i, const std::vector<Corner>& corners) {
  const std::string name = vertexCalled(i);
  const VertexKind kind = kindOf(corners);
  require(mesh.vertexKind[toIndex(i)] == kind, name + " is not of the kind that its faces make");
  const auto ring = mesh.getNeighbours(i);
  const auto faces = mesh.vertexFaces[i];
  const std::size_t n = corners.size();
  require(faces.size() == n, name + " has not every face around it in its ring");
  const std::set<int> distinct(faces.begin(), faces.end());
  require(distinct.size() == n, name + " has a face twice in its ring");
  const std::size_t length = kind == NonManifoldVertex ? 2 * n : kind == BoundaryVertex ? n + 1 : n;
  require(ring.size() == length, name + " has a ring of the wrong length");
  for (std::size_t k = 0; k < n; ++k) {
    const std::size_t at = kind == NonManifoldVertex ? 2 * k : k;
    const Corner corner = {ring[at], ring[(at + 1) % ring.size()], faces[k]};
    require(isCornerOf(corner, corners), name + " has a ring that does not turn as its faces do");
  }
}

void checkRings(const TriangleMesh& mesh) {
  if (!mesh.vertexNeighbours.built()) return;
  checkRows(mesh.vertexNeighbours, mesh.vertexCount, "vertexNeighbours");
  checkRows(mesh.vertexFaces, mesh.vertexCount, "vertexFaces");
  require(mesh.vertexKind.size() == toIndex(mesh.vertexCount), "vertexKind is not int[V]");
  const std::vector<std::vector<Corner>> around = cornersAround(mesh);
  for (int i = 0; i < mesh.vertexCount; ++i) checkRing(mesh, i, around[toIndex(i)]);
}

/// An edge has a face across when a face passes it the other way round and one of its ends, at
/// least, is manifold.
void checkFaceAdjacency(const TriangleMesh& mesh) {
  if (mesh.faceAdjacency.empty()) return;
  require(mesh.faceAdjacency.size() == mesh.faces.size(), "faceAdjacency is not int[3F]");
  std::map<std::pair<int, int>, int> faceOfSide;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto c = mesh.corners(f);
    for (std::size_t j = 0; j < 3; ++j) faceOfSide[{c[j], c[(j + 1) % 3]}] = f;
  }
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    for (std::size_t j = 0; j < 3; ++j) {
      int expected = -1;
      if (mesh.validFace(f)) {
        const int a = c[j];
        const int b = c[(j + 1) % 3];
        const bool manifold = mesh.vertexKind[toIndex(a)] != NonManifoldVertex ||
                              mesh.vertexKind[toIndex(b)] != NonManifoldVertex;
        const auto other = faceOfSide.find({b, a});
        if (manifold && other != faceOfSide.end()) expected = other->second;
      }
      require(mesh.faceAdjacency[3 * toIndex(f) + j] == expected,
              "face " + std::to_string(f) + " has the wrong face across an edge");
    }
  }
}

/// A vector of finite numbers is stored with an error of half a unit in the 24th bit of each.
template <class Number>
void checkUnits(const std::vector<Number>& normals, int count, const std::string& name) {
  constexpr double tolerance = 1e-6;
  if (normals.empty()) return;
  require(normals.size() == 3 * toIndex(count), name + " has not three numbers for each index");
  for (std::size_t c = 0; c < normals.size(); c += 3) {
    const Vec3 unit = {normals[c], normals[c + 1], normals[c + 2]};
    const double squared = dot(unit, unit);
    require(!std::isfinite(squared) || squared == 0.0 || std::abs(squared - 1.0) < tolerance,
            name + " holds a vector that is neither 0 nor of unit length");
  }
}

/// A smoothed frame is rebuilt from its trusted direction, which need not lie in the tangent plane,
/// and the normal: the other one is their cross product, which may then be shorter than 1.
void checkFrames(const TriangleMesh& mesh) {
  constexpr double tolerance = 1e-5;  // made from a normal that is rounded in itself
  if (mesh.maxDirection.empty() && mesh.minDirection.empty()) return;
  require(mesh.maxDirection.size() == 3 * toIndex(mesh.vertexCount) &&
              mesh.minDirection.size() == mesh.maxDirection.size(),
          "the principal directions have not three numbers for each vertex");
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 e1 = vectorAt(mesh.maxDirection, i);
    const Vec3 e2 = vectorAt(mesh.minDirection, i);
    const double longer = std::max(dot(e1, e1), dot(e2, e2));
    require(!std::isfinite(dot(e1, e1) + dot(e2, e2)) || longer == 0.0 ||
                std::abs(longer - 1.0) < tolerance,
            "the principal directions of a vertex are neither 0 nor is the longer one of unit "
            "length");
  }
}

template <class Item>
void checkSize(const std::vector<Item>& array, std::size_t size, const std::string& name) {
  require(array.empty() || array.size() == size, name + " has the wrong extent");
}

void checkExtents(const TriangleMesh& mesh) {
  const std::size_t v = toIndex(mesh.vertexCount);
  const std::size_t f = toIndex(mesh.faceCount);
  checkSize(mesh.maxCurvature, v, "maxCurvature");
  checkSize(mesh.minCurvature, v, "minCurvature");
  checkSize(mesh.maxDirection, 3 * v, "maxDirection");
  checkSize(mesh.minDirection, 3 * v, "minDirection");
  checkSize(mesh.maxDerivativeGradient, 3 * v, "maxDerivativeGradient");
  checkSize(mesh.minDerivativeGradient, 3 * v, "minDerivativeGradient");
  checkSize(mesh.edgeCurvatures, 3 * f, "edgeCurvatures");
  checkSize(mesh.coherentFaces, f, "coherentFaces");
  require(!mesh.pickedFace || inRange(*mesh.pickedFace, mesh.faceCount), "no such face is picked");
}

/// Arrays of which one alone would be read as if the others were there.
void checkBuiltTogether(const TriangleMesh& mesh) {
  const bool hasRings = mesh.vertexNeighbours.built();
  require(mesh.vertexFaces.built() == hasRings, "only one kind of ring is built");
  require(hasRings || mesh.vertexKind.empty(), "there are kinds without rings");
  require(mesh.minCurvature.size() == mesh.maxCurvature.size() &&
              mesh.maxDirection.size() == 3 * mesh.maxCurvature.size() &&
              mesh.minDirection.size() == mesh.maxDirection.size(),
          "only a part of the curvature is there");
  require(mesh.minDerivativeGradient.size() == mesh.maxDerivativeGradient.size(),
          "only one gradient is there");
  require(mesh.ridgeMarks.size() == mesh.valleyMarks.size(), "only one kind of mark is there");
  require(mesh.ridgeLinks.size() == mesh.valleyLinks.size(), "only one kind of link is there");
}

void checkCornerNeighbours(const TriangleMesh& mesh) {
  const CompressedRows& rows = mesh.cornerNeighbourFaces;
  if (!rows.built()) return;
  checkRows(rows, mesh.faceCount, "cornerNeighbourFaces");
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    const int* beside = mesh.faceAdjacency.data() + 3 * toIndex(f);
    for (const int g : rows[f]) {
      require(inRange(g, mesh.faceCount) && g != f && mesh.validFace(f) && mesh.validFace(g),
              "a corner neighbour is no other face");
      const auto d = mesh.corners(g);
      require(std::find_first_of(c.begin(), c.end(), d.begin(), d.end()) != c.end(),
              "corner neighbours do not meet");
      require(std::find(beside, beside + 3, g) == beside + 3, "corner neighbours share an edge");
    }
  }
}

void checkMarks(const std::vector<int>& marks, int count, const std::string& name) {
  checkSize(marks, toIndex(count), name);
  require(std::all_of(marks.begin(), marks.end(), [](int mark) { return mark == 0 || mark == 1; }),
          name + " holds something else than 0 and 1");
}

void checkLinks(const TriangleMesh& mesh, const std::vector<IndexList>& links,
                const std::string& name) {
  const int count = mesh.vertexCount;
  checkSize(links, toIndex(count), name);
  std::map<std::pair<int, int>, int> surplus;  ///< how often i leads to j, less the way back
  for (std::size_t i = 0; i < links.size(); ++i) {
    const int from = static_cast<int>(i);
    for (const int to : links[i]) {
      require(inRange(to, count), name + " leads to no vertex");
      surplus[std::minmax(from, to)] += from < to ? 1 : -1;
      if (!mesh.vertexNeighbours.built()) continue;
      const auto ring = mesh.getNeighbours(from);
      require(std::find(ring.begin(), ring.end(), to) != ring.end(), name + " leaves the edges");
    }
  }
  for (const auto& [ends, difference] : surplus) {
    require(difference == 0, name + " does not lead both ways between " + vertexCalled(ends.first) +
                                 " and " + vertexCalled(ends.second));
  }
}

void checkStrokes(const TriangleMesh& mesh) {
  const Strokes& strokes = mesh.strokes;
  require(strokes.maxStrokes.size() == strokes.strokeSeeds.size() &&
              strokes.minStrokes.size() == strokes.strokeSeeds.size(),
          "there is not one stroke of each kind for every seed");
  for (const auto* lines : {&strokes.maxStrokes, &strokes.minStrokes}) {
    for (const std::vector<FacePoint>& line : *lines) {
      require(!line.empty(), "a stroke is empty");
      for (const FacePoint& point : line) {
        require(inRange(point.face, mesh.faceCount), "a stroke runs over a face that is not there");
      }
    }
  }
}

/// What the checks miss, as the header says.
template <class Checks>
std::vector<std::string> wordsOf(const Checks& checks) {
  try {
    checks();
  } catch (const Broken& broken) {
    return {broken.words};
  }
  return {};
}

void checkMesh(const TriangleMesh& mesh) {
  checkFaces(mesh);
  checkRings(mesh);
  checkFaceAdjacency(mesh);
  checkUnits(mesh.faceNormals, mesh.faceCount, "faceNormals");
  checkUnits(mesh.vertexNormals, mesh.vertexCount, "vertexNormals");
  checkExtents(mesh);
  checkBuiltTogether(mesh);
  checkCornerNeighbours(mesh);
  checkFrames(mesh);
  checkMarks(mesh.ridgeMarks, mesh.vertexCount, "ridgeMarks");
  checkMarks(mesh.valleyMarks, mesh.vertexCount, "valleyMarks");
  checkLinks(mesh, mesh.ridgeLinks, "ridgeLinks");
  checkLinks(mesh, mesh.valleyLinks, "valleyLinks");
  checkStrokes(mesh);
}

}  // namespace

std::vector<std::string> brokenInvariants(const TriangleMesh& mesh) {
  return wordsOf([&] { checkMesh(mesh); });
}

std::vector<std::string> brokenLinks(const TriangleMesh& mesh, const std::vector<IndexList>& links,
                                     const std::string& name) {
  return wordsOf([&] { checkLinks(mesh, links, name); });
}

}  // namespace gravlin::test
