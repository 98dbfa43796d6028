#include "mesh/SurfaceIndex.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "mesh/FaceGeometry.h"

namespace gravlin {
namespace {

constexpr int facesPerLeaf = 4;

bool isFinite(const Vec3& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

bool hasFiniteCorners(const TriangleMesh& mesh, int f) {
  const auto c = mesh.corners(f);
  return std::all_of(c.begin(), c.end(), [&](int i) { return isFinite(mesh.position(i)); });
}

Vec3 nearestPointOnSegment(const Vec3& p, const Vec3& a, const Vec3& b) {
  const Vec3 along = b - a;
  const double t = dot(p - a, along) / dot(along, along);
  // Also a segment without length, whose t is not a number, ends here.
  if (!(t > 0.0)) return a;
  return t < 1.0 ? a + t * along : b;
}

double coordinate(const Vec3& p, int axis) {
  if (axis == 0) return p.x;
  return axis == 1 ? p.y : p.z;
}

int longestSide(const Vec3& size) {
  if (size.x >= size.y && size.x >= size.z) return 0;
  return size.y >= size.z ? 1 : 2;
}

}  // namespace

Vec3 nearestPointOnTriangle(const Vec3& p, const Vec3& a, const Vec3& b, const Vec3& c) {
  const Vec3 n = cross(b - a, c - a);
  const auto inside = [&](const Vec3& from, const Vec3& to) {
    return dot(cross(n, to - from), p - from) >= 0.0;
  };
  const double squaredSize = dot(n, n);
  if (squaredSize > 0.0 && inside(a, b) && inside(b, c) && inside(c, a)) {
    return p - (dot(p - a, n) / squaredSize) * n;
  }
  Vec3 best = nearestPointOnSegment(p, a, b);
  for (const Vec3& other : {nearestPointOnSegment(p, b, c), nearestPointOnSegment(p, c, a)}) {
    if (dot(p - other, p - other) < dot(p - best, p - best)) best = other;
  }
  return best;
}

double SurfaceIndex::Box::squaredDistance(const Vec3& p) const {
  const auto outside = [](double x, double least, double largest) {
    return std::max({least - x, 0.0, x - largest});
  };
  const Vec3 d = {outside(p.x, low.x, high.x), outside(p.y, low.y, high.y),
                  outside(p.z, low.z, high.z)};
  return dot(d, d);
}

SurfaceIndex::SurfaceIndex(const TriangleMesh& indexedMesh) : mesh(indexedMesh) {
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (mesh.validFace(f) && hasFiniteCorners(mesh, f)) order.push_back(f);
  }
  if (!order.empty()) build(0, static_cast<int>(order.size()));
}

SurfaceIndex::Box SurfaceIndex::boxAround(int first, int count) const {
  const double inf = std::numeric_limits<double>::infinity();
  Box box = {{inf, inf, inf}, {-inf, -inf, -inf}};
  for (int n = first; n < first + count; ++n) {
    for (const int corner : mesh.corners(order[static_cast<std::size_t>(n)])) {
      const Vec3 p = mesh.position(corner);
      box.low = {std::min(box.low.x, p.x), std::min(box.low.y, p.y), std::min(box.low.z, p.z)};
      box.high = {std::max(box.high.x, p.x), std::max(box.high.y, p.y), std::max(box.high.z, p.z)};
    }
  }
  return box;
}

int SurfaceIndex::build(int first, int count) {
  const int node = static_cast<int>(nodes.size());
  nodes.push_back({boxAround(first, count), first, count, 0});
  if (count <= facesPerLeaf) return node;
  const Box& box = nodes.back().box;
  const int axis = longestSide(box.high - box.low);
  const int half = count / 2;
  const auto begin = order.begin() + first;
  std::nth_element(begin, begin + half, begin + count, [&](int f, int g) {
    return std::pair(coordinate(faceCentroid(mesh, f), axis), f) <
           std::pair(coordinate(faceCentroid(mesh, g), axis), g);
  });
  build(first, half);
  const int right = build(first + half, count - half);
  nodes[static_cast<std::size_t>(node)].right = right;
  return node;
}

std::optional<SurfaceIndex::Nearest> SurfaceIndex::nearest(const Vec3& p) const {
  if (nodes.empty() || !isFinite(p)) return std::nullopt;
  struct Waiting {
    int node;
    double squaredDistance;
  };
  // Halving a number of faces below 2^31 ends after 31 splits, and every level leaves one waiting.
  std::array<Waiting, 40> stack;
  std::size_t waiting = 0;
  stack[waiting++] = {0, nodes.front().box.squaredDistance(p)};
  Nearest best = {};
  double bestSquared = std::numeric_limits<double>::infinity();
  while (waiting > 0) {
    const Waiting next = stack[--waiting];
    if (next.squaredDistance >= bestSquared) continue;
    const Node& node = nodes[static_cast<std::size_t>(next.node)];
    if (node.right != 0) {
      Waiting near = {next.node + 1,
                      nodes[static_cast<std::size_t>(next.node) + 1].box.squaredDistance(p)};
      Waiting far = {node.right,
                     nodes[static_cast<std::size_t>(node.right)].box.squaredDistance(p)};
      if (far.squaredDistance < near.squaredDistance) std::swap(near, far);
      stack[waiting++] = far;
      stack[waiting++] = near;
      continue;
    }
    for (int n = node.first; n < node.first + node.count; ++n) {
      const int face = order[static_cast<std::size_t>(n)];
      const auto c = mesh.corners(face);
      const Vec3 q =
          nearestPointOnTriangle(p, mesh.position(c[0]), mesh.position(c[1]), mesh.position(c[2]));
      const double squared = dot(p - q, p - q);
      if (squared >= bestSquared) continue;
      bestSquared = squared;
      best = {face, q, std::sqrt(squared)};
    }
  }
  return best;
}

}  // namespace gravlin
