// Drawing an unchanged scene of 2,000,000 faces from another side, beside the bare submission of
// the same arrays: one buffer per array, one call per batch, nothing else.

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <vector>

#include "support/Allocations.h"
#include "support/OffscreenView.h"
#include "support/Surface.h"
#include "view/Lights.h"
#include "view/OpenGL.h"
#include "view/RenderDispatcher.h"

namespace gravlin::bench {
namespace {

GLuint loadBuffer(GLenum kind, const auto& numbers) {
  if (numbers.empty()) return 0;
  GLuint buffer = 0;
  glGenBuffers(1, &buffer);
  glBindBuffer(kind, buffer);
  glBufferData(kind, static_cast<GLsizeiptr>(numbers.size() * sizeof(numbers[0])), numbers.data(),
               GL_STATIC_DRAW);
  glBindBuffer(kind, 0);
  return buffer;
}

/// The arrays of a scene and nothing around them.
class BareScene {
 public:
  BareScene(Scene scene, float fieldOfView) {
    for (Batch& batch : scene.batches) {
      for (std::size_t i = 0; i < batch.setBackAlong.size(); ++i) {
        batch.positions[i] -=
            static_cast<float>(batch.setBackAlong[i] * setBackDistance(fieldOfView));
      }
      arrays.push_back({.positions = loadBuffer(GL_ARRAY_BUFFER, batch.positions),
                        .normals = loadBuffer(GL_ARRAY_BUFFER, batch.normals),
                        .indices = loadBuffer(GL_ELEMENT_ARRAY_BUFFER, batch.indices),
                        .count = static_cast<GLsizei>(batch.drawnCount()),
                        .primitive = batch.primitive,
                        .flat = batch.flat,
                        .colour = batch.colour});
    }
  }

  ~BareScene() {
    for (const Arrays& a : arrays) {
      for (const GLuint buffer : {a.positions, a.normals, a.indices}) glDeleteBuffers(1, &buffer);
    }
  }

  BareScene(const BareScene&) = delete;
  BareScene& operator=(const BareScene&) = delete;

  void submit() const {
    glEnableClientState(GL_VERTEX_ARRAY);
    for (const Arrays& a : arrays) submit(a);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glDisableClientState(GL_VERTEX_ARRAY);
  }

 private:
  struct Arrays {
    GLuint positions;
    GLuint normals;
    GLuint indices;
    GLsizei count;
    Primitive primitive;
    bool flat;
    Colour colour;
  };

  static void submit(const Arrays& a) {
    constexpr GLenum names[] = {GL_POINTS, GL_LINES, GL_TRIANGLES};
    const GLenum name = names[static_cast<std::size_t>(a.primitive)];
    glBindBuffer(GL_ARRAY_BUFFER, a.positions);
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    if (a.normals != 0) {
      glEnable(GL_LIGHTING);
      glShadeModel(a.flat ? GL_FLAT : GL_SMOOTH);
      glBindBuffer(GL_ARRAY_BUFFER, a.normals);
      glEnableClientState(GL_NORMAL_ARRAY);
      glNormalPointer(GL_FLOAT, 0, nullptr);
    } else {
      glDisable(GL_LIGHTING);
      glDisableClientState(GL_NORMAL_ARRAY);
      glColor3f(a.colour.r, a.colour.g, a.colour.b);
    }
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, a.indices);
    if (a.indices != 0) {
      glDrawElements(name, a.count, GL_UNSIGNED_INT, nullptr);
    } else {
      glDrawArrays(name, 0, a.count);
    }
  }

  std::vector<Arrays> arrays;
};

double median(std::vector<double> values) {
  std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
  return values[values.size() / 2];
}

/// Seconds from the call to the last pixel.
double timeToFinish(const auto& draw) {
  glFinish();
  const auto start = std::chrono::steady_clock::now();
  draw();
  glFinish();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void clearAndAim(const Camera& camera, ViewSize size) {
  glViewport(0, 0, size.width, size.height);
  initLights(LightingMode::Rgb);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  camera.loadProjection(size);
  camera.loadModelView();
}

/// Counters: the median of the bare submission, the ratio of the medians, and the calls of operator
/// new in all redraws.
void BM_Redraw(benchmark::State& state, int displayMode) {
  test::OffscreenView offscreen;
  offscreen.target.size = {800, 600};
  offscreen.show(built(largeSurface()), displayMode);
  offscreen.draw();  // binds the picture's framebuffer
  Renderer renderer;
  renderer.initialise();
  const Camera& camera = offscreen.view.camera;
  const BareScene bare(gatherScene(offscreen.document.shown()), camera.fieldOfView);
  const auto drawScene = [&] {
    renderer.draw(offscreen.document.shown(), offscreen.view, offscreen.target);
  };
  const auto drawBare = [&] {
    clearAndAim(camera, offscreen.target.size);
    bare.submit();
  };
  timeToFinish(drawScene);
  timeToFinish(drawBare);

  std::vector<double> sceneTimes;
  std::vector<double> bareTimes;
  std::size_t allocations = 0;
  for (auto _ : state) {
    offscreen.view.camera.angleZ += 3.0F;
    const std::size_t before = test::allocationCount();
    const double sceneTime = timeToFinish(drawScene);
    allocations += test::allocationCount() - before;
    bareTimes.push_back(timeToFinish(drawBare));
    sceneTimes.push_back(sceneTime);
    state.SetIterationTime(sceneTime);
  }
  state.counters["bare_ms"] = 1e3 * median(bareTimes);
  state.counters["ratio_to_bare"] = median(sceneTimes) / median(bareTimes);
  state.counters["allocations"] = static_cast<double>(allocations);
}

/// Drawing with another field of view beside drawing with the same one again.
void BM_Zoom(benchmark::State& state, int displayMode) {
  test::OffscreenView offscreen;
  offscreen.target.size = {800, 600};
  offscreen.show(built(largeSurface()), displayMode);
  offscreen.draw();
  Renderer renderer;
  renderer.initialise();
  const auto draw = [&] {
    renderer.draw(offscreen.document.shown(), offscreen.view, offscreen.target);
  };
  timeToFinish(draw);
  std::vector<double> zoomed;
  std::vector<double> unchanged;
  for (auto _ : state) {
    unchanged.push_back(timeToFinish(draw));
    offscreen.view.camera.fieldOfView += 0.01F;
    zoomed.push_back(timeToFinish(draw));
    state.SetIterationTime(zoomed.back());
  }
  state.counters["ratio_to_unchanged"] = median(zoomed) / median(unchanged);
}

#define GRAVLIN_REDRAW(mode)               \
  BENCHMARK_CAPTURE(BM_Redraw, mode, mode) \
      ->Unit(benchmark::kMillisecond)      \
      ->UseManualTime()                    \
      ->Iterations(7)
GRAVLIN_REDRAW(SmoothShading);
GRAVLIN_REDRAW(FlatShading);
GRAVLIN_REDRAW(WireFrame);
GRAVLIN_REDRAW(Points);
GRAVLIN_REDRAW(PickedFace);
BENCHMARK_CAPTURE(BM_Zoom, WireFrame, WireFrame)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(7);

}  // namespace
}  // namespace gravlin::bench
