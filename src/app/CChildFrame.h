#pragma once

#include <functional>
#include <QMdiSubWindow>

#include "doc/Shown.h"
#include "view/windows/CGravlinView.h"

namespace gravlin {

/// One window of a document inside the main frame.
class CChildFrame : public QMdiSubWindow {
  Q_OBJECT

 public:
  /// Shows what the source has; it must outlive the window.
  explicit CChildFrame(const ShownSource& source);

  CGravlinView& view() { return *shownView; }
  /// The title without the mark of unsaved changes.
  const QString& title() const { return plainTitle; }
  void setTitle(const QString& title);
  void closeWithoutAsking();

  /// Asked before the window closes; it stays when the answer is no. `asks`: whether the user may
  /// be asked about what would be lost.
  std::function<bool(bool asks)> mayClose = [](bool) { return true; };

 Q_SIGNALS:
  /// The window is about to close; the document must not know it any more afterwards.
  void closing(CChildFrame* frame);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  CGravlinView* shownView;
  QString plainTitle;
  bool asks = true;
};

}  // namespace gravlin
