#include "smoothing/Noise.h"

#include <cmath>

#include "numeric/Index.h"
#include "numeric/Random.h"

namespace gravlin {
namespace {

constexpr std::uint32_t noiseSeed = 100;
constexpr double toUnitInterval = 6.103701895199438e-5;  // 2 / 32767

struct DeviatePair {
  double first;
  double second;
};

/// Two independent normal deviates by Marsaglia's polar method: a point drawn evenly from the unit
/// disc, stretched along its ray.
DeviatePair drawDeviates(Random& random, double standardDeviation) {
  for (;;) {
    const double u = random.rand() * toUnitInterval - 1.0;
    const double v = random.rand() * toUnitInterval - 1.0;
    const double s = u * u + v * v;
    if (s >= 1.0 || s == 0.0) continue;
    const double factor = standardDeviation * std::sqrt(-2.0 * std::log(s) / s);
    return {factor * u, factor * v};
  }
}

void moveAlongNormal(TriangleMesh& mesh, int i, double amount) {
  mesh.setPosition(i, mesh.position(i) + amount * mesh.vertexNormal(i));
}

}  // namespace

void addNoise(TriangleMesh& mesh, float size) {
  Random random(noiseSeed);
  for (int i = 0; i < mesh.vertexCount; i += 2) {
    const DeviatePair deviates = drawDeviates(random, static_cast<double>(size));
    moveAlongNormal(mesh, i, deviates.first);
    if (i + 1 < mesh.vertexCount) moveAlongNormal(mesh, i + 1, deviates.second);
  }
}

}  // namespace gravlin
