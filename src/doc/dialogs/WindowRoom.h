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

/// The top left corner of a window of this size beside `other`: at its right, at its left, below or
/// above, whatever comes first that is inside `screen`. Without such a place it is the lower right
/// corner of what the screen shows of `other`.
QPoint placeBeside(const QRect& other, const QSize& size, const QRect& screen);

/// Puts a window that was not shown before beside another one, on its screen.
void placeBeside(const QWidget& other, QWidget& window);

}  // namespace gravlin
