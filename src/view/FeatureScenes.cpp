#include "view/FeatureScenes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <utility>

#include "mesh/Corner.h"
#include "mesh/FaceGeometry.h"
#include "mesh/MeshMeasures.h"
#include "view/Palette.h"

namespace gravlin {
namespace {

/// One kind of line as it is drawn.
struct DrawnKind {
  const std::vector<int>& marks;
  const std::vector<IndexList>& links;
  const std::vector<double>& curvature;
  const std::vector<double>& alongLine;  ///< [3V] the direction in which the line runs
  Colour colour;

  bool marked(int vertex) const {
    const auto at = static_cast<std::size_t>(vertex);
    return at < marks.size() && marks[at] != 0;
  }
};

std::array<DrawnKind, 2> drawnKinds(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  const bool grey = shown.grayScale;
  return {{{mesh.ridgeMarks, mesh.ridgeLinks, mesh.maxCurvature, mesh.maxDerivativeGradient,
            grey ? white : red},
           {mesh.valleyMarks, mesh.valleyLinks, mesh.minCurvature, mesh.minDerivativeGradient,
            grey ? black : blue}}};
}

Batch markedPoints(const TriangleMesh& mesh, const DrawnKind& kind) {
  Batch points = plainBatch(Primitive::Points, kind.colour);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (kind.marked(i)) addVertices(points, mesh, {{i}});
  }
  return points;
}

/// Calls `visit` for every linked pair once, from its smaller vertex.
template <class Visit>
void forEachLink(const TriangleMesh& mesh, std::span<const IndexList> links, Visit visit) {
  const auto known = std::min(links.size(), static_cast<std::size_t>(mesh.vertexCount));
  for (int i = 0; i < static_cast<int>(known); ++i) {
    for (const int j : links[static_cast<std::size_t>(i)]) {
      if (j > i) visit(i, j);
    }
  }
}

Batch linkedLines(const TriangleMesh& mesh, std::span<const IndexList> links,
                  const Colour& colour) {
  Batch lines = plainBatch(Primitive::Lines, colour);
  forEachLink(mesh, links, [&](int i, int j) { addVertices(lines, mesh, {{i, j}}); });
  return lines;
}

/// Appends a line; false for one that is not finite.
bool addSegment(Batch& lines, const Vec3& a, const Vec3& b) {
  if (!std::isfinite(a.x + a.y + a.z + b.x + b.y + b.z)) return false;
  for (const Vec3& p : {a, b}) {
    lines.positions.insert(lines.positions.end(), {static_cast<float>(p.x), static_cast<float>(p.y),
                                                   static_cast<float>(p.z)});
  }
  return true;
}

/// A bar of length 0.2 and width 0.06 that lies 0.01 above the surface.
void addBar(Batch& bars, const Vec3& p, const Vec3& along, const Vec3& normal) {
  constexpr double halfLength = 0.1;
  constexpr double halfWidth = 0.03;
  constexpr double above = 0.01;
  const Vec3 middle = p + above * normal;
  const Vec3 forward = halfLength * along;
  const Vec3 aside = halfWidth * cross(normal, along);
  const std::array corners = {middle - forward - aside, middle + forward - aside,
                              middle + forward + aside, middle - forward + aside};
  const bool finite =
      std::ranges::all_of(corners, [](const Vec3& c) { return std::isfinite(c.x + c.y + c.z); });
  if (!finite) return;
  for (const std::size_t k : {0U, 1U, 2U, 0U, 2U, 3U}) {
    const Vec3& c = corners[k];
    bars.positions.insert(bars.positions.end(), {static_cast<float>(c.x), static_cast<float>(c.y),
                                                 static_cast<float>(c.z)});
  }
}

Batch directionBars(const TriangleMesh& mesh, const DrawnKind& kind) {
  Batch bars = plainBatch(Primitive::Triangles, kind.colour);
  const bool known = kind.alongLine.size() == mesh.vertices.size() &&
                     mesh.vertexNormals.size() == mesh.vertices.size();
  for (int i = 0; known && i < mesh.vertexCount; ++i) {
    if (!kind.marked(i)) continue;
    const Vec3 along = vectorAt(kind.alongLine, i);
    if (dot(along, along) > 0.0) addBar(bars, mesh.position(i), along, mesh.vertexNormal(i));
  }
  return bars;
}

Batch edgesBetweenMarked(const TriangleMesh& mesh, const DrawnKind& kind) {
  Batch lines = plainBatch(Primitive::Lines, kind.colour);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (!kind.marked(i)) continue;
    for (const int j : mesh.getNeighbours(i)) {
      if (j > i && kind.marked(j)) addVertices(lines, mesh, {{i, j}});
    }
  }
  return lines;
}

/// The lit surface, far enough back for lines in it to stay in front.
Batch litSurface(const TriangleMesh& mesh) {
  Batch surface = flatFaces(mesh);
  surface.depthOffset = 1.0F;
  return surface;
}

Batch surfaceBehindLines(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  return shown.shadedSurface ? litSurface(mesh) : whiteSurface(mesh);
}

/// Lines in four widths; the weakest quarter of the range of magnitudes is drawn thinnest.
void addWeightedLines(Scene& scene, const TriangleMesh& mesh, const DrawnKind& kind) {
  constexpr int widths = 4;
  const auto magnitude = [&](int i, int j) {
    const double k = std::abs(kind.curvature[static_cast<std::size_t>(i)]) +
                     std::abs(kind.curvature[static_cast<std::size_t>(j)]);
    return std::isfinite(k) ? k * 0.5 : 0.0;
  };
  if (kind.curvature.size() != static_cast<std::size_t>(mesh.vertexCount)) {
    scene.batches.push_back(linkedLines(mesh, kind.links, kind.colour));
    return;
  }
  double strongest = 0.0;
  forEachLink(mesh, kind.links,
              [&](int i, int j) { strongest = std::max(strongest, magnitude(i, j)); });
  std::array<Batch, widths> byWidth;
  for (std::size_t w = 0; w < widths; ++w) {
    byWidth[w] = plainBatch(Primitive::Lines, kind.colour);
    byWidth[w].lineWidthFactor = static_cast<float>(w + 1);
  }
  forEachLink(mesh, kind.links, [&](int i, int j) {
    const double share = strongest > 0.0 ? magnitude(i, j) / strongest : 0.0;
    const int width = std::min(widths - 1, static_cast<int>(share * widths));
    addVertices(byWidth[static_cast<std::size_t>(width)], mesh, {{i, j}});
  });
  for (Batch& lines : byWidth) scene.batches.push_back(std::move(lines));
}

/// Lines of a pen drawing, in black as wide as the view's lines.
Batch penLines(const TriangleMesh& mesh, const SilhouetteLines& lines) {
  Batch batch = plainBatch(Primitive::Lines, black);
  const auto known = [&mesh](int v) { return v < mesh.vertexCount; };
  for (const auto* kind : {&lines.ridges, &lines.valleys}) {
    for (const Polyline& line : *kind) {
      if (!std::ranges::all_of(line.vertices, known)) continue;  // of an earlier mesh
      const std::vector<Vec3> points = smoothedAlong(mesh, line, penSmoothingStep);
      const std::size_t n = points.size();
      for (std::size_t k = 0; k + (line.closed ? 0 : 1) < n; ++k) {
        addSegment(batch, points[k], points[(k + 1) % n]);
      }
    }
  }
  return batch;
}

/// The strokes along the maximum curvature on coherent faces, fading where the surface faces the
/// viewer.
Batch fadingStrokes(const TriangleMesh& mesh) {
  Batch batch = plainBatch(Primitive::Lines, black);
  batch.fading = true;
  const float outward = isInsideOut(mesh) ? -1.0F : 1.0F;
  const auto usable = [&mesh](const FacePoint& p) {
    const auto f = static_cast<std::size_t>(p.face);
    return p.face < mesh.faceCount && f < mesh.coherentFaces.size() && mesh.validFace(p.face) &&
           mesh.coherentFaces[f] != 0 && 3 * f + 2 < mesh.faceNormals.size();
  };
  for (const std::vector<FacePoint>& stroke : mesh.strokes.maxStrokes) {
    for (std::size_t k = 1; k < stroke.size(); ++k) {
      if (!usable(stroke[k - 1]) || !usable(stroke[k])) continue;
      if (!addSegment(batch, pointInFace(mesh, stroke[k - 1]), pointInFace(mesh, stroke[k]))) {
        continue;
      }
      for (const FacePoint& end : {stroke[k - 1], stroke[k]}) {
        const float* normal = mesh.faceNormals.data() + 3 * static_cast<std::size_t>(end.face);
        for (const float component : std::span(normal, 3)) {
          batch.normals.push_back(outward * component);
        }
      }
    }
  }
  return batch;
}

/// The contour from any side: the edges of faces that look away, where nothing hides them. Faces
/// that look away hide each other's edges, so through a hole in the surface no grid is seen.
void addContour(Scene& scene, const TriangleMesh& mesh) {
  const bool insideOut = isInsideOut(mesh);
  const Sides outside = insideOut ? Sides::Back : Sides::Front;
  const Sides inside = insideOut ? Sides::Front : Sides::Back;
  Batch front = whiteSurface(mesh);
  front.sides = outside;
  Batch back = plainFaces(mesh, white);
  back.sides = inside;
  back.depthOffset = -4.0F;  // beyond what a line of this width covers
  Batch edges = plainFaces(mesh, black);
  edges.sides = inside;
  edges.outlined = true;
  edges.lineWidthFactor = 3.0F;
  scene.batches.push_back(std::move(front));
  scene.batches.push_back(std::move(back));
  scene.batches.push_back(std::move(edges));

  Batch borders = plainBatch(Primitive::Lines, black);
  borders.lineWidthFactor = 1.5F;
  const std::size_t count = std::min(mesh.faceAdjacency.size(), mesh.faces.size());
  for (std::size_t edge = 0; edge < count; ++edge) {
    if (mesh.faceAdjacency[edge] >= 0) continue;
    const auto corners = mesh.corners(static_cast<int>(edge / 3));
    addVertices(borders, mesh, {{corners[edge % 3], corners[nextCorner(edge % 3)]}});
  }
  scene.batches.push_back(std::move(borders));
}

}  // namespace

Scene ridgeVertices(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  Scene scene;
  for (const DrawnKind& kind : drawnKinds(shown)) {
    scene.batches.push_back(markedPoints(mesh, kind));
  }
  scene.batches.push_back(flatFaces(mesh));
  return scene;
}

Scene ridgeDirections(const Shown& shown) {
  Scene scene = ridgeVertices(shown);
  for (const DrawnKind& kind : drawnKinds(shown)) {
    scene.batches.push_back(directionBars(*shown.mesh, kind));
  }
  return scene;
}

Scene ridgeMeshEdges(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  Scene scene;
  for (const DrawnKind& kind : drawnKinds(shown)) {
    scene.batches.push_back(markedPoints(mesh, kind));
    scene.batches.push_back(edgesBetweenMarked(mesh, kind));
  }
  scene.batches.push_back(litSurface(mesh));
  return scene;
}

Scene weightedRidgeLines(const Shown& shown) {
  Scene scene;
  for (const DrawnKind& kind : drawnKinds(shown)) {
    addWeightedLines(scene, *shown.mesh, kind);
  }
  scene.batches.push_back(surfaceBehindLines(shown));
  return scene;
}

Scene featureLines(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  Scene scene;
  for (const DrawnKind& kind : drawnKinds(shown)) {
    scene.batches.push_back(linkedLines(mesh, kind.links, kind.colour));
  }
  scene.batches.push_back(surfaceBehindLines(shown));
  return scene;
}

Scene penDrawing(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  Scene scene;
  addContour(scene, mesh);
  scene.batches.push_back(fadingStrokes(mesh));
  if (shown.silhouetteLines != nullptr) {
    scene.batches.push_back(penLines(mesh, *shown.silhouetteLines));
  }
  return scene;
}

Scene creaseLines(const Shown& shown) {
  const TriangleMesh& mesh = *shown.mesh;
  return {{linkedLines(mesh, shown.creaseLinks, black), surfaceBehindLines(shown)}};
}

}  // namespace gravlin
