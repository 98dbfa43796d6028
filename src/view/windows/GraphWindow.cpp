#include "view/windows/GraphWindow.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "view/HistogramDrawing.h"

namespace gravlin {
namespace {

constexpr int textHeight = 13;  // pixels

/// Components from 0 to 1 become 0 to 255.
QColor penColour(const Colour& colour) {
  const auto byte = [](float component) { return static_cast<int>(component * 255.0F); };
  return {byte(colour.r), byte(colour.g), byte(colour.b)};
}

QString remarkOn(HistogramAge age) {
  switch (age) {
    case HistogramAge::Current:
      return {};
    case HistogramAge::BeforeCurvatureSmoothing:
      return " (before smoothing of the curvature)";
    case HistogramAge::BeforeNewEstimate:
      return " (before a new estimate of the curvature)";
    case HistogramAge::EarlierShape:
      return " of an earlier shape";
  }
  return {};
}

}  // namespace

// Window managers are told which window to stay above for dialogs, but not for windows of equal
// rank.
GraphWindow::GraphWindow(QWidget* parent) : QWidget(parent, Qt::Dialog) {
  setObjectName("GraphWindow");
  setMouseTracking(true);                      // a text goes when the mouse leaves its bar
  setAttribute(Qt::WA_ShowWithoutActivating);  // the keys still belong to the mesh
  setAttribute(Qt::WA_AlwaysShowToolTips);     // so the window is seldom the active one
  // Dark text on white in every colour scheme: the ramp of the scale goes through black and white.
  setPalette(QPalette(Qt::white));
  setBackgroundRole(QPalette::Base);
  setAutoFillBackground(true);
  shown.setWindowWidth(width());
  updateTitle();
}

void GraphWindow::setAge(HistogramAge ageOfValues) {
  age = ageOfValues;
  updateTitle();
}

void GraphWindow::setValues(std::span<const double> values) {
  shown.setValues(values);
  repaint();
}

void GraphWindow::setField(const QString& name) {
  field = name;
  updateTitle();
}

void GraphWindow::setDocumentTitle(const QString& name) {
  documentTitle = name;
  updateTitle();
}

void GraphWindow::updateTitle() {
  setWindowTitle(field + remarkOn(age) + " - " + documentTitle);
}

QSize GraphWindow::sizeHint() const {
  return {480, 320};
}

bool GraphWindow::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto& help = static_cast<const QHelpEvent&>(*event);
  const std::optional<std::string> text = binTextAt(shown, help.x());
  if (text) {
    const QRect column(help.x(), 0, 1, height());  // beyond it the text says nothing true
    QToolTip::showText(help.globalPos(), QString::fromStdString(*text), this, column);
  } else {
    QToolTip::hideText();
  }
  return true;
}

void GraphWindow::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const HistogramDrawing drawing = drawingOf(shown, {width(), height()});
  for (const HistogramDrawing::Bar& bar : drawing.bars) {
    painter.fillRect(bar.x, bar.bottom - bar.length + 1, 1, bar.length, penColour(bar.colour));
  }
  QFont font = painter.font();
  font.setPixelSize(textHeight);
  painter.setFont(font);
  painter.setPen(Qt::black);
  for (const HistogramDrawing::Text& text : drawing.texts) {
    painter.drawText(text.x, text.y + painter.fontMetrics().ascent(),
                     QString::fromStdString(text.text));
  }
}

void GraphWindow::resizeEvent(QResizeEvent* /*event*/) {
  if (width() >= 1 && height() >= 1) shown.setWindowWidth(width());
}

}  // namespace gravlin
