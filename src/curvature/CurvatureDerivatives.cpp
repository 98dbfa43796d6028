#include "curvature/CurvatureDerivatives.h"

#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "mesh/FaceGeometry.h"
#include "numeric/ParallelLoop.h"
#include "numeric/Rollback.h"
#include "numeric/Vec3.h"

namespace gravlin {
namespace {

/// Where a section plane cuts the far edge a - b of a fan triangle. A field at the crossing is the
/// mean of its values at a and b with these weights.
struct Crossing {
  int a = 0;
  int b = 0;
  double weightA = 0.0;
  double weightB = 0.0;
  double distance = 0.0;  ///< from the vertex; 0 while nothing has been found

  bool found() const { return distance != 0.0; }
  double interpolate(double atA, double atB) const {
    return (weightA * atA + weightB * atB) / (weightA + weightB);
  }
};

/// The ends of the section of a fan with a plane through its vertex.
struct Section {
  Crossing forward;
  Crossing backward;
};

/// A neighbour as the section plane sees it: p - q, and its component along the plane's normal.
struct SeenFromPlane {
  int vertex;
  Vec3 d;
  double s;
};

/// The point of the edge a - b in the plane through p, or nothing where there is none to
/// interpolate at.
Crossing cutEdge(const Vec3& p, const SeenFromPlane& a, const SeenFromPlane& b) {
  const double sigmaA = std::abs(a.s);
  const double sigmaB = std::abs(b.s);
  if (sigmaA + sigmaB == 0.0) return {};
  const Vec3 P = p - (a.d * sigmaB + b.d * sigmaA) / (sigmaA + sigmaB);
  const Vec3 offset = P - p;
  const Crossing crossing = {a.vertex, b.vertex, triangleArea(offset, b.d),
                             triangleArea(offset, a.d), length(offset)};
  return crossing.weightA + crossing.weightB > 0.0 ? crossing : Crossing{};
}

/// Cuts the closed fan of vertex i with the plane through the vertex normal to S. Of several
/// crossings on one side the last in ring order counts.
Section cutFan(const TriangleMesh& mesh, int i, const Vec3& S) {
  const std::span<const int> ring = mesh.getNeighbours(i);
  const Vec3 p = mesh.position(i);
  const auto see = [&](int vertex) -> SeenFromPlane {
    const Vec3 d = p - mesh.position(vertex);
    return {vertex, d, dot(d, S)};
  };
  Section section;
  const SeenFromPlane first = see(ring.front());
  SeenFromPlane a = first;
  for (std::size_t j = 1; j <= ring.size(); ++j) {
    const SeenFromPlane b = j == ring.size() ? first : see(ring[j]);
    if (a.s * b.s <= 0.0) {
      const Crossing crossing = cutEdge(p, a, b);
      if (crossing.found()) (b.s >= 0.0 ? section.backward : section.forward) = crossing;
    }
    a = b;
  }
  return section;
}

/// A field at the two ends of a section.
struct Samples {
  double forward = 0.0;
  double backward = 0.0;
};

/// The slope at the vertex, where the field is f0, of the parabola through the samples.
double derivative(const Section& at, const Samples& f, double f0) {
  const double forward = at.forward.distance;
  const double backward = at.backward.distance;
  if (at.forward.found() && at.backward.found()) {
    return (f.forward - f0) / forward + (f0 - f.backward) / backward -
           (f.forward - f.backward) / (forward + backward);
  }
  if (at.forward.found()) return (f.forward - f0) / forward;
  if (at.backward.found()) return (f0 - f.backward) / backward;
  return 0.0;
}

/// The same slope negated, in the expanded form that the minimum's gradient is defined with.
double negatedDerivative(const Section& at, const Samples& f, double f0) {
  if (!at.forward.found() || !at.backward.found()) return -derivative(at, f, f0);
  const double forward = at.forward.distance;
  const double backward = at.backward.distance;
  return (f.backward - f0) * forward / ((forward + backward) * backward) -
         (f.forward - f0) * backward / ((forward + backward) * forward);
}

/// A principal curvature's derivative along its own direction at vertex i.
double ownDerivative(const TriangleMesh& mesh, int i, const std::vector<double>& curvature,
                     const std::vector<double>& direction) {
  const Section section = cutFan(mesh, i, cross(mesh.vertexNormal(i), vectorAt(direction, i)));
  const auto at = [&](int vertex) { return curvature[static_cast<std::size_t>(vertex)]; };
  const auto sample = [&](const Crossing& c) {
    return c.found() ? c.interpolate(at(c.a), at(c.b)) : 0.0;
  };
  return derivative(section, {sample(section.forward), sample(section.backward)}, at(i));
}

/// The derivatives of the two curvatures along their own directions, double[V] each.
struct DerivativeFields {
  std::vector<double> ofMax;
  std::vector<double> ofMin;
};

bool isInterior(const TriangleMesh& mesh, int i) {
  return mesh.vertexKind[static_cast<std::size_t>(i)] == InteriorVertex &&
         mesh.neighbourCount(i) > 0;
}

DerivativeFields differentiate(const TriangleMesh& mesh) {
  const auto V = static_cast<std::size_t>(mesh.vertexCount);
  DerivativeFields result = {std::vector<double>(V, 0.0), std::vector<double>(V, 0.0)};
  parallelFor(mesh.vertexCount, [&](int i) {
    if (!isInterior(mesh, i)) return;
    const auto k = static_cast<std::size_t>(i);
    result.ofMax[k] = ownDerivative(mesh, i, mesh.maxCurvature, mesh.maxDirection);
    result.ofMin[k] = ownDerivative(mesh, i, mesh.minCurvature, mesh.minDirection);
  });
  return result;
}

/// One principal line through a vertex with both derivative fields at its ends.
struct Line {
  Section section;
  Samples ofMax;
  Samples ofMin;
};

/// Cuts along `direction` at vertex i. A derivative along a line changes its sign with the line's
/// orientation, so values of vertices whose direction points against that of i are negated.
Line lineAt(const TriangleMesh& mesh, int i, const std::vector<double>& direction,
            const DerivativeFields& fields) {
  const Vec3 e = vectorAt(direction, i);
  Line line = {cutFan(mesh, i, cross(mesh.vertexNormal(i), e)), {}, {}};
  const auto sample = [&](const Crossing& c, double& ofMax, double& ofMin) {
    if (!c.found()) return;
    const auto aligned = [&](const std::vector<double>& field, int vertex) {
      const double value = field[static_cast<std::size_t>(vertex)];
      return dot(vectorAt(direction, vertex), e) < 0.0 ? -value : value;
    };
    ofMax = c.interpolate(aligned(fields.ofMax, c.a), aligned(fields.ofMax, c.b));
    ofMin = c.interpolate(aligned(fields.ofMin, c.a), aligned(fields.ofMin, c.b));
  };
  sample(line.section.forward, line.ofMax.forward, line.ofMin.forward);
  sample(line.section.backward, line.ofMax.backward, line.ofMin.backward);
  return line;
}

}  // namespace

void computeCurvatureDerivatives(TriangleMesh& mesh) {
  const DerivativeFields fields = differentiate(mesh);
  const auto size = 3 * static_cast<std::size_t>(mesh.vertexCount);
  Rollback gradients(mesh.maxDerivativeGradient, mesh.minDerivativeGradient);
  mesh.maxDerivativeGradient.assign(size, 0.0);
  mesh.minDerivativeGradient.assign(size, 0.0);
  parallelFor(mesh.vertexCount, [&](int i) {
    if (!isInterior(mesh, i)) return;
    const Line maxLine = lineAt(mesh, i, mesh.maxDirection, fields);
    const Line minLine = lineAt(mesh, i, mesh.minDirection, fields);
    const Vec3 maxDirection = vectorAt(mesh.maxDirection, i);
    const Vec3 minDirection = vectorAt(mesh.minDirection, i);

    // The centre value of the maximum's derivative is deliberately left out: it counts as 0.
    const Vec3 ofMax = derivative(minLine.section, minLine.ofMax, 0.0) * maxDirection -
                       derivative(maxLine.section, maxLine.ofMax, 0.0) * minDirection;
    storeVectorAt(mesh.maxDerivativeGradient, i, unitOrZero(ofMax));

    const double centre = fields.ofMin[static_cast<std::size_t>(i)];
    const Vec3 ofMin = negatedDerivative(maxLine.section, maxLine.ofMin, centre) * minDirection -
                       negatedDerivative(minLine.section, minLine.ofMin, centre) * maxDirection;
    storeVectorAt(mesh.minDerivativeGradient, i, unitOrZero(ofMin));
  });
  gradients.keep();
}

}  // namespace gravlin
