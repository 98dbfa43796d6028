#pragma once

#include <vector>

#include "view/OpenGL.h"
#include "view/Scene.h"

namespace gravlin {

/// What of a view a scene depends on while it is drawn.
struct DrawStyle {
  float fieldOfView;  ///< degrees
  float lineWidth;    ///< framebuffer pixels
};

/// A scene in buffer objects of the current context, which must be current in every call and in the
/// destructor.
class SceneBuffers {
 public:
  SceneBuffers() = default;
  ~SceneBuffers() { clear(); }
  SceneBuffers(const SceneBuffers&) = delete;
  SceneBuffers& operator=(const SceneBuffers&) = delete;

  /// Replaces what was held. Of the scene's own memory only what setting back reads is kept. Throws
  /// std::bad_alloc, holding nothing, when OpenGL has not enough memory.
  void load(Scene scene);
  void clear();
  /// Draws all batches in their order, lines as wide as `style` says. Positions that are set back
  /// are moved first when the field of view is not that of the last call: in place, linear in their
  /// number.
  void submit(const DrawStyle& style);

 private:
  struct LoadedBatch {
    Batch batch;  ///< without the arrays that nobody reads again
    GLuint vertexBuffer = 0;
    GLuint indexBuffer = 0;  ///< 0: drawn in the order of the vertices
    GLsizei drawnCount = 0;
    /// Where the arrays start in the vertex buffer, in bytes; -1: there is none.
    GLintptr normals = -1;
    GLintptr colours = -1;
    double setBackBy = 0.0;  ///< how far the positions in the buffer are set back
  };

  static void loadVertices(LoadedBatch& loaded);
  static void loadIndices(LoadedBatch& loaded);
  static void setBack(LoadedBatch& loaded, double distance);
  static void draw(const LoadedBatch& loaded, float lineWidth);

  std::vector<LoadedBatch> batches;
};

}  // namespace gravlin
