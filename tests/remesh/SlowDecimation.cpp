#include "remesh/SlowDecimation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <set>
#include <vector>

#include "numeric/Index.h"

namespace gravlin::test {
namespace {

using Matrix = std::array<std::array<double, 4>, 4>;

Matrix planeMatrix(const Vec3& n, double d, double factor) {
  const std::array<double, 4> p = {n.x, n.y, n.z, d};
  Matrix m = {};
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t c = 0; c < 4; ++c) m[r][c] = factor * p[r] * p[c];
  }
  return m;
}

void addTo(Matrix& sum, const Matrix& m, double factor = 1.0) {
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t c = 0; c < 4; ++c) sum[r][c] += factor * m[r][c];
  }
}

double errorAt(const Matrix& m, const Vec3& x) {
  const std::array<double, 4> p = {x.x, x.y, x.z, 1.0};
  double sum = 0.0;
  for (std::size_t r = 0; r < 4; ++r) {
    for (std::size_t c = 0; c < 4; ++c) sum += p[r] * m[r][c] * p[c];
  }
  return sum;
}

double determinant(const Vec3& a, const Vec3& b, const Vec3& c) {
  return dot(a, cross(b, c));
}

/// By Cramer's rule on the columns.
Vec3 bestPlace(const Matrix& m, const Vec3& middle) {
  const auto column = [&](std::size_t c) { return Vec3{m[0][c], m[1][c], m[2][c]}; };
  const Vec3 right = -column(3);
  const double d = determinant(column(0), column(1), column(2));
  if (std::abs(d) < 1e-6) return middle;
  return Vec3{determinant(right, column(1), column(2)), determinant(column(0), right, column(2)),
              determinant(column(0), column(1), right)} /
         d;
}

double faceAreaOf(const TriangleMesh& mesh, int f) {
  const auto c = mesh.corners(f);
  const Vec3 a = mesh.position(c[0]);
  return length(cross(mesh.position(c[1]) - a, mesh.position(c[2]) - a)) / 2.0;
}

struct Edge {
  int i;
  int j;
  Vec3 place;
  float cost;
  bool waiting = true;
  bool valid = true;
};

class SlowDecimation {
 public:
  explicit SlowDecimation(TriangleMesh& decimated) : mesh(decimated) {
    mesh.computeFaceNormals();
    for (int v = 0; v < mesh.vertexCount; ++v) matrices.push_back(matrixOf(v));
    for (int i = 0; i < mesh.vertexCount; ++i) {
      for (const int j : mesh.getNeighbours(i)) {
        if (j < i && kind(i) != 2 && kind(j) != 2) edges.push_back(weighed({i, j, {}, 0.0F}));
      }
    }
  }

  int run(double rate) {
    const double target = std::trunc((1.0 - rate) * mesh.countUsedVertices());
    int left = mesh.countUsedVertices();
    int collapses = 0;
    for (;;) {
      Edge* cheapest = nullptr;
      for (Edge& edge : edges) {
        if (!edge.valid || !edge.waiting) continue;
        if (cheapest == nullptr || edge.cost < cheapest->cost) cheapest = &edge;
      }
      if (cheapest == nullptr) return collapses;
      cheapest->waiting = false;
      const auto [i, j, place, cost, waiting, valid] = *cheapest;
      if (!mayCollapse(i, j, place)) continue;
      perform(i, j, place);
      cheapest->valid = false;
      renew(i, j);
      ++collapses;
      if (--left <= target) return collapses;
    }
  }

 private:
  int kind(int v) const { return mesh.vertexKind[toIndex(v)]; }

  Matrix matrixOf(int v) const {
    Matrix sum = {};
    double areas = 0.0;
    for (const int f : mesh.vertexFaces[v]) {
      const Vec3 n = mesh.faceNormal(f);
      addTo(sum, planeMatrix(n, -dot(n, mesh.position(mesh.corners(f)[0])), faceAreaOf(mesh, f)));
      areas += faceAreaOf(mesh, f);
    }
    Matrix mean = {};
    if (areas != 0.0) addTo(mean, sum, 1.0 / areas);
    if (kind(v) == 1) {
      const auto ring = mesh.getNeighbours(v);
      const Vec3 n = cross(mesh.position(ring.front()) - mesh.position(v),
                           mesh.position(ring.back()) - mesh.position(v));
      EXPECT_TRUE(length(n) >= 1e-6);
      addTo(mean, planeMatrix(n / length(n), -dot(n / length(n), mesh.position(v)), 10.0));
    }
    return mean;
  }

  Edge weighed(Edge edge) const {
    Matrix m = matrices[toIndex(edge.i)];
    addTo(m, matrices[toIndex(edge.j)]);
    const Vec3 x = bestPlace(m, (mesh.position(edge.i) + mesh.position(edge.j)) / 2.0);
    edge.cost = static_cast<float>(errorAt(m, x));
    edge.place = roundedToSingle(x);
    return edge;
  }

  /// The third corners of the faces on the edge.
  std::vector<int> oppositeCorners(int i, int j) const {
    std::vector<int> found;
    for (const int f : mesh.vertexFaces[i]) {
      const auto c = mesh.corners(f);
      if (std::ranges::find(c, j) == c.end()) continue;
      for (const int v : c) {
        if (v != i && v != j) found.push_back(v);
      }
    }
    return found;
  }

  bool mayCollapse(int i, int j, const Vec3& x) const {
    if (kind(i) == 2 || kind(j) == 2) return false;
    const auto ringI = mesh.getNeighbours(i);
    const auto ringJ = mesh.getNeighbours(j);
    const int sizes = mesh.neighbourCount(i) + mesh.neighbourCount(j);
    if (kind(i) != 1 || kind(j) != 1) {
      if (sizes < 7 || sizes > 17) return false;
    } else {
      const bool along =
          ringI.front() == j || ringI.back() == j || ringJ.front() == i || ringJ.back() == i;
      if (sizes < (along ? 6 : 7)) return false;
    }
    const std::vector<int> opposite = oppositeCorners(i, j);
    for (const int v : opposite) {
      if (kind(v) == 2) return false;
    }
    for (const int v : ringI) {
      if (v == j || std::ranges::count(opposite, v) != 0) continue;
      if (std::ranges::count(ringJ, v) != 0) return false;
    }
    for (const int v : opposite) {
      if (mesh.neighbourCount(v) < 4) return false;
    }
    return staysProper(i, j, x) && staysProper(j, i, x);
  }

  bool staysProper(int moving, int other, const Vec3& x) const {
    for (const int f : mesh.vertexFaces[moving]) {
      const auto c = mesh.corners(f);
      if (std::ranges::count(c, other) != 0) continue;
      std::array<Vec3, 3> now;
      std::array<Vec3, 3> then;
      std::vector<Vec3> line;
      for (std::size_t k = 0; k < 3; ++k) {
        now[k] = mesh.position(c[k]);
        then[k] = c[k] == moving ? x : now[k];
        if (c[k] != moving) line.push_back(now[k]);
      }
      const double area = length(cross(then[1] - then[0], then[2] - then[0])) / 2.0;
      double squares = 0.0;
      for (std::size_t k = 0; k < 3; ++k) {
        squares += std::pow(length(then[(k + 1) % 3] - then[k]), 2);
      }
      if (!(4.0 * std::sqrt(3.0) * area / squares >= 0.001)) return false;
      const Vec3 normal = unitOrZero(cross(now[1] - now[0], now[2] - now[0]));
      const Vec3 m = unitOrZero(cross(normal, line[1] - line[0]));
      if (!(dot(line[0] - mesh.position(moving), m) * dot(line[0] - x, m) > 0.0)) return false;
    }
    return true;
  }

  void perform(int i, int j, const Vec3& x) {
    mesh.setPosition(i, x);
    for (int f = 0; f < mesh.faceCount; ++f) {
      int* c = &mesh.faces[3 * toIndex(f)];
      const bool hasI = std::count(c, c + 3, i) != 0;
      const bool hasJ = std::count(c, c + 3, j) != 0;
      if (hasI && hasJ) {
        std::fill_n(c, 3, -1);
      } else {
        std::replace(c, c + 3, j, i);
      }
    }
    mesh.buildAdjacency();
  }

  /// In the pairs of j's edges i takes the place of j, unless i has an edge to the same vertex;
  /// then all edges of i are weighed anew.
  void renew(int i, int j) {
    addTo(matrices[toIndex(i)], matrices[toIndex(j)]);
    const auto otherEnd = [](const Edge& edge, int v) { return edge.i == v ? edge.j : edge.i; };
    const auto touches = [](const Edge& edge, int v) {
      return edge.valid && (edge.i == v || edge.j == v);
    };
    std::set<int> joined;
    for (const Edge& edge : edges) {
      if (touches(edge, i)) joined.insert(otherEnd(edge, i));
    }
    for (Edge& edge : edges) {
      if (!touches(edge, j)) continue;
      edge.valid = !joined.contains(otherEnd(edge, j));
      if (edge.i == j) {
        edge.i = i;
      } else {
        edge.j = i;
      }
    }
    for (Edge& edge : edges) {
      if (touches(edge, i)) edge = weighed(edge);
    }
  }

  TriangleMesh& mesh;
  std::vector<Matrix> matrices;
  std::vector<Edge> edges;
};

}  // namespace

int decimateSlowly(TriangleMesh& mesh, double rate) {
  return SlowDecimation(mesh).run(rate);
}

}  // namespace gravlin::test
