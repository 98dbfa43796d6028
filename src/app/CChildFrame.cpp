#include "app/CChildFrame.h"

#include <QAction>
#include <QCloseEvent>
#include <QMenu>

namespace gravlin {

CChildFrame::CChildFrame(const ShownSource& source) : shownView(new CGravlinView(source, this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWidget(shownView);
  setFocusProxy(shownView);
  resize(640, 480);
  // Ctrl+W, which Qt gives to the window's own menu, closes the document.
  for (QAction* action : systemMenu()->actions()) {
    if (!action->shortcuts().isEmpty()) action->setShortcut(QKeySequence("Ctrl+F4"));
  }
}

void CChildFrame::setTitle(const QString& title) {
  plainTitle = title;
  setWindowTitle(title + "[*]");
}

void CChildFrame::closeWithoutAsking() {
  asks = false;
  close();
}

void CChildFrame::closeEvent(QCloseEvent* event) {
  if (!mayClose(asks)) return event->ignore();
  Q_EMIT closing(this);
  QMdiSubWindow::closeEvent(event);
}

}  // namespace gravlin
