#include "view/Renderer.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "view/Legend.h"
#include "view/Lights.h"
#include "view/OpenGL.h"
#include "view/Overlay.h"
#include "view/RenderDispatcher.h"
#include "view/SceneBuffers.h"

namespace gravlin {
namespace {

/// What decides the contents of a scene.
struct SceneKey {
  const TriangleMesh* mesh = nullptr;
  std::uint64_t revision = 0;
  int displayMode = 0;
  bool grayScale = false;
  bool operator==(const SceneKey&) const = default;
};

SceneKey keyOf(const Shown& shown) {
  return {shown.mesh, shown.revision, shown.displayMode, shown.grayScale};
}

/// What decides the texts in the corner.
struct CornerKey {
  int vertexCount = 0;
  int faceCount = 0;
  bool outOfMemory = false;
  double pixelRatio = 0.0;
  bool operator==(const CornerKey&) const = default;
};

std::vector<Label> cornerLabels(const CornerKey& key) {
  std::vector<Label> labels;
  if (key.vertexCount != 0) labels.push_back({8, 8, "Vertex:" + std::to_string(key.vertexCount)});
  if (key.faceCount != 0) labels.push_back({8, 25, "Face  :" + std::to_string(key.faceCount)});
  if (key.outOfMemory) labels.push_back({8, 42, "Not enough memory to draw this mesh."});
  return labels;
}

/// What decides the look of the colour legend.
struct LegendKey {
  SceneKey scene;
  int viewWidth = 0;
  double pixelRatio = 0.0;
  bool operator==(const LegendKey&) const = default;
};

/// Framebuffer pixels of a length in the view's own pixels.
int framebufferPixels(int length, double ratio) {
  return std::max(1, static_cast<int>(std::lround(std::clamp(length * ratio, 0.0, 1.0e6))));
}

GLint integerState(GLenum name) {
  GLint value = 0;
  glGetIntegerv(name, &value);
  return value;
}

/// Sets OpenGL's state to what a new context has, wherever drawing relies on it, and gives it back
/// as it was found.
class StateGuard {
 public:
  explicit StateGuard(bool hasVertexArrayObjects)
      : program(integerState(GL_CURRENT_PROGRAM)),
        vertexArrayObject(hasVertexArrayObjects ? integerState(GL_VERTEX_ARRAY_BINDING) : 0) {
    if (vertexArrayObject != 0) glBindVertexArray(0);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    for (const GLenum matrix : matrices) {
      glMatrixMode(matrix);
      glPushMatrix();
    }
    setDefaults();
  }

  ~StateGuard() {
    for (const GLenum matrix : matrices) {
      glMatrixMode(matrix);
      glPopMatrix();
    }
    glPopClientAttrib();
    glPopAttrib();
    glUseProgram(static_cast<GLuint>(program));
    if (vertexArrayObject != 0) glBindVertexArray(static_cast<GLuint>(vertexArrayObject));
  }

  StateGuard(const StateGuard&) = delete;
  StateGuard& operator=(const StateGuard&) = delete;

 private:
  static void setDefaults() {
    glUseProgram(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    for (const GLenum array : arrays) glDisableClientState(array);
    for (const GLenum feature : features) glDisable(feature);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDepthMask(GL_TRUE);
    glDepthRange(0.0, 1.0);
    glClearDepth(1.0);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glShadeModel(GL_SMOOTH);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_FALSE);
    glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, GL_FALSE);
    glPixelZoom(1.0F, 1.0F);
  }

  static constexpr GLenum arrays[] = {GL_NORMAL_ARRAY, GL_COLOR_ARRAY, GL_TEXTURE_COORD_ARRAY};
  static constexpr GLenum features[] = {GL_ALPHA_TEST,
                                        GL_BLEND,
                                        GL_COLOR_LOGIC_OP,
                                        GL_COLOR_MATERIAL,
                                        GL_CULL_FACE,
                                        GL_DITHER,
                                        GL_FOG,
                                        GL_NORMALIZE,
                                        GL_POLYGON_OFFSET_FILL,
                                        GL_POLYGON_SMOOTH,
                                        GL_SCISSOR_TEST,
                                        GL_STENCIL_TEST,
                                        GL_TEXTURE_2D};
  static constexpr GLenum matrices[] = {GL_PROJECTION, GL_MODELVIEW};
  GLint program;
  GLint vertexArrayObject;
};

/// Surfaces leave the transparency of their material in the framebuffer; a window that the desktop
/// composes must hide what lies behind it.
void makeOpaque() {
  glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_TRUE);
  glClearColor(0.0F, 0.0F, 0.0F, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
}

}  // namespace

struct Renderer::Resources {
  bool hasVertexArrayObjects = false;
  SceneBuffers scene;
  std::optional<SceneKey> sceneKey;  ///< of what `scene` holds
  int usedVertices = 0;
  int validFaces = 0;
  bool outOfMemory = false;
  std::optional<FieldColours> scale;  ///< of the scene's colours
  Overlay overlay;
  CornerKey cornerKey;  ///< of what `overlay` shows
  Overlay legend;
  LegendKey legendKey;  ///< of what `legend` shows

  void refreshScene(const Shown& shown);
  void drawCorner(const ViewState& view, const DrawTarget& target);
  void drawLegend(const DrawTarget& target);
};

void Renderer::Resources::refreshScene(const Shown& shown) {
  const SceneKey key = keyOf(shown);
  if (key == sceneKey) return;
  const TriangleMesh* mesh = shown.mesh;
  usedVertices = mesh != nullptr ? mesh->countUsedVertices() : 0;
  validFaces = mesh != nullptr ? mesh->countValidFaces() : 0;
  scene.clear();
  outOfMemory = false;
  scale.reset();
  try {
    Scene gathered = gatherScene(shown);
    scale = gathered.scale;
    scene.load(std::move(gathered));
  } catch (const std::bad_alloc&) {
    // The document is worth more than its picture: it can still be saved.
    outOfMemory = true;
  }
  sceneKey = key;
}

void Renderer::Resources::drawCorner(const ViewState& view, const DrawTarget& target) {
  const CornerKey key = {view.shownVertexCount, view.shownFaceCount, outOfMemory,
                         target.pixelRatio};
  if (key != cornerKey) {
    overlay.show(cornerLabels(key), target.pixelRatio);
    cornerKey = key;
  }
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);
  overlay.draw(framebufferPixels(target.size.height, target.pixelRatio));
}

void Renderer::Resources::drawLegend(const DrawTarget& target) {
  const LegendKey key = {*sceneKey, target.size.width, target.pixelRatio};
  if (key != legendKey) {
    const LegendLayout layout = legendOf(*scale, target.size);
    legend.show(layout.labels, {layout.bar}, target.pixelRatio);
    legendKey = key;
  }
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);
  legend.draw(framebufferPixels(target.size.height, target.pixelRatio));
}

Renderer::Renderer() : resources(std::make_unique<Resources>()) {
}

Renderer::~Renderer() = default;

void Renderer::initialise() {
  const auto* version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
  if (version == nullptr) throw std::runtime_error("There is no OpenGL to draw with.");
  const int major = std::atoi(version);
  while (glGetError() != GL_NO_ERROR) {
  }
  glMatrixMode(GL_MODELVIEW);
  const bool hasFixedFunctions = glGetError() == GL_NO_ERROR;
  if (major < 2 || !hasFixedFunctions) {
    throw std::runtime_error("Drawing needs OpenGL 2.1 with the compatibility profile; here is " +
                             std::string(version) + ".");
  }
  resources->hasVertexArrayObjects = major >= 3;
}

void Renderer::draw(const Shown& shown, ViewState& view, const DrawTarget& target) {
  const StateGuard guard(resources->hasVertexArrayObjects);
  resources->refreshScene(shown);
  view.shownVertexCount = resources->usedVertices;
  view.shownFaceCount = resources->validFaces;

  const auto ratio = static_cast<float>(target.pixelRatio);
  glViewport(0, 0, framebufferPixels(target.size.width, target.pixelRatio),
             framebufferPixels(target.size.height, target.pixelRatio));
  initLights(view.lightingMode);
  glPointSize(view.pointSize * ratio);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  view.camera.loadProjection(target.size);
  view.camera.loadModelView();
  resources->scene.submit({view.camera.fieldOfView, view.lineWidth * ratio});
  if (target.overlay) resources->drawCorner(view, target);
  if (shown.colourLegend && resources->scale) resources->drawLegend(target);
  makeOpaque();
  glFlush();
}

void Renderer::release() {
  resources->scene.clear();
  resources->sceneKey.reset();
}

}  // namespace gravlin
