#include "features/CreasesByAngle.h"

#include <cstddef>

#include "features/EdgeFold.h"
#include "features/LinkGrowth.h"
#include "mesh/Corner.h"
#include "numeric/Rollback.h"

namespace gravlin {
namespace {

constexpr double pi = 3.14159265;

bool isConvex(const TriangleMesh& mesh, int f, int g) {
  if (const auto clear = clearlyConvex(mesh, f, g)) return *clear;
  return static_cast<double>(edgeFold(mesh, f, g).foldSum) >= pi;
}

}  // namespace

std::vector<IndexList> detectCreasesByAngle(TriangleMesh& mesh, float cosThreshold) {
  const auto V = static_cast<std::size_t>(mesh.vertexCount);
  Rollback lines(mesh.ridgeLinks, mesh.valleyLinks);
  mesh.ridgeLinks.assign(V, IndexList());
  mesh.valleyLinks.assign(V, IndexList());
  std::vector<IndexList> creaseLinks(V);
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto corners = mesh.corners(f);
    for (std::size_t k = 0; k < 3; ++k) {
      const int a = corners[k];
      const int b = corners[nextCorner(k)];
      const int g = mesh.faceAdjacency[3 * static_cast<std::size_t>(f) + k];
      if (g >= f) continue;  // each interior edge from the face with the larger index
      if (g < 0) {
        link(mesh.ridgeLinks, a, b);
      } else if (normalCosine(mesh, f, g) < cosThreshold) {
        link(isConvex(mesh, f, g) ? mesh.ridgeLinks : mesh.valleyLinks, a, b);
      } else {
        continue;
      }
      link(creaseLinks, a, b);
    }
  }
  lines.keep();
  return creaseLinks;
}

}  // namespace gravlin
