#include "view/Camera.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <GL/glu.h>
#include <numbers>

namespace gravlin {
namespace {

constexpr double degree = std::numbers::pi / 180.0;
constexpr double nearPlane = 10.0;
constexpr double farPlane = 4000.0;
const float horizontalLength = std::sqrt(2980.0F);  // of the eye's place seen from above, (26, -48)

Vec3 unit(const Vec3& a) {
  return a / length(a);
}

double finiteOrZero(float number) {
  return std::isfinite(number) ? static_cast<double>(number) : 0.0;
}

/// Turns `p` by `degrees` about a unit axis, counter-clockwise seen from the axis's tip.
Vec3 turned(const Vec3& p, const std::array<float, 3>& axis, double degrees) {
  const Vec3 k = loadVec3(axis.data());
  const double cosine = std::cos(degrees * degree);
  const double sine = std::sin(degrees * degree);
  return cosine * p + sine * cross(k, p) + ((1.0 - cosine) * dot(k, p)) * k;
}

/// Whole units of `size` that a move from a to b makes, rounded towards zero.
std::int64_t wholeSteps(int a, int b, int size) {
  return (static_cast<std::int64_t>(b) - a) / size;
}

}  // namespace

const std::array<float, 3> Camera::axisX = {-26.0F / horizontalLength, 48.0F / horizontalLength,
                                            0.0F};
const std::array<float, 3> Camera::axisY = {48.0F / horizontalLength, 26.0F / horizontalLength,
                                            0.0F};
const std::array<float, 3> Camera::axisZ = {0.0F, 0.0F, 1.0F};

void Camera::pressLeft(ViewPoint at) {
  leftDragging = true;
  lastMouse = at;
}

void Camera::pressRight(ViewPoint at) {
  rightDragging = true;
  lastMouse = at;
}

bool Camera::moveMouse(ViewPoint to) {
  if (!leftDragging && !rightDragging) return false;
  if (leftDragging) {
    angleZ += static_cast<float>(wholeSteps(lastMouse.x, to.x, 3));
    angleY += static_cast<float>(wholeSteps(lastMouse.y, to.y, 3));
  } else {
    const double pixels = static_cast<double>(to.y) - lastMouse.y;
    fieldOfView = static_cast<float>(fieldOfView + pixels * 0.05);
  }
  lastMouse = to;
  return true;
}

bool Camera::turnWheel(int delta) {
  angleX += static_cast<float>(delta / 20);
  return true;
}

bool Camera::pressArrow(ArrowKey key) {
  const bool across = key == ArrowKey::Left || key == ArrowKey::Right;
  const bool forward = key == ArrowKey::Right || key == ArrowKey::Up;
  const Vec3 step = across ? rightward() : up();
  const Vec3 from = loadVec3(translation.data());
  storeVec3(translation.data(), forward ? from + step : from - step);
  return true;
}

const Ray& Camera::aimAt(ViewPoint pixel, ViewSize size) {
  const double viewHeight = 2.0 * length(centre - eye) * std::tan(fieldOfView * degree / 2.0);
  const double perPixel = viewHeight / std::max(1, size.height);
  const double right = perPixel * (static_cast<double>(pixel.x) - size.width / 2);
  const double above = perPixel * (static_cast<double>(size.height / 2) - pixel.y);

  // From the turned and shifted mesh back to the mesh as it lies in its file.
  const auto undoView = [this](const Vec3& p) {
    const Vec3 unshifted = p - loadVec3(translation.data());
    const Vec3 withoutX = turned(unshifted, axisX, -finiteOrZero(angleX));
    const Vec3 withoutY = turned(withoutX, axisY, -finiteOrZero(angleY));
    return turned(withoutY, axisZ, -finiteOrZero(angleZ));
  };
  const Vec3 origin = undoView(eye);
  const Vec3 target = undoView(centre + right * rightward() + above * up());
  pickRay = {origin, unit(target - origin)};
  return pickRay;
}

std::optional<SeenPoint> Camera::project(const Vec3& p, ViewSize size) const {
  const Vec3 aboutZ = turned(p, axisZ, finiteOrZero(angleZ));
  const Vec3 aboutY = turned(aboutZ, axisY, finiteOrZero(angleY));
  const Vec3 placed = turned(aboutY, axisX, finiteOrZero(angleX)) + loadVec3(translation.data());
  const Vec3 fromEye = placed - eye;
  const double depth = dot(fromEye, unit(centre - eye));
  if (!(depth >= nearPlane)) return std::nullopt;
  const double pixelsPerUnit =
      size.height / 2.0 / (depth * std::tan(finiteOrZero(fieldOfView) * degree / 2.0));
  return SeenPoint{size.width / 2.0 + pixelsPerUnit * dot(fromEye, rightward()),
                   size.height / 2.0 - pixelsPerUnit * dot(fromEye, up()), depth};
}

void Camera::setAngles(const ViewAngles& angles) {
  angleX = angles.rx;
  angleY = angles.ry;
  angleZ = angles.rz;
}

Vec3 Camera::up() {
  const Vec3 d = centre - eye;
  return unit({-d.z * d.x, -d.y * d.z, d.x * d.x + d.y * d.y});
}

Vec3 Camera::rightward() {
  return unit(cross(centre - eye, up()));
}

void Camera::loadProjection(ViewSize size) const {
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  const double aspect = static_cast<double>(std::max(1, size.width)) / std::max(1, size.height);
  gluPerspective(finiteOrZero(fieldOfView), aspect, nearPlane, farPlane);
}

void Camera::loadModelView() const {
  const Vec3 vertical = up();
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  gluLookAt(eye.x, eye.y, eye.z, centre.x, centre.y, centre.z, vertical.x, vertical.y, vertical.z);
  glTranslatef(translation[0], translation[1], translation[2]);
  const auto turn = [](float angle, const std::array<float, 3>& axis) {
    glRotated(finiteOrZero(angle), axis[0], axis[1], axis[2]);
  };
  turn(angleX, axisX);
  turn(angleY, axisY);
  turn(angleZ, axisZ);
}

}  // namespace gravlin
