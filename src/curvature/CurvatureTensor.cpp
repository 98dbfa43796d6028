#include "curvature/CurvatureTensor.h"

#include <cmath>
#include <cstddef>
#include <span>

#include "numeric/ParallelLoop.h"
#include "numeric/Rollback.h"
#include "numeric/Vec3.h"

namespace gravlin {
namespace {

/// Half the length of the cross product of two edges of a triangle.
double triangleArea(const Vec3& edge, const Vec3& otherEdge) {
  return 0.5 * length(cross(edge, otherEdge));
}

/// The curvature of the ring as a symmetric matrix, before the division by the whole weight.
struct Tensor {
  double xx = 0.0, xy = 0.0, xz = 0.0, yy = 0.0, yz = 0.0, zz = 0.0;

  void add(double factor, const Vec3& t) {
    xx += factor * (t.x * t.x);
    xy += factor * (t.x * t.y);
    xz += factor * (t.x * t.z);
    yy += factor * (t.y * t.y);
    yz += factor * (t.y * t.z);
    zz += factor * (t.z * t.z);
  }

  Tensor dividedBy(double s) const { return {xx / s, xy / s, xz / s, yy / s, yz / s, zz / s}; }

  /// The row vector t^T M.
  Vec3 timesFromTheLeft(const Vec3& t) const {
    return {t.x * xx + t.y * xy + t.z * xz, t.x * xy + t.y * yy + t.z * yz,
            t.x * xz + t.y * yz + t.z * zz};
  }
};

struct WeightedTensor {
  Tensor sum;
  double weight = 0.0;  ///< of all neighbours, also of those that add nothing to the sum
};

/// Maps a vector to its part in the plane normal to N: (I - N N^T) d.
class TangentProjection {
 public:
  explicit TangentProjection(const Vec3& N)
      : xx(1.0 - N.x * N.x),
        yy(1.0 - N.y * N.y),
        zz(1.0 - N.z * N.z),
        xy(N.x * N.y),
        yz(N.y * N.z),
        zx(N.z * N.x) {}

  Vec3 operator()(const Vec3& d) const {
    return {xx * d.x - xy * d.y - zx * d.z, -xy * d.x + yy * d.y - yz * d.z,
            -zx * d.x - yz * d.y + zz * d.z};
  }

 private:
  double xx, yy, zz, xy, yz, zx;
};

/// The curvature along one edge: -2 sin(angle / 2) / |d|, `c` being the cosine of the angle between
/// the normals at its ends. Cosines above 1 are rounding and count as parallel normals.
double turnOverDistance(double c, const Vec3& d) {
  return c <= 1.0 ? -2.0 * std::sqrt((1.0 - c) / 2.0) / length(d) : 0.0;
}

/// Gathers the ring of vertex i. A neighbour weighs as much as the fan triangles at its edge: two
/// in a closed fan; in an open one the first and the last neighbour have one.
WeightedTensor gatherRing(const TriangleMesh& mesh, int i, const Vec3& N) {
  const std::span<const int> ring = mesh.getNeighbours(i);
  const bool closed = mesh.vertexKind[static_cast<std::size_t>(i)] == InteriorVertex;
  const Vec3 p = mesh.position(i);
  const TangentProjection project(N);
  const Vec3 first = p - mesh.position(ring.front());

  WeightedTensor result;
  Vec3 d = first;
  double areaBefore = closed ? triangleArea(p - mesh.position(ring.back()), first) : 0.0;
  for (std::size_t j = 0; j < ring.size(); ++j) {
    const bool last = j + 1 == ring.size();
    const Vec3 next = last ? first : p - mesh.position(ring[j + 1]);
    const double areaAfter = last && !closed ? 0.0 : triangleArea(d, next);
    const double weight = areaBefore + areaAfter;
    result.weight += weight;

    const Vec3 neighbourNormal = mesh.vertexNormal(ring[j]);
    double curvature = turnOverDistance(dot(N, neighbourNormal), d);
    const Vec3 tangent = project(d);
    if (dot(neighbourNormal, tangent) < 0.0) curvature = -curvature;
    const double tangentLength = length(tangent);
    if (tangentLength != 0.0) result.sum.add(curvature * weight, tangent / tangentLength);

    d = next;
    areaBefore = areaAfter;
  }
  return result;
}

struct TangentFrame {
  Vec3 t1, t2;
};

/// The images of the y and z axes under the Householder reflection that takes the x axis onto N or
/// -N, whichever is farther away.
TangentFrame tangentFrame(const Vec3& N) {
  const Vec3 h = N.x >= 0.0 ? Vec3{1.0 + N.x, N.y, N.z} / std::sqrt(2.0 * (1.0 + N.x))
                            : Vec3{1.0 - N.x, -N.y, -N.z} / std::sqrt(2.0 - 2.0 * N.x);
  return {{-2.0 * h.x * h.y, 1.0 - 2.0 * h.y * h.y, -2.0 * h.y * h.z},
          {-2.0 * h.x * h.z, -2.0 * h.y * h.z, 1.0 - 2.0 * h.z * h.z}};
}

struct PrincipalCurvatures {
  double max = 0.0;
  double min = 0.0;
  Vec3 maxDirection;
  Vec3 minDirection;
};

/// Diagonalises the tensor in the tangent plane. For principal curvatures k1, k2 its eigenvalues
/// are (3 k1 + k2) / 8 and (k1 + 3 k2) / 8, hence 3 a - b and 3 b - a.
PrincipalCurvatures diagonalise(const Tensor& tensor, const TangentFrame& frame) {
  const auto& [t1, t2] = frame;
  const Vec3 row1 = tensor.timesFromTheLeft(t1);
  const double m11 = dot(row1, t1);
  const double m12 = dot(row1, t2);
  const double m22 = dot(tensor.timesFromTheLeft(t2), t2);

  // No special case for m12 = 0: theta = 0 then turns the axes by 45 degrees, as documented.
  const double theta = m12 != 0.0 ? (m22 - m11) / (2.0 * m12) : 0.0;
  double t = 1.0 / (std::abs(theta) + std::sqrt(theta * theta + 1.0));
  if (theta < 0.0) t = -t;
  const double c = 1.0 / std::sqrt(t * t + 1.0);
  const double s = t * c;
  const double eigenvalueA = m11 - t * m12;
  const double eigenvalueB = m22 + t * m12;
  const Vec3 directionA = c * t1 - s * t2;
  const Vec3 directionB = s * t1 + c * t2;

  const double curvatureA = 3.0 * eigenvalueA - eigenvalueB;
  const double curvatureB = 3.0 * eigenvalueB - eigenvalueA;
  if (curvatureA <= curvatureB) return {curvatureB, curvatureA, directionB, directionA};
  return {curvatureA, curvatureB, directionA, directionB};
}

PrincipalCurvatures curvatureAt(const TriangleMesh& mesh, int i) {
  if (mesh.neighbourCount(i) < 3) return {};
  const Vec3 N = mesh.vertexNormal(i);
  const WeightedTensor ring = gatherRing(mesh, i, N);
  if (ring.weight == 0.0) return {};
  PrincipalCurvatures result = diagonalise(ring.sum.dividedBy(ring.weight), tangentFrame(N));
  if (dot(cross(N, result.maxDirection), result.minDirection) < 0.0) {
    result.minDirection = -result.minDirection;
  }
  return result;
}

/// All four arrays get their size or, when memory is refused, none of them changes.
void makeRoom(TriangleMesh& mesh) {
  const auto V = static_cast<std::size_t>(mesh.vertexCount);
  const bool hasRoom = mesh.maxCurvature.size() == V && mesh.minCurvature.size() == V &&
                       mesh.maxDirection.size() == 3 * V && mesh.minDirection.size() == 3 * V;
  if (hasRoom) return;
  Rollback arrays(mesh.maxCurvature, mesh.minCurvature, mesh.maxDirection, mesh.minDirection);
  mesh.maxCurvature.resize(V);
  mesh.minCurvature.resize(V);
  mesh.maxDirection.resize(3 * V);
  mesh.minDirection.resize(3 * V);
  arrays.keep();
}

}  // namespace

void computeCurvatureTensor(TriangleMesh& mesh) {
  if (mesh.vertexNormals.empty()) mesh.computeVertexNormals();
  makeRoom(mesh);
  mesh.curvatureOrigin = mesh.here();
  parallelFor(mesh.vertexCount, [&mesh](int i) {
    const PrincipalCurvatures at = curvatureAt(mesh, i);
    const auto k = static_cast<std::size_t>(i);
    mesh.maxCurvature[k] = at.max;
    mesh.minCurvature[k] = at.min;
    storeVectorAt(mesh.maxDirection, i, at.maxDirection);
    storeVectorAt(mesh.minDirection, i, at.minDirection);
  });
}

}  // namespace gravlin
