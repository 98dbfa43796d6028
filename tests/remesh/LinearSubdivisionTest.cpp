#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mesh/MeshMeasures.h"
#include "remesh/LinearSubdivision.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

TEST(LinearSubdivision, OfOneTriangleHasItsMidpoints) {
  const TriangleMesh mesh = linearSubdivision(test::singleTriangle());
  EXPECT_EQ(mesh.vertexCount, 6);
  EXPECT_EQ(mesh.faceCount, 4);
  EXPECT_EQ(mesh.position(3), (Vec3{0.5, 0, 0}));
  EXPECT_EQ(mesh.position(4), (Vec3{0.5, 0.5, 0}));
  EXPECT_EQ(mesh.position(5), (Vec3{0, 0.5, 0}));
}

TEST(LinearSubdivision, KeepsOldVerticesToTheBitAndTheShape) {
  for (const auto& [name, old] : test::closedMeshes()) {
    SCOPED_TRACE(name);
    const TriangleMesh mesh = linearSubdivision(old);
    EXPECT_TRUE(std::equal(old.vertices.begin(), old.vertices.end(), mesh.vertices.begin()));
    // Midpoints are rounded to single precision.
    EXPECT_NEAR(enclosedVolume(mesh), enclosedVolume(old), 1e-5 * enclosedVolume(old));
  }
}

TEST(LinearSubdivision, GivesEveryChildTheNormalOfItsFace) {
  const TriangleMesh old = test::cube();
  const TriangleMesh mesh = linearSubdivision(old);
  for (int f = 0; f < mesh.faceCount; ++f) {
    EXPECT_EQ(mesh.faceNormal(f), old.faceNormal(f / 4)) << f;
  }
}

}  // namespace
}  // namespace gravlin
