#include "smoothing/MedianCurvatureFlow.h"

#include "smoothing/JacobiSweep.h"

namespace gravlin {

Vec3 displacementAlongMedian(const Vec3& umbrella, const Vec3& inward, double step) {
  const double along = dot(umbrella, inward);
  const double inwardSquared = dot(inward, inward);
  const double limit = dot(umbrella, umbrella);
  if (along == 0.0) return umbrella;
  if (along > 0.0) {
    const Vec3 displacement = step * (inwardSquared / along) * umbrella;
    return dot(displacement, displacement) > limit ? umbrella : displacement;
  }
  if (along < 0.0) {
    const Vec3 displacement = step * (2.0 * inward - (inwardSquared / along) * umbrella);
    if (dot(displacement, displacement) > limit) {
      return umbrella - 2.0 * (along / inwardSquared) * inward;
    }
    return displacement;
  }
  return {};
}

void medianCurvatureFlow(TriangleMesh& mesh, const FlowSteps& steps) {
  if (steps.iterations < 1) return;
  JacobiSweep sweep(mesh);
  for (int iteration = 0; iteration < steps.iterations; ++iteration) {
    sweep.run(1.0, [&](int i) {
      return displacementAlongMedian(mesh.umbrellaLaplacian(i), -mesh.meanCurvatureNormal(i),
                                     static_cast<double>(steps.step));
    });
  }
}

}  // namespace gravlin
