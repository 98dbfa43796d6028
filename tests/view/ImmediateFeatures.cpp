#include "ImmediateFeatures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "curvature/CurvatureDerivatives.h"
#include "curvature/DirectionCoherence.h"
#include "curvature/Strokes.h"
#include "mesh/FaceGeometry.h"
#include "support/DocumentAccess.h"
#include "view/OpenGL.h"

namespace gravlin::test {
namespace {

void vertex(const Vec3& p) {
  glVertex3f(static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z));
}

void drawFaces(const TriangleMesh& mesh) {
  for (int f = 0; f < mesh.faceCount; ++f) {
    glBegin(GL_POLYGON);
    glNormal3fv(mesh.faceNormals.data() + 3 * static_cast<std::size_t>(f));
    for (const int corner : mesh.corners(f)) vertex(mesh.position(corner));
    glEnd();
  }
}

void drawSurfaceBehind(const TriangleMesh& mesh, bool lit) {
  if (!lit) {
    glDisable(GL_LIGHTING);
    glColor3f(1, 1, 1);
  }
  glEnable(GL_POLYGON_OFFSET_FILL);
  glPolygonOffset(1, 1);
  drawFaces(mesh);
  glDisable(GL_POLYGON_OFFSET_FILL);
  glEnable(GL_LIGHTING);
}

/// Ridges first, then valleys: their colour and where their numbers are.
struct Kind {
  float rgb[3];
  const std::vector<int>& marks;
  const std::vector<IndexList>& links;
  const std::vector<double>& curvature;
  const std::vector<double>& gradient;
};

std::array<Kind, 2> kindsOf(const CGravlinDoc& document) {
  const TriangleMesh& m = *document.mesh();
  const bool grey = document.visualizationParameters.grayScale;
  const float g = grey ? 1.0F : 0.0F;
  return {{{{1, g, g}, m.ridgeMarks, m.ridgeLinks, m.maxCurvature, m.maxDerivativeGradient},
           {{0, 0, 1 - g}, m.valleyMarks, m.valleyLinks, m.minCurvature, m.minDerivativeGradient}}};
}

void drawMarks(const TriangleMesh& mesh, const Kind& kind) {
  glBegin(GL_POINTS);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (kind.marks[static_cast<std::size_t>(i)] != 0) vertex(mesh.position(i));
  }
  glEnd();
}

void drawMarkedEdges(const TriangleMesh& mesh, const Kind& kind) {
  const auto marked = [&](int i) { return kind.marks[static_cast<std::size_t>(i)] != 0; };
  glBegin(GL_LINES);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    for (const int j : mesh.getNeighbours(i)) {
      if (j <= i || !marked(i) || !marked(j)) continue;
      vertex(mesh.position(i));
      vertex(mesh.position(j));
    }
  }
  glEnd();
}

void drawBars(const TriangleMesh& mesh, const Kind& kind) {
  glBegin(GL_TRIANGLES);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const Vec3 e = vectorAt(kind.gradient, i);
    if (kind.marks[static_cast<std::size_t>(i)] == 0 || e == Vec3{}) continue;
    const Vec3 n = mesh.vertexNormal(i);
    const Vec3 p = mesh.position(i) + 0.01 * n;
    const Vec3 a = 0.1 * e;
    const Vec3 b = 0.03 * cross(n, e);
    for (const Vec3& c : {p - a - b, p + a - b, p + a + b, p - a - b, p + a + b, p - a + b}) {
      vertex(c);
    }
  }
  glEnd();
}

/// Links whose place in the range of magnitudes falls into quarter `width`; all of them for -1.
void drawLinks(const TriangleMesh& mesh, const std::vector<IndexList>& links,
               const std::vector<double>& curvature, int width) {
  const auto magnitude = [&](int i, int j) {
    return (std::abs(curvature[static_cast<std::size_t>(i)]) +
            std::abs(curvature[static_cast<std::size_t>(j)])) *
           0.5;
  };
  const auto forLinks = [&](auto each) {
    for (int i = 0; i < static_cast<int>(links.size()); ++i) {
      for (const int j : links[static_cast<std::size_t>(i)]) {
        if (j > i) each(i, j);
      }
    }
  };
  double strongest = 0;
  if (width >= 0) forLinks([&](int i, int j) { strongest = std::max(strongest, magnitude(i, j)); });
  glBegin(GL_LINES);
  forLinks([&](int i, int j) {
    if (width >= 0 && std::min(3, static_cast<int>(magnitude(i, j) / strongest * 4)) != width)
      return;
    vertex(mesh.position(i));
    vertex(mesh.position(j));
  });
  glEnd();
}

/// Closed, with faces that look into the volume: tetrahedra from the origin sum up below 0.
bool looksInwards(const TriangleMesh& mesh) {
  double sixfold = 0;
  for (int f = 0; f < mesh.faceCount; ++f) {
    const auto c = mesh.corners(f);
    sixfold += dot(mesh.position(c[0]), cross(mesh.position(c[1]), mesh.position(c[2])));
    for (std::size_t j = 0; j < 3; ++j) {
      if (mesh.faceAdjacency[3 * static_cast<std::size_t>(f) + j] < 0) return false;
    }
  }
  return sixfold < 0;
}

void drawFadingStrokes(const TriangleMesh& mesh) {
  const float outward = looksInwards(mesh) ? -1 : 1;
  glPushAttrib(GL_LIGHTING_BIT | GL_ENABLE_BIT);
  for (GLenum light = GL_LIGHT0; light <= GL_LIGHT5; ++light) glDisable(light);
  glEnable(GL_LIGHTING);
  glEnable(GL_LIGHT7);
  const float grey[] = {0.55F, 0.55F, 0.55F, 1};
  const float rest[] = {0.45F, 0.45F, 0.45F, 1};
  const float white[] = {1, 1, 1, 1};
  const float black[] = {0, 0, 0, 1};
  const float eye[] = {0, 0, 1, 0};
  glPushMatrix();
  glLoadIdentity();
  glLightfv(GL_LIGHT7, GL_POSITION, eye);
  glPopMatrix();
  glLightfv(GL_LIGHT7, GL_DIFFUSE, rest);
  glLightfv(GL_LIGHT7, GL_SPECULAR, black);
  glLightModelfv(GL_LIGHT_MODEL_AMBIENT, white);
  glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, grey);
  glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, black);
  glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, white);
  glBegin(GL_LINES);
  for (const auto& stroke : mesh.strokes.maxStrokes) {
    for (std::size_t k = 1; k < stroke.size(); ++k) {
      const auto coherent = [&](const FacePoint& p) {
        return mesh.coherentFaces[static_cast<std::size_t>(p.face)] != 0;
      };
      if (!coherent(stroke[k - 1]) || !coherent(stroke[k])) continue;
      for (const FacePoint& p : {stroke[k - 1], stroke[k]}) {
        const float* n = mesh.faceNormals.data() + 3 * static_cast<std::size_t>(p.face);
        glNormal3f(outward * n[0], outward * n[1], outward * n[2]);
        vertex(pointInFace(mesh, p));
      }
    }
  }
  glEnd();
  glPopAttrib();
}

void drawContour(const TriangleMesh& mesh, float lineWidth) {
  const bool inwards = looksInwards(mesh);
  glEnable(GL_CULL_FACE);
  glEnable(GL_POLYGON_OFFSET_FILL);
  glColor3f(1, 1, 1);
  glCullFace(inwards ? GL_FRONT : GL_BACK);
  glPolygonOffset(1, 1);
  drawFaces(mesh);
  glCullFace(inwards ? GL_BACK : GL_FRONT);
  glPolygonOffset(-4, -4);
  drawFaces(mesh);
  glDisable(GL_POLYGON_OFFSET_FILL);
  glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
  glColor3f(0, 0, 0);
  glLineWidth(lineWidth * 3.0F);
  drawFaces(mesh);
  glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
  glDisable(GL_CULL_FACE);
  glLineWidth(lineWidth * 1.5F);
  glBegin(GL_LINES);
  for (int edge = 0; edge < 3 * mesh.faceCount; ++edge) {
    if (mesh.faceAdjacency[static_cast<std::size_t>(edge)] >= 0) continue;
    const auto c = mesh.corners(edge / 3);
    vertex(mesh.position(c[static_cast<std::size_t>(edge % 3)]));
    vertex(mesh.position(c[static_cast<std::size_t>((edge + 1) % 3)]));
  }
  glEnd();
  glLineWidth(lineWidth);
}

void drawPen(const CGravlinDoc& document, float lineWidth) {
  const TriangleMesh& mesh = *document.mesh();
  drawContour(mesh, lineWidth);
  drawFadingStrokes(mesh);
  for (const auto* lines : {&document.silhouetteLines.ridges, &document.silhouetteLines.valleys}) {
    for (const Polyline& line : *lines) {
      const std::vector<Vec3> points = smoothedAlong(mesh, line, 0.01F);
      glColor3f(0, 0, 0);
      for (std::size_t k = 0; k + (line.closed ? 0 : 1) < points.size(); ++k) {
        glBegin(GL_LINES);
        vertex(points[k]);
        vertex(points[(k + 1) % points.size()]);
        glEnd();
      }
    }
  }
}

}  // namespace

bool drawFeaturesImmediately(const CGravlinDoc& document, float lineWidth) {
  const TriangleMesh& mesh = *document.mesh();
  const int mode = document.displayMode;
  const bool known =
      mode == 6 || mode == 7 || mode == 8 || (mode >= 11 && mode <= 13) || mode == 23;
  if (!known) return false;
  const bool lit = document.angleParameters.shadedSurface;
  glDisable(GL_LIGHTING);
  if (mode == 13) {
    glColor3f(0, 0, 0);
    drawLinks(mesh, document.creaseLinks, {}, -1);
  }
  if (mode == 23) drawPen(document, lineWidth);
  for (const Kind& kind : kindsOf(document)) {
    glColor3fv(kind.rgb);
    if (mode <= 8) drawMarks(mesh, kind);
    if (mode == 8) drawMarkedEdges(mesh, kind);
    if (mode == 12) drawLinks(mesh, kind.links, {}, -1);
    for (int width = 0; mode == 11 && width < 4; ++width) {
      glLineWidth(lineWidth * static_cast<float>(width + 1));
      drawLinks(mesh, kind.links, kind.curvature, width);
    }
    glLineWidth(lineWidth);
  }
  glEnable(GL_LIGHTING);
  if (mode == 6 || mode == 7) drawFaces(mesh);
  if (mode == 8) drawSurfaceBehind(mesh, true);
  if (mode >= 11 && mode <= 13) drawSurfaceBehind(mesh, lit);
  if (mode == 7) {
    glDisable(GL_LIGHTING);
    for (const Kind& kind : kindsOf(document)) {
      glColor3fv(kind.rgb);
      drawBars(mesh, kind);
    }
    glEnable(GL_LIGHTING);
  }
  return true;
}

void findAllLines(CGravlinDoc& document) {
  TriangleMesh& mesh = meshOf(document);
  document.OnSilhouette();
  mesh.ridgeMarks.resize(static_cast<std::size_t>(mesh.vertexCount));
  document.creaseLinks = mesh.ridgeLinks;
}

}  // namespace gravlin::test
