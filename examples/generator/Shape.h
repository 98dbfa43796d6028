#pragma once

#include <array>
#include <string>
#include <vector>

#include "numeric/Vec3.h"

namespace gravlin::examples {

/// A mesh while it is being made: positions in the shape's own units and triangles that turn
/// counter-clockwise seen from outside.
struct Shape {
  std::vector<Vec3> points;
  std::vector<std::array<int, 3>> triangles;

  /// Adds a point and returns its index.
  int add(const Vec3& point);
  /// Adds the quadrilateral a, b, c, d as two triangles, cut along its shorter diagonal (along a-c
  /// when they are as long as each other but for rounding).
  void addQuad(int a, int b, int c, int d);
};

/// The text of a "ply2" file: the two counts, one point a line with three digits behind the point,
/// one triangle a line.
std::string ply2Text(const Shape& shape);

}  // namespace gravlin::examples
