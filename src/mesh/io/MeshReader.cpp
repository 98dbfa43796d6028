#include "mesh/io/MeshReader.h"

#include <array>
#include <system_error>

#include "mesh/io/CountedNoun.h"
#include "mesh/io/FormatTable.h"
#include "mesh/io/StreamText.h"
#include "mesh/MeshMeasures.h"
#include "mesh/PositionLoss.h"

namespace gravlin {
namespace {

/// "x and z", empty for no axis.
std::string axisNames(const std::array<bool, 3>& wanted) {
  std::string names;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (!wanted[axis]) continue;
    if (!names.empty()) names += " and ";
    names += static_cast<char>('x' + static_cast<char>(axis));
  }
  return names;
}

/// Reads positions, faces and marks.
ReadReport readRecords(const MeshFile& file, TriangleMesh& mesh) {
  const FileFormat* format = ownFormat(file.extension);
  if (format == nullptr || format->open == nullptr) {
    return {
        .oddities = "the extension \"" + file.extension + "\" has no reader, so the mesh is empty",
        .extent = ReadExtent::Nothing,
        .hasReader = false};
  }
  const StreamText text = readToEnd(file.stream);
  if (text.errorNumber != 0) throw std::system_error(text.errorNumber, std::generic_category());
  return format->open(text.view(), mesh);
}

}  // namespace

bool hasReader(std::string_view extension) {
  const FileFormat* format = ownFormat(extension);
  return format != nullptr && format->open != nullptr;
}

ReadReport readMesh(const MeshFile& file, TriangleMesh& mesh) {
  ReadReport report = readRecords(file, mesh);
  const auto add = [&report](const std::string& oddity) {
    report.oddities += (report.oddities.empty() ? "" : "; ") + oddity;
  };
  const int nonFinite = countNonFiniteVertices(mesh);
  if (nonFinite > 0) {
    add(counted(nonFinite, vertexNoun) + " with a coordinate that is no finite number");
  }
  const std::array<bool, 3> withoutBox = axesWithoutBox(mesh);
  report.positionLoss = normalizeMeasuringLoss(mesh).stored;
  if (report.oddities.empty() && !hasFiniteShape(mesh)) {
    add("the mesh cannot be scaled to the view, since all of it is at one place or its size is no "
        "finite number");
  }
  if (hasFiniteShape(mesh)) {
    if (const std::string axes = axisNames(withoutBox); !axes.empty()) {
      add("its box could not be measured along " + axes +
          ", so saving may move vertices by up to " + lossText(report.positionLoss) +
          " and the view does not fit (coordinates there only rise from vertex to vertex, or lie "
          "beyond 1000000)");
    }
  }
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  const int invalid = mesh.faceCount - mesh.countValidFaces();
  if (invalid > 0) add(counted(invalid, faceNoun) + " with unusable corners left out");
  return report;
}

}  // namespace gravlin
