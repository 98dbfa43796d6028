#pragma once

#include <optional>
#include <QOpenGLWidget>

#include "doc/Shown.h"
#include "view/Renderer.h"
#include "view/ViewState.h"

namespace gravlin {

/// A window that draws what a document shows and turns mouse, wheel and arrow keys into changes of
/// its camera. All positions are counted in the widget's own pixels; line widths, point sizes and
/// the text in the corner grow with the screen's pixel ratio.
class CGravlinView : public QOpenGLWidget {
  Q_OBJECT

 public:
  /// `source` must outlive the view.
  explicit CGravlinView(const ShownSource& source, QWidget* parent = nullptr);
  ~CGravlinView() override;

  ViewState state;  ///< after a change from outside call update() or drawNow()

  /// Draws before it returns. The picture is brought to the screen as well, as often as the screen
  /// can show another one.
  void drawNow();
  /// While a view is held, only drawNow() looks at the document: whatever else asks for painting
  /// sees the last picture. For the time in which a command is changing the document.
  void hold(bool held);

  QSize sizeHint() const override;

 Q_SIGNALS:
  /// A double click; the line of sight through it is in state.camera.pickRay.
  void picked();
  /// The picture cannot be drawn; told once until it could be drawn again.
  void drawingFailed(const QString& sentence);

 protected:
  void initializeGL() override;
  void resizeGL(int width, int height) override;
  void paintGL() override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void releaseGraphics();
  void draw();
  void fail(const QString& sentence) noexcept;

  const ShownSource& document;
  Renderer renderer;
  bool initialised = false;
  bool isHeld = false;
  bool hasPicture = false;  ///< the framebuffer holds a picture of the present size
  bool hasFailed = false;
};

}  // namespace gravlin
