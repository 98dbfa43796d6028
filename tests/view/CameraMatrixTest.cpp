#include <array>
#include <cmath>
#include <GL/glu.h>
#include <gtest/gtest.h>
#include <limits>

#include "support/OffscreenView.h"
#include "view/Camera.h"
#include "view/OpenGL.h"

namespace gravlin {
namespace {

using Matrix = std::array<double, 16>;

/// The camera's matrices as OpenGL holds them.
class CameraMatrix : public ::testing::Test {
 protected:
  void load(const Camera& camera, ViewSize size) {
    viewport = {0, 0, size.width, size.height};
    camera.loadProjection(size);
    camera.loadModelView();
    glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
    glGetDoublev(GL_MODELVIEW_MATRIX, modelView.data());
  }

  /// The point of the mesh that is seen at a pixel (from the upper left corner) at a depth.
  Vec3 unproject(ViewPoint pixel, double depth) const {
    Vec3 p;
    gluUnProject(pixel.x, viewport[3] - pixel.y, depth, modelView.data(), projection.data(),
                 viewport.data(), &p.x, &p.y, &p.z);
    return p;
  }

  test::OffscreenView offscreen;
  std::array<GLint, 4> viewport = {};
  Matrix projection = {};
  Matrix modelView = {};
};

double distanceFromRay(const Vec3& p, const Ray& ray) {
  return length(cross(p - ray.origin, ray.direction));
}

TEST_F(CameraMatrix, PickRayPassesThroughWhatThePixelShows) {
  const ViewAngles turns[] = {{0, 0, 0}, {30, 0, 0}, {0, -50, 0}, {0, 0, 200}, {20, 70, -110}};
  for (const ViewAngles& angles : turns) {
    for (const float fieldOfView : {5.0F, 22.5F, 90.0F}) {
      for (const ViewSize size : {ViewSize{800, 600}, ViewSize{300, 500}}) {
        Camera camera;
        camera.setAngles(angles);
        camera.fieldOfView = fieldOfView;
        camera.translation = {1.0F, -2.0F, 3.0F};
        load(camera, size);
        for (const ViewPoint pixel : {ViewPoint{150, 250}, ViewPoint{3, 7}, ViewPoint{290, 499}}) {
          const Ray& ray = camera.aimAt(pixel, size);
          // OpenGL keeps matrices in single precision: at 68 units from the eye, with entries of
          // seven digits, a point is known to some 1e-3.
          EXPECT_LT(distanceFromRay(unproject(pixel, 0.2), ray), 1e-3);
          EXPECT_LT(distanceFromRay(unproject(pixel, 0.9), ray), 1e-2);
          EXPECT_GT(dot(unproject(pixel, 0.9) - ray.origin, ray.direction), 0.0);
        }
      }
    }
  }
}

TEST_F(CameraMatrix, NearPlaneIsAtTenAndFarPlaneAtFourThousand) {
  const Camera camera;
  load(camera, {200, 200});
  EXPECT_NEAR(length(unproject({100, 100}, 0.0) - Camera::eye), 10.0, 1e-4);
  // The far end of the depth range is known to one part in a thousand.
  EXPECT_NEAR(length(unproject({100, 100}, 1.0) - Camera::eye), 4000.0, 4.0);
}

TEST_F(CameraMatrix, RightOnTheScreenIsTheHorizontalAxisAndUpIsUp) {
  load(Camera(), {200, 200});
  const Vec3 middle = unproject({100, 100}, 0.5);
  EXPECT_GT(dot(unproject({150, 100}, 0.5) - middle, loadVec3(Camera::axisY.data())), 0.0);
  EXPECT_GT((unproject({100, 50}, 0.5) - middle).z, 0.0);
}

TEST_F(CameraMatrix, WindowWithoutExtentAndAnyNumbersLeaveFiniteMatrices) {
  const float numbers[] = {0.0F,
                           -45.0F,
                           360.0F,
                           1e30F,
                           std::numeric_limits<float>::infinity(),
                           std::numeric_limits<float>::quiet_NaN()};
  for (const float number : numbers) {
    for (const ViewSize size : {ViewSize{0, 0}, ViewSize{-3, 5}, ViewSize{5, 0}}) {
      Camera camera;
      camera.setAngles({number, number, number});
      camera.fieldOfView = number;
      load(camera, size);
      for (const double entry : projection) EXPECT_TRUE(std::isfinite(entry));
      for (const double entry : modelView) EXPECT_TRUE(std::isfinite(entry));
      EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
  }
}

}  // namespace
}  // namespace gravlin
