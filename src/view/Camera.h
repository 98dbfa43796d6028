#pragma once

#include <array>
#include <optional>

#include "doc/Outside.h"
#include "mesh/FacePicking.h"
#include "numeric/Vec3.h"

namespace gravlin {

/// Extent of a view in its own pixels, the ones that mouse positions are counted in.
struct ViewSize {
  int width = 1;
  int height = 1;
};

/// A position in a view in its own pixels, from the upper left corner.
struct ViewPoint {
  int x = 0;
  int y = 0;
};

/// Where a point of the mesh appears in a view.
struct SeenPoint {
  double x = 0.0;      ///< in the view's own pixels, from the left edge
  double y = 0.0;      ///< from the upper edge
  double depth = 0.0;  ///< distance from the eye along the line of sight through the centre
};

enum class ArrowKey { Left, Up, Right, Down };

/// A camera that stands still and looks at the origin while the mesh in front of it is turned about
/// three axes and shifted. Mouse, wheel and keys change the numbers here; nothing is clamped.
///
/// The functions that take an event tell whether the view must be drawn anew. Any value of any
/// member is safe: an angle that is not finite turns nothing.
class Camera {
 public:
  float angleX = 0.0F;        ///< degrees about axisX ("Rx"), turned by the wheel
  float angleY = 0.0F;        ///< degrees about axisY ("Ry"), turned by a vertical drag
  float angleZ = 0.0F;        ///< degrees about axisZ ("Rz"), turned by a horizontal drag
  float fieldOfView = 22.5F;  ///< degrees, vertical; the zoom
  std::array<float, 3> translation = {0.0F, 0.0F, 0.0F};  ///< moved by the arrow keys

  static constexpr Vec3 eye = {26.0, -48.0, 40.0};
  static constexpr Vec3 centre = {0.0, 0.0, 0.0};
  /// The viewing direction in the horizontal plane, the horizontal across the screen, the vertical.
  static const std::array<float, 3> axisX;
  static const std::array<float, 3> axisY;
  static const std::array<float, 3> axisZ;

  bool leftDragging = false;
  bool rightDragging = false;
  ViewPoint lastMouse;  ///< last position during a drag
  Ray pickRay;          ///< of the last aimAt, in mesh coordinates

  // --- Events ---
  void pressLeft(ViewPoint at);
  void releaseLeft() { leftDragging = false; }
  void pressRight(ViewPoint at);
  void releaseRight() { rightDragging = false; }
  /// With the left button down three pixels turn by one degree, counted per event and rounded
  /// towards zero; otherwise with the right button down a pixel zooms by 0.05 degrees.
  bool moveMouse(ViewPoint to);
  /// One notch of a common wheel is a delta of 120 and turns by 6 degrees.
  bool turnWheel(int delta);
  /// Moves the mesh by one unit in the plane of the screen.
  bool pressArrow(ArrowKey key);

  /// Sets pickRay to the line of sight through a pixel and returns it.
  const Ray& aimAt(ViewPoint pixel, ViewSize size);

  /// Where a point in mesh coordinates appears; nothing for a point nearer than the near plane.
  std::optional<SeenPoint> project(const Vec3& p, ViewSize size) const;

  ViewAngles angles() const { return {angleX, angleY, angleZ}; }
  void setAngles(const ViewAngles& angles);

  // --- Directions ---
  static Vec3 up();         ///< unit: the world's vertical made orthogonal to the line of sight
  static Vec3 rightward();  ///< unit, across the screen

  // --- OpenGL (the context must be current) ---
  /// Loads the projection for a view of this size: near 10, far 4000.
  void loadProjection(ViewSize size) const;
  /// Loads the model-view matrix that takes mesh coordinates to the eye's.
  void loadModelView() const;
};

}  // namespace gravlin
