#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "mesh/PositionLoss.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;

TriangleMesh points(const std::vector<std::array<float, 3>>& positions) {
  return test::makeMesh(positions, {});
}

TEST(PositionLoss, NamesTheAxesWhoseCoordinatesOnlyRiseOrLieBeyondTheSearch) {
  EXPECT_THAT(axesWithoutBox(points({{0, 0, 0}, {1, 1, -1}, {2, 0, 3}})),
              ElementsAre(true, false, false));
  EXPECT_THAT(axesWithoutBox(points({{2e6F, -2e6F, 5}, {1.5e6F, -3e6F, 5}, {3e6F, 0, 5}})),
              ElementsAre(true, false, false));
  EXPECT_THAT(axesWithoutBox(points({{-2e6F, 0, 0}, {-3e6F, 0, 1}, {-1.5e6F, 0, 0}})),
              ElementsAre(true, false, false));
  EXPECT_THAT(axesWithoutBox(points({{1, 1, 1}})), ElementsAre(false, false, false));
  EXPECT_THAT(axesWithoutBox(TriangleMesh()), ElementsAre(false, false, false));
}

// A bound that was not found stands where the search for it starts, far from the coordinates.
TEST(PositionLoss, MissesABoxWhenNormalizeDoes) {
  std::minstd_rand random(7);
  int missedBoxes = 0;
  for (int run = 0; run < 3000; ++run) {
    std::vector<std::array<float, 3>> positions;
    const float unit = run % 3 == 0 ? 1.0F : 4e5F;
    for (int i = 0; i < 2 + run % 4; ++i) {
      const auto coordinate = [&] {
        return unit * static_cast<float>(static_cast<int>(random() % 11) - 5);
      };
      positions.push_back({coordinate(), coordinate(), coordinate()});
    }
    TriangleMesh mesh = points(positions);
    const std::array<bool, 3> missed = axesWithoutBox(mesh);
    mesh.normalize();
    for (std::size_t axis = 0; axis < 3; ++axis) {
      bool minimumIsThere = false;
      bool maximumIsThere = false;
      for (const auto& p : positions) {
        minimumIsThere |= p[axis] == mesh.boxMin[axis];
        maximumIsThere |= p[axis] == mesh.boxMax[axis];
      }
      EXPECT_EQ(missed[axis], !minimumIsThere || !maximumIsThere) << run;
      missedBoxes += missed[axis] ? 1 : 0;
    }
  }
  EXPECT_GT(missedBoxes, 1000);
}

// With the minimum left at a million, the middle of the box is half a million away. There x/s, of
// about 20 units per 2, is a number of a few millions, whose single-precision neighbours are 0.25
// or 0.5 apart, in units of the file a tenth of that.
TEST(PositionLoss, MeasuresWhatAMissedBoxCosts) {
  TriangleMesh mesh = points({{0.1F, 0, 0}, {0.23F, 2, 0}, {0.37F, 0, 1}, {0.51F, 1, 0}});
  TriangleMesh same = mesh;
  const std::vector<float> before = mesh.vertices;
  const double loss = normalizeMeasuringLoss(mesh).stored;
  same.normalize();
  EXPECT_EQ(mesh.vertices, same.vertices);
  EXPECT_GT(loss, 1e-3);
  EXPECT_LT(loss, 0.05);
  // Every coordinate comes back that near, and one of them no nearer, but for single precision.
  mesh.denormalize();
  double largest = 0.0;
  for (std::size_t c = 0; c < before.size(); ++c) {
    largest = std::max(
        largest, std::abs(static_cast<double>(mesh.vertices[c]) - static_cast<double>(before[c])));
  }
  EXPECT_NEAR(loss, largest, 1e-6);
}

TEST(PositionLoss, IsNothingWhereTheBoxIsFound) {
  for (auto& [name, mesh] : test::closedMeshes()) {
    const NormalizingLoss loss = normalizeMeasuringLoss(mesh);
    EXPECT_EQ(loss.stored, 0.0) << name;
    EXPECT_EQ(loss.rewritten, 0.0) << name;
  }
}

/// What a number reads back as, by the C library.
double asText(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%f", static_cast<double>(static_cast<float>(value)));
  return static_cast<double>(std::strtof(text, nullptr));
}

// Beyond three millions single precision goes in steps of 0.25. Memory is off by less than half of
// one, so the next file has the same numbers; with x that only rise it has not.
TEST(PositionLoss, TellsWhetherTheNextFileHasTheSameNumbers) {
  const auto expectLoss = [](TriangleMesh mesh, bool textStays) {
    const std::vector<float> before = mesh.vertices;
    const NormalizingLoss loss = normalizeMeasuringLoss(mesh);
    EXPECT_GT(loss.stored, 1e-3);
    mesh.denormalize();
    double largest = 0.0;
    for (std::size_t c = 0; c < before.size(); ++c) {
      const double moved =
          asText(static_cast<double>(mesh.vertices[c])) - asText(static_cast<double>(before[c]));
      largest = std::max(largest, std::abs(moved));
    }
    EXPECT_EQ(loss.rewritten, largest);
    EXPECT_EQ(largest == 0.0, textStays);
  };
  expectLoss(points({{3e6F + 0.25F, 0, 0}, {3e6F + 2.5F, 2, 0}, {3e6F + 1.75F, 0, 1}}), true);
  expectLoss(points({{0.1F, 0, 0}, {0.23F, 2, 0}, {0.37F, 0, 1}, {0.51F, 1, 0}}), false);
}

TEST(PositionLoss, OfWritingIsTheLargestDifferenceToTheTextReadBack) {
  for (const double scale : {1e-6, 1e-3, 0.05, 0.3, 1.0, 77.0, 1e5}) {
    for (const float shift : {0.0F, 0.7F, -13.0F, 3e5F}) {
      TriangleMesh mesh = test::icosphere(2);
      mesh.boxMin = mesh.boxMax = {shift, 2.0F, -shift};
      mesh.extentTolerance = scale;
      const std::optional<WritingLoss> loss = lossByWriting(mesh);
      double largest = 0.0;
      for (int i = 0; i < mesh.vertexCount; ++i) {
        const auto wide = static_cast<double>(shift);
        const Vec3 centre = {wide, 2.0, -wide};
        const Vec3 x = centre + scale * mesh.position(i);
        for (const double each : {x.x, x.y, x.z}) {
          largest = std::max(largest, std::abs(asText(each) - each));
        }
      }
      ASSERT_TRUE(loss);
      EXPECT_NEAR(loss->largest, largest, 1e-14 * (scale + std::abs(static_cast<double>(shift))));
      EXPECT_GT(loss->extent, 1.9 * scale);  // a sphere of radius 1
      EXPECT_LT(loss->extent, 2.001 * scale);
    }
  }
}

TEST(PositionLoss, LeavesOutVerticesThatAreNotWritten) {
  TriangleMesh mesh = test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1e-7F, 9, 9}}, {{0, 1, 2}});
  mesh.extentTolerance = 1.0;
  const std::optional<WritingLoss> loss = lossByWriting(mesh);
  ASSERT_TRUE(loss);
  EXPECT_EQ(loss->largest, 0.0);
  EXPECT_EQ(loss->extent, 1.0);
  EXPECT_FALSE(lossByWriting(test::pointsOnly()));
  EXPECT_FALSE(lossByWriting(TriangleMesh()));
}

TEST(PositionLoss, DoesNotCountWhatIsNotFinite) {
  TriangleMesh mesh = test::withNan();
  mesh.extentTolerance = 1.0;
  const std::optional<WritingLoss> loss = lossByWriting(mesh);
  ASSERT_TRUE(loss);
  EXPECT_TRUE(std::isfinite(loss->largest));
  EXPECT_TRUE(std::isfinite(loss->extent));
}

TEST(PositionLoss, IsToldWithThreeDigits) {
  EXPECT_EQ(lossText(0.03125), "0.0312");
  EXPECT_EQ(lossText(5e-7), "5e-07");
  EXPECT_EQ(lossText(0.0), "0");
}

}  // namespace
}  // namespace gravlin
