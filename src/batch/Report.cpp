#include "batch/Report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>

#include "batch/Session.h"
#include "features/LineChains.h"
#include "mesh/FaceGeometry.h"
#include "mesh/MeshMeasures.h"
#include "mesh/MeshTopology.h"

namespace gravlin {
namespace {

/// A table with one row per line and no more columns than a terminal has.
class Summary {
 public:
  Summary() { text.imbue(std::locale::classic()); }

  template <class... Parts>
  void row(std::string_view name, const Parts&... parts) {
    constexpr std::size_t column = 22;
    text << name << std::string(column - name.size(), ' ');
    (add(parts), ...);
    text << '\n';
  }

  std::string str() const { return text.str(); }

 private:
  template <class Part>
  void add(const Part& part) {
    text << part;
  }
  void add(double number) {
    text << number + 0.0;  // so that there is no "-0"
  }

  std::ostringstream text;
};

struct Point {
  Vec3 at;
};
std::ostream& operator<<(std::ostream& text, const Point& point) {
  const Vec3 p = point.at + Vec3{};  // so that there is no "-0"
  return text << '(' << p.x << ", " << p.y << ", " << p.z << ')';
}

void addCounts(Summary& summary, const TriangleMesh& mesh, const MeshTopology& topology) {
  std::array<int, 3> ofKind = {};
  for (const int kind : mesh.vertexKind) ++ofKind[static_cast<std::size_t>(kind)];
  const int unused = mesh.vertexCount - topology.usedVertices;
  ofKind[NonManifoldVertex] -= unused;
  summary.row("vertices", topology.usedVertices, " used: ", ofKind[InteriorVertex], " interior, ",
              ofKind[BoundaryVertex], " boundary, ", ofKind[NonManifoldVertex], " non-manifold; ",
              unused, " unused");
  summary.row("faces", topology.validFaces, " valid; ", mesh.faceCount - topology.validFaces,
              " invalid");
  summary.row("edges", topology.edges, ": ", topology.boundaryEdges, " boundary, ",
              topology.nonManifoldEdges, " with more than two faces");
  summary.row("boundary loops", topology.boundaryLoops);
  summary.row("components", topology.components);
  summary.row("Euler characteristic", topology.eulerCharacteristic());
}

void addMeasures(Summary& summary, const TriangleMesh& mesh, const MeshTopology& topology) {
  const double unit = mesh.extentTolerance;
  double area = 0.0;
  for (int f = 0; f < mesh.faceCount; ++f) area += faceArea(mesh, f);
  summary.row("area", area * unit * unit);
  summary.row("volume", enclosedVolume(mesh) * unit * unit * unit,
              topology.boundaryEdges > 0 ? " (the surface is open)" : "");
}

void addBox(Summary& summary, const TriangleMesh& mesh) {
  const double infinity = std::numeric_limits<double>::infinity();
  Vec3 least = {infinity, infinity, infinity};
  Vec3 largest = -least;
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (mesh.neighbourCount(i) == 0) continue;
    const Vec3 p = mesh.position(i);
    least = {std::min(least.x, p.x), std::min(least.y, p.y), std::min(least.z, p.z)};
    largest = {std::max(largest.x, p.x), std::max(largest.y, p.y), std::max(largest.z, p.z)};
  }
  if (largest.x < least.x) return;
  const Vec3 centre = 0.5 * (loadVec3(mesh.boxMin.data()) + loadVec3(mesh.boxMax.data()));
  const double unit = mesh.extentTolerance;
  summary.row("box", Point{centre + unit * least}, " to ", Point{centre + unit * largest});
}

/// How a field becomes a row.
struct FieldRow {
  std::string_view name;
  std::size_t count;
  double scale;         ///< from units of memory to units of the file
  bool ofEarlierShape;  ///< the field is older than the mesh's present shape
};

/// One row about a field of values; none without values.
template <class ValueAt>
void addStatistics(Summary& summary, const FieldRow& row, const ValueAt& valueAt) {
  const auto [name, count, scale, ofEarlierShape] = row;
  if (count == 0) return;
  double least = std::numeric_limits<double>::infinity();
  double largest = -least;
  double sum = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    const double value = scale * valueAt(i);
    least = std::min(least, value);
    largest = std::max(largest, value);
    sum += value;
  }
  const double mean = sum / static_cast<double>(count);
  double squares = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    const double deviation = scale * valueAt(i) - mean;
    squares += deviation * deviation;
  }
  summary.row(name, "from ", least, " to ", largest, ", mean ", mean, ", deviation ",
              std::sqrt(squares / static_cast<double>(count)),
              ofEarlierShape ? " (of an earlier shape)" : "");
}

void addCurvatures(Summary& summary, const TriangleMesh& mesh) {
  const std::vector<double>& kMax = mesh.maxCurvature;
  const std::vector<double>& kMin = mesh.minCurvature;
  const FieldOrigin& origin = mesh.curvatureOrigin;
  const double perLength = 1.0 / origin.unit;
  const bool isEarlier = origin.shape != mesh.shape;
  const auto row = [&](std::string_view name, double scale) {
    return FieldRow{name, kMin.size(), scale, isEarlier};
  };
  addStatistics(summary, row("maximum curvature", perLength),
                [&](std::size_t i) { return kMax[i]; });
  addStatistics(summary, row("minimum curvature", perLength),
                [&](std::size_t i) { return kMin[i]; });
  addStatistics(summary, row("mean curvature", perLength),
                [&](std::size_t i) { return (kMax[i] + kMin[i]) * 0.5; });
  addStatistics(summary, row("Gaussian curvature", perLength * perLength),
                [&](std::size_t i) { return kMax[i] * kMin[i]; });
  addStatistics(summary, row("total curvature", perLength),
                [&](std::size_t i) { return std::abs(kMax[i]) + std::abs(kMin[i]); });
}

void addEdgeCurvature(Summary& summary, const TriangleMesh& mesh) {
  const FieldOrigin& origin = mesh.edgeCurvatureOrigin;
  addStatistics(
      summary,
      {"edge curvature", mesh.edgeCurvatures.size(), 1.0 / origin.unit, origin.shape != mesh.shape},
      [&](std::size_t i) { return mesh.edgeCurvatures[i]; });
}

void addLines(Summary& summary, const TriangleMesh& mesh, std::string_view name,
              const std::vector<IndexList>& links) {
  if (links.empty()) return;
  const std::vector<Polyline> lines = chainLinks(links);
  double total = 0.0;
  for (const Polyline& line : lines) total += polylineLength(mesh, line);
  summary.row(name, lines.size(), ", length ", total * mesh.extentTolerance);
}

}  // namespace

std::string summarize(const TriangleMesh& mesh, LineOrigin origin) {
  Summary summary;
  const MeshTopology topology = measureTopology(mesh);
  addCounts(summary, mesh, topology);
  addMeasures(summary, mesh, topology);
  addBox(summary, mesh);
  addCurvatures(summary, mesh);
  addEdgeCurvature(summary, mesh);
  const bool creases = origin == LineOrigin::Creases;
  addLines(summary, mesh, creases ? "convex creases" : "ridge lines", mesh.ridgeLinks);
  addLines(summary, mesh, creases ? "concave creases" : "valley lines", mesh.valleyLinks);
  return summary.str();
}

Step reportStep() {
  return {.name = "report",
          .menu = "Chain",
          .summary = "print a readable summary of the mesh",
          .run = [](Session& session, const StepCall&) {
            const CGravlinDoc& document = session.document;
            const TriangleMesh* mesh = document.currentMesh.get();
            const std::string text =
                mesh == nullptr ? "no mesh\n" : summarize(*mesh, document.lineOrigin());
            std::fputs(text.c_str(), session.streams.output);
          }};
}

}  // namespace gravlin
