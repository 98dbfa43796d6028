#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

namespace gravlin {

/// A point or direction in double precision. Every operation is the plain textbook expression,
/// evaluated from left to right, so that results are the same in every build.
struct Vec3 {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  Vec3& operator+=(const Vec3& b) { return *this = {x + b.x, y + b.y, z + b.z}; }
  Vec3& operator-=(const Vec3& b) { return *this = {x - b.x, y - b.y, z - b.z}; }
  bool operator==(const Vec3&) const = default;
};

inline Vec3 operator+(const Vec3& a, const Vec3& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3 operator-(const Vec3& a, const Vec3& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec3 operator-(const Vec3& a) {
  return {-a.x, -a.y, -a.z};
}
inline Vec3 operator*(double s, const Vec3& a) {
  return {s * a.x, s * a.y, s * a.z};
}
inline Vec3 operator*(const Vec3& a, double s) {
  return {a.x * s, a.y * s, a.z * s};
}
inline Vec3 operator/(const Vec3& a, double s) {
  return {a.x / s, a.y / s, a.z / s};
}

inline double dot(const Vec3& a, const Vec3& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline Vec3 cross(const Vec3& a, const Vec3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline double length(const Vec3& a) {
  return std::sqrt(dot(a, a));
}

/// The vector divided by its length; zero stays zero.
inline Vec3 unitOrZero(const Vec3& a) {
  const double size = length(a);
  return size == 0.0 ? Vec3{} : a / size;
}

/// Reads three consecutive numbers, float or double, widened to double.
template <class Number>
Vec3 loadVec3(const Number* xyz) {
  return {static_cast<double>(xyz[0]), static_cast<double>(xyz[1]), static_cast<double>(xyz[2])};
}

/// Writes three consecutive numbers, rounded to the element type of the destination.
template <class Number>
void storeVec3(Number* xyz, const Vec3& a) {
  xyz[0] = static_cast<Number>(a.x);
  xyz[1] = static_cast<Number>(a.y);
  xyz[2] = static_cast<Number>(a.z);
}

/// Vector i of a field of three numbers a vector.
template <class Number>
Vec3 vectorAt(const std::vector<Number>& field, int i) {
  return loadVec3(field.data() + 3 * static_cast<std::size_t>(i));
}

template <class Number>
void storeVectorAt(std::vector<Number>& field, int i, const Vec3& a) {
  storeVec3(field.data() + 3 * static_cast<std::size_t>(i), a);
}

/// Every component rounded to single precision, as storing it in a mesh does.
inline Vec3 roundedToSingle(const Vec3& a) {
  float xyz[3];
  storeVec3(xyz, a);
  return loadVec3(xyz);
}

}  // namespace gravlin
