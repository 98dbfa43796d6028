#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <numbers>
#include <random>
#include <set>
#include <utility>

#include "mesh/RingDefinition.h"
#include "mesh/TriangleMesh.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The given geometry as a file gives it: nothing built, nothing normalised.
TriangleMesh bareMesh(const std::vector<std::array<float, 3>>& points) {
  TriangleMesh mesh;
  mesh.setVertexCount(static_cast<int>(points.size()));
  for (int i = 0; i < mesh.vertexCount; ++i) mesh.setVertex(i, points[static_cast<std::size_t>(i)]);
  return mesh;
}

std::vector<test::NamedMesh> allMeshes() {
  std::vector<test::NamedMesh> all = test::closedMeshes();
  for (auto& mesh : test::openMeshes()) all.push_back(std::move(mesh));
  for (auto& mesh : test::hostileMeshes()) all.push_back(std::move(mesh));
  return all;
}

bool isFace(const TriangleMesh& mesh, int f, std::array<int, 3> wanted) {
  for (int turn = 0; turn < 3; ++turn) {
    if (std::ranges::equal(mesh.corners(f), wanted)) return true;
    std::rotate(wanted.begin(), wanted.begin() + 1, wanted.end());
  }
  return false;
}

// --- Geometry ---

TEST(TriangleMesh, CountsMakeRoomForZeros) {
  TriangleMesh mesh;
  mesh.setVertexCount(2);
  mesh.setFaceCount(3);
  EXPECT_THAT(mesh.vertices, ElementsAre(0, 0, 0, 0, 0, 0));
  EXPECT_EQ(mesh.faces, std::vector<int>(9, 0));
  EXPECT_EQ(mesh.getFaceCount(), 3);
}

TEST(TriangleMesh, NormalizeFitsTheLargestExtentIntoTwentyAboutTheOrigin) {
  TriangleMesh mesh = bareMesh({{4, 1, 2}, {0, 3, 1}, {2, 2, 0}, {1, 1, 1}});
  mesh.normalize();
  EXPECT_THAT(mesh.boxMax, ElementsAre(4, 3, 2));
  EXPECT_THAT(mesh.boxMin, ElementsAre(0, 1, 0));
  EXPECT_DOUBLE_EQ(mesh.extentTolerance, 0.2);
  EXPECT_THAT(mesh.vertices, ElementsAre(10, -5, 5, -10, 5, 0, 0, 0, -5, -5, -5, 0));
}

TEST(TriangleMesh, NormalizeLeavesTheMinimumOfARisingAxisFarAway) {
  TriangleMesh mesh = bareMesh({{0, 3, 3}, {1, 2, 2}, {2, 1, 1}});
  mesh.normalize();
  EXPECT_THAT(mesh.boxMax, ElementsAre(2, 3, 3));
  EXPECT_THAT(mesh.boxMin, ElementsAre(1000000, 1, 1));
}

TEST(TriangleMesh, NormalizeOfNothingKeepsTheBoxWhereTheSearchStarts) {
  TriangleMesh mesh;
  mesh.normalize();
  EXPECT_THAT(mesh.boxMax, Each(-1000000.0F));
  EXPECT_THAT(mesh.boxMin, Each(1000000.0F));
  EXPECT_DOUBLE_EQ(mesh.extentTolerance, -100000.0);
}

TEST(TriangleMesh, NormalizeOverlooksCoordinatesThatAreNotNumbersWhenItLooksForTheBox) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  TriangleMesh mesh = bareMesh({{nan, 5, 5}, {1, 1, 1}, {0, 0, 0}});
  mesh.normalize();
  EXPECT_THAT(mesh.boxMax, ElementsAre(1, 5, 5));
  EXPECT_THAT(mesh.boxMin, ElementsAre(0, 0, 0));
  EXPECT_TRUE(std::isnan(mesh.vertices[0]));
  EXPECT_EQ(mesh.vertices[1], 10.0F);
}

TEST(TriangleMesh, DenormalizeUndoesNormalize) {
  for (const auto& [name, built] : test::closedMeshes()) {
    TriangleMesh mesh = built;
    for (float& coordinate : mesh.vertices) coordinate = 100.0F + 3.0F * coordinate;
    const std::vector<float> before = mesh.vertices;
    mesh.normalize();
    mesh.denormalize();
    for (std::size_t c = 0; c < before.size(); ++c) {
      // One rounding to float in memory (at most 10) and one in file units (about 110).
      EXPECT_NEAR(mesh.vertices[c], before[c], 2e-5) << name;
    }
  }
}

// --- Topology ---

TEST(TriangleMesh, FacesWithARepeatedOrOutOfRangeCornerBecomeInvalid) {
  TriangleMesh mesh;
  mesh.setVertexCount(8);
  mesh.setFaceCount(5);
  mesh.setFace(0, std::array{3, 3, 7});
  mesh.setFace(1, std::array{0, 1, 8});
  mesh.setFace(2, std::array{-2, 1, 2});
  mesh.setFace(3, std::array{5, 6, 5});
  mesh.setFace(4, std::array{0, 1, 2});
  mesh.buildAdjacency();
  EXPECT_EQ(mesh.countValidFaces(), 1);
  for (int f = 0; f < 4; ++f) EXPECT_THAT(mesh.corners(f), Each(-1));
  EXPECT_THAT(mesh.getNeighbours(3), IsEmpty());
  EXPECT_EQ(mesh.countUsedVertices(), 3);
}

TEST(TriangleMesh, AVertexThatNoFaceUsesHasNoNeighboursAndIsNonManifold) {
  const TriangleMesh mesh = test::pointsOnly();
  for (int i = 0; i < mesh.vertexCount; ++i) {
    EXPECT_EQ(mesh.neighbourCount(i), 0);
    EXPECT_EQ(mesh.vertexFaceCount(i), 0);
    EXPECT_EQ(mesh.vertexKind[static_cast<std::size_t>(i)], NonManifoldVertex);
  }
  EXPECT_EQ(mesh.countUsedVertices(), 0);
}

TEST(TriangleMesh, ASingleTriangleIsAllBoundary) {
  const TriangleMesh mesh = test::singleTriangle();
  EXPECT_THAT(mesh.vertexKind, Each(BoundaryVertex));
  EXPECT_THAT(mesh.getNeighbours(0), ElementsAre(1, 2));
  EXPECT_THAT(mesh.getNeighbours(1), ElementsAre(2, 0));
  EXPECT_THAT(mesh.getNeighbours(2), ElementsAre(0, 1));
  EXPECT_THAT(mesh.faceAdjacency, ElementsAre(-1, -1, -1));
}

TEST(TriangleMesh, ATetrahedronIsClosed) {
  const TriangleMesh mesh = test::tetrahedron();
  EXPECT_THAT(mesh.vertexKind, Each(InteriorVertex));
  EXPECT_THAT(mesh.getNeighbours(0), ElementsAre(2, 1, 3));
  EXPECT_THAT(mesh.vertexFaces[0], ElementsAre(0, 1, 2));
  // Faces (0,2,1) (0,1,3) (0,3,2) (1,2,3); edges 0-2, 2-1, 1-0 of the first, and so on.
  EXPECT_THAT(mesh.faceAdjacency, ElementsAre(2, 3, 1, 0, 3, 2, 1, 3, 0, 0, 2, 1));
}

TEST(TriangleMesh, TheMiddleOfABowTieIsNonManifoldWithAPairPerFace) {
  const TriangleMesh mesh = test::bowTie();
  EXPECT_THAT(mesh.vertexKind, ElementsAre(NonManifoldVertex, BoundaryVertex, BoundaryVertex,
                                           BoundaryVertex, BoundaryVertex));
  // The last face that begins a fan is moved to the front before chaining fails.
  EXPECT_THAT(mesh.getNeighbours(0), ElementsAre(3, 4, 1, 2));
  EXPECT_THAT(mesh.vertexFaces[0], ElementsAre(1, 0));
}

TEST(TriangleMesh, AFaceAcrossAnEdgeOfANonManifoldVertexIsLinkedBothWaysFromTheOtherEnd) {
  // Vertex 0 joins a fan of two faces, 0-1-2 and 0-2-3, with a third face that only touches it.
  const TriangleMesh mesh =
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {-1, 0, 0}, {-1, -1, 0}},
                     {{0, 1, 2}, {0, 2, 3}, {0, 4, 5}});
  ASSERT_EQ(mesh.vertexKind[0], NonManifoldVertex);
  EXPECT_THAT(mesh.faceAdjacency, ElementsAre(-1, -1, 1, 0, -1, -1, -1, -1, -1));
}

TEST(TriangleMesh, AnEdgeOfThreeFacesLinksNone) {
  const TriangleMesh mesh = test::threeFacesOnAnEdge();
  EXPECT_EQ(mesh.vertexKind[0], NonManifoldVertex);
  EXPECT_EQ(mesh.vertexKind[1], NonManifoldVertex);
  EXPECT_THAT(mesh.faceAdjacency, Each(-1));
}

TEST(TriangleMesh, ConsecutiveNeighboursFormTheStoredFaceBetweenThem) {
  for (const auto& [name, mesh] : allMeshes()) {
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const auto ring = mesh.getNeighbours(i);
      const auto faces = mesh.vertexFaces[i];
      const int kind = mesh.vertexKind[static_cast<std::size_t>(i)];
      const std::size_t n = faces.size();
      ASSERT_EQ(ring.size(), kind == NonManifoldVertex ? 2 * n : n + (kind == BoundaryVertex))
          << name << " vertex " << i;
      for (std::size_t k = 0; k < n; ++k) {
        const std::size_t at = kind == NonManifoldVertex ? 2 * k : k;
        EXPECT_TRUE(isFace(mesh, faces[k], {i, ring[at], ring[(at + 1) % ring.size()]}))
            << name << " vertex " << i << " face " << k;
      }
    }
  }
}

TEST(TriangleMesh, FaceAdjacencyIsTheFaceThatRunsAlongTheEdgeTheOtherWay) {
  auto meshes = test::closedMeshes();
  for (auto& mesh : test::openMeshes()) meshes.push_back(std::move(mesh));
  for (const auto& [name, mesh] : meshes) {
    std::map<std::pair<int, int>, int> faceLeaving;
    for (int f = 0; f < mesh.faceCount; ++f) {
      for (std::size_t j = 0; j < 3; ++j) {
        faceLeaving[{mesh.corners(f)[j], mesh.corners(f)[(j + 1) % 3]}] = f;
      }
    }
    for (const auto& [edge, f] : faceLeaving) {
      const auto c = mesh.corners(f);
      const auto j = static_cast<std::size_t>(std::ranges::find(c, edge.first) - c.begin());
      const auto across = faceLeaving.find({edge.second, edge.first});
      EXPECT_EQ(mesh.faceAdjacency[3 * static_cast<std::size_t>(f) + j],
                across == faceLeaving.end() ? -1 : across->second)
          << name << " edge " << edge.first << "-" << edge.second;
    }
  }
}

TEST(TriangleMesh, RingsCountHalfEdges) {
  for (const auto& [name, mesh] : test::closedMeshes()) {
    EXPECT_EQ(mesh.vertexNeighbours.items.size(), mesh.faces.size()) << name;
    EXPECT_EQ(mesh.vertexFaces.items.size(), mesh.faces.size()) << name;
    EXPECT_EQ(test::eulerCharacteristic(mesh), name == "torus" ? 0 : 2) << name;
  }
}

TEST(TriangleMesh, AnApexOfAHundredThousandFacesIsInterior) {
  constexpr int n = 100000;
  TriangleMesh mesh;
  mesh.setVertexCount(n + 1);
  mesh.setFaceCount(n);
  for (int k = 0; k < n; ++k) mesh.setFace(k, std::array{k + 1, (k + 1) % n + 1, 0});
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  EXPECT_EQ(mesh.vertexKind[0], InteriorVertex);
  EXPECT_EQ(mesh.neighbourCount(0), n);
  EXPECT_EQ(mesh.vertexKind[1], BoundaryVertex);
  EXPECT_EQ(mesh.faceAdjacency[1], 1);
  EXPECT_EQ(mesh.faceAdjacency[2], n - 1);
}

TEST(TriangleMesh, AHundredThousandFacesOnOneEdgeAreNonManifoldAndBuildWithoutAWait) {
  constexpr int n = 100000;
  TriangleMesh mesh;
  mesh.setVertexCount(n + 2);
  mesh.setFaceCount(n);
  for (int k = 0; k < n; ++k) mesh.setFace(k, std::array{0, 1, k + 2});
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  EXPECT_EQ(mesh.vertexKind[0], NonManifoldVertex);
  EXPECT_EQ(mesh.neighbourCount(0), 2 * n);
  EXPECT_THAT(mesh.faceAdjacency, Each(-1));
}

/// Everything that the two building steps make, found from the definitions alone.
struct Topology {
  std::vector<int> faces;
  std::vector<std::vector<int>> neighbours;
  std::vector<std::vector<int>> incident;
  std::vector<int> kinds;
  std::vector<int> faceAdjacency;
};

void invalidateByDefinition(std::vector<int>& faces, int vertexCount) {
  for (std::size_t f = 0; f < faces.size(); f += 3) {
    for (std::size_t k = 0; k < 3; ++k) {
      const int corner = faces[f + k];
      if (corner < 0 || corner >= vertexCount || corner == faces[f + (k + 1) % 3]) {
        faces[f] = faces[f + 1] = faces[f + 2] = -1;
      }
    }
  }
}

void buildRingByDefinition(Topology& topology, int i) {
  std::vector<Wedge> ring;
  for (std::size_t c = 0; c < topology.faces.size(); ++c) {
    if (topology.faces[c] != i) continue;
    const std::size_t f = c / 3;
    ring.push_back({topology.faces[3 * f + (c + 1) % 3], topology.faces[3 * f + (c + 2) % 3],
                    static_cast<int>(f)});
  }
  const VertexKind kind = test::orderByDefinition(ring);
  std::vector<int> neighbours;
  std::vector<int> incident;
  for (const Wedge& wedge : ring) {
    neighbours.push_back(wedge.next);
    if (kind == NonManifoldVertex) neighbours.push_back(wedge.prev);
    incident.push_back(wedge.face);
  }
  if (kind == BoundaryVertex) neighbours.push_back(ring.back().prev);
  topology.neighbours.push_back(neighbours);
  topology.incident.push_back(incident);
  topology.kinds.push_back(kind);
}

void linkFacesByDefinition(Topology& topology, int i) {
  const auto& neighbours = topology.neighbours[static_cast<std::size_t>(i)];
  const auto& incident = topology.incident[static_cast<std::size_t>(i)];
  const int kind = topology.kinds[static_cast<std::size_t>(i)];
  if (kind == NonManifoldVertex) return;
  const std::size_t n = incident.size();
  for (std::size_t k = 0; k < (kind == InteriorVertex ? n : n - 1); ++k) {
    const auto f = static_cast<std::size_t>(incident[k]);
    const auto g = static_cast<std::size_t>(incident[(k + 1) % n]);
    const int* cf = topology.faces.data() + 3 * f;
    const int* cg = topology.faces.data() + 3 * g;
    const std::size_t entry = cf[0] == i ? 2 : (cf[1] == i ? 0 : 1);
    topology.faceAdjacency[3 * f + entry] = static_cast<int>(g);
    const int shared = neighbours[(k + 1) % n];
    if (topology.kinds[static_cast<std::size_t>(shared)] != NonManifoldVertex) continue;
    const std::size_t reverse = cg[0] == i ? 0 : (cg[1] == i ? 1 : 2);
    topology.faceAdjacency[3 * g + reverse] = static_cast<int>(f);
  }
}

Topology topologyByDefinition(std::vector<int> faces, int vertexCount) {
  invalidateByDefinition(faces, vertexCount);
  Topology topology;
  topology.faces = std::move(faces);
  for (int i = 0; i < vertexCount; ++i) buildRingByDefinition(topology, i);
  topology.faceAdjacency.assign(topology.faces.size(), -1);
  for (int i = 0; i < vertexCount; ++i) linkFacesByDefinition(topology, i);
  return topology;
}

Topology topologyOf(const TriangleMesh& mesh) {
  Topology topology;
  topology.faces = mesh.faces;
  topology.kinds = mesh.vertexKind;
  topology.faceAdjacency = mesh.faceAdjacency;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const auto neighbours = mesh.getNeighbours(i);
    topology.neighbours.emplace_back(neighbours.begin(), neighbours.end());
    const auto incident = mesh.vertexFaces[i];
    topology.incident.emplace_back(incident.begin(), incident.end());
  }
  return topology;
}

void expectTopologyByDefinition(const TriangleMesh& bare, const std::string& name) {
  TriangleMesh mesh = bare;
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  const Topology expected = topologyByDefinition(bare.faces, bare.vertexCount);
  const Topology actual = topologyOf(mesh);
  ASSERT_EQ(actual.faces, expected.faces) << name;
  ASSERT_EQ(actual.neighbours, expected.neighbours) << name;
  ASSERT_EQ(actual.incident, expected.incident) << name;
  ASSERT_EQ(actual.kinds, expected.kinds) << name;
  ASSERT_EQ(actual.faceAdjacency, expected.faceAdjacency) << name;
}

/// Faces of a closed mesh, in random order and each turned at random, then some corners changed.
TriangleMesh damaged(const TriangleMesh& whole, int changes, std::mt19937& random) {
  const auto below = [&random](int n) {
    return static_cast<int>(random() % static_cast<unsigned>(n));
  };
  TriangleMesh mesh;
  mesh.copyGeometryFrom(whole);
  for (int f = 0; f < mesh.faceCount; ++f) {
    const int other = below(mesh.faceCount);
    int* a = mesh.faces.data() + 3 * static_cast<std::size_t>(f);
    std::swap_ranges(a, a + 3, mesh.faces.data() + 3 * static_cast<std::size_t>(other));
    std::rotate(a, a + below(3), a + 3);
  }
  for (int k = 0; k < changes; ++k) {
    mesh.faces[static_cast<std::size_t>(below(3 * mesh.faceCount))] =
        below(mesh.vertexCount + 2) - 1;
  }
  return mesh;
}

TEST(TriangleMesh, TopologyFollowsItsDefinitionOnRandomFaces) {
  std::mt19937 random(4);
  const auto below = [&random](int n) {
    return static_cast<int>(random() % static_cast<unsigned>(n));
  };
  for (int round = 0; round < 4000 && !HasFatalFailure(); ++round) {
    TriangleMesh mesh;
    mesh.setVertexCount(3 + below(8));
    mesh.setFaceCount(1 + below(16));
    for (int& corner : mesh.faces) corner = below(mesh.vertexCount + 2) - 1;
    expectTopologyByDefinition(mesh, "round " + std::to_string(round));
  }
}

TEST(TriangleMesh, TopologyFollowsItsDefinitionOnDamagedSurfaces) {
  std::mt19937 random(5);
  const std::vector<test::NamedMesh> wholes = allMeshes();
  for (int round = 0; round < 2000 && !HasFatalFailure(); ++round) {
    const auto& [name, whole] = wholes[static_cast<std::size_t>(round) % wholes.size()];
    if (whole.faceCount == 0) continue;
    expectTopologyByDefinition(damaged(whole, round % 4, random), name);
  }
}

TEST(TriangleMesh, BuildingTwiceGivesTheSame) {
  for (const auto& [name, built] : allMeshes()) {
    TriangleMesh mesh = built;
    mesh.buildAdjacency();
    mesh.buildFaceAdjacency();
    EXPECT_EQ(mesh.vertexNeighbours.items, built.vertexNeighbours.items) << name;
    EXPECT_EQ(mesh.vertexNeighbours.offsets, built.vertexNeighbours.offsets) << name;
    EXPECT_EQ(mesh.vertexFaces.items, built.vertexFaces.items) << name;
    EXPECT_EQ(mesh.faceAdjacency, built.faceAdjacency) << name;
  }
}

// --- Normals and operators ---

TEST(TriangleMesh, FaceNormalsHaveLengthOneAndVertexNormalsPointOutOfASphere) {
  const TriangleMesh mesh = test::icosphere(3);
  for (int f = 0; f < mesh.faceCount; ++f) {
    EXPECT_NEAR(length(mesh.faceNormal(f)), 1.0, 1e-6);  // three roundings to float
  }
  for (int i = 0; i < mesh.vertexCount; ++i) {
    // 1.5 degrees: the facets of this sphere are eight degrees wide.
    EXPECT_GT(dot(mesh.vertexNormal(i), mesh.position(i)), std::cos(std::numbers::pi / 120.0));
  }
}

TEST(TriangleMesh, ADegenerateFaceHasNoNormalAndAddsNothingToItsCorners) {
  const TriangleMesh mesh = test::degenerateFace();
  EXPECT_EQ(mesh.faceNormal(0), (Vec3{0, 0, 0}));
  EXPECT_EQ(mesh.vertexNormal(1), (Vec3{0, 0, 0}));
  EXPECT_EQ(mesh.vertexNormal(0), (Vec3{0, 0, 1}));
  EXPECT_EQ(mesh.vertexNormal(2), (Vec3{0, 0, 1}));
}

TEST(TriangleMesh, VertexNormalsAreWeightedByArea) {
  // Two faces at vertex 0 in the planes z = 0 (area 3 / 2) and x = 0 (area 4 / 2).
  const TriangleMesh mesh =
      test::makeMesh({{0, 0, 0}, {3, 0, 0}, {0, 1, 0}, {0, 0, 4}}, {{0, 1, 2}, {0, 2, 3}});
  EXPECT_EQ(mesh.vertexNormals[0], 0.8F);
  EXPECT_EQ(mesh.vertexNormals[1], 0.0F);
  EXPECT_EQ(mesh.vertexNormals[2], 0.6F);
}

/// Equal bits, where any two that are not numbers count as the same.
bool sameFloats(const std::vector<float>& a, const std::vector<float>& b) {
  return std::ranges::equal(a, b, [](float x, float y) {
    return std::bit_cast<std::uint32_t>(x) == std::bit_cast<std::uint32_t>(y) ||
           (std::isnan(x) && std::isnan(y));
  });
}

TEST(TriangleMesh, NormalsHaveTheBitsOfThePlainFormulas) {
  std::vector<test::NamedMesh> meshes = allMeshes();
  meshes.push_back({"large sphere", test::icosphere(4, 7.3)});
  for (const auto& [name, mesh] : meshes) {
    std::vector<float> faceNormals(mesh.faces.size());
    std::vector<Vec3> sums(static_cast<std::size_t>(mesh.vertexCount));
    for (int f = 0; f < mesh.faceCount; ++f) {
      if (!mesh.validFace(f)) continue;
      const auto c = mesh.corners(f);
      const Vec3 a = mesh.position(c[0]);
      const Vec3 normal = cross(mesh.position(c[1]) - a, mesh.position(c[2]) - a);
      storeVectorAt(faceNormals, f, unitOrZero(normal));
      const Vec3 weighted = cross(a - mesh.position(c[1]), a - mesh.position(c[2]));
      for (const int corner : c) sums[static_cast<std::size_t>(corner)] += weighted;
    }
    std::vector<float> vertexNormals(mesh.vertices.size());
    for (int i = 0; i < mesh.vertexCount; ++i) {
      storeVectorAt(vertexNormals, i, unitOrZero(sums[static_cast<std::size_t>(i)]));
    }
    EXPECT_TRUE(sameFloats(mesh.faceNormals, faceNormals)) << name;
    EXPECT_TRUE(sameFloats(mesh.vertexNormals, vertexNormals)) << name;
  }
}

TEST(TriangleMesh, BothNormalsAtOnceAreThoseOfOneAfterTheOther) {
  for (const auto& [name, mesh] : allMeshes()) {
    TriangleMesh atOnce = mesh;
    std::ranges::fill(atOnce.faceNormals, 7.0F);
    atOnce.vertexNormals.clear();
    atOnce.computeNormals();
    EXPECT_TRUE(sameFloats(atOnce.faceNormals, mesh.faceNormals)) << name;
    EXPECT_TRUE(sameFloats(atOnce.vertexNormals, mesh.vertexNormals)) << name;
  }
}

TEST(TriangleMesh, InvalidFacesHaveNoNormal) {
  TriangleMesh mesh = test::tetrahedron();
  mesh.setFace(1, std::array{-1, -1, -1});
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  EXPECT_EQ(mesh.faceNormal(1), (Vec3{0, 0, 0}));
  EXPECT_NEAR(length(mesh.vertexNormal(0)), 1.0, 1e-6);
}

TEST(TriangleMesh, UmbrellaLaplacianIsTheMeanOfTheRingMinusTheVertex) {
  const TriangleMesh octahedron = test::octahedron();
  EXPECT_EQ(octahedron.umbrellaLaplacian(0), (Vec3{-1, 0, 0}));
  const TriangleMesh triangle = test::singleTriangle();
  EXPECT_EQ(triangle.umbrellaLaplacian(0), (Vec3{0.5, 0.5, 0}));
  const TriangleMesh points = test::pointsOnly();
  EXPECT_EQ(points.umbrellaLaplacian(3), (Vec3{0, 0, 0}));
  // At a vertex that is not manifold the corners count as often as faces bring them.
  const TriangleMesh edge = test::threeFacesOnAnEdge();
  EXPECT_EQ(edge.umbrellaLaplacian(0), (Vec3{-1.0 / 6.0, 0, 0.5}));
}

TEST(TriangleMesh, MeanCurvatureNormalOfAnOctahedronIsKnown) {
  // Four equilateral faces of area sqrt(3) / 2. Every edge at vertex (1, 0, 0) has the cotangents
  // 2 / sqrt(3) together and the edge vectors add up to (-4, 0, 0):
  // -4 (2 / sqrt(3)) (-4) / (4 sqrt(3) / 2) = 16 / 3.
  const TriangleMesh mesh = test::octahedron();
  const Vec3 normal = mesh.meanCurvatureNormal(0);
  EXPECT_NEAR(normal.x, 16.0 / 3.0, 1e-12);
  EXPECT_NEAR(normal.y, 0.0, 1e-12);
  EXPECT_NEAR(normal.z, 0.0, 1e-12);
}

TEST(TriangleMesh, MeanCurvatureNormalIsMinusFourTimesTheCotangentSumOverTheRingArea) {
  for (const auto& [name, mesh] : test::closedMeshes()) {
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const auto ring = mesh.getNeighbours(i);
      const Vec3 p = mesh.position(i);
      Vec3 sum;
      double area = 0.0;
      for (std::size_t k = 0; k < ring.size(); ++k) {
        const Vec3 j = mesh.position(ring[k]);
        const Vec3 l = mesh.position(ring[(k + 1) % ring.size()]);
        area += 0.5 * length(cross(j - p, l - p));
        const double cotAtL = dot(p - l, j - l) / length(cross(p - l, j - l));
        const double cotAtJ = dot(p - j, l - j) / length(cross(p - j, l - j));
        sum += cotAtL * (j - p) + cotAtJ * (l - p);
      }
      const Vec3 expected = -4.0 / area * sum;
      const Vec3 actual = mesh.meanCurvatureNormal(i);
      // Double rounding over a few dozen operations on numbers of size one to ten.
      EXPECT_NEAR(length(actual - expected), 0.0, 1e-10) << name << " vertex " << i;
    }
  }
}

TEST(TriangleMesh, MeanCurvatureNormalOfASpherePointsOutInProportionToItsCurvature) {
  for (const double radius : {0.5, 1.0, 4.0}) {
    const TriangleMesh mesh = test::icosphere(3, radius);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const Vec3 outward = mesh.position(i) / radius;
      // On a ring of n equal narrow triangles both cotangents are tan(pi / n), the edges fall
      // e^2 / 2r below the tangent plane, and the area is n e^2 sin(2 pi / n) / 2. The rings here
      // are equal to about one percent.
      const double c = std::cos(std::numbers::pi / mesh.neighbourCount(i));
      EXPECT_NEAR(radius * dot(mesh.meanCurvatureNormal(i), outward), 4.0 / (c * c), 0.06);
    }
  }
}

TEST(TriangleMesh, MeanCurvatureNormalIsZeroOffTheInteriorAndWithoutArea) {
  const TriangleMesh fan = test::hexagonFan();
  EXPECT_EQ(fan.meanCurvatureNormal(1), (Vec3{0, 0, 0}));
  EXPECT_NEAR(length(fan.meanCurvatureNormal(0)), 0.0, 1e-6);  // corners rounded to float
  const TriangleMesh collapsed = test::makeMesh({{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}},
                                                {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}});
  EXPECT_EQ(collapsed.meanCurvatureNormal(0), (Vec3{0, 0, 0}));
  const TriangleMesh broken = test::withNan();
  for (int i = 0; i < 4; ++i) EXPECT_EQ(broken.meanCurvatureNormal(i), (Vec3{0, 0, 0}));
}

/// Expects unit vectors, or 0 where none is defined.
void expectUnitOrZero(const std::vector<float>& normals) {
  for (std::size_t k = 0; k < normals.size(); k += 3) {
    const double size = length(loadVec3(normals.data() + k));
    // Three coordinates rounded to single precision.
    if (size != 0.0) {
      EXPECT_NEAR(size, 1.0, 1e-6);
    }
  }
}

TEST(TriangleMesh, OperatorsOnHostileMeshesAreFiniteWherePositionsAre) {
  for (const auto& [name, mesh] : test::hostileMeshes()) {
    SCOPED_TRACE(name);
    EXPECT_EQ(mesh.faceNormals.size(), mesh.faces.size());
    EXPECT_EQ(mesh.vertexNormals.size(), mesh.vertices.size());
    if (test::isFinite(mesh)) {
      expectUnitOrZero(mesh.faceNormals);
      expectUnitOrZero(mesh.vertexNormals);
    }
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const Vec3 normal = mesh.meanCurvatureNormal(i);
      const Vec3 umbrella = mesh.umbrellaLaplacian(i);
      if (mesh.vertexKind[static_cast<std::size_t>(i)] != InteriorVertex) {
        EXPECT_EQ(normal, (Vec3{0, 0, 0}));
      }
      if (mesh.neighbourCount(i) == 0) {
        EXPECT_EQ(umbrella, (Vec3{0, 0, 0}));
      }
      if (test::isFinite(mesh)) {
        EXPECT_TRUE(std::isfinite(length(normal)));
        EXPECT_TRUE(std::isfinite(length(umbrella)));
      }
    }
    for (int f = 0; f < mesh.faceCount; ++f) {
      if (!mesh.validFace(f)) {
        EXPECT_EQ(mesh.faceNormal(f), (Vec3{0, 0, 0}));
      }
    }
  }
}

// --- Copies ---

TEST(TriangleMesh, AGeometryCopyHasNothingDerived) {
  const TriangleMesh mesh = test::tetrahedron();
  TriangleMesh copy = test::cube();
  copy.pickedFace = 3;
  copy.ridgeMarks = {1};
  copy.copyGeometryFrom(mesh);
  EXPECT_EQ(copy.vertices, mesh.vertices);
  EXPECT_EQ(copy.faces, mesh.faces);
  EXPECT_EQ(copy.faceCount, 4);
  EXPECT_EQ(copy.vertexCount, 4);
  EXPECT_EQ(copy.boxMax, mesh.boxMax);
  EXPECT_EQ(copy.boxMin, mesh.boxMin);
  EXPECT_EQ(copy.extentTolerance, mesh.extentTolerance);
  EXPECT_FALSE(copy.vertexNeighbours.built());
  EXPECT_FALSE(copy.pickedFace.has_value());
  EXPECT_THAT(copy.faceNormals, IsEmpty());
  EXPECT_THAT(copy.ridgeMarks, IsEmpty());
}

TEST(TriangleMesh, ACompactCopyKeepsUsedVerticesAndValidFacesInOrderAndTheBox) {
  TriangleMesh mesh = test::makeMesh({{9, 9, 9}, {0, 0, 0}, {1, 0, 0}, {5, 5, 5}, {0, 1, 0}},
                                     {{0, 0, 1}, {1, 2, 4}, {7, 1, 2}});
  mesh.boxMax = {7, 7, 7};
  mesh.boxMin = {-2, -3, -4};
  mesh.extentTolerance = 0.55;
  const TriangleMesh copy = mesh.compactCopy();
  EXPECT_THAT(copy.vertices, ElementsAre(0, 0, 0, 1, 0, 0, 0, 1, 0));
  EXPECT_THAT(copy.faces, ElementsAre(0, 1, 2));
  EXPECT_EQ(copy.boxMax, mesh.boxMax);
  EXPECT_EQ(copy.boxMin, mesh.boxMin);
  EXPECT_EQ(copy.extentTolerance, mesh.extentTolerance);
  EXPECT_FALSE(copy.vertexNeighbours.built());
}

TEST(TriangleMesh, ACompactCopyOfACompactMeshIsTheSame) {
  for (const auto& [name, mesh] : test::closedMeshes()) {
    const TriangleMesh copy = mesh.compactCopy();
    EXPECT_EQ(copy.vertices, mesh.vertices) << name;
    EXPECT_EQ(copy.faces, mesh.faces) << name;
  }
}

}  // namespace
}  // namespace gravlin
