#include "generator/Shape.h"

#include <cmath>
#include <cstdio>

namespace gravlin::examples {
namespace {

template <class... Numbers>
void appendLine(std::string& text, const char* format, Numbers... numbers) {
  std::array<char, 128> line;
  const int length = std::snprintf(line.data(), line.size(), format, numbers...);
  text.append(line.data(), static_cast<std::size_t>(length));
}

/// Rounding must not turn 0 into "-0.000".
double withoutSignOfZero(double x) {
  return std::abs(x) < 0.0005 ? 0.0 : x;
}

}  // namespace

int Shape::add(const Vec3& point) {
  points.push_back(point);
  return static_cast<int>(points.size()) - 1;
}

void Shape::addQuad(int a, int b, int c, int d) {
  const auto distance = [this](int i, int j) {
    return length(points[static_cast<std::size_t>(i)] - points[static_cast<std::size_t>(j)]);
  };
  if (distance(b, d) < distance(a, c) - 1e-6) {
    triangles.insert(triangles.end(), {{a, b, d}, {b, c, d}});
  } else {
    triangles.insert(triangles.end(), {{a, b, c}, {a, c, d}});
  }
}

std::string ply2Text(const Shape& shape) {
  std::string text;
  appendLine(text, "%zu\n%zu\n", shape.points.size(), shape.triangles.size());
  for (const Vec3& p : shape.points) {
    appendLine(text, "%.3f %.3f %.3f\n", withoutSignOfZero(p.x), withoutSignOfZero(p.y),
               withoutSignOfZero(p.z));
  }
  for (const auto& [a, b, c] : shape.triangles) appendLine(text, "3 %d %d %d\n", a, b, c);
  return text;
}

}  // namespace gravlin::examples
