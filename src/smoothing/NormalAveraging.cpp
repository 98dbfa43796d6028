#include "smoothing/NormalAveraging.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

#include "mesh/FaceGeometry.h"
#include "numeric/Index.h"
#include "numeric/ParallelLoop.h"

namespace gravlin {
namespace {

/// Replaces every normal by what `filter` gives for its face, all of them from the old normals, in
/// a parallel loop.
template <class Filter>
void replaceFaceNormals(TriangleMesh& mesh, Filter filter) {
  std::vector<float> filtered = mesh.faceNormals;
  parallelFor(mesh.faceCount, [&mesh, &filtered, filter](int f) mutable {
    if (mesh.validFace(f)) storeVec3(filtered.data() + 3 * toIndex(f), filter(f));
  });
  mesh.faceNormals = std::move(filtered);
}

template <class Visit>
void visitEdgeNeighbours(const TriangleMesh& mesh, int f, const Visit& visit) {
  for (std::size_t j = 0; j < 3; ++j) {
    const int g = mesh.faceAdjacency[3 * toIndex(f) + j];
    if (g >= 0) visit(g);
  }
}

template <class Visit>
void visitCornerNeighbours(const TriangleMesh& mesh, int f, const Visit& visit) {
  for (const int g : mesh.cornerNeighbourFaces[f]) {
    if (g >= 0 && g < mesh.faceCount) visit(g);
  }
}

/// The cosine of the angle between two face normals.
double cosineBetween(const TriangleMesh& mesh, int f, int g) {
  return std::clamp(dot(mesh.faceNormal(f), mesh.faceNormal(g)), -1.0, 1.0);
}

double centroidDistance(const TriangleMesh& mesh, int f, int g) {
  return length(singleFaceCentroid(mesh, g) - singleFaceCentroid(mesh, f));
}

/// A face whose normal is averaged in, its area counting `factor` times.
struct Candidate {
  int face;
  double factor = 1.0;
};

/// The weight of a candidate; without `anyDistance` one at no distance has none.
double weightOf(const TriangleMesh& mesh, const NormalWeight& weight, int f,
                const Candidate& candidate, bool anyDistance) {
  const int g = candidate.face;
  double k = std::acos(cosineBetween(mesh, f, g));
  if (!anyDistance) {
    const double distance = centroidDistance(mesh, f, g);
    if (distance == 0.0) return 0.0;
    if (weight.difference == CurvatureDifference) k /= distance;
  }
  const double exponent = weight.threshold * (k * k);
  const double area = candidate.factor * faceArea(mesh, g);
  return weight.shape == ExponentialWeight ? area * std::exp(-exponent) : area / (exponent + 1.0);
}

/// The sums behind a weighted mean of normals. What has no weight leaves no trace, even when it is
/// not a number.
class NormalMean {
 public:
  void add(double weight, const Vec3& normal) {
    if (weight == 0.0) return;
    sum += weight * normal;
    weights += weight;
  }

  /// The normalised mean, or `fallback` where there is none.
  Vec3 normalOr(const Vec3& fallback) const {
    if (weights == 0.0) return fallback;
    const Vec3 mean = sum / weights;
    const double size = length(mean);
    return size == 0.0 ? fallback : mean / size;
  }

 private:
  Vec3 sum;
  double weights = 0.0;
};

/// Finds the median neighbour of one face after another; keeps its lists between calls.
class MedianSearch {
 public:
  MedianSearch(const TriangleMesh& filtered, const MedianFilter& settings)
      : mesh(filtered), filter(settings) {}

  /// The neighbour of middle difference, or f itself when no candidate has that rank.
  int operator()(int f) {
    keys.clear();
    faces.clear();
    visitEdgeNeighbours(mesh, f, [&](int g) {
      const double key = keyOf(f, g);
      add(key, g);
      if (filter.weighted) add(key, g);
    });
    visitCornerNeighbours(mesh, f, [&](int g) { add(keyOf(f, g), g); });
    const std::size_t half = keys.size() / 2;
    const std::size_t rank = half + half % 2;
    if (rank == 0) return f;
    std::size_t median = placeOfRank(rank);
    if (filter.difference == AngleDifference && !arcCosinesKeepOrder(keys[median])) {
      for (double& key : keys) {
        if (key <= 1.0) key = std::acos(-key);
      }
      median = placeOfRank(rank);
    }
    return faces[median];
  }

 private:
  /// Angles are ranked by their negative cosine, which needs no arc cosine.
  double keyOf(int f, int g) const {
    const double cosine = cosineBetween(mesh, f, g);
    if (filter.difference == AngleDifference) return -cosine;
    const double distance = centroidDistance(mesh, f, g);
    return distance == 0.0 ? 0.0 : std::acos(cosine) / distance;
  }

  void add(double key, int face) {
    keys.push_back(std::isnan(key) ? std::numeric_limits<double>::infinity() : key);
    faces.push_back(face);
  }

  /// Where the key of the given rank stands; equal keys rank in the order in which they stand.
  std::size_t placeOfRank(std::size_t rank) {
    constexpr std::size_t fewKeys = 32;  // up to here counting beats partitioning
    if (keys.size() > fewKeys) return placeByPartition(rank);
    for (std::size_t i = 0; i < keys.size(); ++i) {
      std::size_t before = 0;
      for (std::size_t j = 0; j < i; ++j) before += keys[j] <= keys[i] ? 1 : 0;
      for (std::size_t j = i + 1; j < keys.size(); ++j) before += keys[j] < keys[i] ? 1 : 0;
      if (before + 1 == rank) return i;
    }
    return 0;  // not reached: every rank up to the number of keys is some key's
  }

  std::size_t placeByPartition(std::size_t rank) {
    places.resize(keys.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    const auto wanted = places.begin() + static_cast<std::ptrdiff_t>(rank) - 1;
    std::nth_element(places.begin(), wanted, places.end(), [&](std::size_t a, std::size_t b) {
      return keys[a] < keys[b] || (keys[a] == keys[b] && a < b);
    });
    return *wanted;
  }

  /// Whether the median is the same by angle as by cosine. Two different cosines may have angles
  /// that round to the same number only when they are closer than twice the largest error of an
  /// arc cosine, 4.5e-16, since its slope is nowhere below 1.
  bool arcCosinesKeepOrder(double median) const {
    constexpr double margin = 2e-15;
    return std::none_of(keys.begin(), keys.end(), [&](double key) {
      return key != median && std::abs(key - median) < margin;
    });
  }

  const TriangleMesh& mesh;
  const MedianFilter& filter;
  std::vector<double> keys;         ///< of the candidates, in the candidates' order
  std::vector<int> faces;           ///< the candidates
  std::vector<std::size_t> places;  ///< what placeByPartition sorts
};

}  // namespace

void averageNormalsWeighted(TriangleMesh& mesh, const NormalWeight& weight) {
  const bool anyDistance = weight.difference == AngleDifference;
  replaceFaceNormals(mesh, [&](int f) {
    NormalMean mean;
    visitEdgeNeighbours(mesh, f, [&](int g) {
      mean.add(weightOf(mesh, weight, f, {g}, anyDistance), mesh.faceNormal(g));
    });
    return mean.normalOr(mesh.faceNormal(f));
  });
}

void averageNormalsVertexWeighted(TriangleMesh& mesh, const NormalWeight& weight,
                                  double meetAtVertex) {
  replaceFaceNormals(mesh, [&](int f) {
    NormalMean mean;
    visitEdgeNeighbours(mesh, f, [&](int g) {
      mean.add(weightOf(mesh, weight, f, {g}, false), mesh.faceNormal(g));
    });
    visitCornerNeighbours(mesh, f, [&](int g) {
      mean.add(weightOf(mesh, weight, f, {g, meetAtVertex}, false), mesh.faceNormal(g));
    });
    return mean.normalOr(mesh.faceNormal(f));
  });
}

void averageNormalsMedian(TriangleMesh& mesh, const MedianFilter& filter) {
  replaceFaceNormals(mesh, [&mesh, median = MedianSearch(mesh, filter)](int f) mutable {
    return mesh.faceNormal(median(f));
  });
}

}  // namespace gravlin
