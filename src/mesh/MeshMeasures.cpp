#include "mesh/MeshMeasures.h"

#include <cmath>

namespace gravlin {

double enclosedVolume(const TriangleMesh& mesh) {
  double volume = 0.0;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto corners = mesh.corners(f);
    const Vec3 p0 = mesh.position(corners[0]);
    const Vec3 p1 = mesh.position(corners[1]);
    const Vec3 p2 = mesh.position(corners[2]);
    const Vec3 centroid = (p0 + p1 + p2) * 0.3333333333333333;
    volume += dot(cross(p1 - p0, p2 - p0), centroid) * 0.16666666666666666;
  }
  return volume;
}

bool isInsideOut(const TriangleMesh& mesh) {
  if (mesh.faceAdjacency.size() != mesh.faces.size()) return false;
  for (std::size_t edge = 0; edge < mesh.faceAdjacency.size(); ++edge) {
    if (mesh.faceAdjacency[edge] < 0 && mesh.validFace(static_cast<int>(edge / 3))) return false;
  }
  return enclosedVolume(mesh) < 0.0;
}

double shortestEdgeLength(const TriangleMesh& mesh) {
  double shortest = 1000000.0;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    for (const int j : mesh.getNeighbours(i)) {
      if (j >= i) continue;
      const double edge = length(mesh.position(j) - mesh.position(i));
      if (edge != 0.0 && edge < shortest) shortest = edge;
    }
  }
  return shortest;
}

int countNonFiniteVertices(const TriangleMesh& mesh) {
  int count = 0;
  for (std::size_t at = 0; at < mesh.vertices.size(); at += 3) {
    const float* p = mesh.vertices.data() + at;
    if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) ++count;
  }
  return count;
}

bool hasFiniteShape(const TriangleMesh& mesh) {
  return std::isfinite(mesh.extentTolerance) && countNonFiniteVertices(mesh) == 0;
}

void scaleVertices(TriangleMesh& mesh, double s) {
  for (int i = 0; i < mesh.vertexCount; ++i) mesh.setPosition(i, mesh.position(i) * s);
}

void rescaleToVolume(TriangleMesh& mesh, double volume) {
  const double current = enclosedVolume(mesh);
  if (current == 0.0) return;
  // A power and not cbrt: a volume of the other sign has no scale that brings the former one back.
  scaleVertices(mesh, std::pow(volume / current, 0.3333333333333333));
}

}  // namespace gravlin
