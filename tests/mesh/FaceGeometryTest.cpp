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

TEST(FaceGeometry, RoundsEveryStepOfTheSinglePrecisionCentroid) {
  // 2^24 + 1 is no single-precision number and is rounded down, twice; a third of the sum is
  // 2^24 x 11184811 / 2^25.
  const TriangleMesh mesh = test::makeMesh({{16777216, 0, 3}, {1, 4, 3}, {1, 0, 3}}, {{0, 1, 2}});
  EXPECT_EQ(singleFaceCentroid(mesh, 0).x, 5592405.5);
  EXPECT_EQ(faceCentroid(mesh, 0).x, 16777218 * 0.3333333333333333);
  EXPECT_EQ(singleFaceCentroid(mesh, 0).z, 3.0);
}

}  // namespace
}  // namespace gravlin
