#include <QProgressBar>

#include "doc/dialogs/CProgressDlg.h"
#include "support/Gui.h"

namespace gravlin {
namespace {

using test::control;

class CProgressDlgTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void progressIsHiddenUntilItStarts();
  void progressAdvancesByItsStepUpToTheEnd();
  void progressStartsAnewAtZero();
  void progressIsPaintedWhileTheComputationRuns();
  void progressHasNoButtonAndDoesNotCloseItself();
  void anEmptyOrBackwardRangeIsHarmless();
};

void CProgressDlgTest::progressIsHiddenUntilItStarts() {
  CProgressDlg dialog;
  QCOMPARE(dialog.windowTitle(), "Progress of Computation");
  QVERIFY(!dialog.isVisible());
  dialog.start({10, 1});
  QVERIFY(dialog.isVisible());
  QVERIFY(!dialog.isModal());
  dialog.finish();
  QVERIFY(!dialog.isVisible());
}

void CProgressDlgTest::progressAdvancesByItsStepUpToTheEnd() {
  CProgressDlg dialog;
  auto& bar = control<QProgressBar>(dialog, "Progress1");
  dialog.start({10, 4});
  QCOMPARE(bar.maximum(), 10);
  for (const int expected : {4, 8, 10, 10}) {
    dialog.step();
    QCOMPARE(bar.value(), expected);
  }
}

void CProgressDlgTest::progressStartsAnewAtZero() {
  CProgressDlg dialog;
  dialog.start({10, 4});
  dialog.step();
  dialog.finish();
  dialog.start({3, 1});
  QCOMPARE(control<QProgressBar>(dialog, "Progress1").value(), 0);
  QCOMPARE(control<QProgressBar>(dialog, "Progress1").maximum(), 3);
}

/// Counts how often a widget was painted.
class PaintCounter : public QObject {
 public:
  explicit PaintCounter(QObject& watched) { watched.installEventFilter(this); }
  int paints = 0;

  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++paints;
    return false;
  }
};

void CProgressDlgTest::progressIsPaintedWhileTheComputationRuns() {
  CProgressDlg dialog;
  auto& bar = control<QProgressBar>(dialog, "Progress1");
  const PaintCounter counter(bar);
  dialog.start({100, 10});
  QVERIFY(counter.paints > 0);
  const int before = counter.paints;
  dialog.step();
  QVERIFY(counter.paints > before);
}

void CProgressDlgTest::progressHasNoButtonAndDoesNotCloseItself() {
  CProgressDlg dialog;
  dialog.start({10, 1});
  QVERIFY(dialog.findChildren<QAbstractButton*>().isEmpty());
  QTest::keyClick(&dialog, Qt::Key_Escape);
  QVERIFY(dialog.isVisible());
  QVERIFY(!dialog.close());
  QVERIFY(dialog.isVisible());
}

void CProgressDlgTest::anEmptyOrBackwardRangeIsHarmless() {
  CProgressDlg dialog;
  auto& bar = control<QProgressBar>(dialog, "Progress1");
  for (const ProgressRange range : {ProgressRange{0, 0}, ProgressRange{-5, 1}, ProgressRange{5, -1},
                                    ProgressRange{5, 1 << 30}}) {
    dialog.start(range);
    dialog.step();
    dialog.step();
    QVERIFY(bar.value() >= 0 && bar.value() <= bar.maximum());
  }
}

}  // namespace
}  // namespace gravlin

QTEST_MAIN(gravlin::CProgressDlgTest)
#include "CProgressDlgTest.moc"
