// The histogram as a window of its own beside the main window.

#include <QScreen>
#include <QTimer>
#include <QWindow>

#include "app/Program.h"
#include "view/windows/GraphWindow.h"

namespace gravlin {
namespace {

using namespace test;

class HistogramWindowTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void itComesUpAboveWhenAnotherFieldIsShown();
  void itLeavesTheKeyboardToTheMesh();
  void itStandsBesideTheMainWindowWhereThereIsRoom();
  void itStandsInTheLowerRightCornerOfAMainWindowThatFillsTheScreen();
  void itIsInsideTheScreenWhereverTheMainWindowIs();
  void itBelongsToTheMainWindow();
  void itStaysWhereItWasMovedTo();
  void itsTitleTellsHowOldTheValuesAre();
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

void HistogramWindowTest::itComesUpAboveWhenAnotherFieldIsShown() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  GraphWindow& graph = show(program, "curvature-mean");
  graph.move(program.frame().mapToGlobal(QPoint(100, 100)));
  const auto above = [&] { return QApplication::topLevelAt(graph.geometry().center()); };
  QTRY_COMPARE(above(), &graph);
  program.frame().raise();
  QTRY_COMPARE(above(), &program.frame());  // nothing keeps it above where no window manager is
  show(program, "curvature-gauss");
  QTRY_COMPARE(above(), &graph);
}

void HistogramWindowTest::itLeavesTheKeyboardToTheMesh() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  for (const char* step : {"curvature-mean", "curvature-max"}) {
    show(program, step);
    QCOMPARE(QApplication::activeWindow(), &program.frame());
    QCOMPARE(QApplication::focusWidget(), &program.view());
  }
  QTest::keyClick(program.frame().windowHandle(), Qt::Key_Left);
  QVERIFY(program.view().state.camera.translation[0] != 0.0F);
}

void HistogramWindowTest::itStandsBesideTheMainWindowWhereThereIsRoom() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  const int screenWidth = program.frame().screen()->availableSize().width();
  if (screenWidth < 1000) program.frame().resize(300, 250);
  program.frame().move(20, 30);
  QTRY_COMPARE(program.frame().frameGeometry().topLeft(), QPoint(20, 30));
  const GraphWindow& graph = show(program, "curvature-mean");
  constexpr int leastWidth = 300;
  const bool hasRoom = screenWidth - 20 - program.frame().width() >= leastWidth;
  QTRY_COMPARE(!graph.frameGeometry().intersects(program.frame().frameGeometry()), hasRoom);
  QVERIFY(graph.screen()->availableGeometry().contains(graph.frameGeometry()));
}

void HistogramWindowTest::itStandsInTheLowerRightCornerOfAMainWindowThatFillsTheScreen() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  const QRect screen = program.frame().screen()->availableGeometry();
  program.frame().setGeometry(screen);
  QTRY_COMPARE(program.frame().size(), screen.size());
  const GraphWindow& graph = show(program, "curvature-mean");
  QTRY_COMPARE(graph.frameGeometry().bottomRight(), screen.bottomRight());
}

void HistogramWindowTest::itIsInsideTheScreenWhereverTheMainWindowIs() {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  for (const QPoint place : {QPoint(-150, -100), screen.center()}) {
    for (const QSize size : {QSize(300, 250), screen.size() + QSize(20, 20)}) {
      Program program;
      program.open("t.ply2", tetrahedronText);
      program.frame().setGeometry(QRect(place, size));
      QTRY_COMPARE(program.frame().geometry(), QRect(place, size));
      const GraphWindow& graph = show(program, "curvature-mean");
      QTRY_VERIFY(graph.screen()->availableGeometry().contains(graph.frameGeometry()));
      QVERIFY(graph.width() >= 250 && graph.height() >= 150);
    }
  }
}

void HistogramWindowTest::itBelongsToTheMainWindow() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  const GraphWindow& graph = show(program, "curvature-mean");
  QCOMPARE(graph.windowHandle()->transientParent(), program.frame().windowHandle());
}

void HistogramWindowTest::itStaysWhereItWasMovedTo() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  GraphWindow& graph = show(program, "curvature-mean");
  const QPoint place(200, 100);
  graph.windowHandle()->setFramePosition(place);  // as somebody with a mouse would
  QTRY_COMPARE(graph.pos(), place);
  graph.close();
  show(program, "curvature-max");
  QTRY_COMPARE(graph.pos(), place);
}

void HistogramWindowTest::itsTitleTellsHowOldTheValuesAre() {
  Program program;
  openGourd(program);
  const GraphWindow& graph = show(program, "curvature-max");
  const auto run = [&](const char* step, const char* dialogName) {
    NextDialog dialog(dialogName, pressOk);
    program.step(step).trigger();
    return dialog.answered();
  };
  QCOMPARE(graph.windowTitle(), "Maximum curvature - gourd.ply2");
  QVERIFY(run("smooth-tensor", "CTensorSmoothDlg"));
  QCOMPARE(graph.windowTitle(),
           "Maximum curvature (before smoothing of the curvature) - gourd.ply2");
  show(program, "curvature-max");
  QCOMPARE(graph.windowTitle(), "Maximum curvature - gourd.ply2");
  program.step("flat-shading").trigger();
  QVERIFY(run("noise", "CNoiseDlg"));
  QCOMPARE(graph.windowTitle(), "Maximum curvature of an earlier shape - gourd.ply2");
  show(program, "curvature-mean");  // of what was estimated before
  QCOMPARE(graph.windowTitle(), "Mean curvature of an earlier shape - gourd.ply2");
  program.step("undo").trigger();
  QCOMPARE(graph.windowTitle(), "Mean curvature - gourd.ply2");
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
