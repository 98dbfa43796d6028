#pragma once

#include "numeric/Vec3.h"

namespace gravlin {

/// The quadratic form x -> [x 1] Q [x 1]^T of a symmetric 4 x 4 matrix, given by its upper
/// triangle. For a plane it is the squared distance from the plane; sums of planes give sums of
/// squares.
struct Quadric {
  double q11 = 0.0, q12 = 0.0, q13 = 0.0, q14 = 0.0;
  double q22 = 0.0, q23 = 0.0, q24 = 0.0;
  double q33 = 0.0, q34 = 0.0;
  double q44 = 0.0;

  Quadric& operator+=(const Quadric& other);
};

/// The fundamental quadric p p^T, p = (normal, offset), of the plane normal . x + offset = 0 with a
/// unit normal.
Quadric planeQuadric(const Vec3& normal, double offset);

Quadric operator+(const Quadric& a, const Quadric& b);
Quadric operator*(double factor, const Quadric& q);
Quadric operator/(const Quadric& q, double divisor);

/// The value of the form at x.
double valueAt(const Quadric& q, const Vec3& x);

/// Where the form is smallest; `fallback` where the determinant of its upper left 3 x 3 block is
/// below 1e-6 in size (or not a number), so that there is no one such place.
Vec3 lowestPoint(const Quadric& q, const Vec3& fallback);

}  // namespace gravlin
