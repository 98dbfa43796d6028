#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "features/LineChains.h"

namespace gravlin {

/// One line as it leaves the program.
struct ExportedLine {
  std::string_view kind;  ///< "ridge", "valley", "convex_crease" or "concave_crease"
  int kindNumber;         ///< 0 .. 3 in that order
  Polyline line;
  double
      meanCurvature;  ///< of the line's own principal curvature, 1/length in file units; 0 unknown
};

/// What the links of a mesh stand for.
enum class LineOrigin { RidgesAndValleys, Creases };

/// The chained ridge lines, then the chained valley lines of a mesh.
std::vector<ExportedLine> linesToExport(const TriangleMesh& mesh, LineOrigin origin);

/// The lines as Wavefront text: one "v" record per line vertex, one "l" record per line, a group
/// per kind. A closed line repeats its first vertex. Positions in the file's units.
std::string linesAsObj(const TriangleMesh& mesh, const std::vector<ExportedLine>& lines);

/// The lines as legacy VTK polydata with the cell arrays "kind" and "meanCurvature". Positions in
/// the file's units.
std::string linesAsVtk(const TriangleMesh& mesh, const std::vector<ExportedLine>& lines);

}  // namespace gravlin
