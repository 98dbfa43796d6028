#include "curvature/TensorSmoothing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "curvature/DirectionTransport.h"
#include "numeric/ParallelLoop.h"
#include "numeric/Vec3.h"

namespace gravlin {
namespace {

/// The two fields of a vertex side by side, so that a neighbour costs one place in memory.
template <class Value>
struct MaxMin {
  Value max{};
  Value min{};
};
using CurvaturePair = MaxMin<double>;
using DirectionPair = MaxMin<Vec3>;

std::size_t toIndex(int i) {
  return static_cast<std::size_t>(i);
}

void smoothValuesOnce(const CompressedRows& rings, double lambda,
                      const std::vector<CurvaturePair>& from, std::vector<CurvaturePair>& to) {
  const double keep = 1.0 - lambda;
  for (int i = 0; i < rings.rowCount(); ++i) {
    const std::span<const int> ring = rings[i];
    CurvaturePair& result = to[toIndex(i)];
    if (ring.empty()) {
      result = {};
      continue;
    }
    CurvaturePair sum;
    for (const int j : ring) {
      sum.max += from[toIndex(j)].max;
      sum.min += from[toIndex(j)].min;
    }
    const auto k = static_cast<double>(ring.size());
    result.max = keep * from[toIndex(i)].max + lambda * sum.max / k;
    result.min = keep * from[toIndex(i)].min + lambda * sum.min / k;
  }
}

/// The weight of a neighbour's carried direction, negative where it points against the vertex's
/// own; `cosine` is that of the angle between the two.
double signedWeight(double cosine, double squaredDistance, double squaredSigma) {
  const double angle = std::acos(std::clamp(cosine, -1.0, 1.0));
  const double weight =
      angle == 0.0 ? 1.0 : std::exp(-(angle * angle / squaredDistance) / squaredSigma);
  // Without a branch, which half of all neighbours would miss; -0 counts as 0.
  return std::copysign(weight, cosine + 0.0);
}

DirectionPair smoothedDirections(const TriangleMesh& mesh, int i, double squaredSigma,
                                 const std::vector<DirectionPair>& from) {
  const Vec3 p = mesh.position(i);
  const Vec3 N = mesh.vertexNormal(i);
  const DirectionPair& own = from[toIndex(i)];
  DirectionPair sum;
  for (const int j : mesh.getNeighbours(i)) {
    const Vec3 d = p - mesh.position(j);
    const double squaredDistance = dot(d, d);
    const DirectionTransport carry(mesh.vertexNormal(j), N);
    const Vec3 max = carry(from[toIndex(j)].max);
    const Vec3 min = carry(from[toIndex(j)].min);
    sum.max += signedWeight(dot(max, own.max), squaredDistance, squaredSigma) * max;
    sum.min += signedWeight(dot(min, own.min), squaredDistance, squaredSigma) * min;
  }
  const auto unitOr = [](const Vec3& v, const Vec3& old) {
    const double size = length(v);
    return size == 0.0 ? old : v / size;
  };
  return {unitOr(sum.max, own.max), unitOr(sum.min, own.min)};
}

void smoothLineFields(const TriangleMesh& mesh, std::vector<double>& max, std::vector<double>& min,
                      int iterations, float sigma) {
  const double squaredSigma = static_cast<double>(sigma) * static_cast<double>(sigma);
  std::vector<DirectionPair> current(toIndex(mesh.vertexCount));
  for (int i = 0; i < mesh.vertexCount; ++i) {
    current[toIndex(i)] = {vectorAt(max, i), vectorAt(min, i)};
  }
  std::vector<DirectionPair> next(current.size());
  for (int n = 0; n < iterations; ++n) {
    parallelFor(mesh.vertexCount, [&](int i) {
      next[toIndex(i)] = smoothedDirections(mesh, i, squaredSigma, current);
    });
    std::swap(current, next);
  }
  for (int i = 0; i < mesh.vertexCount; ++i) {
    storeVectorAt(max, i, current[toIndex(i)].max);
    storeVectorAt(min, i, current[toIndex(i)].min);
  }
}

/// A right-handed frame again, built from the direction of the larger curvature.
DirectionPair repaired(const DirectionPair& directions, const Vec3& N, bool trustMin) {
  const Vec3& trusted = trustMin ? directions.min : directions.max;
  const double size = length(trusted);
  if (size == 0.0) return {};
  DirectionPair result;
  if (trustMin) {
    result.min = trusted / size;
    result.max = cross(result.min, N);
  } else {
    result.max = trusted / size;
    result.min = cross(N, result.max);
  }
  if (dot(cross(N, result.max), result.min) < 0.0) result.min = -result.min;
  return result;
}

}  // namespace

void CurvatureTensorSmoother::smoothCurvatureValues(int iterations, float lambda) {
  if (iterations < 1) return;
  std::vector<CurvaturePair> current(mesh->maxCurvature.size());
  for (std::size_t i = 0; i < current.size(); ++i) {
    current[i] = {mesh->maxCurvature[i], mesh->minCurvature[i]};
  }
  std::vector<CurvaturePair> next(current.size());
  for (int n = 0; n < iterations; ++n) {
    smoothValuesOnce(mesh->vertexNeighbours, static_cast<double>(lambda), current, next);
    std::swap(current, next);
  }
  for (std::size_t i = 0; i < current.size(); ++i) {
    mesh->maxCurvature[i] = current[i].max;
    mesh->minCurvature[i] = current[i].min;
  }
}

void CurvatureTensorSmoother::smoothDirections(int iterations, float sigma) {
  if (iterations < 1) return;
  smoothLineFields(*mesh, mesh->maxDirection, mesh->minDirection, iterations, sigma);
  for (int i = 0; i < mesh->vertexCount; ++i) {
    const bool trustMin =
        std::abs(mesh->maxCurvature[toIndex(i)]) <= std::abs(mesh->minCurvature[toIndex(i)]);
    const DirectionPair frame =
        repaired({vectorAt(mesh->maxDirection, i), vectorAt(mesh->minDirection, i)},
                 mesh->vertexNormal(i), trustMin);
    storeVectorAt(mesh->maxDirection, i, frame.max);
    storeVectorAt(mesh->minDirection, i, frame.min);
  }
}

void CurvatureTensorSmoother::smoothDerivativeGradients(int iterations, float sigma) {
  if (iterations < 1) return;
  smoothLineFields(*mesh, mesh->maxDerivativeGradient, mesh->minDerivativeGradient, iterations,
                   sigma);
}

}  // namespace gravlin
