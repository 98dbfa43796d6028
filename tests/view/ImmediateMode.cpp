#include "ImmediateMode.h"

#include <algorithm>
#include <cmath>
#include <GL/glu.h>

#include "ImmediateCurvature.h"
#include "ImmediateFeatures.h"

namespace gravlin::test {
namespace {

void setUpLights(LightingMode mode) {
  const float directions[6][4] = {{-52, -16, -50, 0}, {-26, -48, -50, 0}, {16, -52, -50, 0},
                                  {52, 16, 50, 0},    {26, 48, 50, 0},    {-16, 52, 50, 0}};
  const float primaries[3][4] = {{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 1, 1}};
  const float grey[4] = {0.4F, 0.4F, 0.4F, 1};
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  for (int i = 0; i < 6; ++i) {
    const auto light = static_cast<GLenum>(GL_LIGHT0 + i);
    const float* colour = primaries[i % 3];
    if (mode != LightingMode::Rgb)
      colour = i % 3 == 0 ? primaries[static_cast<int>(mode) - 1] : grey;
    glLightfv(light, GL_POSITION, directions[i]);
    glLightfv(light, GL_DIFFUSE, colour);
    glLightfv(light, GL_SPECULAR, colour);
    glEnable(light);
  }
  const float ambient[4] = {0.3F, 0.3F, 0.3F, 1};
  const float materialAmbient[4] = {0, 0, 0, 0};
  const float diffuse[4] = {1, 1, 1, 0.5F};
  const float specular[4] = {0.5F, 0.5F, 0.5F, 0.5F};
  glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
  glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, materialAmbient);
  glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, diffuse);
  glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, specular);
  glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 128);
}

void setUpCamera(const Camera& camera, ViewSize size) {
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  gluPerspective(camera.fieldOfView, static_cast<double>(size.width) / size.height, 10, 4000);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  const double dx = -26;
  const double dy = 48;
  const double dz = -40;
  const double up[3] = {-dz * dx, -dy * dz, dx * dx + dy * dy};
  const double length = std::sqrt(up[0] * up[0] + up[1] * up[1] + up[2] * up[2]);
  gluLookAt(26, -48, 40, 0, 0, 0, up[0] / length, up[1] / length, up[2] / length);
  const float s = std::sqrt(2980.0F);
  glTranslatef(camera.translation[0], camera.translation[1], camera.translation[2]);
  glRotatef(camera.angleX, -26 / s, 48 / s, 0);
  glRotatef(camera.angleY, 48 / s, 26 / s, 0);
  glRotatef(camera.angleZ, 0, 0, 1);
}

/// Three numbers of `numbers` from 3i on.
const float* three(const std::vector<float>& numbers, int i) {
  return numbers.data() + 3 * static_cast<std::size_t>(i);
}

const float* position(const TriangleMesh& mesh, int i) {
  return three(mesh.vertices, i);
}

template <class Each>
void forValidFaces(const TriangleMesh& mesh, Each each) {
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (mesh.corners(f)[0] >= 0) each(f);
  }
}

void drawFlat(const TriangleMesh& mesh) {
  forValidFaces(mesh, [&mesh](int f) {
    glBegin(GL_POLYGON);
    glNormal3fv(three(mesh.faceNormals, f));
    for (const int corner : mesh.corners(f)) glVertex3fv(position(mesh, corner));
    glEnd();
  });
  if (!mesh.pickedFace) return;
  glDisable(GL_LIGHTING);
  glColor3f(1, 0, 0);
  glBegin(GL_POINTS);
  for (const int corner : mesh.corners(*mesh.pickedFace)) glVertex3fv(position(mesh, corner));
  glEnd();
  glEnable(GL_LIGHTING);
}

void drawSmooth(const TriangleMesh& mesh) {
  forValidFaces(mesh, [&mesh](int f) {
    glBegin(GL_POLYGON);
    for (const int corner : mesh.corners(f)) {
      glNormal3fv(three(mesh.vertexNormals, corner));
      glVertex3fv(position(mesh, corner));
    }
    glEnd();
  });
}

void drawWireFrame(const TriangleMesh& mesh, float fieldOfView) {
  glDisable(GL_LIGHTING);
  glColor3f(0, 0, 0);
  glBegin(GL_LINES);
  forValidFaces(mesh, [&mesh](int f) {
    const auto c = mesh.corners(f);
    for (std::size_t j = 0; j < 3; ++j) {
      if (c[j] <= c[(j + 1) % 3]) continue;
      glVertex3fv(position(mesh, c[j]));
      glVertex3fv(position(mesh, c[(j + 1) % 3]));
    }
  });
  glEnd();
  // A lit face is white from every side, under every light, when it emits the colour itself.
  glEnable(GL_LIGHTING);
  glColorMaterial(GL_FRONT_AND_BACK, GL_EMISSION);
  glEnable(GL_COLOR_MATERIAL);
  glColor3f(1, 1, 1);
  forValidFaces(mesh, [&mesh, fieldOfView](int f) {
    glBegin(GL_POLYGON);
    for (const int corner : mesh.corners(f)) {
      const float* p = position(mesh, corner);
      const float* n = three(mesh.vertexNormals, corner);
      float moved[3];
      for (int k = 0; k < 3; ++k) {
        moved[k] = static_cast<float>(p[k] - n[k] * (fieldOfView * 0.0022222222));
      }
      glVertex3fv(moved);
    }
    glEnd();
  });
  glColor3f(0, 0, 0);
  glDisable(GL_COLOR_MATERIAL);
}

void drawNonManifoldPoints(const TriangleMesh& mesh) {
  glDisable(GL_LIGHTING);
  const auto drawKind = [&mesh](int kind) {
    glBegin(GL_POINTS);
    for (int i = 0; i < mesh.vertexCount; ++i) {
      if (mesh.vertexKind[static_cast<std::size_t>(i)] == kind) glVertex3fv(position(mesh, i));
    }
    glEnd();
  };
  glColor3f(1, 0, 0);
  drawKind(2);
  glColor3f(0, 1, 1);
  drawKind(1);
  glColor3f(0, 0, 1);
  glBegin(GL_LINES);
  forValidFaces(mesh, [&mesh](int f) {
    const auto c = mesh.corners(f);
    for (std::size_t j = 0; j < 3; ++j) {
      if (mesh.faceAdjacency[3 * static_cast<std::size_t>(f) + j] >= 0) continue;
      glVertex3fv(position(mesh, c[j]));
      glVertex3fv(position(mesh, c[(j + 1) % 3]));
    }
  });
  glEnd();
  glEnable(GL_LIGHTING);
}

void drawPoints(const TriangleMesh& mesh) {
  glDisable(GL_LIGHTING);
  glColor3f(0.4F, 0.2F, 0.2F);
  glBegin(GL_POINTS);
  for (int i = 0; i < mesh.vertexCount; ++i) glVertex3fv(position(mesh, i));
  glEnd();
  glEnable(GL_LIGHTING);
}

void drawPickedFace(const TriangleMesh& mesh) {
  forValidFaces(mesh, [&mesh](int f) {
    const bool picked = mesh.pickedFace == f;
    if (picked) glDisable(GL_LIGHTING);
    glColor3f(1, 0, 0);
    glBegin(GL_POLYGON);
    glNormal3fv(three(mesh.faceNormals, f));
    for (const int corner : mesh.corners(f)) glVertex3fv(position(mesh, corner));
    glEnd();
    if (picked) glEnable(GL_LIGHTING);
  });
}

void drawMode(const CGravlinDoc& document, const ViewState& view) {
  if (document.mesh() == nullptr) return;
  const TriangleMesh& mesh = *document.mesh();
  if (drawCurvatureImmediately(document)) return;
  if (drawFeaturesImmediately(document, view.lineWidth)) return;
  switch (document.displayMode) {
    case 0:
    case 9:
    case 27:
      return;
    case 1:
      return drawSmooth(mesh);
    case 3:
      return drawWireFrame(mesh, view.camera.fieldOfView);
    case 21:
      return drawNonManifoldPoints(mesh);
    case 26:
      return drawPoints(mesh);
    case 30:
      return drawPickedFace(mesh);
    default:
      return drawFlat(mesh);
  }
}

}  // namespace

Image drawImmediately(const CGravlinDoc& document, const ViewState& view, ViewSize size) {
  glPushAttrib(GL_ALL_ATTRIB_BITS);
  glViewport(0, 0, size.width, size.height);
  setUpLights(view.lightingMode);
  glEnable(GL_LIGHTING);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LESS);
  glEnable(GL_POINT_SMOOTH);
  glEnable(GL_LINE_SMOOTH);
  glHint(GL_POINT_SMOOTH_HINT, GL_NICEST);
  glHint(GL_LINE_SMOOTH_HINT, GL_NICEST);
  glHint(GL_POLYGON_SMOOTH_HINT, GL_NICEST);
  glLineWidth(view.lineWidth);
  glPointSize(view.pointSize);
  glClearColor(1, 1, 1, 0);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  setUpCamera(view.camera, size);
  drawMode(document, view);
  Image image{size.width, size.height, {}};
  image.rgb.resize(3 * static_cast<std::size_t>(size.width) *
                   static_cast<std::size_t>(size.height));
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  for (int y = 0; y < size.height; ++y) {
    const auto row = static_cast<std::size_t>(size.height - 1 - y);
    glReadPixels(0, y, size.width, 1, GL_RGB, GL_UNSIGNED_BYTE,
                 image.rgb.data() + 3 * row * static_cast<std::size_t>(size.width));
  }
  glPopAttrib();
  return image;
}

}  // namespace gravlin::test
