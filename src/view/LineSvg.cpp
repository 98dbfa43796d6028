#include "view/LineSvg.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "features/LinkGrowth.h"
#include "features/SilhouetteLines.h"
#include "mesh/Corner.h"

namespace gravlin {
namespace {

constexpr int finer = 2;            // depth buffer cells per pixel and axis
constexpr double step = 0.5;        // pixels between two points of a line that are tested
constexpr double tolerance = 0.02;  // how far behind the surface a line on it may seem to lie
constexpr double farOut = 1e15;  // pixels; farther out a double no longer tells one from the next

/// The nearest depth of the surface at each cell, stored as 1 / depth, which is linear on screen.
class DepthBuffer {
 public:
  explicit DepthBuffer(ViewSize view)
      : width(finer * view.width),
        height(finer * view.height),
        inverseDepth(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0.0F) {}

  void addTriangle(const std::array<SeenPoint, 3>& corners) {
    std::array<Vec3, 3> p;
    for (std::size_t k = 0; k < 3; ++k) {
      p[k] = {corners[k].x * finer, corners[k].y * finer, 1.0 / corners[k].depth};
    }
    const double area = cross2(p[0], p[1], p[2]);
    if (area == 0.0 || !std::isfinite(area)) return;
    const auto [left, right] = cells(p[0].x, p[1].x, p[2].x, width);
    const auto [top, bottom] = cells(p[0].y, p[1].y, p[2].y, height);
    for (int y = top; y < bottom; ++y) {
      for (int x = left; x < right; ++x) {
        const Vec3 c = {x + 0.5, y + 0.5, 0.0};
        const double a = cross2(p[1], p[2], c) / area;
        const double b = cross2(p[2], p[0], c) / area;
        if (a < 0.0 || b < 0.0 || a + b > 1.0) continue;
        const double here = a * p[0].z + b * p[1].z + (1.0 - a - b) * p[2].z;
        float& nearest = inverseDepth[index(x, y)];
        nearest = std::max(nearest, static_cast<float>(here));
      }
    }
  }

  /// Whether a point of the surface is seen: not behind the farthest of the cells around it.
  bool visible(const SeenPoint& point) const {
    const int x = static_cast<int>(point.x * finer);
    const int y = static_cast<int>(point.y * finer);
    float farthest = std::numeric_limits<float>::max();
    for (int v = std::max(0, y - 1); v <= std::min(height - 1, y + 1); ++v) {
      for (int u = std::max(0, x - 1); u <= std::min(width - 1, x + 1); ++u) {
        farthest = std::min(farthest, inverseDepth[index(u, v)]);
      }
    }
    return (point.depth - tolerance) * static_cast<double>(farthest) <= 1.0;
  }

 private:
  struct CellRange {
    int first;
    int end;
  };

  static double cross2(const Vec3& a, const Vec3& b, const Vec3& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
  }

  static CellRange cells(double a, double b, double c, int count) {
    const double first =
        std::clamp(std::floor(std::min({a, b, c})), 0.0, static_cast<double>(count));
    const double end = std::clamp(std::ceil(std::max({a, b, c})), 0.0, static_cast<double>(count));
    return {static_cast<int>(first), static_cast<int>(end)};
  }

  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(x);
  }

  int width;
  int height;
  std::vector<float> inverseDepth;
};

using Projected = std::vector<std::optional<SeenPoint>>;

std::optional<SeenPoint> projectPoint(const Vec3& p, const Camera& camera, ViewSize size) {
  const auto point = camera.project(p, size);
  const bool known = point && std::abs(point->x) < farOut && std::abs(point->y) < farOut;
  return known ? point : std::nullopt;
}

Projected projectVertices(const TriangleMesh& mesh, const Camera& camera, ViewSize size) {
  Projected seen(static_cast<std::size_t>(mesh.vertexCount));
  for (int i = 0; i < mesh.vertexCount; ++i) {
    seen[static_cast<std::size_t>(i)] = projectPoint(mesh.position(i), camera, size);
  }
  return seen;
}

DepthBuffer depthOfSurface(const TriangleMesh& mesh, const Projected& seen, ViewSize size) {
  DepthBuffer buffer(size);
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    const auto c = mesh.corners(f);
    const auto at = [&](std::size_t k) { return seen[static_cast<std::size_t>(c[k])]; };
    if (at(0) && at(1) && at(2)) buffer.addTriangle({*at(0), *at(1), *at(2)});
  }
  return buffer;
}

SeenPoint between(const SeenPoint& a, const SeenPoint& b, double t) {
  const double inverse = (1.0 - t) / a.depth + t / b.depth;
  return {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y), 1.0 / inverse};
}

/// The part of a segment that lies within the view, as parameters from a to b; nothing outside.
std::optional<std::array<double, 2>> clipped(const SeenPoint& a, const SeenPoint& b,
                                             ViewSize size) {
  std::array<double, 2> part = {0.0, 1.0};
  const auto cut = [&part](double start, double end) {  // keeps where the value is not negative
    if (start < 0.0 && end < 0.0) return false;
    if (start < 0.0) part[0] = std::max(part[0], start / (start - end));
    if (end < 0.0) part[1] = std::min(part[1], start / (start - end));
    return part[0] <= part[1];
  };
  const bool inside = cut(a.x, b.x) && cut(size.width - a.x, size.width - b.x) && cut(a.y, b.y) &&
                      cut(size.height - a.y, size.height - b.y);
  return inside ? std::optional(part) : std::nullopt;
}

/// Writes the visible pieces of lines as paths.
class PathWriter {
 public:
  PathWriter(const DepthBuffer& depthBuffer, ViewSize viewSize)
      : buffer(depthBuffer), size(viewSize) {}

  void addSegment(const SeenPoint& a, const SeenPoint& b) {
    const auto part = clipped(a, b, size);
    if (!part) return endPiece();
    const auto [from, to] = *part;
    if (from > 0.0) endPiece();  // it comes in from outside the view
    const SeenPoint first = within(between(a, b, from));
    const SeenPoint end = within(between(a, b, to));
    const double pixels = std::hypot(end.x - first.x, end.y - first.y);
    const int pieces = std::max(1, static_cast<int>(std::ceil(pixels / step)));
    for (int k = 0; k <= pieces; ++k) {
      const SeenPoint p = between(first, end, static_cast<double>(k) / pieces);
      if (!buffer.visible(p)) {
        endPiece();
      } else if (!drawing || k == pieces) {
        addPoint(p);
      } else {
        last = p;
      }
    }
    if (to < 1.0) endPiece();
  }

  void endPiece() {
    if (drawing && last) addPoint(*last);
    if (drawing && extended) text += "\"/>\n";
    if (drawing && !extended) text.resize(start);
    drawing = false;
    last.reset();
  }

  std::string take() {
    endPiece();
    return std::move(text);
  }

 private:
  /// The point, which cutting may have left beyond the edge of the view by a rounding.
  SeenPoint within(const SeenPoint& p) const {
    return {std::clamp(p.x, 0.0, static_cast<double>(size.width)),
            std::clamp(p.y, 0.0, static_cast<double>(size.height)), p.depth};
  }

  void addPoint(const SeenPoint& p) {
    const std::string written = textOf(p.x) + ' ' + textOf(p.y);
    if (!drawing) {
      start = text.size();
      firstWritten = written;
      extended = false;
    }
    extended = extended || written != firstWritten;
    text += (drawing ? "L" : "<path d=\"M") + written;
    drawing = true;
    last.reset();
  }

  static std::string textOf(double value) {
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   std::chars_format::fixed, 2)
                         .ptr;
    return {digits.data(), end};
  }

  const DepthBuffer& buffer;
  ViewSize size;
  std::string text;
  bool drawing = false;
  std::size_t start = 0;          ///< of the piece being drawn, in the text
  std::string firstWritten;       ///< its first point
  bool extended = false;          ///< it has another point than that
  std::optional<SeenPoint> last;  ///< reached by the piece being drawn and not yet written
};

/// Writes lines as one view shows them.
class LinePicture {
 public:
  LinePicture(const TriangleMesh& shownMesh, const Camera& shownBy, ViewSize viewSize)
      : mesh(shownMesh),
        camera(shownBy),
        size(viewSize),
        seen(projectVertices(mesh, camera, size)),
        buffer(depthOfSurface(mesh, seen, size)) {}

  /// The visible pieces of a line through vertices.
  std::string along(const Polyline& line) const {
    Projected points;
    for (const int v : line.vertices) points.push_back(seen[static_cast<std::size_t>(v)]);
    return visiblePaths(points, line.closed);
  }

  /// The same of a line drawn with a pen.
  std::string penned(const Polyline& line) const {
    Projected points;
    for (const Vec3& p : smoothedAlong(mesh, line, penSmoothingStep)) {
      points.push_back(projectPoint(p, camera, size));
    }
    return visiblePaths(points, line.closed);
  }

  /// The edges between faces that look at the viewer and faces that look away, and those of one
  /// face only.
  std::string contour() const {
    std::vector<IndexList> links(static_cast<std::size_t>(mesh.vertexCount));
    const auto adjacent = std::min(mesh.faceAdjacency.size(), mesh.faces.size());
    for (int f = 0; 3 * static_cast<std::size_t>(f) + 2 < adjacent; ++f) {
      if (!mesh.validFace(f)) continue;
      const auto corners = mesh.corners(f);
      for (std::size_t k = 0; k < 3; ++k) {
        const int g = mesh.faceAdjacency[3 * static_cast<std::size_t>(f) + k];
        if (g >= 0 && (g < f || looksAtViewer(g) == looksAtViewer(f))) continue;
        link(links, corners[k], corners[nextCorner(k)]);
      }
    }
    std::string text;
    for (const Polyline& line : chainLinks(links)) text += along(line);
    return text;
  }

 private:
  bool looksAtViewer(int face) const {
    const auto c = mesh.corners(face);
    const auto at = [&](std::size_t k) { return seen[static_cast<std::size_t>(c[k])]; };
    const auto p = at(0);
    const auto q = at(1);
    const auto r = at(2);
    // Counter-clockwise, with y running downwards.
    return p && q && r && (q->x - p->x) * (r->y - p->y) - (q->y - p->y) * (r->x - p->x) < 0.0;
  }

  std::string visiblePaths(const Projected& points, bool closed) const {
    PathWriter paths(buffer, size);
    const std::size_t n = points.size();
    for (std::size_t k = 0; k + (closed ? 0 : 1) < n; ++k) {
      const auto& a = points[k];
      const auto& b = points[(k + 1) % n];
      if (a && b) {
        paths.addSegment(*a, *b);
      } else {
        paths.endPiece();
      }
    }
    return paths.take();
  }

  const TriangleMesh& mesh;
  const Camera& camera;
  ViewSize size;
  Projected seen;  ///< [V]
  DepthBuffer buffer;
};

std::string_view colourOf(const ExportedLine& line, const LineStyle& style) {
  const bool first = line.kindNumber % 2 == 0;  // ridges and convex creases
  if (style.penDrawing) return "black";
  if (style.grayScale) return first ? "white" : "black";
  return first ? "red" : "blue";
}

std::string group(std::string_view id, std::string_view colour, const std::string& paths) {
  std::string text = "<g id=\"";
  text.append(id).append("\" stroke=\"").append(colour).append("\">\n");
  return text.append(paths).append("</g>\n");
}

}  // namespace

std::string linesAsSvg(const TriangleMesh& mesh, const LinesToDraw& drawing, const Camera& camera,
                       ViewSize size) {
  const LinePicture picture(mesh, camera, size);
  const std::string extent = " width=\"" + std::to_string(size.width) + "\" height=\"" +
                             std::to_string(size.height) + "\"";
  std::string text = "<svg xmlns=\"http://www.w3.org/2000/svg\"" + extent +
                     " fill=\"none\" stroke-width=\"1\" stroke-linecap=\"round\">\n";
  const LineStyle& style = drawing.style;
  if (style.penDrawing) {
    text += group("contour", "black", picture.contour());
  } else if (style.grayScale) {  // white and black are both seen on grey only
    text += "<rect" + extent + " fill=\"gray\"/>\n";
  }
  const std::vector<ExportedLine>& lines = drawing.lines;
  for (std::size_t first = 0, end = 0; first < lines.size(); first = end) {
    std::string paths;
    for (; end < lines.size() && lines[end].kindNumber == lines[first].kindNumber; ++end) {
      const Polyline& line = lines[end].line;
      paths += style.penDrawing ? picture.penned(line) : picture.along(line);
    }
    text += group(lines[first].kind, colourOf(lines[first], style), paths);
  }
  return text + "</svg>\n";
}

}  // namespace gravlin
