#include "ImmediateCurvature.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "curvature/CurvatureTensor.h"
#include "curvature/EdgeCurvature.h"
#include "curvature/Strokes.h"
#include "support/DocumentAccess.h"
#include "view/OpenGL.h"

namespace gravlin::test {
namespace {

/// A field of values with the colours of the scale: its bands in a table of where they begin and
/// what the three components are there and gain from there.
class Colours {
 public:
  Colours(std::vector<double> field, bool useGrey) : values(std::move(field)), grey(useGrey) {
    for (const double v : values) mean += v;
    mean /= static_cast<double>(values.size());
    double squares = 0;
    for (const double v : values) squares += (v - mean) * (v - mean);
    deviation = static_cast<float>(std::sqrt(squares / static_cast<double>(values.size())));
  }

  /// Makes the colour of value number n the current one.
  void choose(int n) const {
    const double v = values[static_cast<std::size_t>(n)];
    const double t = (v - mean) / static_cast<double>(deviation) * 1.5;
    float rgb[3] = {0, 0, 0};
    if (grey) {
      const double g = (t + 2.1) * 0.23809525;
      if (g > 0) std::fill(rgb, rgb + 3, static_cast<float>(std::min(g, 1.0)));
      return glColor3fv(rgb);
    }
    constexpr double s = 1.6666666;
    struct Band {
      double from;
      double zero;  ///< where the component that changes is 0
      int changing;
      double slope;
      float rgb[3];
    };
    static constexpr Band bands[] = {{2.1, 0, -1, 0, {1, 0.75F, 1}}, {1.5, 1.5, 1, 1.25, {1, 0, 1}},
                                     {0.9, 0.9, 2, s, {1, 0, 0}},    {0.3, 0.9, 1, -s, {1, 0, 0}},
                                     {-0.3, -0.3, 0, s, {0, 1, 0}},  {-0.9, -0.3, 2, -s, {0, 1, 0}},
                                     {-1.5, -1.5, 1, s, {0, 0, 1}},  {-2.1, -2.1, 2, s, {0, 0, 0}}};
    for (const Band& band : bands) {
      if (!(t >= band.from)) continue;
      std::copy(band.rgb, band.rgb + 3, rgb);
      if (band.changing >= 0) rgb[band.changing] = static_cast<float>((t - band.zero) * band.slope);
      break;
    }
    glColor3fv(rgb);
  }

 private:
  std::vector<double> values;
  bool grey;
  double mean = 0;
  float deviation = 0;
};

const float* position(const TriangleMesh& mesh, int i) {
  return mesh.vertices.data() + 3 * static_cast<std::size_t>(i);
}

/// Pushed away, so that the lines in it stay in front.
void drawWhiteSurface(const TriangleMesh& mesh) {
  glColor3f(1, 1, 1);
  glEnable(GL_POLYGON_OFFSET_FILL);
  glPolygonOffset(1, 1);
  for (int f = 0; f < mesh.faceCount; ++f) {
    glBegin(GL_POLYGON);
    for (const int corner : mesh.corners(f)) glVertex3fv(position(mesh, corner));
    glEnd();
  }
  glDisable(GL_POLYGON_OFFSET_FILL);
}

void drawVertexField(const TriangleMesh& mesh, const std::vector<double>& values, bool grey) {
  const Colours colours(values, grey);
  for (int f = 0; f < mesh.faceCount; ++f) {
    glBegin(GL_POLYGON);
    for (const int corner : mesh.corners(f)) {
      colours.choose(corner);
      glVertex3fv(position(mesh, corner));
    }
    glEnd();
  }
}

void drawFaceField(const TriangleMesh& mesh, const std::vector<double>& values, bool grey) {
  const Colours colours(values, grey);
  for (int f = 0; f < mesh.faceCount; ++f) {
    colours.choose(f);
    glBegin(GL_POLYGON);
    for (const int corner : mesh.corners(f)) glVertex3fv(position(mesh, corner));
    glEnd();
  }
}

void drawEdges(const TriangleMesh& mesh, bool grey) {
  const Colours colours(mesh.edgeCurvatures, grey);
  for (int edge = 0; edge < 3 * mesh.faceCount; ++edge) {
    const int f = edge / 3;
    if (mesh.faceAdjacency[static_cast<std::size_t>(edge)] > f) continue;
    const auto c = mesh.corners(f);
    colours.choose(edge);
    glBegin(GL_LINES);
    glVertex3fv(position(mesh, c[static_cast<std::size_t>(edge % 3)]));
    glVertex3fv(position(mesh, c[static_cast<std::size_t>((edge + 1) % 3)]));
    glEnd();
  }
}

/// In one colour, or in those of `curvature`.
void drawDirections(const TriangleMesh& mesh, const std::vector<double>& e,
                    const std::vector<double>* curvature) {
  const Colours colours(curvature != nullptr ? *curvature : std::vector<double>{}, false);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const double* d = e.data() + 3 * static_cast<std::size_t>(i);
    if (d[0] == 0 && d[1] == 0 && d[2] == 0) continue;
    if (curvature != nullptr) colours.choose(i);
    glBegin(GL_LINES);
    for (const double end : {-0.1, 0.1}) {
      const float* p = position(mesh, i);
      glVertex3f(static_cast<float>(p[0] + end * d[0]), static_cast<float>(p[1] + end * d[1]),
                 static_cast<float>(p[2] + end * d[2]));
    }
    glEnd();
  }
}

void drawStrokes(const TriangleMesh& mesh, const std::vector<std::vector<FacePoint>>& lines) {
  glColor3f(0, 0, 0);
  const auto vertex = [&mesh](const FacePoint& at) {
    const auto c = mesh.corners(at.face);
    double p[3];
    for (int k = 0; k < 3; ++k) {
      p[k] = (1.0 - at.a - at.b) * position(mesh, c[0])[k] + at.a * position(mesh, c[1])[k] +
             at.b * position(mesh, c[2])[k];
    }
    glVertex3f(static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2]));
  };
  for (const std::vector<FacePoint>& line : lines) {
    for (std::size_t n = 1; n < line.size(); ++n) {
      glBegin(GL_LINES);
      vertex(line[n - 1]);
      vertex(line[n]);
      glEnd();
    }
  }
}

/// A value per vertex formed from the two principal curvatures.
template <class Formula>
std::vector<double> formed(const TriangleMesh& mesh, Formula formula) {
  std::vector<double> values;
  for (std::size_t i = 0; i < mesh.maxCurvature.size(); ++i) {
    values.push_back(formula(mesh.maxCurvature[i], mesh.minCurvature[i]));
  }
  return values;
}

std::vector<double> meanOfEdges(const TriangleMesh& mesh) {
  std::vector<double> values;
  for (std::size_t e = 0; e < mesh.edgeCurvatures.size(); e += 3) {
    values.push_back(
        (mesh.edgeCurvatures[e] + mesh.edgeCurvatures[e + 1] + mesh.edgeCurvatures[e + 2]) / 3);
  }
  return values;
}

bool drawField(const CGravlinDoc& document) {
  const TriangleMesh& mesh = *document.mesh();
  const bool grey = document.visualizationParameters.grayScale;
  switch (document.displayMode) {
    case 10:
      drawVertexField(mesh, mesh.maxCurvature, grey);
      return true;
    case 17:
      drawVertexField(
          mesh, formed(mesh, [](double a, double b) { return std::abs(a) + std::abs(b); }), grey);
      return true;
    case 18:
      drawVertexField(mesh, formed(mesh, [](double a, double b) { return (a + b) * 0.5; }), grey);
      return true;
    case 19:
      drawVertexField(mesh, formed(mesh, [](double a, double b) { return a * b; }), grey);
      return true;
    case 20:
      drawVertexField(mesh, mesh.minCurvature, grey);
      return true;
    case 28:
      drawVertexField(mesh, document.vertexErrors, grey);
      return true;
    case 29:
      drawFaceField(mesh, document.faceErrors, grey);
      return true;
    case 31:
      drawFaceField(mesh, meanOfEdges(mesh), grey);
      return true;
    default:
      return false;
  }
}

bool drawMarks(const CGravlinDoc& document) {
  const TriangleMesh& mesh = *document.mesh();
  switch (document.displayMode) {
    case 5:
      glColor3f(1, 0, 0);
      drawDirections(mesh, mesh.maxDirection, nullptr);
      return true;
    case 14:
      drawDirections(mesh, mesh.maxDirection, &mesh.maxCurvature);
      return true;
    case 15:
      drawDirections(mesh, mesh.minDirection, &mesh.minCurvature);
      return true;
    case 16:
      glColor3f(0, 0, 1);
      drawDirections(mesh, mesh.minDirection, nullptr);
      return true;
    case 22:
      drawEdges(mesh, document.visualizationParameters.grayScale);
      return true;
    case 24:
      drawStrokes(mesh, mesh.strokes.maxStrokes);
      return true;
    case 25:
      drawStrokes(mesh, mesh.strokes.minStrokes);
      return true;
    default:
      return false;
  }
}

}  // namespace

bool drawCurvatureImmediately(const CGravlinDoc& document) {
  glDisable(GL_LIGHTING);
  const bool marks = drawMarks(document);
  if (marks) drawWhiteSurface(*document.mesh());
  const bool drawn = marks || drawField(document);
  glEnable(GL_LIGHTING);
  return drawn;
}

void computeAllCurvature(CGravlinDoc& document) {
  TriangleMesh& mesh = meshOf(document);
  computeCurvatureTensor(mesh);
  computeEdgeCurvatures(mesh);
  generateStrokes(mesh, 500);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    document.vertexErrors.push_back(0.01 * (i % 17));
  }
  for (int f = 0; f < mesh.faceCount; ++f) document.faceErrors.push_back(0.03 * (f % 23));
}

}  // namespace gravlin::test
