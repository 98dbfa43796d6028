#include <cmath>
#include <gtest/gtest.h>

#include "remesh/VertexQuadrics.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

TEST(VertexQuadrics, OfAClosedMeshAreMeansOverTheFacesWeightedByArea) {
  // Vertex 0 of the tetrahedron lies in the three coordinate planes, each face of area 1/2.
  const TriangleMesh mesh = test::tetrahedron();
  const auto quadrics = vertexQuadrics(mesh);
  const Vec3 x = {3, 4, 5};
  EXPECT_NEAR(valueAt(quadrics[0], x), (9.0 + 16.0 + 25.0) / 3.0, 1e-12);
  // Vertex 1 lies in z = 0, y = 0 and x + y + z = 1, whose face has the area sqrt(3) / 2. Normals
  // are of single precision.
  const double slope = std::sqrt(3.0);
  const double wanted = (16.0 + 25.0 + slope * 121.0 / 3.0) / (2.0 + slope);
  EXPECT_NEAR(valueAt(quadrics[1], x), wanted, 1e-5);
}

TEST(VertexQuadrics, ABoundaryVertexAddsTenTimesThePlaneOfItsBoundaryEdges) {
  // Two triangles folded along their common edge. At vertex 0 the boundary edges lead to 1 and 3,
  // so the plane through them is x + z = 0 (the fold is 1 high).
  const TriangleMesh mesh =
      test::makeMesh({{0, 0, 0}, {1, 0, -1}, {0, 1, 0}, {-1, 0, 1}}, {{0, 1, 2}, {0, 2, 3}});
  ASSERT_EQ(mesh.vertexKind[0], BoundaryVertex);
  // Its boundary edges are parallel, so look at vertex 2 instead: from 2 to 3 and from 2 to 1.
  const auto quadrics = vertexQuadrics(mesh);
  const Vec3 plane = unitOrZero(cross(Vec3{-1, -1, 1}, Vec3{1, -1, -1}));
  const Vec3 x = {2, 3, 7};
  const double inPlane = dot(plane, x - Vec3{0, 1, 0});
  const double surface = valueAt(vertexQuadrics(mesh)[2], x) - 10.0 * inPlane * inPlane;
  const double ofFaces = 0.5 * (std::pow(dot(mesh.faceNormal(0), x - mesh.position(2)), 2) +
                                std::pow(dot(mesh.faceNormal(1), x - mesh.position(2)), 2));
  EXPECT_NEAR(surface, ofFaces, 1e-4);
  EXPECT_EQ(quadrics.size(), 4U);
}

TEST(VertexQuadrics, WhereBoundaryEdgesAreParallelThePlaneStandsUprightOnTheSurface) {
  // The middle of the lower side of a grid: the boundary runs along x, the surface's normal is z.
  const TriangleMesh mesh = test::grid(2, 1);
  const auto quadrics = vertexQuadrics(mesh);
  EXPECT_NEAR(valueAt(quadrics[1], {5, 0, 0}), 0.0, 1e-12) << "free along the boundary";
  EXPECT_NEAR(valueAt(quadrics[1], {1, 2, 0}), 10.0 * 4.0, 1e-12) << "held across it";
  EXPECT_NEAR(valueAt(quadrics[1], {1, 0, 2}), 4.0, 1e-12) << "only the surface's own error";
  // At a corner the two boundary edges span the surface's own plane.
  EXPECT_NEAR(valueAt(quadrics[0], {3, 7, 2}), 11.0 * 4.0, 1e-12);
}

TEST(VertexQuadrics, AreZeroWithoutFacesAndWithoutArea) {
  const Vec3 x = {1, 2, 3};
  for (const Quadric& q : vertexQuadrics(test::pointsOnly())) EXPECT_EQ(valueAt(q, x), 0.0);
  const TriangleMesh point = test::makeMesh({{1, 1, 1}, {1, 1, 1}, {1, 1, 1}}, {{0, 1, 2}});
  for (const Quadric& q : vertexQuadrics(point)) EXPECT_EQ(valueAt(q, x), 0.0);
}

}  // namespace
}  // namespace gravlin
