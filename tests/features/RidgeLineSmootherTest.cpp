#include <algorithm>
#include <gtest/gtest.h>

#include "features/LinkGrowth.h"
#include "features/MarkedMeshes.h"
#include "features/RidgeLineSmoother.h"
#include "support/Meshes.h"

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

TEST(RidgeLineSmoother, HostileMeshesPass) {
  for (auto& [name, mesh] : hostileMeshes()) {
    SCOPED_TRACE(name);
    prepareLines(mesh, 1.0, -1.0);
    for (int v = 0; v + 1 < mesh.vertexCount; ++v) link(mesh.ridgeLinks, v, v + 1);
    const auto vertices = mesh.vertices.size();
    smooth(mesh, 2, 0.1F);
    EXPECT_EQ(mesh.vertices.size(), vertices);
  }
}

}  // namespace
}  // namespace gravlin
