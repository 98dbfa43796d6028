#include "smoothing/LaplacianFlow.h"

#include "smoothing/JacobiSweep.h"

namespace gravlin {

void laplacianFlow(TriangleMesh& mesh, const FlowSteps& steps) {
  if (steps.iterations < 1) return;
  JacobiSweep sweep(mesh);
  for (int iteration = 0; iteration < steps.iterations; ++iteration) {
    sweep.run(static_cast<double>(steps.step), [&](int i) { return mesh.umbrellaLaplacian(i); });
  }
}

}  // namespace gravlin
