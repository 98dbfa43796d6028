#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "view/Camera.h"

namespace gravlin {
namespace {

void expectNear(const Vec3& a, const Vec3& b, double tolerance) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

void drag(Camera& camera, ViewPoint from, ViewPoint to) {
  camera.pressLeft(from);
  camera.moveMouse(to);
  camera.releaseLeft();
}

TEST(Camera, StartsUnturnedWithTheEyeAboveAndInFront) {
  const Camera camera;
  EXPECT_EQ(camera.angleX, 0.0F);
  EXPECT_EQ(camera.angleY, 0.0F);
  EXPECT_EQ(camera.angleZ, 0.0F);
  EXPECT_EQ(camera.fieldOfView, 22.5F);
  EXPECT_EQ(camera.translation, (std::array<float, 3>{0.0F, 0.0F, 0.0F}));
  EXPECT_EQ(Camera::eye, (Vec3{26.0, -48.0, 40.0}));
}

TEST(Camera, AxesAreUnitAndOrthogonalAndFollowTheView) {
  const Vec3 x = loadVec3(Camera::axisX.data());
  const Vec3 y = loadVec3(Camera::axisY.data());
  const Vec3 z = loadVec3(Camera::axisZ.data());
  // Stored in single precision: 1e-7 is one unit in the last place of a component near 1.
  EXPECT_NEAR(length(x), 1.0, 1e-7);
  EXPECT_NEAR(length(y), 1.0, 1e-7);
  expectNear(cross(y, z), -x, 1e-7);
  EXPECT_NEAR(x.x, -26.0 / std::sqrt(2980.0), 1e-7);
  EXPECT_NEAR(y.x, 48.0 / std::sqrt(2980.0), 1e-7);
  expectNear(Camera::rightward(), y, 1e-7);
}

TEST(Camera, UpIsTheVerticalMadeOrthogonalToTheLineOfSight) {
  const Vec3 up = Camera::up();
  EXPECT_NEAR(length(up), 1.0, 1e-15);
  EXPECT_NEAR(dot(up, Camera::eye), 0.0, 1e-13);
  EXPECT_GT(up.z, 0.0);
  expectNear(cross(Camera::rightward(), Camera::centre - Camera::eye) /
                 length(Camera::centre - Camera::eye),
             up, 1e-15);
}

TEST(Camera, DragOfTwoPixelsPerEventNeverTurns) {
  Camera camera;
  camera.pressLeft({0, 0});
  for (int i = 1; i <= 50; ++i) camera.moveMouse({2 * i, -2 * i});
  EXPECT_EQ(camera.angleZ, 0.0F);
  EXPECT_EQ(camera.angleY, 0.0F);
}

TEST(Camera, DragOfSevenPixelsTurnsByTwoDegrees) {
  Camera camera;
  drag(camera, {10, 20}, {17, 20});
  EXPECT_EQ(camera.angleZ, 2.0F);
  EXPECT_EQ(camera.angleY, 0.0F);
  drag(camera, {10, 20}, {10, 27});
  EXPECT_EQ(camera.angleY, 2.0F);
}

TEST(Camera, DragRoundsTowardsZeroInBothDirections) {
  Camera camera;
  drag(camera, {10, 20}, {3, 12});
  EXPECT_EQ(camera.angleZ, -2.0F);
  EXPECT_EQ(camera.angleY, -2.0F);
}

TEST(Camera, DragCountsFromTheLastEventNotFromThePress) {
  Camera camera;
  camera.pressLeft({0, 0});
  camera.moveMouse({5, 0});
  camera.moveMouse({10, 0});
  EXPECT_EQ(camera.angleZ, 2.0F);  // 5 / 3 twice, not 10 / 3
  camera.releaseLeft();
  camera.pressLeft({100, 0});
  camera.moveMouse({103, 0});
  EXPECT_EQ(camera.angleZ, 3.0F);
}

TEST(Camera, MovesWithoutAButtonDoNothing) {
  Camera camera;
  EXPECT_FALSE(camera.moveMouse({100, 100}));
  drag(camera, {0, 0}, {0, 0});
  EXPECT_FALSE(camera.moveMouse({100, 100}));
  EXPECT_EQ(camera.angleZ, 0.0F);
  EXPECT_EQ(camera.fieldOfView, 22.5F);
}

TEST(Camera, DragAcrossTheWholeIntegerRangeDoesNotOverflow) {
  Camera camera;
  drag(camera, {INT_MIN, INT_MAX}, {INT_MAX, INT_MIN});
  EXPECT_EQ(camera.angleZ, static_cast<float>(4294967295.0 / 3.0));
  EXPECT_EQ(camera.angleY, -camera.angleZ);
}

TEST(Camera, RightDragZoomsByATwentiethDegreeAPixel) {
  Camera camera;
  camera.pressRight({0, 100});
  EXPECT_TRUE(camera.moveMouse({50, 110}));
  EXPECT_FLOAT_EQ(camera.fieldOfView, 23.0F);
  EXPECT_TRUE(camera.moveMouse({50, 109}));
  EXPECT_FLOAT_EQ(camera.fieldOfView, 22.95F);
  EXPECT_EQ(camera.angleZ, 0.0F);
  camera.releaseRight();
  EXPECT_FALSE(camera.moveMouse({50, 200}));
}

TEST(Camera, ZoomIsNotClamped) {
  Camera camera;
  camera.pressRight({0, 0});
  camera.moveMouse({0, -1000});
  EXPECT_FLOAT_EQ(camera.fieldOfView, -27.5F);
  camera.moveMouse({0, 9000});
  EXPECT_FLOAT_EQ(camera.fieldOfView, 472.5F);
}

TEST(Camera, LeftButtonWinsOverTheRightOne) {
  Camera camera;
  camera.pressRight({0, 0});
  camera.pressLeft({0, 0});
  camera.moveMouse({6, 6});
  EXPECT_EQ(camera.angleZ, 2.0F);
  EXPECT_EQ(camera.fieldOfView, 22.5F);
  camera.releaseLeft();
  camera.moveMouse({6, 26});
  EXPECT_EQ(camera.fieldOfView, 23.5F);
}

TEST(Camera, WheelTurnsBySixDegreesANotchAndLosesLessThanTwenty) {
  Camera camera;
  camera.turnWheel(-120);
  EXPECT_EQ(camera.angleX, -6.0F);
  camera.turnWheel(10);
  camera.turnWheel(-19);
  EXPECT_EQ(camera.angleX, -6.0F);
  camera.turnWheel(120);
  EXPECT_EQ(camera.angleX, 0.0F);
}

TEST(Camera, ArrowKeysMoveByOneUnitInTheScreenPlane) {
  Camera camera;
  camera.pressArrow(ArrowKey::Right);
  expectNear(loadVec3(camera.translation.data()), Camera::rightward(), 1e-7);
  camera.pressArrow(ArrowKey::Up);
  expectNear(loadVec3(camera.translation.data()), Camera::rightward() + Camera::up(), 1e-6);
  camera.pressArrow(ArrowKey::Left);
  camera.pressArrow(ArrowKey::Down);
  expectNear(loadVec3(camera.translation.data()), {}, 1e-6);
}

TEST(Camera, AnglesGoToTheDialogAndBack) {
  Camera camera;
  camera.setAngles({1.5F, -20.0F, 300.0F});
  EXPECT_EQ(camera.angleX, 1.5F);
  EXPECT_EQ(camera.angleY, -20.0F);
  EXPECT_EQ(camera.angleZ, 300.0F);
  const ViewAngles angles = camera.angles();
  EXPECT_EQ(angles.rx, 1.5F);
  EXPECT_EQ(angles.ry, -20.0F);
  EXPECT_EQ(angles.rz, 300.0F);
}

TEST(Camera, RayThroughTheMiddleRunsFromTheEyeToTheCentre) {
  Camera camera;
  const Ray& ray = camera.aimAt({400, 300}, {800, 600});
  expectNear(ray.origin, Camera::eye, 1e-13);
  expectNear(ray.direction, -Camera::eye / length(Camera::eye), 1e-15);
}

TEST(Camera, RayThroughTheUpperEdgeLeavesTheAxisByHalfTheFieldOfView) {
  Camera camera;
  const Ray& ray = camera.aimAt({400, 0}, {800, 600});
  const double cosine = dot(ray.direction, -Camera::eye / length(Camera::eye));
  EXPECT_NEAR(std::acos(cosine), 11.25 * std::acos(-1.0) / 180.0, 1e-12);
  EXPECT_GT(dot(ray.direction, Camera::up()), 0.0);
}

TEST(Camera, RayIsKeptInTheView) {
  Camera camera;
  camera.angleZ = 30.0F;
  camera.translation = {1.0F, 2.0F, 3.0F};
  const Ray ray = camera.aimAt({10, 20}, {30, 40});
  EXPECT_EQ(camera.pickRay.origin, ray.origin);
  EXPECT_EQ(camera.pickRay.direction, ray.direction);
  EXPECT_NEAR(length(ray.direction), 1.0, 1e-15);
}

TEST(Camera, TurningTheMeshLeftTurnsTheEyeRightAroundIt) {
  Camera camera;
  camera.angleZ = 90.0F;
  const Vec3 eye = camera.aimAt({50, 50}, {100, 100}).origin;
  expectNear(eye, {Camera::eye.y, -Camera::eye.x, Camera::eye.z}, 1e-13);
}

TEST(Camera, AnyNumbersAreSafe) {
  const float hostile[] = {0.0F, 1e30F, -std::numeric_limits<float>::max(),
                           std::numeric_limits<float>::infinity(),
                           std::numeric_limits<float>::quiet_NaN()};
  for (const float number : hostile) {
    Camera camera;
    camera.setAngles({number, number, number});
    camera.fieldOfView = number;
    camera.aimAt({INT_MIN, INT_MAX}, {0, 0});
    camera.aimAt({INT_MAX, INT_MIN}, {-5, INT_MAX});
    camera.turnWheel(INT_MIN);
    camera.pressRight({INT_MAX, INT_MAX});
    camera.moveMouse({INT_MIN, INT_MIN});
    // Steps of the wheel and the mouse are finite, and so is what they are added to, or it stays.
    EXPECT_EQ(std::isfinite(camera.angleX), std::isfinite(number)) << number;
    EXPECT_EQ(std::isfinite(camera.fieldOfView), std::isfinite(number)) << number;
    EXPECT_EQ(camera.translation, (std::array<float, 3>{0, 0, 0}));
    // Angles that are not finite turn nothing; the eye stays as far from the mesh as it is,
    // up to the rounding of the axes, which are unit vectors in single precision.
    const Ray& ray = camera.aimAt({INT_MAX, INT_MIN}, {-5, INT_MAX});
    EXPECT_NEAR(length(ray.origin), length(Camera::eye), 5e-5) << number;
    if (std::isfinite(number)) {
      EXPECT_NEAR(length(ray.direction), 1.0, 1e-12) << number;
    }
  }
}

TEST(Camera, AngleThatIsNotFiniteTurnsNothing) {
  Camera camera;
  camera.setAngles(
      {std::numeric_limits<float>::infinity(), 0.0F, std::numeric_limits<float>::quiet_NaN()});
  expectNear(camera.aimAt({1, 1}, {2, 2}).origin, Camera::eye, 1e-13);
}

}  // namespace
}  // namespace gravlin
