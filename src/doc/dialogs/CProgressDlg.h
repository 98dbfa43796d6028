#pragma once

#include <QDialog>

#include "doc/Outside.h"

class QProgressBar;

namespace gravlin {

/// The modeless dialog "Progress of Computation" with the progress bar "Progress1" and no button.
/// It is made hidden. While it is shown it processes the events that have arrived, so that windows
/// are painted while a command runs; whoever runs commands sees to it that no input reaches them.
class CProgressDlg : public QDialog {
 public:
  explicit CProgressDlg(QWidget* parent = nullptr);

  /// Shows the dialog at position 0.
  void start(ProgressRange range);
  /// Advances the bar by the range's step, at most to its end.
  void step();
  void finish();

  /// The dialog goes away only by finish().
  void reject() override;

 private:
  QProgressBar* bar;
  int stepSize = 1;
};

}  // namespace gravlin
