#include "generator/Relief.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace gravlin::examples {
namespace {

constexpr int cells = 52;          // along each side
constexpr double side = 80.0;      // millimetres
constexpr double roughness = 0.2;  // deviation of the noise, millimetres

/// The same numbers on every machine: a linear congruential generator.
class Noise {
 public:
  /// Roughly normal, deviation 1: twelve uniform numbers less their mean.
  double next() {
    double sum = 0.0;
    for (int i = 0; i < 12; ++i) sum += uniform();
    return sum - 6.0;
  }

 private:
  double uniform() {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<double>(state >> 40) / static_cast<double>(1U << 24);
  }

  std::uint64_t state = 1;
};

/// What the tile shows without noise; x and y from -1 to 1.
double height(double x, double y) {
  const auto from = [x, y](double atX, double atY) { return std::hypot(x - atX, y - atY); };
  const double dome =
      std::max(0.0, std::sqrt(std::max(0.0, 0.3 - std::pow(from(0.45, -0.45), 2.0))) - 0.35);
  const double ring = std::max(0.0, 0.14 - 0.9 * std::abs(from(-0.45, -0.45) - 0.28));
  const double stairs = std::max(std::abs(x - 0.45), std::abs(y - 0.45));
  const double terrace = stairs < 0.16 ? 0.24 : stairs < 0.37 ? 0.12 : 0.0;
  const double fade = std::exp(-8.0 * std::pow(from(-0.48, 0.48), 4.0) * 4.0);
  const double ripples = 0.08 * fade * (1.0 + std::cos(20.0 * from(-0.48, 0.48)));
  return dome + ring + terrace + ripples;
}

}  // namespace

Shape relief() {
  Shape shape;
  Noise noise;
  const auto place = [](int i) { return 2.0 * i / cells - 1.0; };
  for (int row = 0; row <= cells; ++row) {
    for (int column = 0; column <= cells; ++column) {
      const double x = place(column);
      const double y = place(row);
      shape.add(
          {side / 2.0 * x, side / 2.0 * y, side / 2.0 * height(x, y) + roughness * noise.next()});
    }
  }
  for (int row = 0; row < cells; ++row) {
    for (int column = 0; column < cells; ++column) {
      const int corner = row * (cells + 1) + column;
      shape.addQuad(corner, corner + 1, corner + cells + 2, corner + cells + 1);
    }
  }
  return shape;
}

}  // namespace gravlin::examples
