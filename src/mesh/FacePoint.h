#pragma once

namespace gravlin {

/// A point on the surface: (1 - a - b) c0 + a c1 + b c2, with c0, c1, c2 the corners of `face` in
/// stored order.
struct FacePoint {
  int face = 0;
  double a = 0.0;
  double b = 0.0;
  bool operator==(const FacePoint&) const = default;
};

}  // namespace gravlin
