#include <gtest/gtest.h>

#include "mesh/FaceGeometry.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

TEST(FaceGeometry, MeasuresAreaCentroidAndPoints) {
  const TriangleMesh mesh =
      test::makeMesh({{1, 0, 0}, {1, 4, 0}, {1, 0, 3}}, {{0, 1, 2}, {0, 0, 1}});
  EXPECT_EQ(faceArea(mesh, 0), 6.0);
  EXPECT_EQ(faceArea(mesh, 1), 0.0);  // invalid
  EXPECT_LT(length(faceCentroid(mesh, 0) - Vec3{1, 4.0 / 3.0, 1}), 1e-15);
  EXPECT_EQ(pointInFace(mesh, {0, 0.0, 0.0}), (Vec3{1, 0, 0}));
  EXPECT_EQ(pointInFace(mesh, {0, 1.0, 0.0}), (Vec3{1, 4, 0}));
  EXPECT_EQ(pointInFace(mesh, {0, 0.0, 1.0}), (Vec3{1, 0, 3}));
  EXPECT_EQ(pointInFace(mesh, {0, 0.25, 0.5}), (Vec3{1, 1, 1.5}));
}

}  // namespace
}  // namespace gravlin
