#pragma once

#include <array>

namespace gravlin {

/// How a mesh in the view's cube lies in the units of its file: x = origin + scale p.
struct FileFrame {
  std::array<double, 3> origin = {0.0, 0.0, 0.0};
  double scale = 1.0;

  /// Of three coordinates in the cube.
  std::array<double, 3> toFile(const float* p) const {
    return {origin[0] + scale * static_cast<double>(p[0]),
            origin[1] + scale * static_cast<double>(p[1]),
            origin[2] + scale * static_cast<double>(p[2])};
  }
  bool operator==(const FileFrame&) const = default;
};

}  // namespace gravlin
