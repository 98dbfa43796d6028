#include "smoothing/TaubinSmoothing.h"

#include "mesh/RingWalk.h"
#include "smoothing/JacobiSweep.h"

namespace gravlin {
namespace {

double toSingle(double value) {
  return static_cast<double>(static_cast<float>(value));
}

template <class Laplacian>
void runHalfSteps(TriangleMesh& mesh, const TaubinSteps& steps, Laplacian laplacian) {
  const auto lambda = static_cast<double>(steps.lambda);
  const double mu = lambda / (static_cast<double>(steps.k) * lambda - 1.0);
  JacobiSweep sweep(mesh);
  for (int iteration = 0; iteration < steps.iterations; ++iteration) {
    sweep.run(lambda, laplacian);
    sweep.run(mu, laplacian);
  }
}

}  // namespace

Vec3 inverseDistanceLaplacian(const TriangleMesh& mesh, int i) {
  const Vec3 centre = mesh.position(i);
  Vec3 sum;
  double total = 0.0;
  for (const int j : mesh.getNeighbours(i)) {
    const Vec3 exact = mesh.position(j) - centre;
    const Vec3 edge = {toSingle(exact.x), toSingle(exact.y), toSingle(exact.z)};
    const double distance = length(edge);
    if (distance == 0.0) continue;
    const double weight = 1.0 / distance;
    sum += weight * edge;
    total += weight;
  }
  return total == 0.0 ? Vec3{} : sum / total;
}

Vec3 cotangentLaplacian(const TriangleMesh& mesh, int i) {
  Vec3 sum;
  double total = 0.0;
  walkRing(mesh, i, [&](const RingTriangle& t) {
    const Vec3 toA = {t.toA.x, toSingle(t.toA.y), toSingle(t.toA.z)};
    const Vec3 toB = {t.toB.x, toSingle(t.toB.y), toSingle(t.toB.z)};
    const Vec3 across = t.b - t.a;
    const double twiceArea = length(cross(toA, toB));
    if (twiceArea == 0.0) return;
    const double cotangentAtB = dot(across, toB) / twiceArea;
    const double cotangentAtA = -dot(across, toA) / twiceArea;
    sum += cotangentAtB * toA + cotangentAtA * toB;
    total += cotangentAtB + cotangentAtA;
  });
  return total == 0.0 ? Vec3{} : sum / total;
}

void taubinSmoothing(TriangleMesh& mesh, const TaubinSteps& steps) {
  if (steps.iterations < 1) return;
  switch (steps.weighting) {
    case UmbrellaWeights:
      return runHalfSteps(mesh, steps, [&](int i) { return mesh.umbrellaLaplacian(i); });
    case InverseDistanceWeights:
      return runHalfSteps(mesh, steps, [&](int i) { return inverseDistanceLaplacian(mesh, i); });
    case CotangentWeights:
      return runHalfSteps(mesh, steps, [&](int i) { return cotangentLaplacian(mesh, i); });
    default:
      return;
  }
}

}  // namespace gravlin
