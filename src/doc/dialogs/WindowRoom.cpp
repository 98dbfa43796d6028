#include "doc/dialogs/WindowRoom.h"

#include <array>
#include <QFontMetrics>
#include <QGridLayout>
#include <QMessageBox>
#include <QScreen>

namespace gravlin {

int widthOfTitle(const QWidget& window) {
  // Titles in the middle lose on both sides what the buttons take on one; there is air in between.
  constexpr int squares = 2 * 3 + 1;
  QFont font = window.font();
  font.setBold(true);  // as most window managers write titles
  const QFontMetrics metrics(font);
  return metrics.horizontalAdvance(window.windowTitle()) + squares * metrics.height();
}

void makeRoomForTitle(QMessageBox& box) {
  // A message box sets its size anew whenever it is shown, but asks its layout first.
  auto* grid = qobject_cast<QGridLayout*>(box.layout());
  if (grid == nullptr) return;
  auto* room = new QSpacerItem(widthOfTitle(box), 0, QSizePolicy::Minimum, QSizePolicy::Fixed);
  grid->addItem(room, grid->rowCount() - 1, 0, 1, grid->columnCount());
}

QPoint placeBeside(const QRect& other, const QSize& size, const QRect& screen) {
  const std::array<QPoint, 4> places = {
      QPoint(other.x() + other.width(), other.y()),
      QPoint(other.x() - size.width(), other.y()),
      QPoint(other.x(), other.y() + other.height()),
      QPoint(other.x(), other.y() - size.height()),
  };
  for (const QPoint& place : places) {
    if (screen.contains(QRect(place, size))) return place;
  }
  QRect corner(QPoint(), size);
  corner.moveBottomRight(other.intersected(screen).bottomRight());
  return corner.topLeft();
}

void placeBeside(const QWidget& other, QWidget& window) {
  // The frame that the window manager will draw is known from the other window only.
  const QSize frame = other.frameGeometry().size() - other.size();
  window.ensurePolished();
  const QSize size = window.testAttribute(Qt::WA_Resized) ? window.size() : window.sizeHint();
  window.move(
      placeBeside(other.frameGeometry(), size + frame, other.screen()->availableGeometry()));
}

}  // namespace gravlin
