#include "app/CChildFrame.h"

#include <QAction>
#include <QCloseEvent>
#include <QMenu>

#include "app/OpenDocument.h"

namespace gravlin {

CChildFrame::CChildFrame(OpenDocument& document)
    : owner(document), shownView(new CGravlinView(document.document, this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWidget(shownView);
  setFocusProxy(shownView);
  resize(640, 480);
  // Ctrl+W, which Qt gives to the window's own menu, closes the document.
  for (QAction* action : systemMenu()->actions()) {
    if (!action->shortcuts().isEmpty()) action->setShortcut(QKeySequence("Ctrl+F4"));
  }
  connect(shownView, &CGravlinView::picked, this, [this] {
    owner.run([this](CGravlinDoc& doc) { doc.pickFace(shownView->state.camera.pickRay); });
  });
  connect(shownView, &CGravlinView::drawingFailed, this,
          [this](const QString& sentence) { owner.outside.showMessage(sentence.toStdString()); });
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
  const bool endsDocument = owner.frames.size() == 1;
  if (owner.isBusy()) return event->ignore();
  if (endsDocument && asks && !owner.mayDropChanges()) return event->ignore();
  Q_EMIT closing(this);
  QMdiSubWindow::closeEvent(event);
}

}  // namespace gravlin
