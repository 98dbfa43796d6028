// The histogram as a window of its own beside the main window.

#include <QTimer>

#include "app/Program.h"
#include "view/windows/GraphWindow.h"

namespace gravlin {
namespace {

using namespace test;

class HistogramWindowTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void itClosesWithTheProgram();
};

/// The histogram of the only document.
GraphWindow& histogram() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (auto* graph = qobject_cast<GraphWindow*>(window)) return *graph;
  }
  qFatal("there is no histogram");
}

/// Shows a field and waits for its histogram on the screen.
GraphWindow& show(Program& program, const char* step) {
  program.step(step).trigger();
  GraphWindow& graph = histogram();
  if (!QTest::qWaitForWindowExposed(&graph)) qFatal("the histogram is not shown");
  return graph;
}

void HistogramWindowTest::itClosesWithTheProgram() {
  constexpr int mostWaiting = 10000;  // ms
  Program program;
  program.open("t.ply2", tetrahedronText);
  const GraphWindow& graph = show(program, "curvature-mean");
  program.document().modified = true;
  NextDialog cancel("saveChanges", [](QDialog& box) { press(box, QMessageBox::Cancel); });
  QTest::keyClick(program.frame().windowHandle(), Qt::Key_Q, Qt::ControlModifier);
  QVERIFY(cancel.answered());
  QVERIFY(program.frame().isVisible() && graph.isVisible());

  NextDialog discard("saveChanges", [](QDialog& box) { press(box, QMessageBox::Discard); });
  QTimer::singleShot(0, &program.frame(), [&] { program.action("fileExit").trigger(); });
  QTimer::singleShot(mostWaiting, &program.frame(), [] { QApplication::exit(1); });
  QApplication::setQuitOnLastWindowClosed(true);  // as when it is no test
  const int exitCode = QApplication::exec();
  QApplication::setQuitOnLastWindowClosed(false);
  QVERIFY(discard.answered());
  QCOMPARE(exitCode, 0);
  QVERIFY(!program.frame().isVisible());
  QVERIFY(!graph.isVisible());
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::HistogramWindowTest>(argc, argv);
}
#include "HistogramWindowTest.moc"
