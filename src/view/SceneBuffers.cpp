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

void SceneBuffers::submit(float fieldOfView) {
  glEnableClientState(GL_VERTEX_ARRAY);
  for (LoadedBatch& loaded : batches) {
    if (!loaded.batch.setBackAlong.empty()) setBack(loaded, setBackDistance(fieldOfView));
    draw(loaded);
  }
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

void SceneBuffers::draw(const LoadedBatch& loaded) {
  const Batch& batch = loaded.batch;
  glBindBuffer(GL_ARRAY_BUFFER, loaded.vertexBuffer);
  glVertexPointer(3, GL_FLOAT, 0, offset(0));
  if (batch.lit) {
    glEnable(GL_LIGHTING);
  } else {
    glDisable(GL_LIGHTING);
    glColor3f(batch.colour.r, batch.colour.g, batch.colour.b);
  }
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
}

}  // namespace gravlin
