#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "curvature/CurvatureFields.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(CurvatureField, IsFormedFromTheTwoPrincipalCurvatures) {
  TriangleMesh mesh;
  mesh.maxCurvature = {3.0, 0.5, -1.0, 0.0};
  mesh.minCurvature = {1.0, -2.0, -4.0, 0.0};
  EXPECT_THAT(curvatureField(mesh, CurvatureField::Max), ElementsAre(3.0, 0.5, -1.0, 0.0));
  EXPECT_THAT(curvatureField(mesh, CurvatureField::Min), ElementsAre(1.0, -2.0, -4.0, 0.0));
  EXPECT_THAT(curvatureField(mesh, CurvatureField::Mean), ElementsAre(2.0, -0.75, -2.5, 0.0));
  EXPECT_THAT(curvatureField(mesh, CurvatureField::Gauss), ElementsAre(3.0, -1.0, 4.0, 0.0));
  EXPECT_THAT(curvatureField(mesh, CurvatureField::Total), ElementsAre(4.0, 2.5, 5.0, 0.0));
}

TEST(CurvatureField, IsEmptyOnAnEmptyMesh) {
  EXPECT_THAT(curvatureField(TriangleMesh{}, CurvatureField::Mean), IsEmpty());
}

}  // namespace
}  // namespace gravlin
