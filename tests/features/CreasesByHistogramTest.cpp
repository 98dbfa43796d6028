#include <algorithm>
#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "features/CreasesByHistogram.h"
#include "features/EdgeFold.h"
#include "features/LineChains.h"
#include "features/LinkLaws.h"
#include "numeric/Index.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

using ::testing::Each;
using ::testing::IsEmpty;
using namespace gravlin::test;

int linkCount(const std::vector<IndexList>& links) {
  int ends = 0;
  for (const IndexList& list : links) ends += list.size();
  return ends / 2;
}

/// A sheet of `columns` x 8 squares, folded like a roof along column `columns / 2`: height rises by
/// `slope` per unit up to the fold, with a ripple that keeps other edges from being exactly flat.
TriangleMesh roof(int columns, double slope) {
  const int rows = 8;
  TriangleMesh mesh = grid(columns, rows);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 p = mesh.position(i);
    const double height = -slope * std::abs(p.x - columns / 2);
    mesh.setPosition(i, {p.x, p.y, height + 0.001 * std::sin(3.0 * p.x + 5.0 * p.y)});
  }
  mesh.computeFaceNormals();
  mesh.computeVertexNormals();
  return mesh;
}

TEST(CreasesByHistogram, TheFoldOfARoofIsAConvexLineOfItsLength) {
  TriangleMesh mesh = roof(12, 1.0);
  detectCreasesByHistogram(mesh, {0.93F, 0.88F});
  for (int r = 1; r + 1 < 8; ++r) {
    const int v = r * 13 + 6;
    EXPECT_THAT(mesh.ridgeLinks[static_cast<std::size_t>(v)],
                ::testing::UnorderedElementsAre(v - 13, v + 13));
    EXPECT_THAT(mesh.valleyLinks[static_cast<std::size_t>(v)],
                Each(::testing::AllOf(::testing::Ne(v - 13), ::testing::Ne(v + 13))));
  }
}

TEST(CreasesByHistogram, AFoldTheOtherWayIsConcave) {
  TriangleMesh mesh = roof(12, -1.0);
  detectCreasesByHistogram(mesh, {0.93F, 0.88F});
  const int v = 4 * 13 + 6;
  EXPECT_THAT(mesh.valleyLinks[static_cast<std::size_t>(v)],
              ::testing::UnorderedElementsAre(v - 13, v + 13));
  EXPECT_THAT(mesh.ridgeLinks[static_cast<std::size_t>(v)], IsEmpty());
}

TEST(CreasesByHistogram, BoundaryEdgesAreNeverLinked) {
  for (const double slope : {1.0, -1.0}) {
    TriangleMesh mesh = roof(12, slope);
    detectCreasesByHistogram(mesh, {0.0F, 0.0F});
    EXPECT_GT(linkCount(mesh.ridgeLinks), 5);
    EXPECT_GT(linkCount(mesh.valleyLinks), 5);
    int boundary = 0;
    for (std::size_t e = 0; e < mesh.faceAdjacency.size(); ++e) {
      if (mesh.faceAdjacency[e] >= 0) continue;
      ++boundary;
      const int a = mesh.faces[e];
      const int b = mesh.faces[e % 3 == 2 ? e - 2 : e + 1];
      for (const auto* links : {&mesh.ridgeLinks, &mesh.valleyLinks}) {
        EXPECT_THAT((*links)[toIndex(a)], ::testing::Not(::testing::Contains(b)));
        EXPECT_THAT((*links)[toIndex(b)], ::testing::Not(::testing::Contains(a)));
      }
    }
    EXPECT_EQ(boundary, 2 * (12 + 8));
  }
}

// Of the two faces of this square neither has another neighbour.
TEST(CreasesByHistogram, AnEdgeWithoutFacesBeyondOnOneSideIsNeverLinked) {
  TriangleMesh mesh =
      makeMesh({{0, 0, 0}, {1, 0, 1}, {1, 1, 0}, {0, 1, 1}}, {{0, 1, 2}, {0, 2, 3}});
  detectCreasesByHistogram(mesh, {0.0F, 0.0F});
  EXPECT_THAT(mesh.ridgeLinks, Each(IsEmpty()));
  EXPECT_THAT(mesh.valleyLinks, Each(IsEmpty()));
}

// The four corners of a square tube are right angles, and so are those next to each. A roof of a
// flat fold beside it keeps the thresholds above theirs; no face lies beyond its two.
TEST(CreasesByHistogram, AnEdgeAsSharpAsThoseBesideItIsNoCrease) {
  TriangleMesh mesh = makeMesh({{0, 0, 0},
                                {1, 0, 0},
                                {1, 1, 0},
                                {0, 1, 0},
                                {0, 0, 1},
                                {1, 0, 1},
                                {1, 1, 1},
                                {0, 1, 1},
                                {10, 0, 0.1F},
                                {10, 1, 0.1F},
                                {11, 0, 0},
                                {9, 0, 0}},
                               {{0, 1, 5},
                                {0, 5, 4},
                                {1, 2, 6},
                                {1, 6, 5},
                                {2, 3, 7},
                                {2, 7, 6},
                                {3, 0, 4},
                                {3, 4, 7},
                                {8, 10, 9},
                                {8, 9, 11}});
  detectCreasesByHistogram(mesh, {0.0F, 0.0F});
  EXPECT_EQ(linkCount(mesh.ridgeLinks), 0);
  EXPECT_EQ(linkCount(mesh.valleyLinks), 0);
}

TEST(CreasesByHistogram, WeakCreasesNeedAStrongOneToGrowFrom) {
  TriangleMesh mesh = roof(12, 1.0);
  detectCreasesByHistogram(mesh, {1.0F, 0.0F});
  EXPECT_EQ(linkCount(mesh.ridgeLinks), 0)
      << "at 1 the strong threshold is the sharpest edge itself, which is not below it";
}

TEST(CreasesByHistogram, AWeakerShareNeverLosesAnEdge) {
  TriangleMesh few = roof(12, 1.0);
  TriangleMesh many = few;
  detectCreasesByHistogram(few, {0.95F, 0.95F});
  detectCreasesByHistogram(many, {0.95F, 0.5F});
  EXPECT_GT(linkCount(few.ridgeLinks), 5);
  EXPECT_GT(linkCount(many.ridgeLinks), linkCount(few.ridgeLinks));
  for (std::size_t v = 0; v < few.ridgeLinks.size(); ++v) {
    for (const int w : few.ridgeLinks[v]) {
      EXPECT_THAT(many.ridgeLinks[v], ::testing::Contains(w));
    }
  }
}

/// The creases found step by step with no regard to time, and why candidates were dropped.
struct PlainCreases {
  using Lists = std::vector<std::vector<int>>;
  const TriangleMesh& mesh;
  Lists convex;
  Lists concave;
  int droppedByFOnly = 0;
  int droppedByGOnly = 0;
  int withoutFarFaces = 0;  ///< on exactly one side
  int grown = 0;

  PlainCreases(const TriangleMesh& m, CreaseShares shares)
      : mesh(m), convex(size()), concave(size()) {
    std::vector<float> X;
    std::vector<float> Y;
    forEachEdge([&](int f, int, int, int g) {
      const double s = edgeFold(mesh, f, g).foldSum;
      if (!edgeFold(mesh, f, g).centroidsDiffer || !(s >= 0.0 && s <= 6.2831853)) return;
      const float c = std::min(1.0F, std::max(-1.0F, normalCosine(mesh, f, g)));
      if (s > 3.14159265) X.push_back(c);
      if (s < 3.14159265) Y.push_back(c);
    });
    std::sort(X.begin(), X.end());
    std::sort(Y.begin(), Y.end());
    const auto at = [](const std::vector<float>& sorted, float share) {
      if (sorted.empty()) return 0.0F;
      const auto n = static_cast<double>(sorted.size());
      const auto index = static_cast<std::size_t>(n * (1.0 - static_cast<double>(share)));
      return sorted[std::min(index, sorted.size() - 1)];
    };
    Lists weakConvex(size());
    Lists weakConcave(size());
    forEachEdge([&](int f, int a, int b, int g) {
      const double s = edgeFold(mesh, f, g).foldSum;
      const float c = normalCosine(mesh, f, g);
      const bool isConvex = s > 3.14159265 && c <= at(X, shares.low);
      const bool isConcave = s < 3.14159265 && c <= at(Y, shares.low);
      if (!(isConvex || isConcave) || !sharpest(f, a, b, g, c)) return;
      link(isConvex ? weakConvex : weakConcave, a, b);
      if (isConvex && c < at(X, shares.hi)) link(convex, a, b);
      if (isConcave && c < at(Y, shares.hi)) link(concave, a, b);
    });
    grow(convex, weakConvex);
    grow(concave, weakConcave);
  }

  std::size_t size() const { return static_cast<std::size_t>(mesh.vertexCount); }

  template <class Visit>
  void forEachEdge(Visit visit) const {
    for (int f = 0; f < mesh.faceCount; ++f) {
      for (std::size_t k = 0; k < 3; ++k) {
        const int g = mesh.faceAdjacency[3 * static_cast<std::size_t>(f) + k];
        if (g > f) visit(f, mesh.corners(f)[k], mesh.corners(f)[(k + 1) % 3], g);
      }
    }
  }

  static void link(Lists& lists, int a, int b) {
    lists[static_cast<std::size_t>(a)].push_back(b);
    lists[static_cast<std::size_t>(b)].push_back(a);
  }

  static void grow(Lists& strong, const Lists& weak, int& grown) {
    for (bool changed = true; changed;) {
      changed = false;
      for (std::size_t v = 0; v < strong.size(); ++v) {
        if (strong[v].empty()) continue;
        for (const int w : weak[v]) {
          if (std::count(strong[v].begin(), strong[v].end(), w) != 0) continue;
          link(strong, static_cast<int>(v), w);
          changed = true;
          ++grown;
        }
      }
    }
  }
  void grow(Lists& strong, const Lists& weak) { grow(strong, weak, grown); }

  int third(int f, int a, int b) const {
    for (const int v : mesh.corners(f)) {
      if (v != a && v != b) return v;
    }
    return -1;
  }

  /// The face across the edge of `f` between two vertices; -1 for none and for no face.
  int across(int f, int a, int b) const {
    for (std::size_t k = 0; f >= 0 && k < 3; ++k) {
      const int p = mesh.corners(f)[k];
      const int q = mesh.corners(f)[(k + 1) % 3];
      if ((p == a && q == b) || (p == b && q == a)) {
        return mesh.faceAdjacency[3 * static_cast<std::size_t>(f) + k];
      }
    }
    return -1;
  }

  /// The corner of `f` before, or after, the given one.
  int beside(int f, int corner, std::size_t steps) const {
    for (std::size_t k = 0; k < 3; ++k) {
      if (mesh.corners(f)[k] == corner) return mesh.corners(f)[(k + steps) % 3];
    }
    return -1;
  }

  /// The mean cosine on one side, where `o` is the far corner of face f and its corners run
  /// from, to, o. Nothing without far faces.
  std::optional<float> average(int f, int from, int to, int o) const {
    double sum = 0.0;
    int count = 0;
    const int f1 = across(f, to, o);
    const int f2 = across(f, o, from);
    const int h1 = f1 < 0 ? -1 : across(f1, beside(f1, o, 2), o);
    const int h2 = f2 < 0 ? -1 : across(f2, o, beside(f2, o, 1));
    for (const auto& [near, far] : {std::pair{f1, h1}, {f2, h2}}) {
      if (near < 0 || far < 0) continue;
      sum += dot(mesh.faceNormal(near), mesh.faceNormal(far));
      ++count;
    }
    if (count == 0) return std::nullopt;
    return static_cast<float>(sum / count);
  }

  bool sharpest(int f, int a, int b, int g, float c) {
    const auto avgF = average(f, a, b, third(f, a, b));
    const auto avgG = average(g, b, a, third(g, a, b));
    withoutFarFaces += avgF.has_value() != avgG.has_value() ? 1 : 0;
    if (!avgF || !avgG) return false;
    droppedByFOnly += c >= *avgF && !(c >= *avgG) ? 1 : 0;
    droppedByGOnly += c >= *avgG && !(c >= *avgF) ? 1 : 0;
    return c < *avgF && c < *avgG;
  }
};

TEST(CreasesByHistogram, LinksAreThoseOfThePlainAlgorithm) {
  std::mt19937 random(5);
  int droppedByFOnly = 0;
  int droppedByGOnly = 0;
  int withoutFarFaces = 0;
  int grown = 0;
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    const auto size = static_cast<double>(1 + random() % 8);
    TriangleMesh mesh = round % 3 == 0   ? jittered(grid(2, 2), 0.3)
                        : round % 3 == 1 ? jittered(bumpyGrid(6, 5), 0.05 * size)
                                         : jittered(torus(9, 7), 0.02 * size);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      const Vec3 p = mesh.position(i);
      mesh.setPosition(i, {p.x, p.y, p.z + 0.001 * static_cast<double>(random() % 300)});
    }
    mesh.computeNormals();
    const CreaseShares shares = {static_cast<float>(random() % 101) * 0.01F,
                                 static_cast<float>(random() % 101) * 0.01F};
    const PlainCreases plain(mesh, shares);
    detectCreasesByHistogram(mesh, shares);
    const auto listsOf = [](const std::vector<IndexList>& links) {
      PlainCreases::Lists lists;
      for (const IndexList& list : links) lists.emplace_back(list.begin(), list.end());
      return lists;
    };
    ASSERT_EQ(listsOf(mesh.ridgeLinks), plain.convex);
    ASSERT_EQ(listsOf(mesh.valleyLinks), plain.concave);
    droppedByFOnly += plain.droppedByFOnly;
    droppedByGOnly += plain.droppedByGOnly;
    withoutFarFaces += plain.withoutFarFaces;
    grown += plain.grown;
  }
  EXPECT_GT(droppedByFOnly, 100);
  EXPECT_GT(droppedByGOnly, 100);
  EXPECT_GT(withoutFarFaces, 10);
  EXPECT_GT(grown, 100);
}

enum class Side { Convex, Concave };

/// The share of one kind of edges that is less sharp than the `count` sharpest ones.
float shareBeyond(const TriangleMesh& mesh, int count, Side side) {
  int edges = 0;
  for (std::size_t e = 0; e < mesh.faceAdjacency.size(); ++e) {
    const int f = static_cast<int>(e / 3);
    const int g = mesh.faceAdjacency[e];
    if (g <= f) continue;
    const double sum = edgeFold(mesh, f, g).foldSum;
    edges += (side == Side::Convex ? sum > 3.14159265 : sum < 3.14159265) ? 1 : 0;
  }
  return static_cast<float>(1.0 - (count + 0.5) / edges);
}

/// The number of lines, all of which are closed loops of 64 vertices.
std::size_t loopCount(const std::vector<IndexList>& links) {
  const std::vector<Polyline> lines = chainLinks(links);
  for (const Polyline& line : lines) {
    EXPECT_TRUE(line.closed);
    EXPECT_EQ(line.vertices.size(), 64U);
  }
  return lines.size();
}

// Five corners of the section are sharp and convex, one is sharp and concave. The threshold is the
// sharpest edge of a fillet, and only what is below it is strong. Weak edges within a fillet touch
// no strong one. The shares hold for both kinds, which have different numbers of edges, so each
// kind gets a run of its own.
TEST(CreasesByHistogram, AFilletedMachinePartHasALoopForEachSharpCorner) {
  constexpr int around = 64;
  TriangleMesh mesh = flangedHub(around);
  const float ofConvex = shareBeyond(mesh, 5 * around, Side::Convex);
  detectCreasesByHistogram(mesh, {ofConvex, ofConvex});
  EXPECT_EQ(loopCount(mesh.ridgeLinks), 5U);
  const float ofConcave = shareBeyond(mesh, around, Side::Concave);
  detectCreasesByHistogram(mesh, {ofConcave, ofConcave});
  EXPECT_EQ(loopCount(mesh.valleyLinks), 1U);
}

TEST(CreasesByHistogram, TheResultDoesNotDependOnAnEarlierRun) {
  TriangleMesh mesh = roof(12, 1.0);
  detectCreasesByHistogram(mesh, {0.9F, 0.8F});
  const auto first = mesh.ridgeLinks;
  detectCreasesByHistogram(mesh, {0.9F, 0.8F});
  EXPECT_EQ(mesh.ridgeLinks, first);
}

/// How many faces have both vertices for corners.
int facesOnEdge(const TriangleMesh& mesh, int a, int b) {
  int count = 0;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto c = mesh.corners(f);
    if (std::ranges::count(c, a) + std::ranges::count(c, b) == 2) ++count;
  }
  return count;
}

TEST(CreasesByHistogram, OfHostileMeshesRunBetweenTwoFacesAndAreOfOneKind) {
  for (const float share : {0.0F, 0.9F, 1.0F, -5.0F, 7.0F}) {
    for (auto& [name, mesh] : hostileMeshes()) {
      SCOPED_TRACE(name);
      const TriangleMesh before = mesh;
      detectCreasesByHistogram(mesh, {share, share});
      expectLinksAlongEdges(mesh, mesh.ridgeLinks);
      expectLinksAlongEdges(mesh, mesh.valleyLinks);
      for (int v = 0; v < mesh.vertexCount; ++v) {
        for (const int u : mesh.ridgeLinks[toIndex(v)]) {
          EXPECT_GE(facesOnEdge(mesh, u, v), 2);
          EXPECT_EQ(std::ranges::count(mesh.valleyLinks[toIndex(v)], u), 0);
        }
        for (const int u : mesh.valleyLinks[toIndex(v)]) EXPECT_GE(facesOnEdge(mesh, u, v), 2);
      }
      EXPECT_EQ(mesh.faces, before.faces);
      EXPECT_EQ(mesh.faceAdjacency, before.faceAdjacency);
    }
  }
}

}  // namespace
}  // namespace gravlin
