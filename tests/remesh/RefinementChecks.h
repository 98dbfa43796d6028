#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "support/Meshes.h"
#include "support/MeshFields.h"

namespace gravlin::test {

inline double distance(const Vec3& a, const Vec3& b) {
  return length(a - b);
}

/// Expects what every refinement does to the faces: four for one, a valid one's valid, a point more
/// for every edge, two sides of faces that meet there counting as one.
inline void expectRefined(const TriangleMesh& old, const TriangleMesh& refined) {
  int joined = 0;
  int open = 0;
  for (int f = 0; f < old.faceCount; ++f) {
    if (!old.validFace(f)) continue;
    for (std::size_t k = 0; k < 3; ++k) {
      ++(old.faceAdjacency[3 * static_cast<std::size_t>(f) + k] >= 0 ? joined : open);
    }
  }
  EXPECT_EQ(refined.vertexCount, old.vertexCount + open + joined / 2);
  EXPECT_EQ(refined.faceCount, 4 * old.faceCount);
  EXPECT_EQ(refined.countValidFaces(), 4 * old.countValidFaces());
  TriangleMesh anew = refined;
  anew.buildAdjacency();
  EXPECT_EQ(refined.faces, anew.faces) << "every corner is a vertex, and no face has one twice";
  EXPECT_EQ(refined.vertexKind, anew.vertexKind);
}

/// The point of the edge a-b: the vertex that both are joined to after the refinement.
inline Vec3 edgePoint(const TriangleMesh& refined, int a, int b) {
  for (const int p : refined.vertexNeighbours[a]) {
    const auto ofB = refined.vertexNeighbours[b];
    if (std::find(ofB.begin(), ofB.end(), p) != ofB.end()) return refined.position(p);
  }
  ADD_FAILURE() << a << " and " << b << " are not joined";
  return {};
}

/// An interior vertex, number 0, of n neighbours 1 .. n in an uneven pyramid, inside a second ring
/// so that all of its neighbours are interior too, of valence 5.
inline TriangleMesh unevenFan(int n) {
  std::vector<std::array<float, 3>> points = {{0.1F, -0.2F, 1.0F}};
  std::vector<std::array<int, 3>> faces;
  for (int ring = 1; ring <= 2; ++ring) {
    for (int k = 0; k < n; ++k) {
      const double angle = 2.0 * std::numbers::pi * (k + 0.1 * std::sin(5.0 * k)) / n;
      points.push_back({static_cast<float>(ring * std::cos(angle)),
                        static_cast<float>(ring * std::sin(angle)),
                        static_cast<float>(0.3 * std::cos(3.0 * k + ring))});
    }
  }
  for (int k = 0; k < n; ++k) {
    const int here = 1 + k;
    const int next = 1 + (k + 1) % n;
    faces.push_back({0, here, next});
    faces.push_back({here, n + here, n + next});
    faces.push_back({here, n + next, next});
  }
  return makeMesh(points, faces);
}

}  // namespace gravlin::test
