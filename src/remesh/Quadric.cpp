#include "remesh/Quadric.h"

#include <cmath>

namespace gravlin {

Quadric& Quadric::operator+=(const Quadric& other) {
  return *this = *this + other;
}

Quadric planeQuadric(const Vec3& n, double d) {
  return {.q11 = n.x * n.x,
          .q12 = n.x * n.y,
          .q13 = n.x * n.z,
          .q14 = n.x * d,
          .q22 = n.y * n.y,
          .q23 = n.y * n.z,
          .q24 = n.y * d,
          .q33 = n.z * n.z,
          .q34 = n.z * d,
          .q44 = d * d};
}

Quadric operator+(const Quadric& a, const Quadric& b) {
  return {a.q11 + b.q11, a.q12 + b.q12, a.q13 + b.q13, a.q14 + b.q14, a.q22 + b.q22,
          a.q23 + b.q23, a.q24 + b.q24, a.q33 + b.q33, a.q34 + b.q34, a.q44 + b.q44};
}

Quadric operator*(double s, const Quadric& q) {
  return {s * q.q11, s * q.q12, s * q.q13, s * q.q14, s * q.q22,
          s * q.q23, s * q.q24, s * q.q33, s * q.q34, s * q.q44};
}

Quadric operator/(const Quadric& q, double s) {
  return {q.q11 / s, q.q12 / s, q.q13 / s, q.q14 / s, q.q22 / s,
          q.q23 / s, q.q24 / s, q.q33 / s, q.q34 / s, q.q44 / s};
}

double valueAt(const Quadric& q, const Vec3& x) {
  const Vec3 ax = {q.q11 * x.x + q.q12 * x.y + q.q13 * x.z, q.q12 * x.x + q.q22 * x.y + q.q23 * x.z,
                   q.q13 * x.x + q.q23 * x.y + q.q33 * x.z};
  return dot(x, ax) + 2.0 * dot({q.q14, q.q24, q.q34}, x) + q.q44;
}

Vec3 lowestPoint(const Quadric& q, const Vec3& fallback) {
  // Cofactors of the block, which is symmetric, so they are its adjugate too.
  const double c11 = q.q22 * q.q33 - q.q23 * q.q23;
  const double c12 = q.q13 * q.q23 - q.q12 * q.q33;
  const double c13 = q.q12 * q.q23 - q.q13 * q.q22;
  const double determinant = q.q11 * c11 + q.q12 * c12 + q.q13 * c13;
  if (!(std::abs(determinant) >= 1e-6)) return fallback;
  const double c22 = q.q11 * q.q33 - q.q13 * q.q13;
  const double c23 = q.q12 * q.q13 - q.q11 * q.q23;
  const double c33 = q.q11 * q.q22 - q.q12 * q.q12;
  return Vec3{-(c11 * q.q14 + c12 * q.q24 + c13 * q.q34),
              -(c12 * q.q14 + c22 * q.q24 + c23 * q.q34),
              -(c13 * q.q14 + c23 * q.q24 + c33 * q.q34)} /
         determinant;
}

}  // namespace gravlin
