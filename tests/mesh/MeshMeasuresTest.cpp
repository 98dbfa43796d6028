#include <cmath>
#include <gtest/gtest.h>
#include <utility>

#include "mesh/MeshMeasures.h"
#include "support/Meshes.h"
#include "support/MeshFields.h"

namespace gravlin {
namespace {

TEST(MeshMeasures, VolumeIsThatOfElementaryGeometry) {
  EXPECT_DOUBLE_EQ(enclosedVolume(test::cube()), 8.0);
  EXPECT_DOUBLE_EQ(enclosedVolume(test::octahedron()), 4.0 / 3.0);
  EXPECT_EQ(enclosedVolume(test::emptyMesh()), 0.0);
  EXPECT_EQ(enclosedVolume(test::pointsOnly()), 0.0);
}

TEST(MeshMeasures, VolumeOfAnOpenMeshIsThatOfTheConeToTheOrigin) {
  // The unit square in the plane z = 2 seen from the origin: a pyramid of volume 2/3.
  TriangleMesh square = test::twoTriangles();
  for (int i = 0; i < square.vertexCount; ++i)
    square.setPosition(i, square.position(i) + Vec3{0, 0, 2});
  // Single positions are exact here; the factors 1/3 and 1/6 are rounded.
  EXPECT_NEAR(enclosedVolume(square), 2.0 / 3.0, 1e-15);
}

TEST(MeshMeasures, VolumeChangesSignWithTheOrientation) {
  for (test::NamedMesh& named : test::closedMeshes()) {
    TriangleMesh& mesh = named.mesh;
    const double outward = enclosedVolume(mesh);
    EXPECT_GT(outward, 0.0) << named.name;
    for (std::size_t c = 0; c < mesh.faces.size(); c += 3)
      std::swap(mesh.faces[c], mesh.faces[c + 1]);
    // The same products in another order: rounding of sums of up to a few thousand terms.
    EXPECT_NEAR(enclosedVolume(mesh), -outward, 1e-12 * outward) << named.name;
  }
}

TEST(MeshMeasures, InsideOutIsAClosedMeshWithInwardNormals) {
  EXPECT_TRUE(isInsideOut(test::insideOutCube()));
  for (const test::NamedMesh& closed : test::closedMeshes()) {
    EXPECT_FALSE(isInsideOut(closed.mesh)) << closed.name;
  }
  TriangleMesh open = test::insideOutCube();
  open.faces[0] = -1;
  open.buildAdjacency();
  open.buildFaceAdjacency();
  EXPECT_LT(enclosedVolume(open), 0.0);
  EXPECT_FALSE(isInsideOut(open));
  for (const test::NamedMesh& hostile : test::hostileMeshes()) {
    EXPECT_FALSE(isInsideOut(hostile.mesh)) << hostile.name;
  }
  TriangleMesh without = test::insideOutCube();
  without.faceAdjacency.clear();
  EXPECT_FALSE(isInsideOut(without)) << "nothing is known of its edges";
}

TEST(MeshMeasures, VolumeSkipsInvalidFaces) {
  TriangleMesh mesh = test::cube();
  mesh.setFace(0, std::array{-1, -1, -1});
  mesh.setFace(1, std::array{-1, -1, -1});
  // Two of twelve faces of a cube about the origin: a sixth of its volume, a pyramid on one side.
  EXPECT_NEAR(enclosedVolume(mesh), 8.0 * 5.0 / 6.0, 1e-14);
}

TEST(MeshMeasures, ShortestEdgeIgnoresEdgesWithoutLength) {
  EXPECT_EQ(shortestEdgeLength(test::cube()), 2.0);
  const TriangleMesh mesh = test::makeMesh({{0, 0, 0}, {0, 0, 0}, {3, 4, 0}}, {{0, 1, 2}});
  EXPECT_EQ(shortestEdgeLength(mesh), 5.0);
}

TEST(MeshMeasures, ShortestEdgeOfNothingIsTheStartOfTheSearch) {
  EXPECT_EQ(shortestEdgeLength(test::emptyMesh()), 1000000.0);
  EXPECT_EQ(shortestEdgeLength(test::pointsOnly()), 1000000.0);
}

TEST(MeshMeasures, ScalingMultipliesEveryCoordinate) {
  TriangleMesh mesh = test::pointsOnly();
  const TriangleMesh before = mesh;
  scaleVertices(mesh, -0.5);
  for (std::size_t c = 0; c < mesh.vertices.size(); ++c) {
    EXPECT_EQ(mesh.vertices[c], -0.5F * before.vertices[c]);
  }
}

TEST(MeshMeasures, RescalingReachesTheVolume) {
  for (test::NamedMesh& named : test::closedMeshes()) {
    rescaleToVolume(named.mesh, 7.0);
    // Coordinates are rounded to single precision: 6e-8 relative each, three to a product.
    EXPECT_NEAR(enclosedVolume(named.mesh), 7.0, 7.0 * 2e-7) << named.name;
  }
}

TEST(MeshMeasures, RescalingLeavesAMeshWithoutVolumeAlone) {
  TriangleMesh flat = test::hexagonFan();
  const TriangleMesh before = flat;
  rescaleToVolume(flat, 1.0);
  EXPECT_EQ(flat.vertices, before.vertices);
}

TEST(MeshMeasures, RescalingToTheOtherSignGivesPositionsThatAreNotNumbers) {
  TriangleMesh mesh = test::cube();
  rescaleToVolume(mesh, -8.0);
  for (const float coordinate : mesh.vertices) EXPECT_TRUE(std::isnan(coordinate));
}

TEST(MeshMeasures, OfAHostileMeshAreFiniteWhereItsPositionsAre) {
  for (const auto& [name, mesh] : test::hostileMeshes()) {
    SCOPED_TRACE(name);
    const bool finite = test::isFinite(mesh);
    EXPECT_EQ(countNonFiniteVertices(mesh) == 0, finite);
    double shortest = 1000000.0;
    for (int i = 0; i < mesh.vertexCount; ++i) {
      for (const int j : mesh.getNeighbours(i)) {
        const double edge = length(mesh.position(i) - mesh.position(j));
        if (edge > 0.0 && edge < shortest) shortest = edge;
      }
    }
    EXPECT_EQ(shortestEdgeLength(mesh), shortest);
    const double volume = enclosedVolume(mesh);
    if (finite) {
      EXPECT_TRUE(std::isfinite(volume));
    }
    TriangleMesh scaled = mesh;
    rescaleToVolume(scaled, 1.0);
    EXPECT_EQ(scaled.faces, mesh.faces);
    if (finite && volume == 0.0) {
      EXPECT_EQ(scaled.vertices, mesh.vertices);
    } else if (finite && volume > 0.0) {
      EXPECT_NEAR(enclosedVolume(scaled), 1.0, 1e-6);  // positions are rounded to single precision
    }
  }
}

}  // namespace
}  // namespace gravlin
