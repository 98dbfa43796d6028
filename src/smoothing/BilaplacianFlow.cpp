#include "smoothing/BilaplacianFlow.h"

#include <vector>

#include "numeric/Index.h"
#include "smoothing/JacobiSweep.h"

namespace gravlin {
namespace {

void computeUmbrellas(const TriangleMesh& mesh, std::vector<Vec3>& umbrellas) {
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (mesh.vertexKind[toIndex(i)] == InteriorVertex) {
      umbrellas[toIndex(i)] = mesh.umbrellaLaplacian(i);
    }
  }
}

Vec3 displacement(const TriangleMesh& mesh, const std::vector<Vec3>& umbrellas, int i) {
  const Vec3& own = umbrellas[toIndex(i)];
  Vec3 sum;
  double reciprocals = 0.0;
  for (const int j : mesh.getNeighbours(i)) {
    if (mesh.vertexKind[toIndex(j)] != InteriorVertex) return {};
    sum += own - umbrellas[toIndex(j)];
    reciprocals += 1.0 / mesh.neighbourCount(j);
  }
  return sum / (mesh.neighbourCount(i) + reciprocals);
}

}  // namespace

void bilaplacianFlow(TriangleMesh& mesh, const FlowSteps& steps) {
  if (steps.iterations < 1) return;
  std::vector<Vec3> umbrellas(toIndex(mesh.vertexCount));
  JacobiSweep sweep(mesh);
  for (int iteration = 0; iteration < steps.iterations; ++iteration) {
    computeUmbrellas(mesh, umbrellas);
    sweep.run(static_cast<double>(steps.step),
              [&](int i) { return displacement(mesh, umbrellas, i); });
  }
}

}  // namespace gravlin
