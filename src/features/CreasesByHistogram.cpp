#include "features/CreasesByHistogram.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

#include "features/EdgeFold.h"
#include "features/LineFields.h"
#include "features/LinkGrowth.h"
#include "mesh/Corner.h"
#include "numeric/Rollback.h"

namespace gravlin {
namespace {

constexpr double pi = 3.14159265;
constexpr double twoPi = 6.2831853;

enum class Fold { Convex, Concave };

/// An interior edge as seen from the face with the smaller index.
struct InteriorEdge {
  int f;
  std::size_t edge;  ///< of face f: from corner `edge` to the next
  int g;
};

int acrossEdge(const TriangleMesh& mesh, int face, std::size_t edge) {
  return mesh.faceAdjacency[3 * static_cast<std::size_t>(face) + edge % 3];
}

/// Calls `visit` for every interior edge, once each.
template <class Visit>
void forEachInteriorEdge(const TriangleMesh& mesh, Visit visit) {
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    for (std::size_t k = 0; k < 3; ++k) {
      const int g = acrossEdge(mesh, f, k);
      if (g > f) visit(InteriorEdge{f, k, g});
    }
  }
}

/// Nothing where the fold is not defined or exactly flat.
std::optional<Fold> foldOf(const TriangleMesh& mesh, const InteriorEdge& e) {
  if (const auto convex = clearlyConvex(mesh, e.f, e.g)) {
    return *convex ? Fold::Convex : Fold::Concave;
  }
  const EdgeFold fold = edgeFold(mesh, e.f, e.g);
  const double s = fold.foldSum;
  if (!fold.centroidsDiffer || !(s >= 0.0 && s <= twoPi) || s == pi) return std::nullopt;
  return s > pi ? Fold::Convex : Fold::Concave;
}

/// The mean cosine between the faces on one side of an edge: `face` is the face on that side,
/// `edge` its number there. Of its two other neighbours, each is compared with the next face around
/// the corner opposite the edge. Nothing when none of these faces exists.
std::optional<float> sideAverage(const TriangleMesh& mesh, int face, std::size_t edge) {
  const int opposite = mesh.corners(face)[previousCorner(edge)];
  double sum = 0.0;
  int count = 0;
  const auto addPair = [&](int near, std::size_t cornersBack) {
    if (near < 0) return;
    const std::size_t corner = cornerOf(mesh.corners(near), opposite);
    if (corner == noCorner) return;
    const int far = acrossEdge(mesh, near, corner + cornersBack);
    if (far < 0) return;
    sum += dot(mesh.faceNormal(near), mesh.faceNormal(far));
    ++count;
  };
  addPair(acrossEdge(mesh, face, edge + 1), 2);  // across the edge that ends at the corner
  addPair(acrossEdge(mesh, face, edge + 2), 0);  // across the edge that starts there
  if (count == 0) return std::nullopt;
  return static_cast<float>(sum / count);
}

/// The number in face g of the edge that it shares with face f; `noCorner` when the two run through
/// it in the same direction.
std::size_t sharedEdge(const TriangleMesh& mesh, const InteriorEdge& e) {
  const auto corners = mesh.corners(e.f);
  return sideOf(mesh.corners(e.g), {.from = corners[nextCorner(e.edge)], .to = corners[e.edge]});
}

bool sharperThanBothSides(const TriangleMesh& mesh, const InteriorEdge& e, float cosine) {
  const std::size_t inG = sharedEdge(mesh, e);
  if (inG == noCorner) return false;
  const auto sideF = sideAverage(mesh, e.f, e.edge);
  const auto sideG = sideAverage(mesh, e.g, inG);
  return sideF && sideG && !(cosine >= *sideF) && !(cosine >= *sideG);
}

struct CosineThresholds {
  float high;
  float low;
};

/// Reorders the cosines.
CosineThresholds thresholds(std::vector<float>& cosines, CreaseShares shares) {
  const auto count = static_cast<double>(cosines.size());
  return {valueAtPosition(cosines, count * (1.0 - static_cast<double>(shares.hi))),
          valueAtPosition(cosines, count * (1.0 - static_cast<double>(shares.low)))};
}

struct KindThresholds {
  CosineThresholds convex;
  CosineThresholds concave;
};

KindThresholds findThresholds(const TriangleMesh& mesh, CreaseShares shares) {
  std::vector<float> convex;
  std::vector<float> concave;
  forEachInteriorEdge(mesh, [&](const InteriorEdge& e) {
    const float cosine = normalCosine(mesh, e.f, e.g);
    if (cosine != cosine) return;
    const std::optional<Fold> fold = foldOf(mesh, e);
    if (!fold) return;
    (*fold == Fold::Convex ? convex : concave).push_back(std::clamp(cosine, -1.0F, 1.0F));
  });
  return {thresholds(convex, shares), thresholds(concave, shares)};
}

}  // namespace

void detectCreasesByHistogram(TriangleMesh& mesh, CreaseShares shares) {
  const KindThresholds limits = findThresholds(mesh, shares);
  const float lowOfAny = std::max(limits.convex.low, limits.concave.low);

  const auto V = static_cast<std::size_t>(mesh.vertexCount);
  Rollback lines(mesh.ridgeLinks, mesh.valleyLinks);
  mesh.ridgeLinks.assign(V, IndexList());
  mesh.valleyLinks.assign(V, IndexList());
  std::vector<IndexList> weakConvex(V);
  std::vector<IndexList> weakConcave(V);
  forEachInteriorEdge(mesh, [&](const InteriorEdge& e) {
    const float cosine = normalCosine(mesh, e.f, e.g);
    if (!(cosine <= lowOfAny)) return;
    const std::optional<Fold> fold = foldOf(mesh, e);
    if (!fold) return;
    const bool isConvex = *fold == Fold::Convex;
    const CosineThresholds& limit = isConvex ? limits.convex : limits.concave;
    if (!(cosine <= limit.low) || !sharperThanBothSides(mesh, e, cosine)) return;
    const int a = mesh.corners(e.f)[e.edge];
    const int b = mesh.corners(e.f)[nextCorner(e.edge)];
    link(isConvex ? weakConvex : weakConcave, a, b);
    if (cosine < limit.high) link(isConvex ? mesh.ridgeLinks : mesh.valleyLinks, a, b);
  });
  growAlongWeakLinks(mesh.ridgeLinks, weakConvex);
  growAlongWeakLinks(mesh.valleyLinks, weakConcave);
  lines.keep();
}

}  // namespace gravlin
