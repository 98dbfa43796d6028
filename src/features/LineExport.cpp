#include "features/LineExport.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <utility>

#include "features/LineFields.h"

namespace gravlin {
namespace {

constexpr std::array<std::string_view, 4> kindNames = {"ridge", "valley", "convex_crease",
                                                       "concave_crease"};

/// Appends the shortest text that reads back to the same number.
template <class Number>
void append(std::string& text, Number value) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  text.append(digits.data(), end);
}

/// Numbers the vertices of all lines 0, 1, 2, ... in the order in which lines first use them.
struct LineVertices {
  std::vector<int> order;   ///< the mesh's vertices that lines use
  std::vector<int> number;  ///< [V] position in `order`, or -1

  LineVertices(const TriangleMesh& mesh, const std::vector<ExportedLine>& lines)
      : number(static_cast<std::size_t>(mesh.vertexCount), -1) {
    for (const ExportedLine& exported : lines) {
      for (const int v : exported.line.vertices) {
        int& entry = number[static_cast<std::size_t>(v)];
        if (entry >= 0) continue;
        entry = static_cast<int>(order.size());
        order.push_back(v);
      }
    }
  }
};

/// A position in the units of the file.
std::array<float, 3> positionInFile(const TriangleMesh& mesh, int vertex) {
  const std::array<double, 3> p =
      mesh.fileFrame().toFile(mesh.vertices.data() + 3 * static_cast<std::size_t>(vertex));
  return {static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2])};
}

void appendPosition(std::string& text, const TriangleMesh& mesh, int vertex) {
  const auto [x, y, z] = positionInFile(mesh, vertex);
  append(text, x);
  text += ' ';
  append(text, y);
  text += ' ';
  append(text, z);
  text += '\n';
}

/// The parts of a line that run through finite positions: a program that reads the lines has no use
/// for others, or fails at them. A closed line that is broken begins behind the first break.
std::vector<Polyline> finiteParts(const TriangleMesh& mesh, Polyline line) {
  const auto isBroken = [&mesh](int v) {
    const auto [x, y, z] = positionInFile(mesh, v);
    return !std::isfinite(x) || !std::isfinite(y) || !std::isfinite(z);
  };
  std::vector<int>& vertices = line.vertices;
  const auto firstBreak = std::find_if(vertices.begin(), vertices.end(), isBroken);
  std::vector<Polyline> parts;
  if (firstBreak == vertices.end()) {
    parts.push_back(std::move(line));
    return parts;
  }
  if (line.closed) std::rotate(vertices.begin(), firstBreak, vertices.end());
  for (auto start = vertices.begin(); start != vertices.end();) {
    const auto end = std::find_if(start, vertices.end(), isBroken);
    if (end - start > 1) parts.push_back({.vertices = {start, end}, .closed = false});
    start = std::find_if_not(end, vertices.end(), isBroken);
  }
  return parts;
}

/// Calls `visit` for each vertex of a line in order; a closed line comes back to its first.
template <class Visit>
void forEachVertex(const Polyline& line, Visit visit) {
  for (const int v : line.vertices) visit(v);
  if (line.closed) visit(line.vertices.front());
}

std::size_t recordLength(const Polyline& line) {
  return line.vertices.size() + (line.closed ? 1 : 0);
}

double meanCurvatureAlong(const TriangleMesh& mesh, const Polyline& line,
                          const std::vector<double>& curvature) {
  if (curvature.size() != static_cast<std::size_t>(mesh.vertexCount)) return 0.0;
  double sum = 0.0;
  for (const int v : line.vertices) sum += curvature[static_cast<std::size_t>(v)];
  const double inMemory = sum / static_cast<double>(line.vertices.size());
  const double unit = mesh.curvatureOrigin.unit;
  return unit == 0.0 ? 0.0 : inMemory / unit;
}

/// The lines of one kind.
struct Lines {
  int kind;
  std::vector<Polyline> polylines;
  const std::vector<double>& curvature;
};

void addLines(const TriangleMesh& mesh, Lines added, LinesToExport& destination) {
  for (Polyline& polyline : added.polylines) {
    const std::size_t length = polyline.vertices.size();
    std::size_t kept = 0;
    for (Polyline& part : finiteParts(mesh, std::move(polyline))) {
      kept += part.vertices.size();
      const double mean = meanCurvatureAlong(mesh, part, added.curvature);
      destination.lines.push_back(
          {kindNames[static_cast<std::size_t>(added.kind)], added.kind, std::move(part), mean});
    }
    destination.broken |= kept < length;
  }
}

}  // namespace

LinesToExport linesToExport(const TriangleMesh& mesh, LineOrigin origin) {
  const int firstKind = origin == LineOrigin::RidgesAndValleys ? 0 : 2;
  LinesToExport all;
  addLines(mesh, {firstKind, chainLinks(mesh.ridgeLinks), mesh.maxCurvature}, all);
  addLines(mesh, {firstKind + 1, chainLinks(mesh.valleyLinks), mesh.minCurvature}, all);
  return all;
}

LinesToExport linesToExport(const TriangleMesh& mesh, const SilhouetteLines& drawing) {
  LinesToExport all;
  addLines(mesh, {0, drawing.ridges, mesh.maxCurvature}, all);
  addLines(mesh, {1, drawing.valleys, mesh.minCurvature}, all);
  return all;
}

std::string linesAsObj(const TriangleMesh& mesh, const std::vector<ExportedLine>& lines) {
  const LineVertices used(mesh, lines);
  std::string text;
  for (const int v : used.order) {
    text += "v ";
    appendPosition(text, mesh, v);
  }
  int group = -1;
  for (const ExportedLine& exported : lines) {
    if (std::exchange(group, exported.kindNumber) != exported.kindNumber) {
      text.append("g ").append(exported.kind).append("\n");
    }
    text += 'l';
    forEachVertex(exported.line, [&](int v) {
      text += ' ';
      append(text, used.number[static_cast<std::size_t>(v)] + 1);
    });
    text += '\n';
  }
  return text;
}

std::string linesAsVtk(const TriangleMesh& mesh, const std::vector<ExportedLine>& lines) {
  const LineVertices used(mesh, lines);
  std::string text = "# vtk DataFile Version 3.0\nFeature lines\nASCII\nDATASET POLYDATA\nPOINTS ";
  append(text, used.order.size());
  text += " float\n";
  for (const int v : used.order) appendPosition(text, mesh, v);

  std::size_t numbers = 0;
  for (const ExportedLine& exported : lines) numbers += 1 + recordLength(exported.line);
  text += "LINES ";
  append(text, lines.size());
  text += ' ';
  append(text, numbers);
  text += '\n';
  for (const ExportedLine& exported : lines) {
    append(text, recordLength(exported.line));
    forEachVertex(exported.line, [&](int v) {
      text += ' ';
      append(text, used.number[static_cast<std::size_t>(v)]);
    });
    text += '\n';
  }

  text += "CELL_DATA ";
  append(text, lines.size());
  text += "\nSCALARS kind int 1\nLOOKUP_TABLE default\n";
  for (const ExportedLine& exported : lines) {
    append(text, exported.kindNumber);
    text += '\n';
  }
  text += "SCALARS meanCurvature double 1\nLOOKUP_TABLE default\n";
  for (const ExportedLine& exported : lines) {
    append(text, exported.meanCurvature);
    text += '\n';
  }
  return text;
}

}  // namespace gravlin
