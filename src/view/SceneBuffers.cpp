#include "view/SceneBuffers.h"

#include <cmath>
#include <new>
#include <utility>

namespace gravlin {
namespace {

GLsizeiptr byteSize(const auto& numbers) {
  return static_cast<GLsizeiptr>(numbers.size() * sizeof(numbers[0]));
}

/// An offset in the bound buffer, as the pointer that the array functions take.
const void* offset(GLintptr bytes) {
  return reinterpret_cast<const void*>(bytes);  // NOLINT(performance-no-int-to-ptr)
}

GLenum primitiveName(Primitive primitive) {
  switch (primitive) {
    case Primitive::Points:
      return GL_POINTS;
    case Primitive::Lines:
      return GL_LINES;
    case Primitive::Triangles:
      break;
  }
  return GL_TRIANGLES;
}

/// Makes room in the bound buffer.
void reserve(GLenum buffer, GLsizeiptr bytes) {
  while (glGetError() != GL_NO_ERROR) {
  }
  glBufferData(buffer, bytes, nullptr, GL_STATIC_DRAW);
  if (glGetError() != GL_NO_ERROR) throw std::bad_alloc();
}

void showSides(const Batch& batch) {
  if (batch.sides == Sides::Both) {
    glDisable(GL_CULL_FACE);
  } else {
    glEnable(GL_CULL_FACE);
    glCullFace(batch.sides == Sides::Front ? GL_BACK : GL_FRONT);
  }
  glPolygonMode(GL_FRONT_AND_BACK, batch.outlined ? GL_LINE : GL_FILL);
  if (batch.depthOffset != 0.0F) {
    glEnable(GL_POLYGON_OFFSET_FILL);
  } else {
    glDisable(GL_POLYGON_OFFSET_FILL);
  }
  glPolygonOffset(batch.depthOffset, batch.depthOffset);
}

/// One light that shines along the line of sight on grey material, in place of all others.
void lightFromTheEye() {
  constexpr float grey[] = {0.55F, 0.55F, 0.55F, 1.0F};
  constexpr float rest[] = {0.45F, 0.45F, 0.45F, 1.0F};
  constexpr float white[] = {1.0F, 1.0F, 1.0F, 1.0F};
  constexpr float black[] = {0.0F, 0.0F, 0.0F, 1.0F};
  constexpr float towardsEye[] = {0.0F, 0.0F, 1.0F, 0.0F};
  glEnable(GL_LIGHTING);
  for (GLenum light = GL_LIGHT0; light <= GL_LIGHT5; ++light) glDisable(light);
  glEnable(GL_LIGHT6);
  glPushMatrix();
  glLoadIdentity();
  glLightfv(GL_LIGHT6, GL_POSITION, towardsEye);
  glPopMatrix();
  glLightfv(GL_LIGHT6, GL_DIFFUSE, rest);
  glLightfv(GL_LIGHT6, GL_SPECULAR, black);
  glLightfv(GL_LIGHT6, GL_AMBIENT, black);
  glLightModelfv(GL_LIGHT_MODEL_AMBIENT, white);
  glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, grey);
  glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, white);
  glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, black);
}

/// Frees the memory as well, which clear() would keep.
void drop(auto& numbers) {
  numbers = {};
}

}  // namespace

void SceneBuffers::load(Scene scene) {
  clear();
  try {
    for (Batch& batch : scene.batches) {
      if (batch.positions.empty()) continue;
      batches.push_back({.batch = std::move(batch)});
      loadVertices(batches.back());
      loadIndices(batches.back());
    }
  } catch (const std::bad_alloc&) {
    clear();
    throw;
  }
}

void SceneBuffers::loadVertices(LoadedBatch& loaded) {
  Batch& batch = loaded.batch;
  loaded.drawnCount = static_cast<GLsizei>(batch.drawnCount());
  glGenBuffers(1, &loaded.vertexBuffer);
  glBindBuffer(GL_ARRAY_BUFFER, loaded.vertexBuffer);
  const GLsizeiptr block = byteSize(batch.positions);
  reserve(GL_ARRAY_BUFFER, block + byteSize(batch.normals) + byteSize(batch.colours));
  glBufferSubData(GL_ARRAY_BUFFER, 0, block, batch.positions.data());
  GLintptr end = block;
  const auto append = [&end, block](std::vector<float>& numbers, GLintptr& start) {
    if (numbers.empty()) return;
    start = end;
    glBufferSubData(GL_ARRAY_BUFFER, start, block, numbers.data());
    end += block;
    drop(numbers);
  };
  append(batch.normals, loaded.normals);
  append(batch.colours, loaded.colours);
  if (batch.setBackAlong.empty()) drop(batch.positions);
  glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void SceneBuffers::loadIndices(LoadedBatch& loaded) {
  std::vector<unsigned>& indices = loaded.batch.indices;
  if (indices.empty()) return;
  glGenBuffers(1, &loaded.indexBuffer);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, loaded.indexBuffer);
  reserve(GL_ELEMENT_ARRAY_BUFFER, byteSize(indices));
  glBufferSubData(GL_ELEMENT_ARRAY_BUFFER, 0, byteSize(indices), indices.data());
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
  drop(indices);
}

void SceneBuffers::clear() {
  for (const LoadedBatch& loaded : batches) {
    glDeleteBuffers(1, &loaded.vertexBuffer);
    if (loaded.indexBuffer != 0) glDeleteBuffers(1, &loaded.indexBuffer);
  }
  batches.clear();
}

void SceneBuffers::submit(const DrawStyle& style) {
  glEnableClientState(GL_VERTEX_ARRAY);
  for (LoadedBatch& loaded : batches) {
    if (!loaded.batch.setBackAlong.empty()) setBack(loaded, setBackDistance(style.fieldOfView));
    draw(loaded, style.lineWidth);
  }
  showSides(Batch{});
  glDisableClientState(GL_VERTEX_ARRAY);
  glBindBuffer(GL_ARRAY_BUFFER, 0);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void SceneBuffers::setBack(LoadedBatch& loaded, double distance) {
  if (loaded.setBackBy == distance) return;
  glBindBuffer(GL_ARRAY_BUFFER, loaded.vertexBuffer);
  auto* positions = static_cast<float*>(glMapBuffer(GL_ARRAY_BUFFER, GL_WRITE_ONLY));
  if (positions == nullptr) return;
  const std::vector<float>& from = loaded.batch.positions;
  const std::vector<float>& along = loaded.batch.setBackAlong;
  for (std::size_t i = 0; i < from.size(); ++i) {
    positions[i] = static_cast<float>(from[i] - along[i] * distance);
  }
  // The contents may have been lost, a change of the screen's mode for example; then the next frame
  // writes them again.
  if (glUnmapBuffer(GL_ARRAY_BUFFER) == GL_TRUE) loaded.setBackBy = distance;
}

void SceneBuffers::draw(const LoadedBatch& loaded, float lineWidth) {
  const Batch& batch = loaded.batch;
  glLineWidth(lineWidth * batch.lineWidthFactor);
  showSides(batch);
  if (batch.fading) glPushAttrib(GL_LIGHTING_BIT | GL_ENABLE_BIT);
  glBindBuffer(GL_ARRAY_BUFFER, loaded.vertexBuffer);
  glVertexPointer(3, GL_FLOAT, 0, offset(0));
  if (batch.lit) {
    glEnable(GL_LIGHTING);
  } else {
    glDisable(GL_LIGHTING);
    glColor3f(batch.colour.r, batch.colour.g, batch.colour.b);
  }
  if (batch.fading) lightFromTheEye();
  glShadeModel(batch.flat ? GL_FLAT : GL_SMOOTH);
  if (loaded.normals >= 0) {
    glEnableClientState(GL_NORMAL_ARRAY);
    glNormalPointer(GL_FLOAT, 0, offset(loaded.normals));
  }
  if (loaded.colours >= 0) {
    glEnableClientState(GL_COLOR_ARRAY);
    glColorPointer(3, GL_FLOAT, 0, offset(loaded.colours));
  }
  const GLenum primitive = primitiveName(batch.primitive);
  if (loaded.indexBuffer != 0) {
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, loaded.indexBuffer);
    glDrawElements(primitive, loaded.drawnCount, GL_UNSIGNED_INT, offset(0));
  } else {
    glDrawArrays(primitive, 0, loaded.drawnCount);
  }
  glDisableClientState(GL_NORMAL_ARRAY);
  glDisableClientState(GL_COLOR_ARRAY);
  if (batch.fading) glPopAttrib();
}

}  // namespace gravlin
