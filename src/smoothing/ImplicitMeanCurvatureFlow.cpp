#include "smoothing/ImplicitMeanCurvatureFlow.h"

#include <algorithm>
#include <numeric>
#include <span>

#include "mesh/RingWalk.h"
#include "numeric/Index.h"

namespace gravlin {
namespace {

/// The cotangent weights of one ring, before they are divided by its area.
struct RingWeights {
  std::vector<double> perNeighbour;  ///< in ring order
  double sum = 0.0;
  double area = 0.0;
};

void computeWeights(const TriangleMesh& mesh, int i, RingWeights& weights) {
  const std::size_t n = toIndex(mesh.neighbourCount(i));
  weights.perNeighbour.assign(n, 0.0);
  weights.sum = 0.0;
  weights.area = 0.0;
  std::size_t a = 0;
  walkRing(mesh, i, [&](const RingTriangle& t) {
    const std::size_t b = a + 1 < n ? a + 1 : 0;
    const double area = 0.5 * length(cross(t.toB, t.toA));
    if (area > 0.0) {
      const Vec3 across = t.a - t.b;
      const double twiceCotangentAtB = -dot(across, t.toB) / area;
      const double twiceCotangentAtA = dot(across, t.toA) / area;
      weights.area += area;
      weights.perNeighbour[a] += twiceCotangentAtB;
      weights.perNeighbour[b] += twiceCotangentAtA;
      weights.sum += twiceCotangentAtB;
      weights.sum += twiceCotangentAtA;
    }
    a = b;
  });
}

std::vector<int> sortRings(const CompressedRows& rings) {
  std::vector<int> places(rings.items.size());
  for (int i = 0; i < rings.rowCount(); ++i) {
    const std::span<const int> ring = rings[i];
    const auto begin = places.begin() + rings.offsets[toIndex(i)];
    const auto end = begin + rings.length(i);
    std::iota(begin, end, 0);
    std::sort(begin, end, [&](int p, int q) { return ring[toIndex(p)] < ring[toIndex(q)]; });
  }
  return places;
}

}  // namespace

ImplicitMeanCurvatureFlow::ImplicitMeanCurvatureFlow(TriangleMesh& smoothed, float dt)
    : mesh(smoothed),
      timeStep(static_cast<double>(dt)),
      risingPlaces(sortRings(smoothed.vertexNeighbours)) {
}

const SparseMatrix& ImplicitMeanCurvatureFlow::assemble() {
  RowWriter writer(matrix, mesh);
  RingWeights weights;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (mesh.vertexKind[toIndex(i)] != InteriorVertex) {
      writer.closeRow(1.0);
      continue;
    }
    computeWeights(mesh, i, weights);
    const double scale = 2.0 * weights.area;
    if (scale <= 0.0) {
      writer.closeRow(1.0);
      continue;
    }
    const std::span<const int> ring = mesh.getNeighbours(i);
    const int* places = risingPlaces.data() + mesh.vertexNeighbours.offsets[toIndex(i)];
    for (std::size_t k = 0; k < ring.size(); ++k) {
      const std::size_t place = toIndex(places[k]);
      const double weight = weights.perNeighbour[place] / scale;
      if (weight != 0.0) writer.append(ring[place], -timeStep * weight);
    }
    writer.closeRow(timeStep * weights.sum / scale + 1.0);
  }
  return matrix;
}

ImplicitStep ImplicitMeanCurvatureFlow::step() {
  return solveForPositions(mesh, assemble(), 1e-5);
}

}  // namespace gravlin
