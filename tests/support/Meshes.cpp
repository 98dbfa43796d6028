#include "support/Meshes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numbers>
#include <random>
#include <set>
#include <utility>

#include "support/MoebiusBand.h"

namespace gravlin::test {
namespace {

using Points = std::vector<std::array<float, 3>>;
using Triangles = std::vector<std::array<int, 3>>;

std::array<float, 3> rounded(double x, double y, double z) {
  return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}

TriangleMesh heightField(int columns, int rows, double (*height)(double, double)) {
  Points points;
  for (int r = 0; r <= rows; ++r) {
    for (int c = 0; c <= columns; ++c) points.push_back(rounded(c, r, height(c, r)));
  }
  Triangles triangles;
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; c < columns; ++c) {
      const int a = r * (columns + 1) + c;
      const int d = a + columns + 1;
      triangles.push_back({a, a + 1, d + 1});
      triangles.push_back({a, d + 1, d});
    }
  }
  return makeMesh(points, triangles);
}

/// Index of the point halfway between a and b, made on first use.
int midpoint(int a, int b, std::vector<Vec3>& points, std::map<std::pair<int, int>, int>& known) {
  const auto [entry, isNew] = known.try_emplace(std::minmax(a, b), static_cast<int>(points.size()));
  if (isNew) {
    const Vec3 sum = points[static_cast<std::size_t>(a)] + points[static_cast<std::size_t>(b)];
    points.push_back(sum / length(sum));
  }
  return entry->second;
}

}  // namespace

TriangleMesh makeMesh(const Points& vertices, const Triangles& faces) {
  TriangleMesh mesh;
  mesh.setVertexCount(static_cast<int>(vertices.size()));
  for (int i = 0; i < mesh.vertexCount; ++i) {
    mesh.setVertex(i, vertices[static_cast<std::size_t>(i)]);
  }
  mesh.setFaceCount(static_cast<int>(faces.size()));
  for (int f = 0; f < mesh.faceCount; ++f) mesh.setFace(f, faces[static_cast<std::size_t>(f)]);
  mesh.boxMax = {10.0F, 10.0F, 10.0F};
  mesh.boxMin = {-10.0F, -10.0F, -10.0F};
  mesh.extentTolerance = 1.0;
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  return mesh;
}

TriangleMesh emptyMesh() {
  return makeMesh({}, {});
}

TriangleMesh pointsOnly() {
  return makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {});
}

TriangleMesh singleTriangle() {
  return makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}});
}

TriangleMesh twoTriangles() {
  return makeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 3}});
}

TriangleMesh tetrahedron() {
  return makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                  {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}});
}

TriangleMesh cube() {
  return makeMesh({{-1, -1, -1},
                   {1, -1, -1},
                   {1, 1, -1},
                   {-1, 1, -1},
                   {-1, -1, 1},
                   {1, -1, 1},
                   {1, 1, 1},
                   {-1, 1, 1}},
                  {{0, 2, 1},
                   {0, 3, 2},
                   {4, 5, 6},
                   {4, 6, 7},
                   {0, 1, 5},
                   {0, 5, 4},
                   {1, 2, 6},
                   {1, 6, 5},
                   {2, 3, 7},
                   {2, 7, 6},
                   {3, 0, 4},
                   {3, 4, 7}});
}

TriangleMesh insideOutCube() {
  TriangleMesh mesh = cube();
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto at = 3 * static_cast<std::size_t>(f);
    std::swap(mesh.faces[at + 1], mesh.faces[at + 2]);
  }
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  return mesh;
}

TriangleMesh octahedron() {
  return makeMesh(
      {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}},
      {{0, 2, 4}, {2, 1, 4}, {1, 3, 4}, {3, 0, 4}, {2, 0, 5}, {1, 2, 5}, {3, 1, 5}, {0, 3, 5}});
}

TriangleMesh bowTie() {
  return makeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {-1, 0, 0}, {-1, -1, 0}},
                  {{0, 1, 2}, {0, 3, 4}});
}

TriangleMesh touchingOctahedra() {
  const std::vector<std::array<float, 3>> points = {
      {0, 0, 0},  {1, 0, 1},   {0, 1, 1},   {-1, 0, 1}, {0, -1, 1}, {0, 0, 2},
      {1, 0, -1}, {0, -1, -1}, {-1, 0, -1}, {0, 1, -1}, {0, 0, -2}};
  std::vector<std::array<int, 3>> faces;
  for (const auto& [first, tip] : {std::array{1, 5}, std::array{6, 10}}) {
    for (int k = 0; k < 4; ++k) {
      const int a = first + k;
      const int b = first + (k + 1) % 4;
      faces.push_back({a, b, tip});
      faces.push_back({b, a, 0});
    }
  }
  return makeMesh(points, faces);
}

TriangleMesh threeFacesOnAnEdge() {
  return makeMesh({{0, 0, 0}, {0, 0, 1}, {1, 0, 0}, {-1, 1, 0}, {-1, -1, 0}},
                  {{0, 1, 2}, {1, 0, 3}, {0, 1, 4}});
}

TriangleMesh hexagonFan() {
  Points points = {{0, 0, 0}};
  Triangles triangles;
  for (int k = 0; k < 6; ++k) {
    const double angle = k * std::numbers::pi / 3.0;
    points.push_back(rounded(std::cos(angle), std::sin(angle), 0.0));
    triangles.push_back({0, 1 + k, 1 + (k + 1) % 6});
  }
  return makeMesh(points, triangles);
}

TriangleMesh degenerateFace() {
  return makeMesh({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 1, 0}}, {{0, 1, 2}, {0, 2, 3}});
}

TriangleMesh withNan() {
  return makeMesh(
      {{0, 0, 0}, {1, 0, 0}, {0, std::numeric_limits<float>::quiet_NaN(), 0}, {0, 0, 1}},
      {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}});
}

TriangleMesh grid(int columns, int rows) {
  return heightField(columns, rows, [](double, double) { return 0.0; });
}

TriangleMesh bumpyGrid(int columns, int rows) {
  return heightField(columns, rows,
                     [](double x, double y) { return std::sin(0.7 * x) * std::cos(0.5 * y); });
}

TriangleMesh icosphere(int level, double radius) {
  const double t = std::numbers::phi;
  std::vector<Vec3> points = {{-1, t, 0}, {1, t, 0}, {-1, -t, 0}, {1, -t, 0},
                              {0, -1, t}, {0, 1, t}, {0, -1, -t}, {0, 1, -t},
                              {t, 0, -1}, {t, 0, 1}, {-t, 0, -1}, {-t, 0, 1}};
  for (Vec3& p : points) p = p / length(p);
  Triangles triangles = {{0, 11, 5}, {0, 5, 1},  {0, 1, 7},   {0, 7, 10}, {0, 10, 11},
                         {1, 5, 9},  {5, 11, 4}, {11, 10, 2}, {10, 7, 6}, {7, 1, 8},
                         {3, 9, 4},  {3, 4, 2},  {3, 2, 6},   {3, 6, 8},  {3, 8, 9},
                         {4, 9, 5},  {2, 4, 11}, {6, 2, 10},  {8, 6, 7},  {9, 8, 1}};
  for (int l = 0; l < level; ++l) {
    std::map<std::pair<int, int>, int> known;
    Triangles finer;
    for (const auto& [a, b, c] : triangles) {
      const int ab = midpoint(a, b, points, known);
      const int bc = midpoint(b, c, points, known);
      const int ca = midpoint(c, a, points, known);
      finer.insert(finer.end(), {{a, ab, ca}, {b, bc, ab}, {c, ca, bc}, {ab, bc, ca}});
    }
    triangles = std::move(finer);
  }
  Points scaled;
  for (const Vec3& p : points) scaled.push_back(rounded(radius * p.x, radius * p.y, radius * p.z));
  return makeMesh(scaled, triangles);
}

TriangleMesh torus(int around, int across) {
  Points points;
  Triangles triangles;
  for (int i = 0; i < around; ++i) {
    for (int j = 0; j < across; ++j) {
      const double u = 2.0 * std::numbers::pi * i / around;
      const double v = 2.0 * std::numbers::pi * j / across;
      const double r = 3.0 + std::cos(v);
      points.push_back(rounded(r * std::cos(u), r * std::sin(u), std::sin(v)));
      const int nextI = (i + 1) % around;
      const int nextJ = (j + 1) % across;
      const int a = i * across + j;
      const int b = nextI * across + j;
      const int c = nextI * across + nextJ;
      const int d = i * across + nextJ;
      triangles.push_back({a, b, c});
      triangles.push_back({a, c, d});
    }
  }
  return makeMesh(points, triangles);
}

TriangleMesh fineCube(int n) {
  std::map<std::array<int, 3>, int> known;  // lattice points, 0 .. n along each axis
  Points points;
  const auto vertexAt = [&](const std::array<int, 3>& p) {
    const auto [entry, isNew] = known.try_emplace(p, static_cast<int>(points.size()));
    const auto onAxis = [n](int k) { return 2.0 * k / n - 1.0; };
    if (isNew) points.push_back(rounded(onAxis(p[0]), onAxis(p[1]), onAxis(p[2])));
    return entry->second;
  };
  Triangles triangles;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    for (const int side : {0, n}) {
      for (int u = 0; u < n; ++u) {
        for (int v = 0; v < n; ++v) {
          const auto at = [&](int du, int dv) {
            std::array<int, 3> p = {};
            p[axis] = side;
            p[(axis + 1) % 3] = u + du;
            p[(axis + 2) % 3] = v + dv;
            return vertexAt(p);
          };
          const int a = at(0, 0);
          const int b = side == 0 ? at(0, 1) : at(1, 0);
          const int c = at(1, 1);
          const int d = side == 0 ? at(1, 0) : at(0, 1);
          triangles.push_back({a, b, c});
          triangles.push_back({a, c, d});
        }
      }
    }
  }
  return makeMesh(points, triangles);
}

namespace {

struct SectionPoint {
  double r;
  double z;
};

/// Appends a straight side in four pieces, without its end.
void addSide(std::vector<SectionPoint>& section, SectionPoint from, SectionPoint to) {
  for (int k = 0; k < 4; ++k) {
    section.push_back({from.r + (to.r - from.r) * k / 4, from.z + (to.z - from.z) * k / 4});
  }
}

/// Appends a quarter of a circle of radius 0.4 in nine pieces, without its end. Degrees.
void addFillet(std::vector<SectionPoint>& section, SectionPoint centre, double from, double to) {
  for (int k = 0; k < 9; ++k) {
    const double angle = (from + (to - from) * k / 9) * std::numbers::pi / 180.0;
    section.push_back({centre.r + 0.4 * std::cos(angle), centre.z + 0.4 * std::sin(angle)});
  }
}

}  // namespace

TriangleMesh flangedHub(int around) {
  std::vector<SectionPoint> section;
  addSide(section, {1.0, 0.0}, {3.0, 0.0});
  addSide(section, {3.0, 0.0}, {3.0, 1.0});
  addSide(section, {3.0, 1.0}, {1.6, 1.0});
  addFillet(section, {1.6, 1.4}, 270.0, 180.0);  // foot of the boss, hollow
  addSide(section, {1.2, 1.4}, {1.2, 2.6});
  addFillet(section, {0.8, 2.6}, 0.0, 90.0);  // rim of the boss, rounded
  addSide(section, {0.8, 3.0}, {0.6, 3.0});
  addSide(section, {0.6, 3.0}, {0.6, 0.5});
  addSide(section, {0.6, 0.5}, {1.0, 0.5});
  addSide(section, {1.0, 0.5}, {1.0, 0.0});

  const int count = static_cast<int>(section.size());
  Points points;
  Triangles triangles;
  for (int i = 0; i < around; ++i) {
    const double angle = 2.0 * std::numbers::pi * i / around;
    for (int k = 0; k < count; ++k) {
      const SectionPoint& p = section[static_cast<std::size_t>(k)];
      points.push_back({static_cast<float>(p.r * std::cos(angle)),
                        static_cast<float>(p.r * std::sin(angle)), static_cast<float>(p.z)});
      const int next = (k + 1) % count;
      const int here = i * count;
      const int beyond = (i + 1) % around * count;
      triangles.push_back({here + k, beyond + k, beyond + next});
      triangles.push_back({here + k, beyond + next, here + next});
    }
  }
  return makeMesh(points, triangles);
}

TriangleMesh jittered(TriangleMesh mesh, double amplitude) {
  std::minstd_rand random(1);
  for (float& coordinate : mesh.vertices) {
    const double share = static_cast<double>(random()) / std::minstd_rand::max();
    coordinate += static_cast<float>(amplitude * (2.0 * share - 1.0));
  }
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  return mesh;
}

std::vector<NamedMesh> closedMeshes() {
  return {{"tetrahedron", tetrahedron()},
          {"octahedron", octahedron()},
          {"cube", cube()},
          {"icosphere", icosphere(2)},
          {"torus", torus(12, 8)}};
}

std::vector<NamedMesh> openMeshes() {
  return {{"single triangle", singleTriangle()},
          {"two triangles", twoTriangles()},
          {"hexagon fan", hexagonFan()},
          {"grid", grid(5, 4)},
          {"bumpy grid", bumpyGrid(9, 7)}};
}

namespace {

/// A sphere of 80 faces: one has a corner on the middle of its opposite side, and elsewhere two
/// neighbours lie in the same place.
TriangleMesh sphereWithASliver() {
  TriangleMesh mesh = icosphere(1);
  const auto c = mesh.corners(0);
  mesh.setPosition(c[0], 0.5 * (mesh.position(c[1]) + mesh.position(c[2])) + Vec3{1e-7, 0, 0});
  for (int i = 0; i < mesh.vertexCount; ++i) {  // the first that is far from there
    const auto ring = mesh.getNeighbours(i);
    if (std::ranges::any_of(ring, [&](int j) { return j == c[0] || j == c[1] || j == c[2]; })) {
      continue;
    }
    if (i == c[0] || i == c[1] || i == c[2]) continue;
    mesh.setPosition(ring[0], mesh.position(i));
    break;
  }
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  return mesh;
}

TriangleMesh inOnePlace(TriangleMesh mesh) {
  std::ranges::fill(mesh.vertices, 1.0F);
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  return mesh;
}

}  // namespace

std::vector<NamedMesh> hostileMeshes() {
  const float inf = std::numeric_limits<float>::infinity();
  return {
      {"empty", emptyMesh()},
      {"points only", pointsOnly()},
      {"bow tie", bowTie()},
      {"three faces on an edge", threeFacesOnAnEdge()},
      {"degenerate face", degenerateFace()},
      {"not a number", withNan()},
      {"infinite", makeMesh({{0, 0, 0}, {inf, 0, 0}, {0, 1, 0}, {0, 0, -inf}},
                            {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}})},
      {"all vertices equal", makeMesh({{1, 1, 1}, {1, 1, 1}, {1, 1, 1}}, {{0, 1, 2}})},
      {"unused vertices",
       makeMesh({{9, 9, 9}, {0, 0, 0}, {1, 0, 0}, {5, 5, 5}, {0, 1, 0}}, {{1, 2, 4}})},
      {"invalid faces",
       makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 7}, {-3, 1, 2}, {1, 1, 2}, {0, 1, 2}})},
      {"the same face twice", makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 1, 2}})},
      {"both sides of a face", makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 1}})},
      {"two surfaces at one vertex", touchingOctahedra()},
      {"sliver and neighbours in one place", sphereWithASliver()},
      {"closed in one place", inOnePlace(octahedron())},
      {"Moebius band", moebiusBand(12)},
      {"very large", icosphere(1, 1e30)},
      {"very small", icosphere(1, 1e-40)}};  // coordinates of some sixteen bits
}

int eulerCharacteristic(const TriangleMesh& mesh) {
  std::set<int> used;
  std::set<std::pair<int, int>> edges;
  int faces = 0;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    ++faces;
    const auto c = mesh.corners(f);
    for (std::size_t j = 0; j < 3; ++j) {
      used.insert(c[j]);
      edges.insert(std::minmax(c[j], c[(j + 1) % 3]));
    }
  }
  return static_cast<int>(used.size()) - static_cast<int>(edges.size()) + faces;
}

}  // namespace gravlin::test
