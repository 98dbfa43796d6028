#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "features/LineFields.h"
#include "features/MarkedMeshes.h"
#include "features/RidgeThresholds.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using namespace gravlin::test;

/// The hexagon with every vertex marked on both lines; only vertex 0 is interior.
TriangleMesh allMarked(std::vector<double> kmax, std::vector<double> kmin) {
  TriangleMesh mesh = hexagonFan();
  mesh.maxCurvature = std::move(kmax);
  mesh.minCurvature = std::move(kmin);
  mesh.ridgeMarks.assign(7, 1);
  mesh.valleyMarks.assign(7, 1);
  return mesh;
}

TEST(RidgeThresholds, AConstantKeepsOnlyWhatPassesItAtVerticesOfEveryKind) {
  TriangleMesh mesh = allMarked({3, 2, 1, 0, -1, 5, 2.5}, {-3, -2, -1, 0, 1, -5, -2.5});
  thresholdConstant(mesh, 2.0F);
  EXPECT_THAT(mesh.ridgeMarks, ElementsAre(1, 0, 0, 0, 0, 1, 1));
  EXPECT_THAT(mesh.valleyMarks, ElementsAre(1, 0, 0, 0, 0, 1, 1));
}

TEST(RidgeThresholds, ZeroKeepsRidgesOnlyAbove0AndValleysOnlyBelow0) {
  TriangleMesh mesh = allMarked({1, 0, -1, 1, 0, -1, 1}, {-1, 0, 1, -1, 0, 1, -1});
  thresholdConstant(mesh, 0.0F);
  EXPECT_THAT(mesh.ridgeMarks, ElementsAre(1, 0, 0, 1, 0, 0, 1));
  EXPECT_THAT(mesh.valleyMarks, ElementsAre(1, 0, 0, 1, 0, 0, 1));
}

TEST(RidgeThresholds, AMarkThatWasNotSetIsNotSetByAnyThreshold) {
  TriangleMesh mesh = allMarked({9, 9, 9, 9, 9, 9, 9}, {-9, -9, -9, -9, -9, -9, -9});
  mesh.ridgeMarks.assign(7, 0);
  thresholdConstant(mesh, 0.0F);
  thresholdHistogram(mesh, {0.0F, 0.0F});
  compareAbsoluteValues(mesh);
  EXPECT_THAT(mesh.ridgeMarks, Each(0));
}

// Positive maxima 1 .. 6, so the last index is 5: 5 x 0.6 = 3 gives 4, 5 x 0.25 truncates to 1.
// Negative minima -4 .. -1, last index 3: (1 - 0.6) x 3 truncates to 1 and gives -3;
// (1 - 0.25) x 5 truncates to 3 and gives -1.
TEST(RidgeThresholds, HistogramTakesPercentilesOfPositiveMaximaAndNegativeMinima) {
  TriangleMesh mesh = allMarked({4, 1, 2, 3, -7, 5, 6}, {-4, -1, -2, -3, 4, 5, 6});
  const LowThresholds low = thresholdHistogram(mesh, {0.6F, 0.25F});
  EXPECT_EQ(low.ridgeLow, 2.0);
  EXPECT_EQ(low.valleyLow, -1.0);
  EXPECT_EQ(mesh.ridgeMarks[0], 0) << "4 is not above 4";
  EXPECT_EQ(mesh.valleyMarks[0], 1) << "-4 is below -3";
  EXPECT_THAT(std::vector<int>(mesh.ridgeMarks.begin() + 1, mesh.ridgeMarks.end()), Each(1))
      << "boundary vertices are not touched";
}

TEST(RidgeThresholds, HistogramLeavesMarksOfBoundaryAndNonManifoldVerticesAlone) {
  for (TriangleMesh mesh : {hexagonFan(), bowTie(), touchingOctahedra(), pointsOnly()}) {
    const auto V = static_cast<std::size_t>(mesh.vertexCount);
    for (std::size_t i = 0; i < V; ++i) {
      mesh.maxCurvature.push_back(1.0 + static_cast<double>(i));
      mesh.minCurvature.push_back(-1.0 - static_cast<double>(i));
    }
    mesh.ridgeMarks.assign(V, 1);
    mesh.valleyMarks.assign(V, 1);
    thresholdHistogram(mesh, {1.0F, 0.3F});  // which no interior vertex passes
    for (std::size_t i = 0; i < V; ++i) {
      const int expected = mesh.vertexKind[i] == InteriorVertex ? 0 : 1;
      EXPECT_EQ(mesh.ridgeMarks[i], expected) << i;
      EXPECT_EQ(mesh.valleyMarks[i], expected) << i;
    }
  }
}

// 0.7 in single precision is a little less than 0.7: the largest value passes its own percentile.
TEST(RidgeThresholds, PercentilesAreOfValuesInSinglePrecision) {
  TriangleMesh mesh = allMarked({0.7, 0, 0, 0, 0, 0, 0}, {-0.7, 0, 0, 0, 0, 0, 0});
  const LowThresholds low = thresholdHistogram(mesh, {1.0F, 1.0F});
  EXPECT_EQ(mesh.ridgeMarks[0], 1);
  EXPECT_EQ(mesh.valleyMarks[0], 1);
  EXPECT_EQ(low.ridgeLow, static_cast<double>(0.7F));
  EXPECT_EQ(low.valleyLow, static_cast<double>(-0.7F));
}

TEST(RidgeThresholds, UpperShareOneLetsNoRidgeSurvive) {
  TriangleMesh mesh = allMarked({6, 1, 2, 3, 4, 5, 0}, {0, 0, 0, 0, 0, 0, 0});
  thresholdHistogram(mesh, {1.0F, 0.3F});
  EXPECT_EQ(mesh.ridgeMarks[0], 0);
}

TEST(RidgeThresholds, UpperShareZeroUsesTheSmallestPositiveMaximum) {
  TriangleMesh mesh = allMarked({1.5, 1, 2, 3, 4, 5, -9}, {0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(thresholdHistogram(mesh, {0.0F, 0.0F}).ridgeLow, 1.0);
  EXPECT_EQ(mesh.ridgeMarks[0], 1);
}

TEST(RidgeThresholds, MoreRidgeThanValleyValuesClampTheValleyIndex) {
  TriangleMesh mesh = allMarked({1, 2, 3, 4, 5, 6, 7}, {-2, -1, 0, 0, 0, 0, 0});
  EXPECT_EQ(thresholdHistogram(mesh, {0.6F, 0.0F}).valleyLow, -1.0)
      << "index 6 of a list of two counts as the last";
}

TEST(RidgeThresholds, EmptyDistributionsGiveZero) {
  TriangleMesh mesh = allMarked({-1, -1, -1, -1, -1, -1, -1}, {1, 1, 1, 1, 1, 1, 1});
  const LowThresholds low = thresholdHistogram(mesh, {0.6F, 0.3F});
  EXPECT_EQ(low.ridgeLow, 0.0);
  EXPECT_EQ(low.valleyLow, 0.0);
}

TEST(RidgeThresholds, AtEqualMagnitudeBothMarksStay) {
  TriangleMesh mesh = allMarked({2, 1, 3, 0, 0, 0, 0}, {-2, -3, -1, 0, 0, 0, 0});
  compareAbsoluteValues(mesh);
  EXPECT_THAT(mesh.ridgeMarks, ElementsAre(1, 0, 1, 1, 1, 1, 1));
  EXPECT_THAT(mesh.valleyMarks, ElementsAre(1, 1, 0, 1, 1, 1, 1));
}

TEST(RidgeThresholds, PositionsAreTruncatedAndClamped) {
  std::vector<float> values = {4.0F, 1.0F, 2.0F};
  EXPECT_EQ(valueAtPosition(values, 1.99), 2.0F);
  EXPECT_EQ(valueAtPosition(values, -0.5), 1.0F);
  EXPECT_EQ(valueAtPosition(values, 3.0), 4.0F);
  EXPECT_EQ(valueAtPosition(values, 1e300), 4.0F);
  EXPECT_EQ(valueAtPosition(values, std::numeric_limits<double>::quiet_NaN()), 1.0F);
  EXPECT_EQ(valueAtPosition({}, 0.0), 0.0F);
}

}  // namespace
}  // namespace gravlin
