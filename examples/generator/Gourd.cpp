#include "generator/Gourd.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <utility>

namespace gravlin::examples {
namespace {

constexpr int lobes = 6;
constexpr int cuts = 18;  // pieces that each edge of the icosahedron is cut into

/// The corners of a grid of small triangles on one face of the icosahedron; points on its edges are
/// shared with the faces beside it.
class Geodesic {
 public:
  Shape sphere() {
    for (const auto& [a, b, c] : icosahedronFaces) addFace(a, b, c);
    return std::move(shape);
  }

 private:
  static constexpr std::array<std::array<int, 3>, 20> icosahedronFaces = {
      {{0, 11, 5},  {0, 5, 1},  {0, 1, 7},  {0, 7, 10}, {0, 10, 11}, {1, 5, 9}, {5, 11, 4},
       {11, 10, 2}, {10, 7, 6}, {7, 1, 8},  {3, 9, 4},  {3, 4, 2},   {3, 2, 6}, {3, 6, 8},
       {3, 8, 9},   {4, 9, 5},  {2, 4, 11}, {6, 2, 10}, {8, 6, 7},   {9, 8, 1}}};

  static Vec3 corner(int i) {
    constexpr double t = std::numbers::phi;
    constexpr std::array<Vec3, 12> corners = {{{-1, t, 0},
                                               {1, t, 0},
                                               {-1, -t, 0},
                                               {1, -t, 0},
                                               {0, -1, t},
                                               {0, 1, t},
                                               {0, -1, -t},
                                               {0, 1, -t},
                                               {t, 0, -1},
                                               {t, 0, 1},
                                               {-t, 0, -1},
                                               {-t, 0, 1}}};
    return corners[static_cast<std::size_t>(i)];
  }

  /// The point with these shares of three corners. A point is known by its corners and shares that
  /// are not zero, so that faces side by side find the same one.
  int point(std::array<std::pair<int, int>, 3> sharesByCorner) {
    std::sort(sharesByCorner.begin(), sharesByCorner.end());
    Vec3 sum;
    std::vector<std::pair<int, int>> key;
    for (const auto& [cornerIndex, share] : sharesByCorner) {
      if (share == 0) continue;
      key.emplace_back(cornerIndex, share);
      sum += share * corner(cornerIndex);
    }
    const auto [entry, isNew] = known.try_emplace(key, static_cast<int>(shape.points.size()));
    if (isNew) shape.add(sum / length(sum));
    return entry->second;
  }

  void addFace(int a, int b, int c) {
    const auto at = [&](int i, int j) { return point({{{a, cuts - i - j}, {b, i}, {c, j}}}); };
    for (int j = 0; j < cuts; ++j) {
      for (int i = 0; i + j < cuts; ++i) {
        shape.triangles.push_back({at(i, j), at(i + 1, j), at(i, j + 1)});
        if (i + j + 1 < cuts) {
          shape.triangles.push_back({at(i + 1, j), at(i + 1, j + 1), at(i, j + 1)});
        }
      }
    }
  }

  Shape shape;
  std::map<std::vector<std::pair<int, int>>, int> known;
};

/// From the unit sphere to the gourd, in centimetres.
Vec3 bend(const Vec3& p) {
  const double aside = std::sqrt(p.x * p.x + p.y * p.y);
  const double turn = std::atan2(p.y, p.x);
  const double wave = std::cos(lobes * turn + 2.2 * p.z);
  // Narrow crests, wide valleys; both fade towards the poles, where they would meet.
  const double lobe = 0.40 * (std::exp(0.9 * (wave - 1.0)) - 0.4) * aside * aside * aside;
  const double belly = 1.0 - 0.24 * p.z - 0.12 * p.z * p.z;
  const double wide = 8.0 * belly * (1.0 + lobe);
  return {wide * p.x, wide * p.y, 8.4 * p.z * (1.0 + 0.08 * p.z)};
}

}  // namespace

Shape gourd() {
  Shape shape = Geodesic().sphere();
  for (Vec3& p : shape.points) p = bend(p);
  return shape;
}

}  // namespace gravlin::examples
