#include <gtest/gtest.h>
#include <limits>

#include "remesh/Quadric.h"

namespace gravlin {
namespace {

const Vec3 tilted = Vec3{1, 2, -2} / 3.0;

TEST(Quadric, OfAPlaneIsTheSquaredDistanceFromIt) {
  const Quadric q = planeQuadric(tilted, -4.0);
  for (const Vec3& x : {Vec3{0, 0, 0}, Vec3{5, -1, 2}, Vec3{4.0 / 3.0, 8.0 / 3.0, -8.0 / 3.0}}) {
    const double distance = dot(tilted, x) - 4.0;
    EXPECT_NEAR(valueAt(q, x), distance * distance, 1e-13);
  }
}

TEST(Quadric, AddsScalesAndDividesTerm) {
  const Vec3 x = {1.5, -2, 0.25};
  const Quadric a = planeQuadric(tilted, 1.0);
  const Quadric b = planeQuadric({0, 0, 1}, 2.0);
  EXPECT_NEAR(valueAt(a + 3.0 * b, x), valueAt(a, x) + 3.0 * valueAt(b, x), 1e-13);
  EXPECT_NEAR(valueAt(a / 4.0, x), valueAt(a, x) / 4.0, 1e-13);
  Quadric sum = a;
  sum += b;
  EXPECT_EQ(valueAt(sum, x), valueAt(a + b, x));
}

TEST(Quadric, LowestPointOfThreePlanesIsWhereTheyMeet) {
  const Quadric q =
      planeQuadric({1, 0, 0}, -2.0) + planeQuadric({0, 0.6, 0.8}, -1.0) + planeQuadric(tilted, 3.0);
  const Vec3 x = lowestPoint(q, {9, 9, 9});
  EXPECT_NEAR(x.x, 2.0, 1e-12);
  EXPECT_NEAR(valueAt(q, x), 0.0, 1e-12);
}

TEST(Quadric, LowestPointHasAVanishingGradient) {
  Quadric q;
  for (int k = 0; k < 7; ++k) {
    const Vec3 n = unitOrZero(Vec3{1.0 + k, 0.5 * k * k - 3.0, 2.0 - k});
    q += (1.0 + k) * planeQuadric(n, 0.3 * k - 1.0);
  }
  const Vec3 x = lowestPoint(q, {9, 9, 9});
  for (const Vec3& step : {Vec3{1e-3, 0, 0}, Vec3{0, 1e-3, 0}, Vec3{0, 0, 1e-3}}) {
    EXPECT_NEAR(valueAt(q, x + step), valueAt(q, x - step), 1e-12);
    EXPECT_GT(valueAt(q, x + step), valueAt(q, x));
  }
}

TEST(Quadric, LowestPointFallsBackWhereThereIsNoOneSuchPlace) {
  const Vec3 fallback = {1, 2, 3};
  const Quadric plane = planeQuadric({0, 0, 1}, 0.0);
  EXPECT_EQ(lowestPoint(plane, fallback), fallback);
  EXPECT_EQ(lowestPoint(Quadric{}, fallback), fallback);
  // The determinant of a diagonal block is the product of its entries; 1e-6 is the limit.
  const auto withDeterminant = [](double d) {
    return Quadric{.q11 = 1.0, .q14 = 2.0, .q22 = 1.0, .q33 = d};
  };
  EXPECT_EQ(lowestPoint(withDeterminant(0.9e-6), fallback), fallback);
  EXPECT_EQ(lowestPoint(withDeterminant(1.1e-6), fallback).x, -2.0);
  EXPECT_EQ(lowestPoint(withDeterminant(-1.1e-6), fallback).x, -2.0);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(lowestPoint(withDeterminant(nan), fallback), fallback);
}

}  // namespace
}  // namespace gravlin
