#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <numbers>
#include <set>

#include "numeric/Index.h"
#include "remesh/CollapsibleMesh.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::UnorderedElementsAre;

Vec3 middle(const TriangleMesh& mesh, int i, int j) {
  return roundedToSingle(0.5 * (mesh.position(i) + mesh.position(j)));
}

/// The mesh after the collapse of i-j into x with everything rebuilt; nothing when it was refused.
std::optional<TriangleMesh> collapsed(TriangleMesh mesh, int i, int j, const Vec3& x) {
  CollapsibleMesh surface(mesh);
  const TriangleMesh before = mesh;
  const bool done = surface.collapse(i, j, x);
  surface.writeTo(mesh);
  if (!done) {
    EXPECT_EQ(mesh.faces, before.faces);
    EXPECT_EQ(mesh.vertexKind, before.vertexKind);
    return std::nullopt;
  }
  const std::vector<int> kinds = mesh.vertexKind;
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  EXPECT_EQ(mesh.vertexKind, kinds) << "kinds are kept as building them anew gives";
  return mesh;
}

bool collapses(const TriangleMesh& mesh, int i, int j) {
  return collapsed(mesh, i, j, middle(mesh, i, j)).has_value();
}

/// Two apexes, 0 and 1, over a closed rim of n vertices of valence 4.
TriangleMesh doubleCone(int n) {
  std::vector<std::array<float, 3>> points = {{0, 0, 1}, {0, 0, -1}};
  std::vector<std::array<int, 3>> faces;
  for (int k = 0; k < n; ++k) {
    const double angle = 2.0 * std::numbers::pi * k / n;
    points.push_back(
        {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)), 0.0F});
    faces.push_back({0, 2 + k, 2 + (k + 1) % n});
    faces.push_back({1, 2 + (k + 1) % n, 2 + k});
  }
  return test::makeMesh(points, faces);
}

/// Positions and faces of a mesh, to make another one of.
struct Arrays {
  std::vector<std::array<float, 3>> points;
  std::vector<std::array<int, 3>> faces;
};

Arrays arraysOf(const TriangleMesh& mesh) {
  Arrays arrays;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const float* p = &mesh.vertices[3 * toIndex(i)];
    arrays.points.push_back({p[0], p[1], p[2]});
  }
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    arrays.faces.push_back({c[0], c[1], c[2]});
  }
  return arrays;
}

/// The mesh with another face, on new vertices but for one.
TriangleMesh withFlagAt(const TriangleMesh& mesh, int vertex) {
  Arrays arrays = arraysOf(mesh);
  arrays.points.insert(arrays.points.end(), {{0, 0, 50}, {1, 0, 50}});
  arrays.faces.push_back({vertex, mesh.vertexCount, mesh.vertexCount + 1});
  return test::makeMesh(arrays.points, arrays.faces);
}

// --- Refusals, each beside a case that differs in nothing else and is taken ---

TEST(CollapsibleMesh, RefusesAnEndThatIsNotManifold) {
  const TriangleMesh grid = test::grid(6, 6);
  EXPECT_TRUE(collapses(grid, 24, 25));
  EXPECT_FALSE(collapses(withFlagAt(grid, 24), 24, 25));
  EXPECT_FALSE(collapses(withFlagAt(grid, 25), 24, 25));
  EXPECT_FALSE(collapses(test::pointsOnly(), 0, 1));
}

TEST(CollapsibleMesh, RefusesRingsOfFewerThanSevenOrMoreThanSeventeenVertices) {
  EXPECT_FALSE(collapses(test::tetrahedron(), 0, 1)) << "3 + 3";
  EXPECT_TRUE(collapses(doubleCone(13), 2, 0)) << "4 + 13";
  EXPECT_FALSE(collapses(doubleCone(14), 2, 0)) << "4 + 14";
}

/// An interior vertex 0 of valence 3 in the face 1 2 3 of a strip that ends at 4; `below` a face
/// more at the boundary vertex 1. The corners opposite of edge 0-1 have four neighbours at least.
TriangleMesh cornerWithCentre(bool below) {
  std::vector<std::array<float, 3>> points = {
      {2, 1.1F, 0}, {0, 0, 0}, {4, 0, 0}, {2, 3.4F, 0}, {6, 3.4F, 0}};
  std::vector<std::array<int, 3>> faces = {{1, 2, 0}, {2, 3, 0}, {3, 1, 0}, {2, 4, 3}};
  if (below) {
    points.push_back({2, -3.4F, 0});
    faces.push_back({1, 5, 2});
  }
  return test::makeMesh(points, faces);
}

TEST(CollapsibleMesh, TakesSevenVerticesInsideAndRefusesSix) {
  EXPECT_FALSE(collapses(cornerWithCentre(false), 0, 1)) << "3 + 3";
  EXPECT_TRUE(collapses(cornerWithCentre(true), 0, 1)) << "3 + 4";
}

/// Half a disc about vertex 0 in n equal faces, its rim 1 .. n + 1.
TriangleMesh halfDisc(int n) {
  std::vector<std::array<float, 3>> points = {{0, 0, 0}};
  std::vector<std::array<int, 3>> faces;
  for (int k = 0; k <= n; ++k) {
    const double angle = std::numbers::pi * k / n;
    points.push_back({static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)), 0});
    if (k > 0) faces.push_back({0, k, k + 1});
  }
  return test::makeMesh(points, faces);
}

TEST(CollapsibleMesh, TakesSixVerticesAlongTheBoundaryAndRefusesFive) {
  // The corner opposite, vertex 0, has four neighbours.
  EXPECT_FALSE(collapses(halfDisc(3), 1, 2)) << "2 + 3";
  EXPECT_TRUE(collapses(halfDisc(3), 2, 3)) << "3 + 3";
}

TEST(CollapsibleMesh, KnowsNoUpperLimitAlongTheBoundary) {
  // Two fans about 0 and 1, of eight more neighbours each, share the face 0 1 2.
  std::vector<std::array<float, 3>> points = {{0, 0, 0}, {1, 0, 0}, {0.5F, 0.866F, 0}};
  std::vector<std::array<int, 3>> faces = {{0, 1, 2}};
  for (const bool left : {true, false}) {
    int before = 2;
    for (int degrees = 85; degrees <= 260; degrees += 25) {
      const double angle = degrees * std::numbers::pi / 180.0;
      const double x = left ? std::cos(angle) : 1.0 - std::cos(angle);
      const int next = static_cast<int>(points.size());
      points.push_back({static_cast<float>(x), static_cast<float>(std::sin(angle)), 0});
      faces.push_back(left ? std::array{0, before, next} : std::array{1, next, before});
      before = next;
    }
  }
  const TriangleMesh mesh = test::makeMesh(points, faces);
  ASSERT_EQ(mesh.neighbourCount(0) + mesh.neighbourCount(1), 20);
  EXPECT_TRUE(collapses(mesh, 0, 1));
}

TEST(CollapsibleMesh, RefusesFewerThanSixVerticesAlongTheBoundary) {
  EXPECT_FALSE(collapses(test::singleTriangle(), 0, 1)) << "2 + 2";
  // The first row of a grid: a corner with two faces and its neighbour, 3 + 4; then a corner with
  // one face, 2 + 4 but an opposite corner of 3; then the same with the opposite corner inside.
  const TriangleMesh grid = test::grid(3, 3);
  EXPECT_TRUE(collapses(grid, 1, 0));
  EXPECT_TRUE(collapses(grid, 1, 2));
  const TriangleMesh corner =
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 3}});
  EXPECT_FALSE(collapses(corner, 0, 1)) << "3 + 2";
}

TEST(CollapsibleMesh, RefusesFewerThanSevenVerticesAcrossFromBoundaryToBoundary) {
  EXPECT_FALSE(collapses(test::twoTriangles(), 0, 2)) << "3 + 3";
  EXPECT_TRUE(collapses(test::grid(4, 1), 2, 7)) << "4 + 4";
}

TEST(CollapsibleMesh, RefusesAnOppositeCornerThatIsNotManifold) {
  const TriangleMesh grid = test::grid(6, 6);
  EXPECT_FALSE(collapses(withFlagAt(grid, 32), 24, 25)) << "opposite";
  EXPECT_FALSE(collapses(withFlagAt(grid, 17), 24, 25)) << "opposite";
  EXPECT_TRUE(collapses(withFlagAt(grid, 31), 24, 25)) << "a neighbour of one end only";
}

TEST(CollapsibleMesh, RefusesAThirdNeighbourInCommon) {
  // Below the boundary edge 2-3 of a grid two faces hang from its neighbours 1-2 and 3-4. Where
  // they end in the same vertex, collapsing 2-3 would close the hole between them to an edge.
  const auto withFaces = [](int leftTip, int rightTip) {
    Arrays arrays = arraysOf(test::grid(6, 6));
    arrays.points.insert(arrays.points.end(), {{2.5F, -3, 0}, {2.5F, -3, 0}});
    arrays.faces.insert(arrays.faces.end(), {{2, 1, leftTip}, {4, 3, rightTip}});
    return test::makeMesh(arrays.points, arrays.faces);
  };
  EXPECT_TRUE(collapses(withFaces(49, 50), 2, 3));
  EXPECT_FALSE(collapses(withFaces(49, 49), 2, 3));
}

TEST(CollapsibleMesh, RefusesAnOppositeCornerOfThreeNeighbours) {
  // The face 24 25 32 cut into three by a vertex in its middle, which is then opposite its sides.
  const TriangleMesh grid = test::grid(6, 6);
  EXPECT_TRUE(collapses(grid, 24, 25));
  Arrays arrays = arraysOf(grid);
  arrays.points.push_back({3.66F, 3.33F, 0});
  std::erase(arrays.faces, std::array{24, 25, 32});
  arrays.faces.insert(arrays.faces.end(), {{24, 25, 49}, {25, 32, 49}, {32, 24, 49}});
  const TriangleMesh cut = test::makeMesh(arrays.points, arrays.faces);
  ASSERT_EQ(cut.neighbourCount(49), 3);
  EXPECT_FALSE(collapses(cut, 24, 25));
  EXPECT_TRUE(collapses(cut, 24, 49)) << "the small vertex itself may go";
}

TEST(CollapsibleMesh, RefusesAFaceOfLowQuality) {
  // Vertex 24 of the grid lies at (3, 3). With x at the distance d from the middle of the side from
  // (2, 2) to (2, 3) of its fan, that face has the area d / 2 and the squared sides 1 and twice
  // 1/4 + d^2: the quality 4 sqrt(3) (d / 2) / (3/2 + 2 d^2) is 4 d / sqrt(3) up to a millionth,
  // and 0.001 at d = 0.00025 sqrt(3). Rounding x to single precision changes d by less than 1/3000.
  const TriangleMesh grid = test::grid(6, 6);
  const double limit = 0.00025 * std::numbers::sqrt3;
  EXPECT_TRUE(collapsed(grid, 24, 25, {2.0 + 1.002 * limit, 2.5, 0}));
  EXPECT_FALSE(collapsed(grid, 24, 25, {2.0 + 0.998 * limit, 2.5, 0}));
}

TEST(CollapsibleMesh, RefusesAFaceThatFoldsOver) {
  const TriangleMesh grid = test::grid(6, 6);
  EXPECT_FALSE(collapsed(grid, 24, 25, {1.5, 2.5, 0})) << "past a side of the fan of 24";
  EXPECT_FALSE(collapsed(grid, 24, 25, {5.5, 3.5, 0})) << "past a side of the fan of 25";
  EXPECT_TRUE(collapsed(grid, 24, 25, {3.5, 3.2, 0}));
  EXPECT_TRUE(collapsed(grid, 24, 25, {3.5, 3.2, 5.0})) << "height is no fold";
}

TEST(CollapsibleMesh, RefusesFacesThatAreAPointOrNotFinite) {
  TriangleMesh point = test::grid(6, 6);
  std::ranges::fill(point.vertices, 1.0F);
  EXPECT_FALSE(collapses(point, 24, 25)) << "quality 0 / 0";
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(collapsed(test::grid(6, 6), 24, 25, {nan, 3, 0}));
  EXPECT_FALSE(
      collapsed(test::grid(6, 6), 24, 25, {std::numeric_limits<double>::infinity(), 3, 0}));
}

TEST(CollapsibleMesh, RefusesWhatIsNoEdge) {
  EXPECT_FALSE(collapses(test::grid(6, 6), 24, 26));
}

// --- What a collapse does ---

TEST(CollapsibleMesh, TakesTwoFacesAndAVertexFromTheInterior) {
  const TriangleMesh grid = test::grid(6, 6);
  const auto mesh = collapsed(grid, 24, 25, {3.5, 3.0, 0.25});
  ASSERT_TRUE(mesh);
  EXPECT_EQ(mesh->position(24), (Vec3{3.5, 3.0, 0.25}));
  EXPECT_EQ(mesh->countValidFaces(), grid.countValidFaces() - 2);
  EXPECT_EQ(mesh->vertexKind[25], NonManifoldVertex);
  EXPECT_EQ(mesh->neighbourCount(25), 0);
  EXPECT_THAT(mesh->getNeighbours(24), UnorderedElementsAre(16, 17, 23, 31, 32, 18, 26, 33));
  EXPECT_EQ(mesh->neighbourCount(17), 5);
  EXPECT_EQ(mesh->neighbourCount(32), 5);
  EXPECT_EQ(mesh->vertexKind[24], InteriorVertex);
  EXPECT_EQ(test::eulerCharacteristic(*mesh), test::eulerCharacteristic(grid));
}

TEST(CollapsibleMesh, TakesOneFaceFromTheBoundary) {
  const TriangleMesh grid = test::grid(6, 6);
  const auto mesh = collapsed(grid, 2, 3, {2.5, 0, 0});
  ASSERT_TRUE(mesh);
  EXPECT_EQ(mesh->countValidFaces(), grid.countValidFaces() - 1);
  EXPECT_EQ(mesh->vertexKind[2], BoundaryVertex);
  EXPECT_EQ(test::eulerCharacteristic(*mesh), test::eulerCharacteristic(grid));
}

TEST(CollapsibleMesh, AnInteriorVertexThatSwallowsABoundaryVertexIsOne) {
  const TriangleMesh grid = test::grid(6, 6);
  const auto mesh = collapsed(grid, 10, 3, {3, 0, 0});
  ASSERT_TRUE(mesh);
  EXPECT_EQ(mesh->vertexKind[10], BoundaryVertex);
}

TEST(CollapsibleMesh, AcrossFromBoundaryToBoundaryTheStripIsPinched) {
  const TriangleMesh strip = test::grid(4, 1);
  const auto mesh = collapsed(strip, 7, 2, {2, 0.5, 0});
  ASSERT_TRUE(mesh);
  EXPECT_EQ(mesh->vertexKind[7], NonManifoldVertex);
  EXPECT_GT(mesh->neighbourCount(7), 0);
}

/// The labels of all edges, by either end and then by the other.
using EdgeLabels = std::map<int, std::map<int, int>>;

/// A label for every edge of the mesh, and the same given to the sides of the surface.
EdgeLabels labelEdges(const TriangleMesh& mesh, CollapsibleMesh& surface) {
  EdgeLabels labels;
  int next = 0;
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    for (std::size_t side = 0; side < 3; ++side) {
      const int a = c[side];
      const int b = c[(side + 1) % 3];
      if (labels[a].emplace(b, next).second) labels[b].emplace(a, next++);
      surface.setLabel(f, side, labels[a][b]);
    }
  }
  return labels;
}

using LabelsAndNeighbours = std::set<std::pair<int, int>>;

LabelsAndNeighbours asSet(const std::vector<LabelledEdge>& edges) {
  LabelsAndNeighbours all;
  for (const LabelledEdge& edge : edges) all.emplace(edge.label, edge.neighbour);
  EXPECT_EQ(all.size(), edges.size()) << "no edge twice";
  return all;
}

/// Moves the edges of j to i as a collapse does, and expects that the surface has told the same.
void collapseLabels(EdgeLabels& labels, int i, int j, const CollapsedEdges& told) {
  LabelsAndNeighbours kept;
  LabelsAndNeighbours moved;
  LabelsAndNeighbours lost;
  labels[i].erase(j);
  labels[j].erase(i);
  for (const auto& [u, label] : labels[i]) kept.emplace(label, u);
  for (const auto& [u, label] : labels[j]) {
    const bool isNew = labels[i].emplace(u, label).second;
    (isNew ? moved : lost).emplace(label, u);
    labels[u].erase(j);
    if (isNew) labels[u].emplace(i, label);
  }
  EXPECT_EQ(told.faces, static_cast<int>(lost.size()));
  labels.erase(j);
  EXPECT_EQ(asSet(told.kept), kept);
  EXPECT_EQ(asSet(told.moved), moved);
  EXPECT_EQ(asSet(told.lost), lost);
}

std::set<std::pair<int, int>> edgesOf(const EdgeLabels& labels) {
  std::set<std::pair<int, int>> edges;
  for (const auto& [a, ends] : labels) {
    for (const auto& [b, label] : ends) edges.emplace(a, b);
  }
  return edges;
}

std::set<std::pair<int, int>> edgesOf(const TriangleMesh& mesh) {
  std::set<std::pair<int, int>> edges;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto c = mesh.corners(f);
    for (std::size_t side = 0; side < 3; ++side) {
      edges.emplace(c[side], c[(side + 1) % 3]);
      edges.emplace(c[(side + 1) % 3], c[side]);
    }
  }
  return edges;
}

// A label is found by walking from face to face: where the adjacency is wrong, so are the labels.
TEST(CollapsibleMesh, KeepsKindsAdjacencyAndLabelsOverManyCollapses) {
  for (const TriangleMesh& before :
       {test::jittered(test::icosphere(2), 0.02), test::jittered(test::grid(9, 8), 0.1),
        test::jittered(test::torus(10, 8), 0.05), test::grid(12, 1),
        withFlagAt(test::jittered(test::grid(9, 8), 0.1), 40)}) {
    TriangleMesh mesh = before;
    CollapsibleMesh surface(mesh);
    EdgeLabels labels = labelEdges(mesh, surface);
    int count = 0;
    for (int i = 0; i < before.vertexCount; ++i) {
      for (const int j : before.vertexNeighbours[i]) {
        const Vec3 x = roundedToSingle(0.5 * (surface.position(i) + surface.position(j)));
        if (!surface.collapse(i, j, x)) continue;
        ++count;
        collapseLabels(labels, i, j, surface.collapsedEdges());
        surface.writeTo(mesh);
        ASSERT_EQ(edgesOf(labels), edgesOf(mesh)) << "after " << count;
        const std::vector<int> kinds = mesh.vertexKind;
        mesh.buildAdjacency();
        ASSERT_EQ(mesh.vertexKind, kinds) << "after " << count;
        ASSERT_FALSE(HasFailure()) << "after " << count;
      }
    }
    EXPECT_GT(count, 3);
  }
}

TEST(CollapsibleMesh, TellsWhichLabelledEdgesStayMoveAndFallTogether) {
  const TriangleMesh grid = test::grid(6, 6);
  CollapsibleMesh surface(grid);
  // Labels an edge by its ends: 100 a + b for a < b.
  for (int f = 0; f < grid.faceCount; ++f) {
    const auto c = grid.corners(f);
    for (std::size_t side = 0; side < 3; ++side) {
      const auto [a, b] = std::minmax(c[side], c[(side + 1) % 3]);
      surface.setLabel(f, side, 100 * a + b);
    }
  }
  const auto labels = [](const std::vector<LabelledEdge>& edges) {
    std::set<std::pair<int, int>> all;
    for (const LabelledEdge& edge : edges) all.emplace(edge.label, edge.neighbour);
    return all;
  };
  ASSERT_TRUE(surface.collapse(24, 25, {3.5, 3, 0}));
  const CollapsedEdges& edges = surface.collapsedEdges();
  EXPECT_EQ(edges.faces, 2);
  EXPECT_THAT(labels(edges.kept),
              UnorderedElementsAre(std::pair(1624, 16), std::pair(1724, 17), std::pair(2324, 23),
                                   std::pair(2431, 31), std::pair(2432, 32)));
  EXPECT_THAT(labels(edges.moved),
              UnorderedElementsAre(std::pair(1825, 18), std::pair(2526, 26), std::pair(2533, 33)));
  EXPECT_THAT(labels(edges.lost), UnorderedElementsAre(std::pair(1725, 17), std::pair(2532, 32)));
  // A second collapse sees the labels of the edges that stayed on both sides of the gap.
  ASSERT_TRUE(surface.collapse(24, 26, {4, 3, 0}));
  EXPECT_THAT(labels(surface.collapsedEdges().kept),
              UnorderedElementsAre(std::pair(1624, 16), std::pair(1724, 17), std::pair(2324, 23),
                                   std::pair(2431, 31), std::pair(2432, 32), std::pair(1825, 18),
                                   std::pair(2533, 33)));
  EXPECT_THAT(labels(surface.collapsedEdges().lost),
              UnorderedElementsAre(std::pair(1826, 18), std::pair(2633, 33)));
}

}  // namespace
}  // namespace gravlin
