#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <set>

#include "mesh/MeshMeasures.h"
#include "mesh/MeshTopology.h"
#include "numeric/Index.h"
#include "remesh/Decimator.h"
#include "remesh/SlowDecimation.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"

namespace gravlin {
namespace {

using ::testing::Each;

DecimationResult decimate(TriangleMesh& mesh, float rate) {
  Decimator decimator;
  decimator.attach(&mesh);
  return decimator.decimate(rate);
}

/// The mesh with a hole in the place of each given vertex's faces.
TriangleMesh withHoles(TriangleMesh mesh, const std::vector<int>& vertices) {
  for (const int v : vertices) {
    for (const int f : mesh.vertexFaces[v]) mesh.setFace(f, std::array{-1, -1, -1});
  }
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  return mesh;
}

/// A closed band, n squares around and one across: every inner edge joins its two boundaries.
TriangleMesh band(int n) {
  std::vector<std::array<float, 3>> points;
  std::vector<std::array<int, 3>> faces;
  for (int k = 0; k < n; ++k) {
    const double angle = 2.0 * std::numbers::pi * k / n;
    for (const float z : {0.0F, 0.5F}) {
      points.push_back(
          {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)), z});
    }
    const int a = 2 * k;
    const int b = 2 * ((k + 1) % n);
    faces.push_back({a, b, b + 1});
    faces.push_back({a, b + 1, a + 1});
  }
  return test::makeMesh(points, faces);
}

/// Meshes without two edges of the same cost. (At a boundary corner of one face all planes are the
/// same and its edges cost nothing but rounding, so none has such a corner.)
std::vector<test::NamedMesh> roughMeshes() {
  return {
      {"sphere", test::jittered(test::icosphere(2), 0.03)},
      {"cube", test::jittered(test::fineCube(5), 0.03)},
      {"torus", test::jittered(test::torus(16, 10), 0.08)},
      {"sphere with holes", withHoles(test::jittered(test::icosphere(2), 0.03), {0, 3, 40, 90})},
      {"band", test::jittered(band(24), 0.04)}};
}

// --- Against the definition ---

TEST(Decimator, CollapsesTheEdgesThatThePlainSearchCollapses) {
  for (const test::NamedMesh& rough : roughMeshes()) {
    for (const float rate : {0.1F, 0.5F, 0.8F, 1.0F}) {
      SCOPED_TRACE(::testing::Message() << rough.name << ' ' << rate);
      TriangleMesh mesh = rough.mesh;
      TriangleMesh slow = rough.mesh;
      const DecimationResult result = decimate(mesh, rate);
      EXPECT_EQ(result.vertices, test::decimateSlowly(slow, static_cast<double>(rate)));
      EXPECT_GT(result.vertices, 0);
      EXPECT_EQ(mesh.faces, slow.faces);
      for (int i = 0; i < mesh.vertexCount; ++i) {
        // The same linear systems solved in another order of operations, their results summed up
        // over many collapses.
        EXPECT_NEAR(length(mesh.position(i) - slow.position(i)), 0.0, 1e-4);
      }
    }
  }
}

/// A vertex with two neighbours that are no neighbours of each other.
struct Corner {
  int middle;
  int nearest;
  int next;
};

/// The first such corner of a mesh that `wanted` accepts.
template <class Wanted>
Corner findCorner(const TriangleMesh& mesh, const Wanted& wanted) {
  for (int middle = 0; middle < mesh.vertexCount; ++middle) {
    const auto ring = mesh.getNeighbours(middle);
    for (const int nearest : ring) {
      for (const int next : ring) {
        const bool apart =
            next != nearest && std::ranges::find(mesh.getNeighbours(nearest), next) ==
                                   mesh.getNeighbours(nearest).end();
        if (apart && wanted(Corner{middle, nearest, next})) return {middle, nearest, next};
      }
    }
  }
  ADD_FAILURE() << "no such corner";
  return {0, 0, 0};
}

/// Which of the corner's vertices are left after two collapses, when its first edge is by far the
/// shortest of the mesh and so the cheapest, and its second one comes next.
std::set<int> leftAfterTwo(TriangleMesh mesh, const Corner& corner) {
  const Vec3 p = mesh.position(corner.middle);
  for (const auto& [v, share] : {std::pair(corner.nearest, 0.05), {corner.next, 0.2}}) {
    mesh.setPosition(v, p + share * (mesh.position(v) - p));
  }
  EXPECT_EQ(decimate(mesh, 1.5F / static_cast<float>(mesh.vertexCount)).vertices, 2);
  std::set<int> left;
  for (const int v : {corner.middle, corner.nearest, corner.next}) {
    if (mesh.neighbourCount(v) > 0) left.insert(v);
  }
  return left;
}

TEST(Decimator, ASurvivorTakesThePlaceOfTheVanishedEndInItsEdges) {
  const TriangleMesh mesh = test::torus(16, 10);
  // At first the higher index survives. (m, j) becomes (m, i): m survives its collapse.
  const Corner second =
      findCorner(mesh, [](const Corner& c) { return c.nearest > c.middle && c.next > c.middle; });
  EXPECT_EQ(leftAfterTwo(mesh, second), std::set{second.next});
  // (j, m) becomes (i, m): i survives.
  const Corner first =
      findCorner(mesh, [](const Corner& c) { return c.nearest > c.middle && c.next < c.middle; });
  EXPECT_EQ(leftAfterTwo(mesh, first), std::set{first.nearest});
}

TEST(Decimator, CountsWhatItRemoved) {
  for (const auto& [name, rough] : roughMeshes()) {
    TriangleMesh mesh = rough;
    const DecimationResult result = decimate(mesh, 0.4F);
    EXPECT_EQ(mesh.countUsedVertices(), rough.countUsedVertices() - result.vertices) << name;
    EXPECT_EQ(mesh.countValidFaces(), rough.countValidFaces() - result.faces) << name;
  }
}

// --- The target ---

TEST(Decimator, StopsAtTheShareOfUsedVerticesWithTheFractionCutOff) {
  // 162 used vertices, one more that no face uses: 0.3 x 162 = 48.6 may stay.
  TriangleMesh sphere = test::icosphere(2);
  std::vector<std::array<float, 3>> points = {{5, 5, 5}};
  std::vector<std::array<int, 3>> faces;
  for (int i = 0; i < sphere.vertexCount; ++i) {
    const float* p = &sphere.vertices[3 * toIndex(i)];
    points.push_back({p[0], p[1], p[2]});
  }
  for (int f = 0; f < sphere.faceCount; ++f) {
    const auto c = sphere.corners(f);
    faces.push_back({c[0] + 1, c[1] + 1, c[2] + 1});
  }
  TriangleMesh mesh = test::makeMesh(points, faces);
  ASSERT_EQ(mesh.countUsedVertices(), 162);
  const DecimationResult result = decimate(mesh, 0.7F);
  EXPECT_TRUE(result.targetReached);
  EXPECT_EQ(mesh.countUsedVertices(), 48);
}

TEST(Decimator, CollapsesOneEdgeWhenNothingIsToGo) {
  for (const float rate : {0.0F, -0.5F, -std::numeric_limits<float>::infinity()}) {
    TriangleMesh mesh = test::icosphere(2);
    const DecimationResult result = decimate(mesh, rate);
    EXPECT_EQ(result.vertices, 1) << rate;
    EXPECT_TRUE(result.targetReached) << rate;
  }
}

TEST(Decimator, GoesOnUntilNoEdgeIsLeftWhenEverythingIsToGo) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const float rate : {1.0F, 7.0F, std::numeric_limits<float>::infinity(), nan}) {
    TriangleMesh mesh = test::icosphere(2);
    const DecimationResult result = decimate(mesh, rate);
    EXPECT_FALSE(result.targetReached) << rate;
    EXPECT_GT(result.vertices, 100) << rate;
    EXPECT_GT(mesh.countUsedVertices(), 3) << rate;
    EXPECT_EQ(test::eulerCharacteristic(mesh), 2) << rate;
  }
}

TEST(Decimator, LeavesATetrahedronAsItIs) {
  TriangleMesh mesh = test::tetrahedron();
  const DecimationResult result = decimate(mesh, 0.5F);
  EXPECT_EQ(result.vertices, 0);
  EXPECT_EQ(result.faces, 0);
  EXPECT_FALSE(result.targetReached);
  EXPECT_EQ(mesh.faces, test::tetrahedron().faces);
}

// --- Laws ---

TEST(Decimator, KeepsAClosedMeshClosedAndItsEulerCharacteristic) {
  for (const test::NamedMesh& rough : roughMeshes()) {
    if (rough.name == "sphere with holes" || rough.name == "band") continue;
    TriangleMesh mesh = rough.mesh;
    decimate(mesh, 0.9F);
    EXPECT_EQ(test::eulerCharacteristic(mesh), test::eulerCharacteristic(rough.mesh));
    for (int i = 0; i < mesh.vertexCount; ++i) {
      if (mesh.neighbourCount(i) > 0) {
        EXPECT_EQ(mesh.vertexKind[toIndex(i)], InteriorVertex);
      }
    }
  }
}

TEST(Decimator, KeepsTheEulerCharacteristicAndTheHolesOfAnOpenMesh) {
  const TriangleMesh before =
      withHoles(test::jittered(test::icosphere(3), 0.01), {0, 3, 40, 90, 300});
  for (const float rate : {0.3F, 0.6F, 0.8F}) {
    TriangleMesh mesh = before;
    decimate(mesh, rate);
    const MeshTopology wanted = measureTopology(before);
    const MeshTopology found = measureTopology(mesh);
    EXPECT_EQ(found.eulerCharacteristic(), wanted.eulerCharacteristic()) << rate;
    EXPECT_EQ(found.boundaryLoops, wanted.boundaryLoops) << rate;
    EXPECT_EQ(found.components, 1) << rate;
    EXPECT_EQ(found.nonManifoldEdges, 0) << rate;
  }
}

TEST(Decimator, KeepsTheShapeOfFlatSidesAndTheirEdges) {
  // Collapses within a side or along an edge of a cube cost nothing, all others something.
  TriangleMesh mesh = test::fineCube(8);
  const DecimationResult result = decimate(mesh, 0.9F);
  EXPECT_TRUE(result.targetReached);
  mesh.computeFaceNormals();
  EXPECT_NEAR(enclosedVolume(mesh), 8.0, 1e-5);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (mesh.neighbourCount(i) == 0) continue;
    const Vec3 p = mesh.position(i);
    EXPECT_NEAR(std::max({std::abs(p.x), std::abs(p.y), std::abs(p.z)}), 1.0, 1e-6);
  }
}

// Where a border turns, its plane is the sheet's own as well: nothing holds a corner in its place.
TEST(Decimator, KeepsAFlatSheetInItsPlaneAndWithinItsOutlineThoughNotItsCorners) {
  const TriangleMesh before = test::grid(10, 8);
  int fewestCorners = 4;
  for (const float rate : {0.2F, 0.6F, 0.9F}) {
    SCOPED_TRACE(rate);
    TriangleMesh mesh = before;
    decimate(mesh, rate);
    int corners = 0;
    double area = 0.0;
    for (int i = 0; i < mesh.vertexCount; ++i) {
      if (mesh.neighbourCount(i) == 0) continue;
      const Vec3 p = mesh.position(i);
      EXPECT_EQ(p.z, 0.0);
      // Points of the border are found in its line up to the rounding of single precision.
      EXPECT_TRUE(p.x >= -1e-5 && p.x <= 10.0 + 1e-5 && p.y >= -1e-5 && p.y <= 8.0 + 1e-5);
      if ((p.x == 0.0 || p.x == 10.0) && (p.y == 0.0 || p.y == 8.0)) ++corners;
    }
    for (int f = 0; f < mesh.faceCount; ++f) {
      if (!mesh.validFace(f)) continue;
      const auto c = mesh.corners(f);
      const Vec3 a = mesh.position(c[0]);
      const Vec3 n = cross(mesh.position(c[1]) - a, mesh.position(c[2]) - a);
      EXPECT_GT(n.z, 0.0) << "no face turns over";
      area += 0.5 * n.z;
    }
    fewestCorners = std::min(fewestCorners, corners);
    EXPECT_LE(area, 80.0 + 1e-3);  // 36 of border times the rounding above
  }
  EXPECT_LT(fewestCorners, 4) << "a corner may go";
}

TEST(Decimator, StaysCloseToASmoothSurface) {
  // A sphere of 642 vertices reduced to 128: the chords of its edges sink by about 0.03.
  TriangleMesh mesh = test::icosphere(3);
  decimate(mesh, 0.8F);
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto c = mesh.corners(f);
    const Vec3 centre = (mesh.position(c[0]) + mesh.position(c[1]) + mesh.position(c[2])) / 3.0;
    EXPECT_NEAR(length(centre), 1.0, 0.06);
  }
}

TEST(Decimator, TakesUpToDateFaceNormalsAndGivesTheSameBitsTwice) {
  std::vector<test::NamedMesh> meshes = roughMeshes();
  // Many edges of the same cost.
  meshes.push_back({"grid", test::grid(12, 9)});
  meshes.push_back({"icosphere", test::icosphere(2)});
  for (const auto& [name, rough] : meshes) {
    TriangleMesh a = rough;
    TriangleMesh b = rough;
    std::ranges::fill(b.faceNormals, 0.5F);
    decimate(a, 0.5F);
    decimate(b, 0.5F);
    EXPECT_EQ(a.faces, b.faces) << name;
    EXPECT_EQ(a.vertices, b.vertices) << name;
  }
}

TEST(Decimator, LeavesTopologyAsBuildingItAnewGives) {
  for (const auto& [name, rough] : roughMeshes()) {
    TriangleMesh mesh = rough;
    decimate(mesh, 0.5F);
    TriangleMesh anew = mesh;
    anew.buildAdjacency();
    anew.buildFaceAdjacency();
    EXPECT_EQ(mesh.vertexNeighbours.items, anew.vertexNeighbours.items) << name;
    EXPECT_EQ(mesh.vertexKind, anew.vertexKind) << name;
    EXPECT_EQ(mesh.faceAdjacency, anew.faceAdjacency) << name;
  }
}

TEST(Decimator, LeavesNonManifoldVerticesAndTheirFacesInPlace) {
  // Two rough spheres that share one vertex.
  const TriangleMesh sphere = test::jittered(test::icosphere(2), 0.03);
  std::vector<std::array<float, 3>> points;
  std::vector<std::array<int, 3>> faces;
  const Vec3 meeting = sphere.position(0);
  for (const int side : {0, 1}) {
    for (int i = 0; i < sphere.vertexCount; ++i) {
      const Vec3 p = side == 0 ? sphere.position(i) : 2.0 * meeting - sphere.position(i);
      points.push_back({static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)});
    }
    for (int f = 0; f < sphere.faceCount; ++f) {
      std::array<int, 3> c;
      for (std::size_t k = 0; k < 3; ++k) {
        const int v = sphere.corners(f)[k];
        c[k] = side == 0 || v == 0 ? v : v + sphere.vertexCount;
      }
      if (side == 1) std::swap(c[1], c[2]);  // the reflection turned it over
      faces.push_back(c);
    }
  }
  TriangleMesh mesh = test::makeMesh(points, faces);
  ASSERT_EQ(mesh.vertexKind[0], NonManifoldVertex);
  const int fan = mesh.vertexFaceCount(0);
  decimate(mesh, 0.8F);
  EXPECT_EQ(mesh.position(0), meeting);
  EXPECT_EQ(mesh.vertexFaceCount(0), fan);
  EXPECT_EQ(mesh.vertexKind[0], NonManifoldVertex);
}

int nonFiniteCoordinates(const TriangleMesh& mesh) {
  return static_cast<int>(
      std::ranges::count_if(mesh.vertices, [](float x) { return !std::isfinite(x); }));
}

/// What holds of a mesh whatever was in it before.
void expectProperlyDecimated(const TriangleMesh& before, const TriangleMesh& after,
                             const DecimationResult& result) {
  EXPECT_EQ(after.countValidFaces(), before.countValidFaces() - result.faces);
  EXPECT_EQ(after.countUsedVertices(), before.countUsedVertices() - result.vertices);
  EXPECT_EQ(nonFiniteCoordinates(after), nonFiniteCoordinates(before)) << "these never move";
  for (int i = 0; i < before.vertexCount; ++i) {
    if (before.vertexKind[toIndex(i)] == NonManifoldVertex) {
      EXPECT_TRUE(test::sameBits(after.position(i), before.position(i))) << i;
      EXPECT_EQ(after.vertexFaceCount(i), before.vertexFaceCount(i)) << i;
    }
  }
  TriangleMesh anew = after;
  anew.buildAdjacency();
  EXPECT_EQ(after.vertexKind, anew.vertexKind);
  EXPECT_EQ(after.faces, anew.faces) << "every corner is a vertex, and no face has one twice";
}

TEST(Decimator, LeavesAProperMeshOfAnyMesh) {
  std::vector<test::NamedMesh> meshes = test::hostileMeshes();
  TriangleMesh holed = test::jittered(test::icosphere(2), 0.03);
  holed.vertices[30] = std::numeric_limits<float>::infinity();
  holed.vertices[60] = std::numeric_limits<float>::quiet_NaN();
  meshes.push_back({"sphere with two points at no place", holed});
  for (const auto& [name, before] : meshes) {
    for (const float rate : {0.0F, 0.5F, 0.9F, 1.0F}) {
      SCOPED_TRACE(::testing::Message() << name << ' ' << rate);
      TriangleMesh mesh = before;
      const DecimationResult result = decimate(mesh, rate);
      expectProperlyDecimated(before, mesh, result);
      if (mesh.faceCount > 100) {
        EXPECT_EQ(test::eulerCharacteristic(mesh), 2);
        EXPECT_GT(result.vertices, 0);
      }
    }
  }
}

// --- One edge ---

TEST(Decimator, CollapsesOneEdgeAndRebuildsTheTopology) {
  TriangleMesh mesh = test::grid(6, 6);
  Decimator decimator;
  decimator.attach(&mesh);
  EXPECT_TRUE(decimator.collapseEdge(24, 25, {3.4, 3.1, 0.2}));
  EXPECT_EQ(mesh.position(24), (Vec3{static_cast<double>(3.4F), static_cast<double>(3.1F),
                                     static_cast<double>(0.2F)}));
  EXPECT_EQ(mesh.neighbourCount(24), 8);
  EXPECT_EQ(mesh.neighbourCount(25), 0);
  EXPECT_EQ(mesh.vertexKind[25], NonManifoldVertex);
  EXPECT_EQ(mesh.countUsedVertices(), 48);
}

TEST(Decimator, ARefusedEdgeChangesNothing) {
  TriangleMesh mesh = test::tetrahedron();
  const TriangleMesh before = mesh;
  Decimator decimator;
  decimator.attach(&mesh);
  for (const auto& [i, j] : {std::pair(0, 1), {0, 0}, {-1, 2}, {2, 4}, {7, 9}}) {
    EXPECT_FALSE(decimator.collapseEdge(i, j, {0.5, 0, 0}));
  }
  EXPECT_EQ(mesh.vertices, before.vertices);
  EXPECT_EQ(mesh.faces, before.faces);
  EXPECT_EQ(mesh.vertexNeighbours.items, before.vertexNeighbours.items);
}

}  // namespace
}  // namespace gravlin
