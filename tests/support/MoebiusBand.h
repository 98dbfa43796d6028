#pragma once

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "support/Meshes.h"

namespace gravlin::test {

/// A strip of 2 x `around` faces that closes with its sides exchanged: it has one boundary, and on
/// one of its edges both faces run the same way.
inline TriangleMesh moebiusBand(int around) {
  std::vector<std::array<float, 3>> points;
  std::vector<std::array<int, 3>> triangles;
  for (int k = 0; k < around; ++k) {
    const double turn = 2.0 * std::numbers::pi * k / around;
    for (const double side : {-0.4, 0.4}) {
      const double r = 2.0 + side * std::cos(0.5 * turn);
      points.push_back({static_cast<float>(r * std::cos(turn)),
                        static_cast<float>(r * std::sin(turn)),
                        static_cast<float>(side * std::sin(0.5 * turn))});
    }
    const bool closes = k + 1 == around;  // with its sides exchanged
    const int a = 2 * k;
    const int c = closes ? 1 : a + 2;
    const int d = closes ? 0 : a + 3;
    triangles.push_back({a, c, d});
    triangles.push_back({a, d, a + 1});
  }
  return makeMesh(points, triangles);
}

}  // namespace gravlin::test
