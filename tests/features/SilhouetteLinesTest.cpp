#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "features/LinkGrowth.h"
#include "features/MarkedMeshes.h"
#include "features/SilhouetteLines.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;
using namespace gravlin::test;

/// A flat grid of 6 x 2 squares whose middle row from column 1 to 4 is one ridge of length 3.
struct RowOfRidge {
  TriangleMesh mesh = grid(6, 2);
  GridIndex at{6};

  explicit RowOfRidge(double curvature) {
    prepareLines(mesh, curvature, -curvature);
    for (int c = 1; c < 4; ++c) link(mesh.ridgeLinks, at(c, 1), at(c + 1, 1));
  }
  std::vector<Polyline> ridges(const LineSelection& selection) const {
    return selectSilhouetteLines(mesh, selection).ridges;
  }
};

TEST(SilhouetteLines, ALineIsKeptFromTheLeastStrengthOn) {
  EXPECT_THAT(RowOfRidge(0.7).ridges({2.0F, {0.0, 0.0}}), SizeIs(1)) << "3 x 0.7 = 2.1";
  EXPECT_THAT(RowOfRidge(0.6).ridges({2.0F, {0.0, 0.0}}), IsEmpty()) << "3 x 0.6 = 1.8";
}

TEST(SilhouetteLines, EveryVertexOfALineHasToReachTheLowThreshold) {
  RowOfRidge row(5.0);
  EXPECT_THAT(row.ridges({2.0F, {5.0, 0.0}}), SizeIs(1));
  row.mesh.maxCurvature[static_cast<std::size_t>(row.at(2, 1))] = 4.9;
  EXPECT_THAT(row.ridges({2.0F, {5.0, 0.0}}), IsEmpty());
}

TEST(SilhouetteLines, ValleysAreMeasuredFromBelow) {
  RowOfRidge row(5.0);
  mirrorKinds(row.mesh);
  EXPECT_THAT(selectSilhouetteLines(row.mesh, {2.0F, {0.0, -5.0}}).valleys, SizeIs(1));
  EXPECT_THAT(selectSilhouetteLines(row.mesh, {2.0F, {0.0, -5.1}}).valleys, IsEmpty());
}

TEST(SilhouetteLines, PointsMoveTowardsTheMidpointOfTheirNeighboursAndEndsStay) {
  RowOfRidge row(5.0);
  row.mesh.setPosition(row.at(2, 1), {2.0, 1.0, 4.0});
  const auto ridges = row.ridges({2.0F, {0.0, 0.0}});
  ASSERT_THAT(ridges, SizeIs(1));
  EXPECT_THAT(smoothedAlong(row.mesh, ridges[0], 0.5F),
              ::testing::ElementsAre(Vec3{1.0, 1.0, 0.0}, Vec3{2.0, 1.0, 2.0}, Vec3{3.0, 1.0, 1.0},
                                     Vec3{4.0, 1.0, 0.0}));
}

TEST(SilhouetteLines, WithoutCurvatureThereAreNoLines) {
  RowOfRidge row(5.0);
  row.mesh.maxCurvature.clear();
  EXPECT_THAT(row.ridges({0.0F, {0.0, 0.0}}), IsEmpty());
}

}  // namespace
}  // namespace gravlin
