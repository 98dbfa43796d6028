#include "curvature/PlainStrokes.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "numeric/Vec3.h"

namespace gravlin::test {
namespace {

struct Corners {
  std::array<int, 3> index;
  std::array<Vec3, 3> position;
};

Corners cornersOf(const TriangleMesh& mesh, int face) {
  Corners result;
  for (std::size_t j = 0; j < 3; ++j) {
    result.index[j] = mesh.faces[3 * static_cast<std::size_t>(face) + j];
    result.position[j] = mesh.position(result.index[j]);
  }
  return result;
}

Vec3 placeOf(const TriangleMesh& mesh, const FacePoint& at) {
  const auto& p = cornersOf(mesh, at.face).position;
  return (1.0 - at.a - at.b) * p[0] + at.a * p[1] + at.b * p[2];
}

/// v = da (c1 - c0) + db (c2 - c0) by Cramer's rule in the plane without the normal's largest axis.
/// False when the determinant is 0.
bool toBarycentric(const TriangleMesh& mesh, int face, const Vec3& v, double& da, double& db) {
  const auto c = cornersOf(mesh, face).index;
  const auto floatEdge = [&](int from, int to) {
    const auto at = [&](int vertex, int axis) {
      return mesh.vertices[static_cast<std::size_t>(3 * vertex + axis)];
    };
    const float x = at(to, 0) - at(from, 0);
    const float y = at(to, 1) - at(from, 1);
    const float z = at(to, 2) - at(from, 2);
    return Vec3{static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)};
  };
  const Vec3 e1 = floatEdge(c[0], c[1]);
  const Vec3 e2 = floatEdge(c[0], c[2]);
  const double nx = e1.y * e2.z - e1.z * e2.y;
  const double ny = e1.z * e2.x - e1.x * e2.z;
  const double nz = e1.x * e2.y - e1.y * e2.x;
  const double sizes[] = {std::fabs(nz), std::fabs(ny), std::fabs(nx)};
  switch (std::max_element(sizes, sizes + 3) - sizes) {
    case 0:
      if (nz == 0) return false;
      da = (v.x * e2.y - v.y * e2.x) / nz;
      db = (e1.x * v.y - e1.y * v.x) / nz;
      return true;
    case 1:
      if (ny == 0) return false;
      da = (v.z * e2.x - v.x * e2.z) / ny;
      db = (e1.z * v.x - e1.x * v.z) / ny;
      return true;
    default:
      if (nx == 0) return false;
      da = (v.y * e2.z - v.z * e2.y) / nx;
      db = (e1.y * v.z - e1.z * v.y) / nx;
      return true;
  }
}

Vec3 agreeing(const Vec3& direction, const Vec3& reference) {
  return dot(direction, reference) < 0 ? -direction : direction;
}

struct PlainHalf {
  const TriangleMesh& mesh;
  const std::vector<double>& field;
  FacePoint at;
  std::array<Vec3, 3> D;
  std::vector<FacePoint> points;

  /// Where the segment from (a, b) by (da, db) leaves the face, and over which edge. Every edge
  /// that the end lies beyond is crossed at its own parameter; the smallest is met first.
  bool leave(double da, double db, int& edge, double& a, double& b) const {
    double t = 0;
    edge = -1;
    if ((at.a + da) + (at.b + db) > 1) {
      t = (1 - at.a - at.b) / (da + db);
      edge = 1;
    }
    if (at.a + da < 0) {
      const double s = -at.a / da;
      if (edge < 0 || s < t) {
        t = s;
        edge = 2;
      }
    }
    if (at.b + db < 0) {
      const double s = -at.b / db;
      if (edge < 0 || s < t) {
        t = s;
        edge = 0;
      }
    }
    if (edge < 0) return false;
    if (t > 1) t = 1;
    if (!(t > 0)) t = 0;
    a = at.a + t * da;
    b = at.b + t * db;
    return true;
  }

  /// Enters the face across `edge` at the crossing (a, b); false at a border.
  bool enter(int edge, double a, double b) {
    const auto from = cornersOf(mesh, at.face).index;
    const int next = mesh.faceAdjacency[static_cast<std::size_t>(3 * at.face + edge)];
    if (next < 0) return false;
    const auto to = cornersOf(mesh, next).index;
    // How far along the edge, from its start vertex to its end vertex.
    double u = a;                // c0 - c1
    if (edge == 1) u = b;        // c1 - c2
    if (edge == 2) u = 1.0 - b;  // c2 - c0
    if (u < 0) u = 0;
    if (u > 1) u = 1;
    const int startVertex = from[static_cast<std::size_t>(edge)];
    const int endVertex = from[static_cast<std::size_t>((edge + 1) % 3)];
    const Vec3 reference = D[static_cast<std::size_t>(edge)];
    const Vec3 E[] = {vectorAt(field, to[0]), vectorAt(field, to[1]), vectorAt(field, to[2])};
    at.face = next;
    if (to[0] == startVertex) {
      at.a = to[1] == endVertex ? u : 0;
      at.b = to[1] == endVertex ? 0 : u;
      D[0] = agreeing(E[0], reference);
      D[1] = agreeing(E[1], D[0]);
      D[2] = agreeing(E[2], D[0]);
    } else if (to[1] == startVertex) {
      at.a = 1.0 - u;
      at.b = to[2] == endVertex ? u : 0;
      D[1] = agreeing(E[1], reference);
      D[2] = agreeing(E[2], D[1]);
      D[0] = agreeing(E[0], D[1]);
    } else {
      at.a = to[1] == endVertex ? u : 0;
      at.b = 1.0 - u;
      D[2] = agreeing(E[2], reference);
      D[0] = agreeing(E[0], D[2]);
      D[1] = agreeing(E[1], D[2]);
    }
    return true;
  }

  void run(double half, double step) {
    std::vector<Vec3> places = {placeOf(mesh, at)};
    double covered = 0;
    while (covered < half && points.size() < 200) {
      Vec3 d = (1.0 - at.a - at.b) * D[0] + at.a * D[1] + at.b * D[2];
      const Vec3 N = mesh.faceNormal(at.face);
      d = d - dot(d, N) * N;
      const double size = length(d);
      if (size == 0) return;
      double da = 0;
      double db = 0;
      if (!toBarycentric(mesh, at.face, d / size * step, da, db)) return;
      const double a = at.a + da;
      const double b = at.b + db;
      if (a + b <= 1 && a >= 0 && b >= 0) {
        at.a = a;
        at.b = b;
        covered += step;
        places.push_back(placeOf(mesh, at));
      } else {
        int edge = 0;
        double crossingA = 0;
        double crossingB = 0;
        if (!leave(da, db, edge, crossingA, crossingB)) return;
        if (!enter(edge, crossingA, crossingB)) return;
        places.push_back(placeOf(mesh, at));
        covered += length(places.back() - places[places.size() - 2]);
      }
      points.push_back(at);
      if (points.size() > 1) {
        const Vec3& P0 = places[places.size() - 3];
        const Vec3& P1 = places[places.size() - 2];
        const Vec3& P2 = places[places.size() - 1];
        if (dot(P2 - P1, P0 - P1) >= 0) return;
      }
      if (at.a < 0 || at.a >= 1 || at.b < 0 || at.b >= 1) return;
    }
  }
};

}  // namespace

std::vector<FacePoint> plainStroke(const TriangleMesh& mesh, const std::vector<double>& field,
                                   const FacePoint& seed, const StrokeExtent& extent) {
  const auto c = cornersOf(mesh, seed.face).index;
  const double half = static_cast<double>(extent.length) * 0.5;
  const auto traced = [&](double sign) {
    const Vec3 first = sign * vectorAt(field, c[0]);
    PlainHalf walk = {mesh,
                      field,
                      seed,
                      {first, agreeing(sign * vectorAt(field, c[1]), first),
                       agreeing(sign * vectorAt(field, c[2]), first)},
                      {}};
    walk.run(half, static_cast<double>(extent.step));
    return walk.points;
  };
  std::vector<FacePoint> line = traced(-1.0);
  std::reverse(line.begin(), line.end());
  line.push_back(seed);
  const std::vector<FacePoint> forward = traced(1.0);
  line.insert(line.end(), forward.begin(), forward.end());
  return line;
}

}  // namespace gravlin::test
