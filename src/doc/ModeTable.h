#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "doc/DisplayMode.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

/// What the values of a field belong to. None: the mode shows no field.
enum class Site {
  None,
  Vertices,  ///< double[V]
  Edges,     ///< double[3F], numbered as TriangleMesh::faceAdjacency
  Faces,     ///< double[F]
};

/// What a redraw finds anew, beside the normals, when the geometry has changed.
enum class Needs { Nothing, Curvature, EdgeCurvature, Creases, VertexErrors, FaceErrors };

/// What the values of a field are taken from.
struct FieldSource {
  const TriangleMesh& mesh;
  std::span<const double> vertexErrors = {};  ///< [V], see ShapeError.h
  std::span<const double> faceErrors = {};    ///< [F]
};

/// A display mode, and what everybody has to know of it beside how it is drawn: the redraw what it
/// has to find anew; drawing, histogram, legend, dump and report where the values of its field come
/// from.
///
/// A mode with a field is drawn by its site: faces in the colours of their vertices' values, faces
/// in one colour, or edges. RenderDispatcher.cpp tells what all others draw.
struct Mode {
  int number;  ///< a DisplayMode; modes without a name there have numbers from `firstOwnMode` on
  Needs needs = Needs::Nothing;

  // --- The field, if there is one ---
  std::string_view field = {};  ///< its name inside a sentence, "mean curvature"
  Site site = Site::None;
  /// The values, as many as the site says, of any mesh with topology and normals; empty while what
  /// the mode needs has not been found.
  std::vector<double> (*values)(const FieldSource& source) = nullptr;
  /// The power of a length that the values are: -1 for curvature. Values are in units of memory.
  int lengthPower = 0;
  /// Where the mesh keeps the shape and the scale that the values were found on; null: they are of
  /// the mesh as it is.
  FieldOrigin TriangleMesh::*origin = nullptr;
};

/// The first number for modes that are in no list of numbers but this table. What such a mode shows
/// is dumped and reported while it is shown, so that dumps and reports of other modes do not change
/// when one is added.
inline constexpr int firstOwnMode = 100;

/// All modes, each number once; fields in the order in which `report` tells of them.
std::span<const Mode> modeTable();

/// The row with this number, or null.
const Mode* findMode(int number);

/// How many values a field has on this site.
std::size_t valueCount(Site site, const TriangleMesh& mesh);

/// The name at the beginning of a line: "Mean curvature".
std::string fieldTitle(const Mode& mode);

/// What the values of the mode's field were found on.
FieldOrigin fieldOrigin(const Mode& mode, const TriangleMesh& mesh);

/// Whether the mode's field is made from the principal curvatures.
bool showsPrincipalCurvature(const Mode& mode);

}  // namespace gravlin
