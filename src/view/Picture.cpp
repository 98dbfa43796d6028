#include "view/Picture.h"

#define EGL_NO_X11
#include <algorithm>
#include <cmath>
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "view/OpenGL.h"

namespace gravlin {
namespace {

[[noreturn]] void fail(const std::string& why) {
  throw std::runtime_error("Cannot draw without a window: " + why + ".");
}

/// The display that has no screen. Initialised for the rest of the process, since EGL counts no
/// users of a display.
EGLDisplay surfacelessDisplay() {
  const char* extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
  if (extensions == nullptr || std::string_view(extensions).find("EGL_MESA_platform_surfaceless") ==
                                   std::string_view::npos) {
    fail("EGL has no surfaceless platform (Debian's package libegl-mesa0 has one)");
  }
  const EGLDisplay display =
      eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
  if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) == EGL_FALSE) {
    fail("EGL found no driver (Debian's package libgl1-mesa-dri has one)");
  }
  return display;
}

EGLContext compatibilityContext(EGLDisplay display) {
  constexpr EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                               EGL_OPENGL_BIT, EGL_NONE};
  constexpr EGLint version[] = {EGL_CONTEXT_MAJOR_VERSION, 2, EGL_CONTEXT_MINOR_VERSION, 1,
                                EGL_NONE};
  EGLConfig config = nullptr;
  EGLint found = 0;
  if (eglBindAPI(EGL_OPENGL_API) == EGL_FALSE ||
      eglChooseConfig(display, wanted, &config, 1, &found) == EGL_FALSE || found == 0) {
    fail("EGL has no OpenGL");
  }
  const EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, version);
  if (context == EGL_NO_CONTEXT) fail("EGL makes no OpenGL 2.1 context");
  return context;
}

/// A colour and a depth buffer to draw into, in the current context.
class Framebuffer {
 public:
  Framebuffer() = default;
  ~Framebuffer() { clear(); }
  Framebuffer(const Framebuffer&) = delete;
  Framebuffer& operator=(const Framebuffer&) = delete;

  void clear() {
    if (framebuffer == 0) return;
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteRenderbuffers(1, &colour);
    glDeleteRenderbuffers(1, &depth);
    framebuffer = colour = depth = 0;
    width = height = 0;
  }

  /// Makes the buffers unless they have this size already, and binds them.
  void bind(int newWidth, int newHeight) {
    if (newWidth != width || newHeight != height) {
      clear();
      glGenFramebuffers(1, &framebuffer);
      glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
      colour = attach(GL_RGBA8, GL_COLOR_ATTACHMENT0, newWidth, newHeight);
      depth = attach(GL_DEPTH_COMPONENT24, GL_DEPTH_ATTACHMENT, newWidth, newHeight);
      if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        clear();
        fail("OpenGL has not enough memory for a picture of this size");
      }
      width = newWidth;
      height = newHeight;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  }

 private:
  static GLuint attach(GLenum format, GLenum attachment, int width, int height) {
    GLuint buffer = 0;
    glGenRenderbuffers(1, &buffer);
    glBindRenderbuffer(GL_RENDERBUFFER, buffer);
    glRenderbufferStorage(GL_RENDERBUFFER, format, width, height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, buffer);
    return buffer;
  }

  GLuint framebuffer = 0;
  GLuint colour = 0;
  GLuint depth = 0;
  int width = 0;
  int height = 0;
};

/// What OpenGL has drawn, turned the right way up.
Image readFramebuffer(int width, int height) {
  Image image{width, height, {}};
  const std::size_t row = 3 * static_cast<std::size_t>(width);
  image.rgb.resize(row * static_cast<std::size_t>(height));
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, image.rgb.data());
  for (int y = 0; y < height / 2; ++y) {
    const auto upper = image.rgb.begin() + static_cast<std::ptrdiff_t>(row) * y;
    const auto lower = image.rgb.begin() + static_cast<std::ptrdiff_t>(row) * (height - 1 - y);
    std::swap_ranges(upper, upper + static_cast<std::ptrdiff_t>(row), lower);
  }
  return image;
}

/// The smallest of OpenGL's limits to a picture's width and height.
int largestExtent() {
  GLint viewport[2] = {0, 0};
  GLint buffer = 0;
  glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
  glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &buffer);
  return std::min({viewport[0], viewport[1], buffer});
}

}  // namespace

struct Picture::Context {
  EGLDisplay display = surfacelessDisplay();
  EGLContext context = compatibilityContext(display);
  Framebuffer framebuffer;
  Renderer renderer;

  Context() = default;
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  ~Context() {
    if (!makeCurrent()) return;
    renderer.release();
    framebuffer.clear();
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(display, context);
  }

  bool makeCurrent() const {
    return eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_TRUE;
  }
};

Picture::Picture() : context(std::make_unique<Context>()) {
  if (!context->makeCurrent()) fail("EGL cannot use a context without a surface");
  context->renderer.initialise();
}

Picture::~Picture() = default;

Image Picture::draw(const Shown& shown, ViewState& view, const DrawTarget& target) {
  if (!context->makeCurrent()) fail("EGL has lost the context");
  const double width = std::round(target.size.width * target.pixelRatio);
  const double height = std::round(target.size.height * target.pixelRatio);
  const int largest = largestExtent();
  if (!(width >= 1.0 && height >= 1.0 && width <= largest && height <= largest)) {
    fail("a picture must be between 1 and " + std::to_string(largest) + " pixels wide and high");
  }
  const int columns = static_cast<int>(width);
  const int rows = static_cast<int>(height);
  context->framebuffer.bind(columns, rows);
  context->renderer.draw(shown, view, target);
  return readFramebuffer(columns, rows);
}

}  // namespace gravlin
