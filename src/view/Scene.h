#pragma once

#include <cmath>
#include <optional>
#include <span>
#include <vector>

#include "mesh/TriangleMesh.h"
#include "view/ColourScale.h"

namespace gravlin {

enum class Primitive { Points, Lines, Triangles };

/// The sides of triangles that are drawn. The front is where the corners run counter-clockwise.
enum class Sides { Both, Front, Back };

/// Points, lines or triangles that are drawn with one call: n vertices in flat arrays.
struct Batch {
  Primitive primitive = Primitive::Triangles;
  bool lit = false;               ///< by the lights and with `normals`; otherwise plain colours
  bool flat = false;              ///< each triangle has the colour of its last vertex all over
  Colour colour;                  ///< of all vertices of an unlit batch without `colours`
  std::vector<float> positions;   ///< [3n]
  std::vector<float> normals;     ///< [3n] of a lit or fading batch, otherwise empty
  std::vector<float> colours;     ///< [3n], or empty
  std::vector<unsigned> indices;  ///< the vertices in drawing order; empty: 0, 1, ... n - 1
  /// [3n], or empty: each position is moved back along its vector by `setBackDistance`, which
  /// depends on the zoom, so that lines drawn in the original place stay in front.
  std::vector<float> setBackAlong;

  Sides sides = Sides::Both;
  bool outlined = false;         ///< triangles as their edges
  float lineWidthFactor = 1.0F;  ///< of the view's line width
  /// How far filled triangles are moved away from the viewer, in steps of the depth buffer and of
  /// the depth across a pixel; below 0 towards the viewer. Lines in the surface then stay in front.
  float depthOffset = 0.0F;
  /// Instead of a colour: grey where the normal is across the line of sight, white where it points
  /// at the viewer.
  bool fading = false;

  std::size_t vertexCount() const { return positions.size() / 3; }
  std::size_t drawnCount() const { return indices.empty() ? vertexCount() : indices.size(); }
};

/// Length of the setting back: 1/450 of the field of view in degrees, 0 if that is not finite.
inline double setBackDistance(float fieldOfView) {
  return std::isfinite(fieldOfView) ? static_cast<double>(fieldOfView) * 0.0022222222 : 0.0;
}

/// What a display mode shows, in drawing order. Plain data; SceneBuffers puts it on the screen.
struct Scene {
  std::vector<Batch> batches;
  std::optional<FieldColours> scale = std::nullopt;  ///< that the colours were taken from, if any
};

// --- What scenes are made of ---
// Faces that are invalid and whatever has a position that is not finite are left out. A normal that
// is not finite, or that has not been built, counts as 0.

/// Triangles lit with their face normals, without the face `except`.
Batch flatFaces(const TriangleMesh& mesh, int except = -1);
/// Triangles lit with the normals of their corners.
Batch smoothFaces(const TriangleMesh& mesh);
/// Unlit triangles of one colour.
Batch plainFaces(const TriangleMesh& mesh, const Colour& colour);
/// Unlit white triangles that hide what lies behind them and leave the lines in them in front, from
/// whichever side they are seen.
Batch whiteSurface(const TriangleMesh& mesh);
/// Unlit triangles of one colour, set back along the vertex normals.
Batch setBackFaces(const TriangleMesh& mesh, const Colour& colour);
/// Unlit triangles with a colour per corner, that of the vertex's value [V]. Nothing when there is
/// not one value per vertex.
Batch scalarFaces(const TriangleMesh& mesh, std::span<const double> values,
                  const FieldColours& colours);
/// Unlit triangles of one colour each, that of the face's value [F]. Nothing when there is not one
/// value per face.
Batch faceScalarFaces(const TriangleMesh& mesh, std::span<const double> values,
                      const FieldColours& colours);
/// The edges of the faces in the colours of their values [3F], numbered as `faceAdjacency`; an edge
/// between two faces once. Nothing when there are not three values per face.
Batch edgeScalarLines(const TriangleMesh& mesh, std::span<const double> values,
                      const FieldColours& colours);
/// The edges of the faces, each edge a-b once: where it runs from a higher to a lower index. So a
/// boundary edge is left out when its face has it the other way round.
Batch faceEdges(const TriangleMesh& mesh, const Colour& colour);

void addColour(Batch& batch, const Colour& colour);

/// Unlit points, lines or triangles of one colour, to be filled.
Batch plainBatch(Primitive primitive, const Colour& colour);
/// Appends vertices by their index, one for a point, two for a line, three for a triangle, if all
/// of them are finite.
void addVertices(Batch& batch, const TriangleMesh& mesh, std::span<const int> vertices);

}  // namespace gravlin
