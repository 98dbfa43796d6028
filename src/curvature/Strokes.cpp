#include "curvature/Strokes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <utility>

#include "mesh/Corner.h"
#include "mesh/FaceGeometry.h"
#include "numeric/Random.h"
#include "numeric/Vec3.h"

namespace gravlin {
namespace {

constexpr std::size_t pointsPerHalf = 200;
constexpr double perRandomNumber = 3.051850947599719e-5;  // 1 / Random::largest

// --- Inside a face ---

/// The two edges from corner 0 and what it takes to write a vector in them.
class FaceBasis {
 public:
  FaceBasis(const TriangleMesh& mesh, int face) {
    const auto c = mesh.corners(face);
    e1 = edge(mesh, c[0], c[1]);
    e2 = edge(mesh, c[0], c[2]);
    normal = cross(e1, e2);
  }

  std::optional<BarycentricStep> resolve(const Vec3& v) const {
    const Vec3 size = {std::abs(normal.x), std::abs(normal.y), std::abs(normal.z)};
    double determinant = normal.x;
    BarycentricStep step = {v.y * e2.z - v.z * e2.y, e1.y * v.z - e1.z * v.y};
    if (size.z >= size.x && size.z >= size.y) {
      determinant = normal.z;
      step = {v.x * e2.y - v.y * e2.x, e1.x * v.y - e1.y * v.x};
    } else if (size.y >= size.x) {
      determinant = normal.y;
      step = {v.z * e2.x - v.x * e2.z, e1.z * v.x - e1.x * v.z};
    }
    if (determinant == 0.0) return std::nullopt;
    return BarycentricStep{step.da / determinant, step.db / determinant};
  }

 private:
  /// The difference of two positions in single precision.
  static Vec3 edge(const TriangleMesh& mesh, int from, int to) {
    const float* p = mesh.vertices.data() + 3 * static_cast<std::size_t>(from);
    const float* q = mesh.vertices.data() + 3 * static_cast<std::size_t>(to);
    const std::array<float, 3> difference = {q[0] - p[0], q[1] - p[1], q[2] - p[2]};
    return loadVec3(difference.data());
  }

  Vec3 e1, e2, normal;
};

/// Directions of a face's corners, their signs made to agree.
using CornerDirections = std::array<Vec3, 3>;

CornerDirections directionsAt(const TriangleMesh& mesh, int face,
                              const std::vector<double>& field) {
  const auto c = mesh.corners(face);
  return {vectorAt(field, c[0]), vectorAt(field, c[1]), vectorAt(field, c[2])};
}

void align(Vec3& direction, const Vec3& reference) {
  if (dot(direction, reference) < 0.0) direction = -direction;
}

void alignTo(std::size_t corner, CornerDirections& directions) {
  align(directions[nextCorner(corner)], directions[corner]);
  align(directions[previousCorner(corner)], directions[corner]);
}

// --- From face to face ---

/// Where a step leaves its face: the edge from corner `edge` to the next, and how far along it.
struct Exit {
  std::size_t edge;
  double along;  ///< 0 at corner `edge`, 1 at the next
};

/// The first edge that the segment from `at` to at + step crosses, among those that its end lies
/// beyond; of equals the one named first. Nothing when the end is not a number.
std::optional<Exit> exitOf(const FacePoint& at, const BarycentricStep& step) {
  const double a = at.a + step.da;
  const double b = at.b + step.db;
  struct Candidate {
    bool beyond;
    double parameter;
    std::size_t edge;
  };
  const Candidate candidates[] = {{a + b > 1.0, (1.0 - at.a - at.b) / (step.da + step.db), 1},
                                  {a < 0.0, -at.a / step.da, 2},
                                  {b < 0.0, -at.b / step.db, 0}};
  const Candidate* first = nullptr;
  for (const Candidate& each : candidates) {
    if (each.beyond && (first == nullptr || each.parameter < first->parameter)) first = &each;
  }
  if (first == nullptr) return std::nullopt;
  const double t = first->parameter > 0.0 ? std::min(first->parameter, 1.0) : 0.0;
  const double atA = at.a + t * step.da;
  const double atB = at.b + t * step.db;
  const double along[] = {atA, atB, 1.0 - atB};
  return Exit{first->edge, std::clamp(along[first->edge], 0.0, 1.0)};
}

/// What both halves of a stroke have in common.
struct StrokeTask {
  const TriangleMesh& mesh;
  const std::vector<double>& field;  ///< double[3V]
  FacePoint seed;
  double halfLength;
  double step;
};

enum class Sense { Forward, Backward };

/// One half of a stroke, walked by its constructor.
class StrokeHalf {
 public:
  StrokeHalf(const StrokeTask& strokeTask, Sense sense);

  /// The points after the seed, nearest first.
  std::span<const FacePoint> line() const { return {points.data(), count}; }

 private:
  void walk();
  /// The way to the next point, in the plane of the face.
  std::optional<BarycentricStep> nextStep() const;
  /// Moves across an edge of the face; false at a border.
  bool crossEdge(const Exit& exit);
  void enterFace(int face);
  void store();
  bool turnsBack() const {
    return dot(positions[2] - positions[1], positions[0] - positions[1]) >= 0.0;
  }
  bool inRange() const { return at.a >= 0.0 && at.a < 1.0 && at.b >= 0.0 && at.b < 1.0; }

  const StrokeTask& task;
  std::array<FacePoint, pointsPerHalf> points;
  std::size_t count = 0;

  FacePoint at;
  std::optional<FaceBasis> basis;  ///< of the face of `at`, as all below
  Vec3 normal;
  CornerDirections directions;
  std::array<Vec3, 3> positions;  ///< of the last three points, the seed counting as one
};

StrokeHalf::StrokeHalf(const StrokeTask& strokeTask, Sense sense)
    : task(strokeTask), at(strokeTask.seed) {
  enterFace(at.face);
  if (sense == Sense::Backward) {
    for (Vec3& direction : directions) direction = -direction;
  }
  alignTo(0, directions);
  positions[2] = pointInFace(task.mesh, at);
  walk();
}

void StrokeHalf::walk() {
  double covered = 0.0;
  while (covered < task.halfLength && count < points.size()) {
    const std::optional<BarycentricStep> next = nextStep();
    if (!next) return;
    const double a = at.a + next->da;
    const double b = at.b + next->db;
    if (a + b <= 1.0 && a >= 0.0 && b >= 0.0) {
      at.a = a;
      at.b = b;
      store();
      covered += task.step;
    } else {
      const std::optional<Exit> exit = exitOf(at, *next);
      if (!exit || !crossEdge(*exit)) return;
      store();
      covered += length(positions[2] - positions[1]);
    }
    if ((count > 1 && turnsBack()) || !inRange()) return;
  }
}

std::optional<BarycentricStep> StrokeHalf::nextStep() const {
  Vec3 d = (1.0 - at.a - at.b) * directions[0] + at.a * directions[1] + at.b * directions[2];
  d -= dot(d, normal) * normal;
  const double size = length(d);
  if (size == 0.0) return std::nullopt;
  return basis->resolve(d / size * task.step);
}

bool StrokeHalf::crossEdge(const Exit& exit) {
  const auto from = task.mesh.corners(at.face);
  const int across = task.mesh.faceAdjacency[3 * static_cast<std::size_t>(at.face) + exit.edge];
  if (across < 0) return false;
  const auto to = task.mesh.corners(across);
  const std::size_t start = cornerOf(to, from[exit.edge]);
  const std::size_t end = cornerOf(to, from[nextCorner(exit.edge)]);
  if (start == noCorner || end == noCorner) return false;

  const Vec3 reference = directions[exit.edge];
  enterFace(across);
  align(directions[start], reference);
  alignTo(start, directions);
  std::array<double, 3> weights = {};
  weights[start] = 1.0 - exit.along;
  weights[end] = exit.along;
  at = {across, weights[1], weights[2]};
  return true;
}

void StrokeHalf::enterFace(int face) {
  basis.emplace(task.mesh, face);
  normal = task.mesh.faceNormal(face);
  directions = directionsAt(task.mesh, face, task.field);
}

void StrokeHalf::store() {
  points[count++] = at;
  positions = {positions[1], positions[2], pointInFace(task.mesh, at)};
}

std::vector<FacePoint> traceStroke(const StrokeTask& task) {
  if (!task.mesh.validFace(task.seed.face)) return {task.seed};
  const StrokeHalf backward(task, Sense::Backward);
  const StrokeHalf forward(task, Sense::Forward);
  const auto back = backward.line();
  const auto ahead = forward.line();
  std::vector<FacePoint> line;
  line.reserve(back.size() + 1 + ahead.size());
  line.assign(back.rbegin(), back.rend());
  line.push_back(task.seed);
  line.insert(line.end(), ahead.begin(), ahead.end());
  return line;
}

StrokeTask taskOf(const TriangleMesh& mesh, const std::vector<double>& field, const FacePoint& seed,
                  const StrokeExtent& extent) {
  return {mesh, field, seed, static_cast<double>(extent.length) * 0.5,
          static_cast<double>(extent.step)};
}

// --- Seeds ---

/// Faces with their areas in ascending order, equal areas by face index.
struct AreaTable {
  std::vector<int> faces;
  std::vector<float> runningSums;  ///< of the areas, added in single precision
};

AreaTable sortedAreas(const TriangleMesh& mesh) {
  struct Entry {
    std::uint32_t key;  ///< the bits of the area, which sort as the area does; NaN comes last
    int face;
  };
  std::vector<Entry> entries(static_cast<std::size_t>(mesh.faceCount));
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto area = static_cast<float>(faceArea(mesh, f));
    entries[static_cast<std::size_t>(f)] = {std::bit_cast<std::uint32_t>(area), f};
  }
  // Counting sort by eleven bits at a time is stable, so equal areas stay in face order.
  std::vector<Entry> sorted(entries.size());
  constexpr std::size_t buckets = 2048;
  for (unsigned shift = 0; shift < 32; shift += 11) {
    const auto bucketOf = [shift](const Entry& e) { return (e.key >> shift) % buckets; };
    std::array<std::size_t, buckets + 1> start = {};
    for (const Entry& e : entries) ++start[bucketOf(e) + 1];
    for (std::size_t n = 1; n <= buckets; ++n) start[n] += start[n - 1];
    for (const Entry& e : entries) sorted[start[bucketOf(e)]++] = e;
    std::swap(entries, sorted);
  }
  AreaTable table;
  table.faces.reserve(entries.size());
  table.runningSums.reserve(entries.size());
  float sum = 0.0F;
  for (const Entry& e : entries) {
    sum += std::bit_cast<float>(e.key);
    table.faces.push_back(e.face);
    table.runningSums.push_back(sum);
  }
  return table;
}

/// The face at the first place, the last not counted, whose running sum exceeds t; at the last
/// place when there is none.
int faceAt(const AreaTable& table, double t) {
  const auto first = table.runningSums.begin();
  const auto last = table.runningSums.end() - 1;
  // Sums never fall; ones that are not a number come last, and t is then not a number either.
  const auto found =
      std::partition_point(first, last, [t](float sum) { return t >= static_cast<double>(sum); });
  return table.faces[static_cast<std::size_t>(found - first)];
}

FacePoint nextSeed(const AreaTable& table, Random& random) {
  const double t = random.rand() * static_cast<double>(table.runningSums.back()) * perRandomNumber;
  const int face = faceAt(table, t);
  const double a = random.rand() * perRandomNumber;
  const double b = random.rand() * (1.0 - a) * perRandomNumber;
  return {face, a, b};
}

/// The order in which lines are traced: neighbours in the mesh one after the other, so that their
/// surroundings are still in the cache.
std::vector<std::size_t> orderByFace(const std::vector<FacePoint>& seeds) {
  std::vector<std::size_t> order(seeds.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&](std::size_t s, std::size_t t) {
    return std::pair(seeds[s].face, s) < std::pair(seeds[t].face, t);
  });
  return order;
}

}  // namespace

std::optional<BarycentricStep> directionToBarycentric(const TriangleMesh& mesh, int face,
                                                      const Vec3& v) {
  if (!mesh.validFace(face)) return std::nullopt;
  return FaceBasis(mesh, face).resolve(v);
}

std::vector<FacePoint> traceMaxStroke(const TriangleMesh& mesh, const FacePoint& seed,
                                      const StrokeExtent& extent) {
  return traceStroke(taskOf(mesh, mesh.maxDirection, seed, extent));
}

std::vector<FacePoint> traceMinStroke(const TriangleMesh& mesh, const FacePoint& seed,
                                      const StrokeExtent& extent) {
  return traceStroke(taskOf(mesh, mesh.minDirection, seed, extent));
}

void generateStrokes(TriangleMesh& mesh, int seedCount) {
  mesh.strokes = {};
  if (seedCount < 1 || mesh.faceCount < 1) return;
  if (mesh.faceNormals.empty()) mesh.computeFaceNormals();
  const AreaTable areas = sortedAreas(mesh);
  Strokes strokes;
  const auto S = static_cast<std::size_t>(seedCount);
  Random random(100);
  strokes.strokeSeeds.reserve(S);
  for (int s = 0; s < seedCount; ++s) strokes.strokeSeeds.push_back(nextSeed(areas, random));

  strokes.maxStrokes.resize(S);
  strokes.minStrokes.resize(S);
  for (const std::size_t s : orderByFace(strokes.strokeSeeds)) {
    const FacePoint& seed = strokes.strokeSeeds[s];
    strokes.maxStrokes[s] = traceMaxStroke(mesh, seed, {});
    strokes.minStrokes[s] = traceMinStroke(mesh, seed, {});
  }
  mesh.strokes = std::move(strokes);
}

}  // namespace gravlin
