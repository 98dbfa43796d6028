#include "view/windows/CGravlinView.h"

#include <exception>
#include <new>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QScopedValueRollback>
#include <QWheelEvent>

namespace gravlin {
namespace {

ViewPoint pixelOf(const QMouseEvent& event) {
  const QPoint position = event.position().toPoint();
  return {position.x(), position.y()};
}

std::optional<ArrowKey> arrowOf(int key) {
  switch (key) {
    case Qt::Key_Left:
      return ArrowKey::Left;
    case Qt::Key_Up:
      return ArrowKey::Up;
    case Qt::Key_Right:
      return ArrowKey::Right;
    case Qt::Key_Down:
      return ArrowKey::Down;
    default:
      return std::nullopt;
  }
}

}  // namespace

CGravlinView::CGravlinView(const ShownSource& source, QWidget* parent)
    : QOpenGLWidget(parent), document(source) {
  setObjectName("CGravlinView");
  setFocusPolicy(Qt::StrongFocus);
  // The picture stays in the framebuffer, so that a held view can go on showing it.
  setUpdateBehavior(QOpenGLWidget::PartialUpdate);
}

CGravlinView::~CGravlinView() {
  releaseGraphics();
  // The base class ends the context when there is no CGravlinView any more.
  if (context() != nullptr) disconnect(context(), nullptr, this, nullptr);
}

QSize CGravlinView::sizeHint() const {
  return {640, 480};
}

void CGravlinView::drawNow() {
  if (!initialised || !isVisible()) return;
  makeCurrent();
  draw();
  doneCurrent();
  // Qt brings at most one picture to the screen in each of its refreshes and leaves others for
  // later; that shall find this picture and not look at the document again.
  const QScopedValueRollback<bool> keepPicture(isHeld, true);
  repaint();
}

void CGravlinView::hold(bool held) {
  isHeld = held;
  if (!held) update();
}

void CGravlinView::initializeGL() {
  // A view that moves to another window gets another context.
  connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &CGravlinView::releaseGraphics,
          Qt::UniqueConnection);
  try {
    renderer.initialise();
    initialised = true;
  } catch (const std::exception& error) {
    fail(QString::fromUtf8(error.what()));
  }
}

void CGravlinView::releaseGraphics() {
  if (!initialised) return;
  makeCurrent();
  renderer.release();
  doneCurrent();
  initialised = false;
}

void CGravlinView::resizeGL(int /*width*/, int /*height*/) {
  hasPicture = false;
}

void CGravlinView::paintGL() {
  if (!isHeld && initialised) return draw();
  if (hasPicture) return;
  QOpenGLFunctions& gl = *context()->functions();
  gl.glClearColor(1.0F, 1.0F, 1.0F, 0.0F);
  gl.glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void CGravlinView::draw() {
  try {
    renderer.draw(document.shown(), state, {{width(), height()}, devicePixelRatioF()});
    hasPicture = true;
    hasFailed = false;
  } catch (const std::bad_alloc&) {
    fail(QStringLiteral("There is not enough memory to draw the mesh."));
  } catch (const std::exception& error) {
    fail(QString::fromUtf8(error.what()));
  }
}

void CGravlinView::fail(const QString& sentence) noexcept {
  if (hasFailed) return;
  // Whoever listens may open a dialog, which must not happen in the middle of painting.
  try {
    hasFailed = QMetaObject::invokeMethod(
        this, [this, sentence] { Q_EMIT drawingFailed(sentence); }, Qt::QueuedConnection);
  } catch (const std::bad_alloc&) {
    return;  // not even for a sentence: the next picture that fails tries again
  }
}

void CGravlinView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) state.camera.pressLeft(pixelOf(*event));
  if (event->button() == Qt::RightButton) state.camera.pressRight(pixelOf(*event));
}

void CGravlinView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) state.camera.releaseLeft();
  if (event->button() == Qt::RightButton) state.camera.releaseRight();
}

void CGravlinView::mouseMoveEvent(QMouseEvent* event) {
  if (state.camera.moveMouse(pixelOf(*event))) update();
}

void CGravlinView::mouseDoubleClickEvent(QMouseEvent* event) {
  // Twice the right button is two presses of it, the second one starting a drag.
  if (event->button() != Qt::LeftButton) return mousePressEvent(event);
  state.camera.aimAt(pixelOf(*event), {width(), height()});
  Q_EMIT picked();
}

void CGravlinView::wheelEvent(QWheelEvent* event) {
  if (state.camera.turnWheel(event->angleDelta().y())) update();
  event->accept();
}

void CGravlinView::keyPressEvent(QKeyEvent* event) {
  const std::optional<ArrowKey> arrow = arrowOf(event->key());
  if (!arrow) return QOpenGLWidget::keyPressEvent(event);
  if (state.camera.pressArrow(*arrow)) update();
}

}  // namespace gravlin
