#include "batch/Report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale>
#include <span>
#include <sstream>

#include "batch/Session.h"
#include "doc/ModeTable.h"
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
    text << name << std::string(name.size() < column ? column - name.size() : 1, ' ');
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
  const FileFrame frame = mesh.fileFrame();
  const Vec3 centre = {frame.origin[0], frame.origin[1], frame.origin[2]};
  const double unit = frame.scale;
  summary.row("box", Point{centre + unit * least}, " to ", Point{centre + unit * largest});
}

/// How a field becomes a row.
struct FieldRow {
  std::string_view name;
  double scale;         ///< from units of memory to units of the file
  bool ofEarlierShape;  ///< the field is older than the mesh's present shape
};

/// One row about a field of values; none without values.
void addStatistics(Summary& summary, const FieldRow& row, std::span<const double> values) {
  const auto [name, scale, ofEarlierShape] = row;
  if (values.empty()) return;
  double least = std::numeric_limits<double>::infinity();
  double largest = -least;
  double sum = 0.0;
  for (const double stored : values) {
    const double value = scale * stored;
    least = std::min(least, value);
    largest = std::max(largest, value);
    sum += value;
  }
  const auto count = static_cast<double>(values.size());
  const double mean = sum / count;
  double squares = 0.0;
  for (const double stored : values) {
    const double deviation = scale * stored - mean;
    squares += deviation * deviation;
  }
  summary.row(name, "from ", least, " to ", largest, ", mean ", mean, ", deviation ",
              std::sqrt(squares / count), ofEarlierShape ? " (of an earlier shape)" : "");
}

/// What a value of the field is multiplied with to be in units of the file.
double fileScale(const Mode& mode, const FieldOrigin& origin) {
  const double unit = mode.lengthPower < 0 ? 1.0 / origin.unit : origin.unit;
  double scale = 1.0;
  for (int k = 0; k < std::abs(mode.lengthPower); ++k) scale *= unit;
  return scale;
}

/// The fields that the mesh keeps, whatever is shown, and that of an own mode while it is shown.
void addFields(Summary& summary, const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  for (const Mode& mode : modeTable()) {
    const bool isOwn = mode.number >= firstOwnMode;
    if (isOwn ? mode.number != shown.displayMode : mode.origin == nullptr) continue;
    if (mode.site == Site::None) continue;
    const std::vector<double> kept = isOwn ? std::vector<double>() : mode.values({mesh});
    const FieldOrigin origin = fieldOrigin(mode, mesh);
    addStatistics(summary, {mode.field, fileScale(mode, origin), origin.shape != mesh.shape},
                  isOwn ? shown.fieldValues : std::span<const double>(kept));
  }
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

std::string summarize(const Shown& shown, LineOrigin origin) {
  const TriangleMesh& mesh = *shown.mesh;
  Summary summary;
  const MeshTopology topology = measureTopology(mesh);
  addCounts(summary, mesh, topology);
  addMeasures(summary, mesh, topology);
  addBox(summary, mesh);
  addFields(summary, shown);
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
            const Shown shown = document.shown();
            const std::string text =
                shown.mesh == nullptr ? "no mesh\n" : summarize(shown, document.lineOrigin());
            std::fputs(text.c_str(), session.streams.output);
          }};
}

}  // namespace gravlin
