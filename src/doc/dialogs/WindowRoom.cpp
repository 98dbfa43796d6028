#include "doc/dialogs/WindowRoom.h"

#include <algorithm>
#include <QFontMetrics>
#include <QGridLayout>
#include <QMessageBox>
#include <QScreen>
#include <QStyle>

namespace gravlin {
namespace {

/// What a window manager adds to a window's size, as Qt's own frames do.
QSize usualFrame(const QWidget& window) {
  const QStyle& style = *window.style();
  const int border = style.pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
  return {2 * border, style.pixelMetric(QStyle::PM_TitleBarHeight) + 2 * border};
}

/// The rectangle, no larger than the room, moved no further than it takes to be inside.
QRect movedInside(QRect place, const QRect& room) {
  place.moveRight(std::min(place.right(), room.right()));
  place.moveBottom(std::min(place.bottom(), room.bottom()));
  place.moveLeft(std::max(place.left(), room.left()));
  place.moveTop(std::max(place.top(), room.top()));
  return place;
}

}  // namespace

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

QRect placeBeside(const QRect& other, const WindowExtent& extent, const QRect& screen) {
  QRect right = screen;
  right.setLeft(std::max(screen.left(), other.right() + 1));
  QRect left = screen;
  left.setRight(std::min(screen.right(), other.left() - 1));
  QRect below = screen;
  below.setTop(std::max(screen.top(), other.bottom() + 1));
  QRect above = screen;
  above.setBottom(std::min(screen.bottom(), other.top() - 1));
  for (const QSize& least : {extent.wanted, extent.least}) {
    for (const QRect& room : {right, left, below, above}) {
      if (room.width() < least.width() || room.height() < least.height()) continue;
      return movedInside({other.topLeft(), extent.wanted.boundedTo(room.size())}, room);
    }
  }
  const QSize most = (screen.size() * 2 / 3).expandedTo(extent.least).boundedTo(screen.size());
  QRect corner(QPoint(), extent.wanted.boundedTo(most));
  corner.moveBottomRight(other.intersected(screen).bottomRight());
  return movedInside(corner, screen);
}

void placeBeside(const QWidget& other, QWidget& window, const QSize& leastSize) {
  // The frame that the window manager will draw is known from the other window only, and there only
  // as long as it does not fill the screen.
  const bool fillsScreen = other.isMaximized() || other.isFullScreen();
  const QSize frame = fillsScreen ? usualFrame(other) : other.frameGeometry().size() - other.size();
  window.ensurePolished();
  const QSize size = window.testAttribute(Qt::WA_Resized) ? window.size() : window.sizeHint();
  const QSize least = leastSize.isValid() ? leastSize.boundedTo(size) : size;
  const QRect place = placeBeside(other.frameGeometry(), {size + frame, least + frame},
                                  other.screen()->availableGeometry());
  window.resize(place.size() - frame);
  window.move(place.topLeft());
}

QSize sizeOnScreen(const QWidget& window, const QSize& wanted) {
  return wanted.boundedTo(window.screen()->availableSize() - usualFrame(window));
}

}  // namespace gravlin
