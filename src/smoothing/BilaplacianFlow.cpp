#include "smoothing/BilaplacianFlow.h"

#include <array>
#include <vector>

#include "numeric/Index.h"
#include "numeric/ParallelLoop.h"
#include "smoothing/JacobiSweep.h"

namespace gravlin {
namespace {

/// 1 / n, taken from a table for the lengths that nearly every ring has: a division per neighbour
/// would cost more than everything else that is done for it.
class Reciprocals {
 public:
  Reciprocals() {
    for (int n = 1; n < tableSize; ++n) table[toIndex(n)] = 1.0 / n;
  }
  double of(int n) const { return n < tableSize ? table[toIndex(n)] : 1.0 / n; }

 private:
  static constexpr int tableSize = 16;
  std::array<double, tableSize> table = {};
};

void computeUmbrellas(const TriangleMesh& mesh, std::vector<Vec3>& umbrellas) {
  parallelFor(mesh.vertexCount, [&](int i) {
    if (mesh.vertexKind[toIndex(i)] == InteriorVertex) {
      umbrellas[toIndex(i)] = mesh.umbrellaLaplacian(i);
    }
  });
}

/// The displacement of interior vertices from the umbrella vectors of all.
class Bilaplacian {
 public:
  Bilaplacian(const TriangleMesh& flowing, const std::vector<Vec3>& umbrellaVectors)
      : mesh(flowing), umbrellas(umbrellaVectors) {}

  Vec3 operator()(int i) const {
    const Vec3 own = umbrellas[toIndex(i)];
    Vec3 sum;
    double weight = 0.0;
    for (const int j : mesh.getNeighbours(i)) {
      if (mesh.vertexKind[toIndex(j)] != InteriorVertex) return {};
      sum += own - umbrellas[toIndex(j)];
      weight += reciprocals.of(mesh.neighbourCount(j));
    }
    return sum / (mesh.neighbourCount(i) + weight);
  }

 private:
  const TriangleMesh& mesh;
  const std::vector<Vec3>& umbrellas;
  Reciprocals reciprocals;
};

}  // namespace

void bilaplacianFlow(TriangleMesh& mesh, const FlowSteps& steps) {
  if (steps.iterations < 1) return;
  const auto step = static_cast<double>(steps.step);
  std::vector<Vec3> umbrellas(toIndex(mesh.vertexCount));
  const Bilaplacian displacement(mesh, umbrellas);
  for (int iteration = 0; iteration < steps.iterations; ++iteration) {
    computeUmbrellas(mesh, umbrellas);
    // No position but the vertex's own is read from here on, so they can change where they are.
    setInteriorPositions(mesh, mesh.vertices,
                         [&](int i) { return mesh.position(i) + step * displacement(i); });
  }
}

}  // namespace gravlin
