#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <set>

#include "ImmediateCurvature.h"
#include "ImmediateFeatures.h"
#include "ImmediateMode.h"
#include "support/Allocations.h"
#include "support/DisplayModes.h"
#include "support/DocumentAccess.h"
#include "support/ImageComparison.h"
#include "support/OffscreenView.h"
#include "view/OpenGL.h"
#include "view/Renderer.h"

namespace gravlin {
namespace {

/// The extent of the pixels that are not white.
struct InkBox {
  int left = std::numeric_limits<int>::max();
  int top = std::numeric_limits<int>::max();
  int right = -1;
  int bottom = -1;

  bool empty() const { return right < 0; }
  int width() const { return right - left + 1; }
  int height() const { return bottom - top + 1; }
};

InkBox inkBox(const Image& image) {
  InkBox box;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      const std::uint8_t* p = image.pixel(x, y);
      if (p[0] == 255 && p[1] == 255 && p[2] == 255) continue;
      box.left = std::min(box.left, x);
      box.right = std::max(box.right, x);
      box.top = std::min(box.top, y);
      box.bottom = std::max(box.bottom, y);
    }
  }
  return box;
}

class RendererTest : public ::testing::Test {
 protected:
  Image drawWithoutCorner() {
    offscreen.target.overlay = false;
    return offscreen.draw();
  }

  /// Draws with a renderer of the test's own, in the picture's context.
  void drawWith(Renderer& renderer) {
    renderer.draw(offscreen.document.shown(), offscreen.view, offscreen.target);
  }

  test::OffscreenView offscreen;
};

TEST_F(RendererTest, EveryModeDrawsThePixelsOfImmediateMode) {
  offscreen.show(test::cutSphere(), FlatShading);
  test::meshOf(offscreen.document).pickedFace = 1000;
  test::computeAllCurvature(offscreen.document);
  test::findAllLines(offscreen.document);
  const ViewAngles turns[] = {{0, 0, 0}, {10, -25, 40}, {-80, 170, -3}};
  for (int mode = 0; mode <= 31; ++mode) {
    offscreen.show(mode);
    for (const ViewAngles& angles : turns) {
      SCOPED_TRACE("mode " + std::to_string(mode) + ", Rx " + std::to_string(angles.rx));
      offscreen.view.camera.setAngles(angles);
      const Image drawn = drawWithoutCorner();
      const Image expected =
          test::drawImmediately(offscreen.document, offscreen.view, offscreen.target.size);
      EXPECT_EQ(test::differentPixels(drawn, expected), 0);
    }
  }
}

TEST_F(RendererTest, FieldsInGreyDrawThePixelsOfImmediateMode) {
  offscreen.show(test::bumpySphere(), FlatShading);
  test::computeAllCurvature(offscreen.document);
  offscreen.document.visualizationParameters.grayScale = true;
  for (const int mode : {CurvatureMax, CurvatureMin, CurvatureMean, CurvatureGauss, CurvatureTotal,
                         EdgeCurvature, VertexError, FaceError, FaceValues}) {
    SCOPED_TRACE("mode " + std::to_string(mode));
    offscreen.show(mode);
    const Image drawn = drawWithoutCorner();
    const Image expected =
        test::drawImmediately(offscreen.document, offscreen.view, offscreen.target.size);
    EXPECT_EQ(test::differentPixels(drawn, expected), 0);
  }
}

TEST_F(RendererTest, EveryMeshDrawsThePixelsOfImmediateMode) {
  offscreen.view.camera.fieldOfView = 4.0F;
  for (const auto& families : {test::closedMeshes(), test::openMeshes(), test::hostileMeshes()}) {
    for (const test::NamedMesh& named : families) {
      // What is not finite is left out here; vertex by vertex it would be OpenGL's to decide.
      if (named.name == "not a number" || named.name == "infinite") continue;
      offscreen.show(named.mesh, FlatShading);
      for (const int mode : {SmoothShading, FlatShading, WireFrame, NonManifoldPoints, Points}) {
        SCOPED_TRACE(named.name + ", mode " + std::to_string(mode));
        offscreen.show(mode);
        const Image drawn = drawWithoutCorner();
        const Image expected =
            test::drawImmediately(offscreen.document, offscreen.view, offscreen.target.size);
        EXPECT_EQ(test::differentPixels(drawn, expected), 0);
      }
    }
  }
}

TEST_F(RendererTest, EveryViewDrawsThePixelsOfImmediateMode) {
  const std::function<void(ViewState&)> changes[] = {
      [](ViewState& v) { v.setLightingMode(LightingMode::Red); },
      [](ViewState& v) { v.setLightingMode(LightingMode::Green); },
      [](ViewState& v) { v.setLightingMode(LightingMode::Blue); },
      [](ViewState& v) { v.setLineWidthAndPointSize(4.0F, 7.5F); },
      [](ViewState& v) { v.camera.fieldOfView = 60.0F; },
      [](ViewState& v) { v.camera.fieldOfView = -10.0F; },
      [](ViewState& v) {
        v.camera.translation = {3.0F, -4.0F, 5.0F};
      }};
  offscreen.show(test::cutSphere(), FlatShading);
  for (const auto& change : changes) {
    offscreen.view = {};
    change(offscreen.view);
    for (const int mode : {SmoothShading, WireFrame, NonManifoldPoints, Points}) {
      SCOPED_TRACE(mode);
      offscreen.show(mode);
      const Image drawn = drawWithoutCorner();
      const Image expected =
          test::drawImmediately(offscreen.document, offscreen.view, offscreen.target.size);
      EXPECT_EQ(test::differentPixels(drawn, expected), 0);
    }
  }
}

/// The same surface with its faces turned round, carrying the same lines.
TriangleMesh turnedRound(TriangleMesh mesh) {
  for (std::size_t corner = 0; corner < mesh.faces.size(); corner += 3) {
    std::swap(mesh.faces[corner + 1], mesh.faces[corner + 2]);
    // Edge 0-1 becomes edge 2-0.
    std::swap(mesh.edgeCurvatures[corner], mesh.edgeCurvatures[corner + 2]);
  }
  for (auto* strokes : {&mesh.strokes.maxStrokes, &mesh.strokes.minStrokes}) {
    for (std::vector<FacePoint>& stroke : *strokes) {
      for (FacePoint& point : stroke) std::swap(point.a, point.b);
    }
  }
  mesh.buildAdjacency();
  mesh.buildFaceAdjacency();
  mesh.computeNormals();
  return mesh;
}

TEST_F(RendererTest, LinesOfAnInsideOutMeshAreSeenAsThoseOfTheMeshTurnedRound) {
  const test::NamedMesh shapes[] = {{"bumpy", test::bumpySphere()},
                                    {"cube", test::fineCube(5)},
                                    {"sphere", test::icosphere(3, 8.0)}};
  for (const test::NamedMesh& named : shapes) {
    offscreen.show(named.mesh, FlatShading);
    test::computeAllCurvature(offscreen.document);
    test::findAllLines(offscreen.document);
    for (const int mode : {DirectionMax, DirectionMin, TensorMax, TensorMin, EdgeCurvature,
                           StrokeMax, StrokeMin, Silhouette}) {
      SCOPED_TRACE(named.name + ", mode " + std::to_string(mode));
      offscreen.show(mode);
      const Image outward = drawWithoutCorner();
      const TriangleMesh before = *offscreen.document.mesh();
      test::meshOf(offscreen.document) = turnedRound(before);
      offscreen.show(mode);
      const Image inward = drawWithoutCorner();
      test::meshOf(offscreen.document) = before;
      EXPECT_FALSE(inkBox(outward).empty());
      // Depths are rounded from another corner of each face, which shows where surfaces cut lines.
      EXPECT_GE(test::structuralSimilarity(outward, inward), 0.999);
    }
  }
}

TEST_F(RendererTest, ZoomingSetsTheWhiteFacesOfAWireFrameBackAnew) {
  offscreen.show(test::bumpySphere(), WireFrame);
  for (const float fieldOfView : {22.5F, 10.0F, 45.0F, 22.5F}) {
    offscreen.view.camera.fieldOfView = fieldOfView;
    const Image drawn = drawWithoutCorner();
    const Image expected =
        test::drawImmediately(offscreen.document, offscreen.view, offscreen.target.size);
    EXPECT_EQ(test::differentPixels(drawn, expected), 0);
  }
}

TEST_F(RendererTest, MeshWithPositionsThatAreNotFiniteShowsTheRest) {
  TriangleMesh broken = test::bumpySphere();
  TriangleMesh rest = broken;
  constexpr int lost = 100;
  const auto at = 3 * static_cast<std::size_t>(lost);
  for (int f = 0; f < rest.faceCount; ++f) {
    const auto c = rest.corners(f);
    if (c[0] == lost || c[1] == lost || c[2] == lost) rest.setFace(f, {{-1, -1, -1}});
  }
  for (const float value :
       {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
    broken.vertices[at] = value;
    for (const int mode : {SmoothShading, FlatShading}) {
      offscreen.show(rest, mode);
      const Image expected = drawWithoutCorner();
      offscreen.show(broken, mode);
      EXPECT_EQ(test::differentPixels(drawWithoutCorner(), expected), 0);
    }
  }
}

int validFaces(const TriangleMesh& mesh) {
  int count = 0;
  for (int f = 0; f < mesh.faceCount; ++f) count += mesh.validFace(f) ? 1 : 0;
  return count;
}

int usedVertices(const TriangleMesh& mesh) {
  std::set<int> used;
  for (int f = 0; f < mesh.faceCount; ++f) {
    if (!mesh.validFace(f)) continue;
    for (const int corner : mesh.corners(f)) used.insert(corner);
  }
  return static_cast<int>(used.size());
}

TEST_F(RendererTest, HostileMeshesAndViewsAreCountedAndDrawnWithoutAnError) {
  for (const test::NamedMesh& named : test::hostileMeshes()) {
    offscreen.show(named.mesh, FlatShading);
    for (const int mode : {1, 2, 3, 21, 26, 30}) {
      offscreen.show(mode);
      for (const float number : {0.0F, 1e30F, std::numeric_limits<float>::infinity(),
                                 std::numeric_limits<float>::quiet_NaN()}) {
        offscreen.view.camera.setAngles({number, number, number});
        offscreen.view.camera.fieldOfView = number;
        offscreen.view.camera.translation = {number, number, number};
        offscreen.draw();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << named.name;
        EXPECT_EQ(offscreen.view.shownVertexCount, usedVertices(named.mesh)) << named.name;
        EXPECT_EQ(offscreen.view.shownFaceCount, validFaces(named.mesh)) << named.name;
      }
    }
  }
  // What none of them left behind: the next mesh is drawn as ever.
  offscreen.view = {};
  offscreen.show(test::bumpySphere(), SmoothShading);
  const Image drawn = drawWithoutCorner();
  EXPECT_EQ(test::differentPixels(drawn, test::drawImmediately(offscreen.document, offscreen.view,
                                                               offscreen.target.size)),
            0);
}

TEST_F(RendererTest, ShowsTheCountsOfUsedVerticesAndValidFaces) {
  offscreen.show(
      test::makeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {9, 9, 9}}, {{0, 1, 2}, {0, 1, 8}}),
      FlatShading);
  offscreen.draw();
  EXPECT_EQ(offscreen.view.shownVertexCount, 3);
  EXPECT_EQ(offscreen.view.shownFaceCount, 1);
}

TEST_F(RendererTest, ShowsNoCountsWithoutAMesh) {
  offscreen.view.shownVertexCount = 5;
  offscreen.view.shownFaceCount = 7;
  offscreen.show(FlatShading);
  EXPECT_TRUE(inkBox(offscreen.draw()).empty());
  EXPECT_EQ(offscreen.view.shownVertexCount, 0);
  EXPECT_EQ(offscreen.view.shownFaceCount, 0);
}

TEST_F(RendererTest, CountThatIsZeroIsNotPrinted) {
  offscreen.show(test::pointsOnly(), FlatShading);  // neither used vertices nor faces
  EXPECT_TRUE(inkBox(offscreen.draw()).empty());
}

TEST_F(RendererTest, CountsStandInTheUpperLeftCorner) {
  offscreen.show(test::cube(), 9);  // a mode that draws nothing else
  const Image image = offscreen.draw();
  const InkBox box = inkBox(image);
  EXPECT_GE(box.left, 8);
  EXPECT_GE(box.top, 8);
  EXPECT_LT(box.top, 16);
  EXPECT_GT(box.bottom, 33);  // the second line starts at 25
  EXPECT_LE(box.bottom, 42);
  EXPECT_GT(box.width(), 50);  // "Vertex:8"
  EXPECT_LT(box.right, 90);
  offscreen.target.overlay = false;
  EXPECT_TRUE(inkBox(offscreen.draw()).empty());
}

TEST_F(RendererTest, CountsArePrintedOnWhitePaperInFrontOfTheMesh) {
  offscreen.show(test::cube(), 9);
  const Image alone = offscreen.draw();
  offscreen.view.camera.fieldOfView = 0.5F;  // the cube fills the picture
  offscreen.show(FlatShading);
  const Image inFront = offscreen.draw();
  EXPECT_NE(inFront.pixel(200, 200)[0] + inFront.pixel(200, 200)[1], 510);
  for (int y = 9; y < 22; ++y) {
    for (int x = 8; x < 60; ++x) {
      EXPECT_EQ(inFront.pixel(x, y)[0], alone.pixel(x, y)[0]);
    }
  }
}

TEST_F(RendererTest, CountsAreDrawnInPicturesTooSmallForThem) {
  offscreen.show(test::cube(), FlatShading);
  for (const ViewSize size : {ViewSize{1, 1}, ViewSize{20, 5}, ViewSize{9, 40}}) {
    offscreen.target.size = size;
    offscreen.draw();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  }
}

TEST_F(RendererTest, EverythingGrowsWithThePixelRatio) {
  offscreen.show(test::makeMesh({{0, 0, 0}}, {}), Points);
  offscreen.view.setLineWidthAndPointSize(1.0F, 20.0F);
  offscreen.target.size = {100, 100};
  const InkBox once = inkBox(offscreen.draw());
  offscreen.target.pixelRatio = 3.0;
  const InkBox thrice = inkBox(offscreen.draw());
  EXPECT_NEAR(once.width(), 20, 2);  // a smooth point's rim
  EXPECT_NEAR(thrice.width(), 60, 2);
  EXPECT_NEAR(thrice.left + thrice.width() / 2.0, 150.0, 1.0);

  offscreen.show(test::cube(), 9);
  const InkBox text = inkBox(offscreen.draw());
  EXPECT_GE(text.left, 24);
  EXPECT_GE(text.top, 24);
  EXPECT_GT(text.bottom, 100);
}

TEST_F(RendererTest, ClearsTheWholePictureToWhite) {
  offscreen.show(test::cube(), Points);
  offscreen.target.overlay = false;
  const Image image = offscreen.draw();
  for (const auto& [x, y] : {std::pair{0, 0}, {299, 0}, {0, 299}, {299, 299}}) {
    for (int k = 0; k < 3; ++k) EXPECT_EQ(image.pixel(x, y)[k], 255);
  }
}

TEST_F(RendererTest, LeavesTheFramebufferOpaque) {
  offscreen.show(test::bumpySphere(), FlatShading);
  offscreen.draw();
  for (const int at : {1, 150}) {
    std::array<std::uint8_t, 4> pixel = {};
    glReadPixels(at, at, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    EXPECT_EQ(pixel[3], 255);
  }
}

TEST_F(RendererTest, DrawingAnUnchangedSceneAllocatesNothing) {
  offscreen.show(test::cutSphere(), FlatShading);
  test::meshOf(offscreen.document).pickedFace = 1000;
  offscreen.draw();  // binds the framebuffer
  Renderer renderer;
  renderer.initialise();
  for (const int mode : test::everyDisplayMode()) {
    offscreen.show(mode);
    // The driver compiles what it has not met before when it first draws with it.
    for (int warmUp = 0; warmUp < 2; ++warmUp) {
      drawWith(renderer);
      glFinish();
    }
    const std::size_t before = test::allocationCount();
    for (int i = 0; i < 5; ++i) {
      offscreen.view.camera.angleZ += 7.0F;
      offscreen.view.camera.fieldOfView += 1.0F;
      drawWith(renderer);
    }
    EXPECT_EQ(test::allocationCount(), before) << "mode " << mode;
    glFinish();
  }
}

TEST_F(RendererTest, DrawsAnewWhenRevisionModeOrStyleChange) {
  offscreen.show(test::icosphere(2, 5.0), FlatShading);
  const Image small = drawWithoutCorner();
  for (int i = 0; i < offscreen.document.mesh()->vertexCount; ++i) {
    TriangleMesh& mesh = test::meshOf(offscreen.document);
    mesh.setPosition(i, 1.5 * mesh.position(i));
  }
  EXPECT_EQ(test::differentPixels(drawWithoutCorner(), small), 0);  // not redrawn yet
  offscreen.document.redraw();
  const Image large = drawWithoutCorner();
  EXPECT_GT(test::differentPixels(large, small), 1000);
  offscreen.document.displayMode = Points;
  EXPECT_GT(test::differentPixels(drawWithoutCorner(), large), 1000);
  test::dropMesh(offscreen.document);
  EXPECT_TRUE(inkBox(drawWithoutCorner()).empty());
}

TEST_F(RendererTest, DrawsAgainAfterItsBuffersWereReleased) {
  offscreen.show(test::bumpySphere(), FlatShading);
  offscreen.draw();
  Renderer renderer;
  renderer.initialise();
  drawWith(renderer);
  const auto read = [this] {
    return test::drawImmediately(offscreen.document, offscreen.view, {1, 1});
  };
  read();
  renderer.release();
  renderer.release();
  drawWith(renderer);
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(RendererTest, FreesItsBuffers) {
  offscreen.show(test::bumpySphere(), WireFrame);
  offscreen.draw();
  const auto buffersBelow = [](GLuint end) {
    int count = 0;
    for (GLuint name = 1; name < end; ++name) count += glIsBuffer(name) == GL_TRUE ? 1 : 0;
    return count;
  };
  const int before = buffersBelow(1000);
  {
    Renderer renderer;
    renderer.initialise();
    drawWith(renderer);
    EXPECT_GT(buffersBelow(1000), before);
    offscreen.document.redraw();
    drawWith(renderer);
    renderer.release();
    EXPECT_EQ(buffersBelow(1000), before);
    drawWith(renderer);
  }
  EXPECT_EQ(buffersBelow(1000), before);
}

TEST_F(RendererTest, SceneTooLargeForTheMemoryLeavesASentence) {
  offscreen.show(test::bumpySphere(), 9);
  const Image nothing = offscreen.draw();
  offscreen.show(FlatShading);
  Renderer renderer;
  renderer.initialise();
  drawWith(renderer);
  offscreen.document.redraw();
  {
    const test::AllocationLimit limit(60000);  // 5120 faces have indices of 61440 bytes
    drawWith(renderer);
  }
  EXPECT_EQ(offscreen.view.shownVertexCount, 2562);
  Image sentence{300, 300, std::vector<std::uint8_t>(270000)};
  glReadPixels(0, 0, 300, 300, GL_RGB, GL_UNSIGNED_BYTE, sentence.rgb.data());
  EXPECT_GT(inkBox(sentence).right, inkBox(nothing).right + 100);
  offscreen.document.redraw();
  drawWith(renderer);
  glReadPixels(150, 150, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, sentence.rgb.data());
  EXPECT_LT(sentence.rgb[0] + sentence.rgb[1] + sentence.rgb[2], 765);
}

// --- Sharing the context with others ---

using Names = std::initializer_list<GLenum>;

void disturbState() {
  glEnable(GL_BLEND);
  glEnable(GL_CULL_FACE);
  glEnable(GL_SCISSOR_TEST);
  glScissor(0, 0, 3, 3);
  glEnable(GL_TEXTURE_2D);
  glEnable(GL_NORMALIZE);
  glEnable(GL_COLOR_MATERIAL);
  glEnable(GL_FOG);
  glDisable(GL_DEPTH_TEST);
  glDepthFunc(GL_GREATER);
  glDepthMask(GL_FALSE);
  glDepthRange(0.25, 0.5);
  glClearDepth(0.125);
  glColorMask(GL_TRUE, GL_FALSE, GL_FALSE, GL_TRUE);
  glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
  glShadeModel(GL_FLAT);
  glViewport(5, 6, 7, 8);
  glClearColor(0.25F, 0.5F, 0.75F, 1.0F);
  glLineWidth(5.0F);
  glPointSize(11.0F);
  glPixelZoom(2.0F, -1.0F);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
  glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
  glEnableClientState(GL_COLOR_ARRAY);
  for (const GLenum matrix : Names{GL_PROJECTION, GL_MODELVIEW}) {
    glMatrixMode(matrix);
    glLoadIdentity();
    glTranslatef(1.0F, 2.0F, 3.0F);
  }
}

std::vector<float> observeState() {
  std::vector<float> state;
  const auto get = [&state](GLenum name, std::size_t count) {
    std::array<float, 16> values = {};
    glGetFloatv(name, values.data());
    state.insert(state.end(), values.begin(), values.begin() + static_cast<std::ptrdiff_t>(count));
  };
  for (const GLenum four : Names{GL_VIEWPORT, GL_COLOR_CLEAR_VALUE, GL_COLOR_WRITEMASK,
                                 GL_SCISSOR_BOX, GL_LIGHT_MODEL_AMBIENT}) {
    get(four, 4);
  }
  get(GL_POLYGON_MODE, 2);
  get(GL_DEPTH_RANGE, 2);
  get(GL_PROJECTION_MATRIX, 16);
  get(GL_MODELVIEW_MATRIX, 16);
  for (const GLenum one :
       Names{GL_DEPTH_FUNC, GL_DEPTH_WRITEMASK, GL_DEPTH_CLEAR_VALUE, GL_SHADE_MODEL, GL_LINE_WIDTH,
             GL_POINT_SIZE, GL_ZOOM_X, GL_ZOOM_Y, GL_UNPACK_ALIGNMENT, GL_MATRIX_MODE,
             GL_LIGHT_MODEL_TWO_SIDE, GL_CURRENT_PROGRAM, GL_ARRAY_BUFFER_BINDING,
             GL_ELEMENT_ARRAY_BUFFER_BINDING, GL_VERTEX_ARRAY_BINDING, GL_POINT_SMOOTH_HINT}) {
    get(one, 1);
  }
  for (const GLenum feature :
       Names{GL_BLEND, GL_CULL_FACE, GL_SCISSOR_TEST, GL_TEXTURE_2D, GL_NORMALIZE,
             GL_COLOR_MATERIAL, GL_FOG, GL_DEPTH_TEST, GL_LIGHTING, GL_LIGHT0, GL_LIGHT5,
             GL_POINT_SMOOTH, GL_LINE_SMOOTH, GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_COLOR_ARRAY}) {
    state.push_back(static_cast<float>(glIsEnabled(feature)));
  }
  return state;
}

GLuint shaderProgram() {
  const GLuint shader = glCreateShader(GL_VERTEX_SHADER);
  const char* source = "void main() { gl_Position = vec4(0.0); }";
  glShaderSource(shader, 1, &source, nullptr);
  glCompileShader(shader);
  const GLuint program = glCreateProgram();
  glAttachShader(program, shader);
  glLinkProgram(program);
  return program;
}

TEST_F(RendererTest, NeedsNothingOfTheStateItFindsAndGivesItBack) {
  offscreen.show(test::cutSphere(), FlatShading);
  for (const int mode : {SmoothShading, FlatShading, WireFrame, NonManifoldPoints, Points}) {
    offscreen.show(mode);
    const Image expected = offscreen.draw();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    disturbState();
    const std::vector<float> before = observeState();
    offscreen.view.camera.pressArrow(ArrowKey::Left);
    offscreen.view.camera.pressArrow(ArrowKey::Right);
    const Image drawn = offscreen.draw();
    EXPECT_EQ(observeState(), before) << "mode " << mode;
    glPopClientAttrib();
    glPopAttrib();
    EXPECT_EQ(test::differentPixels(drawn, expected), 0) << "mode " << mode;
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  }
}

TEST_F(RendererTest, DrawsWhileAShaderAndForeignBuffersAreBound) {
  offscreen.show(test::cutSphere(), WireFrame);
  const Image expected = offscreen.draw();
  const GLuint program = shaderProgram();
  std::array<GLuint, 2> buffers = {};
  GLuint arrays = 0;
  glGenBuffers(2, buffers.data());
  glGenVertexArrays(1, &arrays);
  glBindVertexArray(arrays);
  glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
  glUseProgram(program);
  const std::vector<float> before = observeState();
  offscreen.document.redraw();  // so that the scene is loaded anew meanwhile
  EXPECT_EQ(test::differentPixels(offscreen.draw(), expected), 0);
  EXPECT_EQ(observeState(), before);
}

}  // namespace
}  // namespace gravlin
