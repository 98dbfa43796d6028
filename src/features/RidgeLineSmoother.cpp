#include "features/RidgeLineSmoother.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "mesh/PositionGuard.h"

namespace gravlin {
namespace {

constexpr int onLine = 0;
constexpr int farFromLines = 10000;
constexpr int ringsAround = 3;

std::size_t at(int i) {
  return static_cast<std::size_t>(i);
}

/// Per vertex its neighbours along ridges, then along valleys; duplicates stay.
std::vector<IndexList> linksOfBothKinds(const TriangleMesh& mesh) {
  std::vector<IndexList> links(at(mesh.vertexCount));
  for (const auto* kind : {&mesh.ridgeLinks, &mesh.valleyLinks}) {
    for (std::size_t i = 0; i < std::min(kind->size(), links.size()); ++i) {
      for (const int neighbour : (*kind)[i]) links[i].append(neighbour);
    }
  }
  return links;
}

/// Number of rings between each vertex and the nearest line, up to three.
std::vector<int> ringsFromLines(const TriangleMesh& mesh, const std::vector<IndexList>& links) {
  std::vector<int> level(links.size(), farFromLines);
  for (std::size_t i = 0; i < links.size(); ++i) {
    if (!links[i].empty()) level[i] = onLine;
  }
  for (int ring = 0; ring < ringsAround; ++ring) {
    for (int i = 0; i < mesh.vertexCount; ++i) {
      if (level[at(i)] != ring) continue;
      for (const int u : mesh.getNeighbours(i)) level[at(u)] = std::min(level[at(u)], ring + 1);
    }
  }
  return level;
}

void moveLines(TriangleMesh& mesh, const std::vector<IndexList>& links, double step,
               std::vector<Vec3>& displacement) {
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const IndexList& line = links[at(i)];
    displacement[at(i)] = {};
    if (line.size() != 2) continue;  // an end or a junction
    const Vec3 d = (mesh.position(line[0]) + mesh.position(line[1])) * 0.5 - mesh.position(i);
    const Vec3 n = mesh.vertexNormal(i);
    displacement[at(i)] = d - dot(d, n) * n;
  }
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (links[at(i)].size() != 2) continue;
    mesh.setPosition(i, mesh.position(i) + step * displacement[at(i)]);
  }
}

/// Mean of a field over the ring of a vertex; 0 for an empty ring.
Vec3 ringMean(const TriangleMesh& mesh, const std::vector<Vec3>& field, int i) {
  const auto ring = mesh.getNeighbours(i);
  Vec3 sum;
  for (const int j : ring) sum += field[at(j)];
  return ring.empty() ? sum : sum / static_cast<double>(ring.size());
}

void fairBand(TriangleMesh& mesh, const std::vector<int>& level, double step,
              std::vector<Vec3>& laplacian) {
  for (int i = 0; i < mesh.vertexCount; ++i) {
    laplacian[at(i)] = level[at(i)] <= ringsAround ? mesh.umbrellaLaplacian(i) : Vec3{};
  }
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const bool inBand = level[at(i)] == 1 || level[at(i)] == 2;
    if (!inBand || mesh.vertexKind[at(i)] != InteriorVertex) continue;
    const Vec3 bilaplacian = ringMean(mesh, laplacian, i) - laplacian[at(i)];
    mesh.setPosition(i, mesh.position(i) - step * bilaplacian);
  }
}

}  // namespace

void RidgeLineSmoother::smooth(int iterations, float step) {
  const std::vector<IndexList> links = linksOfBothKinds(*mesh);
  const std::vector<int> level = ringsFromLines(*mesh, links);
  const bool anyLine = std::find(level.begin(), level.end(), onLine) != level.end();
  if (!anyLine) return;
  std::vector<Vec3> work(links.size());
  PositionGuard positions(*mesh);  // there is no undo of a fairing
  for (int iteration = 0; iteration < iterations; ++iteration) {
    mesh->computeNormals();
    moveLines(*mesh, links, step, work);
    fairBand(*mesh, level, step, work);
  }
  positions.keep();
}

}  // namespace gravlin
