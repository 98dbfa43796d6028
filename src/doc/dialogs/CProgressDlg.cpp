#include "doc/dialogs/CProgressDlg.h"

#include <algorithm>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QProgressBar>
#include <QVBoxLayout>
#include <QWindow>

namespace gravlin {

CProgressDlg::CProgressDlg(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      bar(new QProgressBar(this)) {
  setObjectName("CProgressDlg");
  setWindowTitle("Progress of Computation");
  setAttribute(Qt::WA_ShowWithoutActivating);
  bar->setObjectName("Progress1");
  bar->setMinimumWidth(48 * fontMetrics().averageCharWidth());
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(bar);
  layout->setSizeConstraint(QLayout::SetFixedSize);
}

void CProgressDlg::start(ProgressRange range) {
  stepSize = range.step;
  // An end of 0 would turn the bar into a sign of unknown length.
  bar->setRange(0, std::max(1, range.last));
  bar->setValue(0);
  show();
  // The window system shows a window some milliseconds after it was asked to; the first stretch of
  // a long computation should not keep its place blank.
  const QDeadlineTimer deadline(100);
  while (!windowHandle()->isExposed() && !deadline.hasExpired()) {
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  }
  QCoreApplication::processEvents();
}

void CProgressDlg::step() {
  const int room = bar->maximum() - bar->value();
  bar->setValue(bar->value() + std::clamp(stepSize, 0, room));
  QCoreApplication::processEvents();
}

void CProgressDlg::finish() {
  hide();
}

void CProgressDlg::reject() {
}

}  // namespace gravlin
