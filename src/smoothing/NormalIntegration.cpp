#include "smoothing/NormalIntegration.h"

#include "mesh/FaceGeometry.h"
#include "mesh/RingWalk.h"
#include "smoothing/JacobiSweep.h"

namespace gravlin {
namespace {

/// What one triangle adds to the cotangent Laplacian at its corner x, and twice its area.
struct CotangentTerm {
  Vec3 vector;
  double doubleArea;
};

/// The edges lead from x to the triangle's other corners a and b. Zero for a triangle without area.
CotangentTerm cotangentTerm(const Vec3& toA, const Vec3& toB) {
  const double doubleArea = length(cross(toB, toA));
  if (doubleArea == 0.0) return {{}, 0.0};
  const Vec3 aToB = toB - toA;
  const double cotangentA = -dot(aToB, toA) / doubleArea;
  const double cotangentB = dot(aToB, toB) / doubleArea;
  return {cotangentA * toB + cotangentB * toA, doubleArea};
}

/// The terms of one triangle as it is and flattened onto the plane of its filtered normal.
struct TermPair {
  CotangentTerm actual;
  CotangentTerm flattened;
};

/// Gives `visit` the terms of each triangle around an interior vertex in ring order.
template <class Visit>
void visitTriangles(const TriangleMesh& mesh, int i, const Visit& visit) {
  const int* face = mesh.vertexFaces[i].data();
  walkRing(mesh, i, [&](const RingTriangle& t) {
    const Vec3 normal = mesh.faceNormal(*face++);
    visit(TermPair{
        cotangentTerm(t.toA, t.toB),
        cotangentTerm(t.toA - dot(t.toA, normal) * normal, t.toB - dot(t.toB, normal) * normal)});
  });
}

}  // namespace

void integrateDistance(TriangleMesh& mesh, double step) {
  JacobiSweep(mesh).run(step, [&](int i) {
    const Vec3 center = mesh.position(i);
    Vec3 sum;
    double areas = 0.0;
    for (const int f : mesh.vertexFaces[i]) {
      const Vec3 normal = mesh.faceNormal(f);
      const double area = faceArea(mesh, f);
      sum += area * dot(normal, center - singleFaceCentroid(mesh, f)) * normal;
      areas += area;
    }
    return areas == 0.0 ? Vec3{} : -sum / areas;
  });
}

void integrateDerivative(TriangleMesh& mesh, double step) {
  JacobiSweep(mesh).run(step, [&](int i) {
    Vec3 sum;
    visitTriangles(mesh, i, [&](const TermPair& terms) {
      sum += terms.actual.vector;
      sum -= terms.flattened.vector;
    });
    return sum / static_cast<double>(mesh.neighbourCount(i));
  });
}

void integrateDerivativeByArea(TriangleMesh& mesh, double step, double factor) {
  JacobiSweep(mesh).run(step, [&](int i) {
    Vec3 sum;
    double weights = 0.0;
    visitTriangles(mesh, i, [&](const TermPair& terms) {
      if (terms.actual.doubleArea == 0.0) return;
      const double ratio = terms.flattened.doubleArea / terms.actual.doubleArea;
      const double weight = factor * (ratio * ratio);
      sum += weight * roundedToSingle(terms.actual.vector - terms.flattened.vector);
      weights += weight;
    });
    return weights == 0.0 ? Vec3{} : sum / weights;
  });
}

}  // namespace gravlin
