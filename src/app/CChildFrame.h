#pragma once

#include <QMdiSubWindow>

#include "view/windows/CGravlinView.h"

namespace gravlin {

class OpenDocument;

/// One window of a document inside the main frame. Closing the last one closes the document, which
/// asks about unsaved changes.
class CChildFrame : public QMdiSubWindow {
  Q_OBJECT

 public:
  explicit CChildFrame(OpenDocument& document);

  OpenDocument& openDocument() { return owner; }
  CGravlinView& view() { return *shownView; }
  /// The title without the mark of unsaved changes.
  const QString& title() const { return plainTitle; }
  void setTitle(const QString& title);
  void closeWithoutAsking();

 Q_SIGNALS:
  /// The window is about to close; the document must not know it any more afterwards.
  void closing(CChildFrame* frame);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  OpenDocument& owner;
  CGravlinView* shownView;
  QString plainTitle;
  bool asks = true;
};

}  // namespace gravlin
