#include "support/Surface.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <numbers>

#include "numeric/ParallelLoop.h"

namespace gravlin::bench {
namespace {

constexpr double fullTurn = 2.0 * std::numbers::pi;

// Figures are given for one thread.
[[maybe_unused]] const bool onOneThread = (setThreadCount(1), true);

/// Coordinates and corners of the formats that other programs read as well.
std::string numbersOf(const TriangleMesh& mesh) {
  std::string text;
  char line[128];
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    text.append(line, static_cast<std::size_t>(
                          std::snprintf(line, sizeof line, "%f %f %f\n", p.x, p.y, p.z)));
  }
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    text.append(line, static_cast<std::size_t>(
                          std::snprintf(line, sizeof line, "3 %d %d %d\n", c[0], c[1], c[2])));
  }
  return text;
}

}  // namespace

TriangleMesh bumpyTorus(int around, int across) {
  TriangleMesh mesh;
  mesh.setVertexCount(around * across);
  mesh.setFaceCount(2 * around * across);
  for (int i = 0; i < around; ++i) {
    for (int j = 0; j < across; ++j) {
      const double u = fullTurn * i / around;
      const double v = fullTurn * j / across;
      const double tube = 10.0 + std::sin(7.0 * u) * std::cos(5.0 * v);
      const double r = 30.0 + tube * std::cos(v);
      const int a = i * across + j;
      mesh.setPosition(a, {r * std::cos(u), r * std::sin(u), tube * std::sin(v)});
      const int right = i * across + (j + 1) % across;
      const int below = (i + 1) % around * across + j;
      const int diagonal = (i + 1) % around * across + (j + 1) % across;
      mesh.setFace(2 * a, std::array{a, below, diagonal});
      mesh.setFace(2 * a + 1, std::array{a, diagonal, right});
    }
  }
  return mesh;
}

TriangleMesh largeSurface() {
  return bumpyTorus(1000, 1000);
}

TriangleMesh built(TriangleMesh mesh) {
  mesh.normalize();
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  return mesh;
}

std::string ply2Text(const TriangleMesh& mesh) {
  return std::to_string(mesh.vertexCount) + "\n" + std::to_string(mesh.faceCount) + "\n" +
         numbersOf(mesh);
}

std::string offText(const TriangleMesh& mesh) {
  return "OFF\n" + std::to_string(mesh.vertexCount) + " " + std::to_string(mesh.faceCount) +
         " 0\n" + numbersOf(mesh);
}

std::string writeTemporary(const std::string& name, const std::string& content) {
  std::string path = std::filesystem::temp_directory_path() / name;
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

}  // namespace gravlin::bench
