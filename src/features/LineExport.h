#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "features/LineChains.h"
#include "features/SilhouetteLines.h"

namespace gravlin {

/// One line as it leaves the program.
struct ExportedLine {
  std::string_view kind;  ///< "ridge", "valley", "convex_crease" or "concave_crease"
  int kindNumber;         ///< 0 .. 3 in that order
  Polyline line;
  double
      meanCurvature;  ///< of the line's own principal curvature, 1/length in file units; 0 unknown
};

/// The lines of a mesh as far as a file can hold them.
struct LinesToExport {
  std::vector<ExportedLine> lines;
  /// Whether lines met positions that are not finite, in memory or in the file's units. There they
  /// are broken, and parts of one vertex are left out.
  bool broken = false;
};

/// How a view draws lines.
struct LineStyle {
  bool grayScale = false;   ///< white and black in place of colours
  bool penDrawing = false;  ///< black, slightly smoothed, and with the contour of the mesh
};

/// The lines of a picture.
struct LinesToDraw {
  std::vector<ExportedLine> lines;
  LineStyle style = {};
};

/// What the links of a mesh stand for.
enum class LineOrigin { RidgesAndValleys, Creases };

/// The chained ridge lines, then the chained valley lines of a mesh.
LinesToExport linesToExport(const TriangleMesh& mesh, LineOrigin origin);

/// The lines of a pen drawing, ridges first.
LinesToExport linesToExport(const TriangleMesh& mesh, const SilhouetteLines& drawing);

/// The lines as Wavefront text: one "v" record per line vertex, one "l" record per line, a group
/// per kind. A closed line repeats its first vertex. Positions in the file's units.
std::string linesAsObj(const TriangleMesh& mesh, const std::vector<ExportedLine>& lines);

/// The lines as legacy VTK polydata with the cell arrays "kind" and "meanCurvature". Positions in
/// the file's units.
std::string linesAsVtk(const TriangleMesh& mesh, const std::vector<ExportedLine>& lines);

}  // namespace gravlin
