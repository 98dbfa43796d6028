#pragma once

#include <QRect>
#include <QSize>

class QMessageBox;
class QWidget;

namespace gravlin {

/// How wide windows have to be and where they find room. Window managers may think otherwise.

/// The width at which a window manager can show the title of `window` whole, in the middle of a bar
/// with three buttons.
int widthOfTitle(const QWidget& window);

/// Makes a box at least as wide as its title needs. To be called when all its texts are set.
void makeRoomForTitle(QMessageBox& box);

/// How large a window may be, with its frame.
struct WindowExtent {
  QSize wanted;
  QSize least;  ///< not larger than `wanted`
};

/// The place of a window beside `other`: at its right, at its left, below or above, whatever comes
/// first where `screen` has room for it as it is wanted, else as small as it may be, as much of the
/// wanted size as fits there. Without such a place it covers the lower right corner of what the
/// screen shows of `other`, taking no more than two thirds of the screen where it may be so small.
/// The result is always inside the screen.
QRect placeBeside(const QRect& other, const WindowExtent& extent, const QRect& screen);

/// Puts a window that was not shown before beside another one, on its screen. `leastSize` is
/// without the frame; when none is given the window keeps its size wherever it fits the screen.
void placeBeside(const QWidget& other, QWidget& window, const QSize& leastSize = {});

/// As much of the size `wanted` as the screen of `window` has room for, frame and title bar
/// excepted.
QSize sizeOnScreen(const QWidget& window, const QSize& wanted);

}  // namespace gravlin
