#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "numeric/Vec3.h"
#include "support/Meshes.h"

namespace gravlin::test {

/// Equal bits, every NaN being equal to every other.
inline bool sameBits(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) ||
         std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

inline bool sameBits(const Vec3& a, const Vec3& b) {
  return sameBits(a.x, b.x) && sameBits(a.y, b.y) && sameBits(a.z, b.z);
}

/// Whether every coordinate is a finite number.
inline bool isFinite(const TriangleMesh& mesh) {
  return std::all_of(mesh.vertices.begin(), mesh.vertices.end(),
                     [](float x) { return std::isfinite(x); });
}

/// Whether both have the same positions to the last bit.
inline bool sameVertices(const TriangleMesh& a, const TriangleMesh& b) {
  return std::equal(a.vertices.begin(), a.vertices.end(), b.vertices.begin(), b.vertices.end(),
                    [](double x, double y) { return sameBits(x, y); });
}

/// Closed, open and hostile meshes in one list.
inline std::vector<NamedMesh> everyMesh() {
  std::vector<NamedMesh> all = closedMeshes();
  for (NamedMesh& each : openMeshes()) all.push_back(std::move(each));
  for (NamedMesh& each : hostileMeshes()) all.push_back(std::move(each));
  return all;
}

}  // namespace gravlin::test
