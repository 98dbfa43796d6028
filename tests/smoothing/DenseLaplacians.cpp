#include "smoothing/DenseLaplacians.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

#include "numeric/Index.h"

namespace gravlin::test {
namespace {

using Edge = std::pair<int, int>;

/// The faces that use each edge, an edge being named by its smaller vertex first.
std::map<Edge, int> faceCounts(const TriangleMesh& mesh) {
  std::map<Edge, int> counts;
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    for (std::size_t j = 0; j < 3; ++j) ++counts[std::minmax(c[j], c[(j + 1) % 3])];
  }
  return counts;
}

double squaredDistance(const TriangleMesh& mesh, int i, int j) {
  const Vec3 edge = mesh.position(j) - mesh.position(i);
  return dot(edge, edge);
}

double faceArea(const TriangleMesh& mesh, int f) {
  const auto c = mesh.corners(f);
  const double a = squaredDistance(mesh, c[0], c[1]);
  const double b = squaredDistance(mesh, c[1], c[2]);
  const double d = squaredDistance(mesh, c[2], c[0]);
  return 0.25 * std::sqrt(4.0 * a * b - (a + b - d) * (a + b - d));
}

DenseMatrix interiorRows(const TriangleMesh& mesh, DenseMatrix matrix) {
  const std::vector<bool> interior = interiorVertices(mesh);
  for (int row = 0; row < matrix.order(); ++row) {
    double sum = 0.0;
    for (int column = 0; column < matrix.order(); ++column) {
      if (!interior[static_cast<std::size_t>(row)]) matrix.at(row, column) = 0.0;
      sum += matrix.at(row, column);
    }
    matrix.at(row, row) = -sum;
  }
  return matrix;
}

}  // namespace

std::vector<bool> interiorVertices(const TriangleMesh& mesh) {
  std::vector<bool> interior(static_cast<std::size_t>(mesh.vertexCount), true);
  for (const auto& [edge, count] : faceCounts(mesh)) {
    if (count == 2) continue;
    interior[static_cast<std::size_t>(edge.first)] = false;
    interior[static_cast<std::size_t>(edge.second)] = false;
  }
  return interior;
}

std::vector<double> valences(const TriangleMesh& mesh) {
  std::vector<double> result(static_cast<std::size_t>(mesh.vertexCount), 0.0);
  for (const auto& [edge, count] : faceCounts(mesh)) {
    ++result[static_cast<std::size_t>(edge.first)];
    ++result[static_cast<std::size_t>(edge.second)];
  }
  return result;
}

DenseMatrix umbrellaMatrix(const TriangleMesh& mesh) {
  const std::vector<double> valence = valences(mesh);
  DenseMatrix matrix(mesh.vertexCount);
  for (const auto& [edge, count] : faceCounts(mesh)) {
    matrix.at(edge.first, edge.second) = 1.0 / valence[static_cast<std::size_t>(edge.first)];
    matrix.at(edge.second, edge.first) = 1.0 / valence[static_cast<std::size_t>(edge.second)];
  }
  return interiorRows(mesh, matrix);
}

DenseMatrix cotangentMatrix(const TriangleMesh& mesh) {
  DenseMatrix matrix(mesh.vertexCount);
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    for (std::size_t j = 0; j < 3; ++j) {
      const int apex = c[j];
      const int i = c[(j + 1) % 3];
      const int k = c[(j + 2) % 3];
      // Law of cosines over twice the area.
      const double cotangent = (squaredDistance(mesh, apex, i) + squaredDistance(mesh, apex, k) -
                                squaredDistance(mesh, i, k)) /
                               (4.0 * faceArea(mesh, f));
      matrix.at(i, k) += cotangent;
      matrix.at(k, i) += cotangent;
    }
  }
  return interiorRows(mesh, matrix);
}

std::vector<double> ringAreas(const TriangleMesh& mesh) {
  std::vector<double> areas(static_cast<std::size_t>(mesh.vertexCount), 0.0);
  for (int f = 0; f < mesh.faceCount; ++f) {
    for (const int corner : mesh.corners(f)) {
      areas[static_cast<std::size_t>(corner)] += faceArea(mesh, f);
    }
  }
  return areas;
}

std::vector<double> coordinates(const TriangleMesh& mesh, int axis) {
  std::vector<double> result;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    result.push_back(static_cast<double>(mesh.vertices[3 * toIndex(i) + toIndex(axis)]));
  }
  return result;
}

double largestDifference(const TriangleMesh& a, const TriangleMesh& b) {
  double largest = 0.0;
  for (std::size_t c = 0; c < a.vertices.size(); ++c) {
    const double difference =
        std::abs(static_cast<double>(b.vertices[c]) - static_cast<double>(a.vertices[c]));
    if (std::isnan(difference)) return std::numeric_limits<double>::infinity();
    largest = std::max(largest, difference);
  }
  return largest;
}

void moveBy(TriangleMesh& mesh, double factor, const DenseMatrix& matrix,
            const std::vector<double>& divisor) {
  for (int axis = 0; axis < 3; ++axis) {
    const std::vector<double> before = coordinates(mesh, axis);
    const std::vector<double> displacement = matrix.times(before);
    for (std::size_t i = 0; i < before.size(); ++i) {
      const double scale = divisor.empty() ? factor : factor / divisor[i];
      mesh.vertices[3 * i + static_cast<std::size_t>(axis)] =
          static_cast<float>(before[i] + scale * displacement[i]);
    }
  }
}

}  // namespace gravlin::test
