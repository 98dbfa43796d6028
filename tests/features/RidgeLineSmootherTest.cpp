#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <set>

#include "features/LinkGrowth.h"
#include "features/MarkedMeshes.h"
#include "features/RidgeLineSmoother.h"
#include "numeric/Index.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"

namespace gravlin {
namespace {

using namespace gravlin::test;

void smooth(TriangleMesh& mesh, int iterations, float step) {
  RidgeLineSmoother smoother;
  smoother.attach(&mesh);
  smoother.smooth(iterations, step);
}

/// A closed line of eight vertices around (6, 6) on a bumpy grid of 12 x 12 squares.
struct Loop {
  TriangleMesh mesh = bumpyGrid(12, 12);
  GridIndex at{12};
  std::vector<int> vertices = {at(5, 5), at(6, 5), at(7, 5), at(7, 6),
                               at(7, 7), at(6, 7), at(5, 7), at(5, 6)};

  Loop() {
    prepareLines(mesh, 1.0, -1.0);
    for (std::size_t k = 0; k < vertices.size(); ++k) {
      link(mesh.ridgeLinks, vertices[k], vertices[(k + 1) % vertices.size()]);
    }
  }
};

// --- Against the formula ---

std::vector<int> linkedWith(const TriangleMesh& mesh, int i) {
  std::vector<int> linked;
  for (const auto* links : {&mesh.ridgeLinks, &mesh.valleyLinks}) {
    for (const int other : (*links)[toIndex(i)]) linked.push_back(other);
  }
  return linked;
}

/// The fewest edges from vertex i to a vertex on a line; 4 when there are more than three.
int ringsToALine(const TriangleMesh& mesh, int i) {
  std::set<int> reached = {i};
  for (int rings = 0; rings <= 3; ++rings) {
    for (const int v : reached) {
      if (!linkedWith(mesh, v).empty()) return rings;
    }
    for (const int v : std::set<int>(reached)) {
      for (const int u : mesh.getNeighbours(v)) reached.insert(u);
    }
  }
  return 4;
}

Vec3 meanOfRing(const TriangleMesh& mesh, int i, const std::vector<Vec3>& field) {
  Vec3 sum;
  for (const int j : mesh.getNeighbours(i)) sum += field[toIndex(j)];
  return mesh.neighbourCount(i) == 0 ? Vec3{} : sum / mesh.neighbourCount(i);
}

std::vector<Vec3> positionsOf(const TriangleMesh& mesh) {
  std::vector<Vec3> positions;
  for (int i = 0; i < mesh.vertexCount; ++i) positions.push_back(mesh.position(i));
  return positions;
}

/// Smoothing as its formula reads: d = (a + b) / 2 - p without its part along n, p + h d for the
/// vertices of lines; then L = mean(p) - p up to three rings from a line, B = mean(L) - L, and
/// p - h B one and two rings from a line. Each of the two moves reads the positions before it.
void smoothPlainly(TriangleMesh& mesh, int iterations, double h) {
  std::vector<int> rings;
  for (int i = 0; i < mesh.vertexCount; ++i) rings.push_back(ringsToALine(mesh, i));
  for (int iteration = 0; iteration < iterations; ++iteration) {
    mesh.computeFaceNormals();
    mesh.computeVertexNormals();
    const std::vector<Vec3> before = positionsOf(mesh);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const std::vector<int> ends = linkedWith(mesh, i);
      if (ends.size() != 2) continue;
      const Vec3 p = before[toIndex(i)];
      const Vec3 n = mesh.vertexNormal(i);
      const Vec3 d = (before[toIndex(ends[0])] + before[toIndex(ends[1])]) * 0.5 - p;
      mesh.setPosition(i, p + h * (d - dot(d, n) * n));
    }
    const std::vector<Vec3> moved = positionsOf(mesh);
    std::vector<Vec3> laplacian;
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const bool near = rings[toIndex(i)] <= 3 && mesh.neighbourCount(i) > 0;
      laplacian.push_back(near ? meanOfRing(mesh, i, moved) - moved[toIndex(i)] : Vec3{});
    }
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const bool fairs = rings[toIndex(i)] == 1 || rings[toIndex(i)] == 2;
      if (!fairs || mesh.vertexKind[toIndex(i)] != InteriorVertex) continue;
      const Vec3 bilaplacian = meanOfRing(mesh, i, laplacian) - laplacian[toIndex(i)];
      mesh.setPosition(i, moved[toIndex(i)] - h * bilaplacian);
    }
  }
}

/// Links the vertices of random walks along the edges, in turn of ridges and of valleys: lines that
/// cross, branch, end, and run along some edges twice.
void linkWalks(TriangleMesh& mesh, int walks, int steps) {
  std::minstd_rand random(5);
  prepareLines(mesh, 1.0, -1.0);
  for (int walk = 0; walk < walks; ++walk) {
    int v = static_cast<int>(random() % static_cast<unsigned>(mesh.vertexCount));
    for (int step = 0; step < steps; ++step) {
      const auto ring = mesh.getNeighbours(v);
      if (ring.empty()) break;
      const int next = ring[random() % ring.size()];
      link(walk % 2 == 0 ? mesh.ridgeLinks : mesh.valleyLinks, v, next);
      v = next;
    }
  }
}

void expectTheFormulasBits(const TriangleMesh& before, int iterations, float step) {
  TriangleMesh smoothed = before;
  TriangleMesh expected = before;
  smooth(smoothed, iterations, step);
  smoothPlainly(expected, iterations, static_cast<double>(step));
  EXPECT_TRUE(sameVertices(smoothed, expected));
}

TEST(RidgeLineSmoother, MovesEveryVertexAsTheFormulaSays) {
  for (TriangleMesh mesh : {jittered(bumpyGrid(24, 20), 0.15), jittered(torus(40, 24), 0.05)}) {
    linkWalks(mesh, 4, 9);
    std::vector<int> verticesAt(5, 0);
    for (int i = 0; i < mesh.vertexCount; ++i) ++verticesAt[toIndex(ringsToALine(mesh, i))];
    for (const int count : verticesAt) EXPECT_GT(count, 10) << "lines, three rings, and the rest";
    for (const int iterations : {1, 2, 5}) expectTheFormulasBits(mesh, iterations, 0.2F);
  }
}

TEST(RidgeLineSmoother, HostileMeshesMoveAsTheFormulaSaysAndStayFinite) {
  for (auto& [name, mesh] : hostileMeshes()) {
    SCOPED_TRACE(name);
    prepareLines(mesh, 1.0, -1.0);
    for (int v = 0; v + 1 < mesh.vertexCount; ++v) link(mesh.ridgeLinks, v, v + 1);
    expectTheFormulasBits(mesh, 2, 0.1F);
    const TriangleMesh before = mesh;
    smooth(mesh, 2, 0.1F);
    EXPECT_EQ(mesh.faces, before.faces);
    EXPECT_EQ(mesh.vertexKind, before.vertexKind);
    if (isFinite(before)) {
      EXPECT_TRUE(isFinite(mesh));
    }
  }
}

// --- By hand ---

TEST(RidgeLineSmoother, ALineVertexMovesTowardsItsNeighboursMidpointWithinItsTangentPlane) {
  Loop loop;
  const TriangleMesh before = loop.mesh;
  smooth(loop.mesh, 1, 0.25F);
  for (std::size_t k = 0; k < loop.vertices.size(); ++k) {
    const int v = loop.vertices[k];
    const Vec3 toMiddle = (before.position(loop.vertices[(k + 1) % 8]) +
                           before.position(loop.vertices[(k + 7) % 8])) *
                              0.5 -
                          before.position(v);
    const Vec3 n = before.vertexNormal(v);
    const Vec3 expected = 0.25 * (toMiddle - dot(toMiddle, n) * n);
    // One rounding to single precision of coordinates up to 7.
    EXPECT_LT(length(loop.mesh.position(v) - before.position(v) - expected), 1e-6);
  }
}

TEST(RidgeLineSmoother, VerticesThreeRingsAwayAndFartherStayBitForBit) {
  Loop loop;
  const TriangleMesh before = loop.mesh;
  smooth(loop.mesh, 3, 0.1F);
  const GridIndex at{12};
  for (const auto& [c, r] : {std::pair{2, 5}, {10, 7}, {6, 2}, {6, 10}, {0, 0}, {12, 12}, {1, 6}}) {
    EXPECT_EQ(loop.mesh.position(at(c, r)), before.position(at(c, r))) << c << ", " << r;
  }
  EXPECT_NE(loop.mesh.position(at(4, 5)), before.position(at(4, 5))) << "one ring away";
  EXPECT_NE(loop.mesh.position(at(3, 5)), before.position(at(3, 5))) << "two rings away";
}

TEST(RidgeLineSmoother, EndsAndJunctionsOfLinesStay) {
  Loop loop;
  const int junction = loop.vertices[0];
  const int end = loop.at(4, 5);
  link(loop.mesh.ridgeLinks, junction, end);
  const TriangleMesh before = loop.mesh;
  smooth(loop.mesh, 2, 0.1F);
  EXPECT_EQ(loop.mesh.position(junction), before.position(junction));
  EXPECT_EQ(loop.mesh.position(end), before.position(end));
}

TEST(RidgeLineSmoother, AVertexOnALineOfEachKindCountsAllItsLinks) {
  Loop loop;
  link(loop.mesh.valleyLinks, loop.vertices[1], loop.at(6, 4));
  const TriangleMesh before = loop.mesh;
  smooth(loop.mesh, 1, 0.1F);
  EXPECT_EQ(loop.mesh.position(loop.vertices[1]), before.position(loop.vertices[1]));
}

TEST(RidgeLineSmoother, BoundaryVerticesInTheBandStay) {
  TriangleMesh mesh = bumpyGrid(6, 2);
  prepareLines(mesh, 1.0, -1.0);
  const GridIndex at{6};
  for (int c = 1; c < 5; ++c) link(mesh.ridgeLinks, at(c, 1), at(c + 1, 1));
  const TriangleMesh before = mesh;
  smooth(mesh, 3, 0.1F);
  for (int c = 0; c <= 6; ++c) EXPECT_EQ(mesh.position(at(c, 0)), before.position(at(c, 0)));
}

TEST(RidgeLineSmoother, WithoutLinksOrWithoutIterationsNothingMoves) {
  Loop loop;
  const auto before = loop.mesh.vertices;
  smooth(loop.mesh, 0, 0.1F);
  EXPECT_EQ(loop.mesh.vertices, before);
  loop.mesh.ridgeLinks.clear();
  loop.mesh.valleyLinks.clear();
  smooth(loop.mesh, 2000000000, 0.1F);
  EXPECT_EQ(loop.mesh.vertices, before);
}

}  // namespace
}  // namespace gravlin
