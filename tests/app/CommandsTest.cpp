// What the window does while a command runs, and when one fails.

#include <new>
#include <optional>
#include <QDeadlineTimer>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <stdexcept>

#include "app/CommandLock.h"
#include "app/Program.h"
#include "support/Allocations.h"
#include "support/DocumentAccess.h"

namespace gravlin {
namespace {

using namespace test;

class CommandsTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void noOtherCommandCanBeChosenMeanwhile();
  void inputDuringACommandIsDropped();
  void theWindowCannotBeClosedMeanwhile();
  void dialogsOfACommandGetTheirInput();
  void aDialogWithinADialogLeavesTheOuterOneItsInput();
  void aRedrawIsDrawnBeforeItReturns();
  void anAnimationReachesTheScreenWhileItRuns();
  void paintingDuringACommandShowsTheLastPicture();
  void progressIsShownMeanwhile();
  void aCommandWithoutMemoryEndsInAMessage();
  void aFailureBehindTheFailureEndsNothing();
  void anyOtherExceptionEndsInAMessage();
  void progressDoesNotOutliveAFailedCommand();
};

void CommandsTest::noOtherCommandCanBeChosenMeanwhile() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  bool ran = false;
  bool ranInside = false;
  program.opened().run([&](CGravlinDoc& document) {
    for (const char* step : {"open", "undo", "points"}) {
      QVERIFY2(!program.step(step).isEnabled(), step);
    }
    QVERIFY(!program.action("fileExit").isEnabled());
    program.opened().run([&](CGravlinDoc& /*again*/) { ranInside = true; });
    program.frame().openFile(program.file("s.ply2", squareText));
    QCOMPARE(document.mesh()->faceCount, 4);
    ran = true;
  });
  QVERIFY(ran);
  QVERIFY(!ranInside);
  QVERIFY(program.step("points").isEnabled());
  QVERIFY(program.action("fileExit").isEnabled());
}

void CommandsTest::inputDuringACommandIsDropped() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  CGravlinView& view = program.view();
  const QPoint middle = view.rect().center();
  bool ran = false;
  program.opened().run([&](CGravlinDoc& document) {
    document.displayMode = Points;
    drag(view, Qt::LeftButton, {middle, middle + QPoint(30, 0)});
    turnWheel(view, 120);
    QTest::keyClick(program.frame().windowHandle(), Qt::Key_Left);
    QTest::keyClick(program.frame().windowHandle(), Qt::Key_Z, Qt::ControlModifier);
    QTest::mouseDClick(&view, Qt::LeftButton, {}, middle);
    QCoreApplication::processEvents();
    ran = true;
  });
  QVERIFY(ran);
  QCoreApplication::processEvents();
  QCOMPARE(view.state.camera.angleZ, 0.0F);
  QCOMPARE(view.state.camera.angleX, 0.0F);
  QCOMPARE(view.state.camera.translation[0], 0.0F);
  QCOMPARE(program.document().displayMode, int(Points));
  // Afterwards everything is heard again.
  turnWheel(view, 120);
  QCOMPARE(view.state.camera.angleX, 6.0F);
}

void CommandsTest::theWindowCannotBeClosedMeanwhile() {
  Program program;
  bool ran = false;
  program.opened().run([&](CGravlinDoc& /*document*/) {
    QVERIFY(!program.frame().close());
    QVERIFY(!program.frame().activeFrame()->close());
    ran = true;
  });
  QVERIFY(ran);
  QVERIFY(program.frame().isVisible());
  QVERIFY(program.frame().activeFrame() != nullptr);
}

void CommandsTest::dialogsOfACommandGetTheirInput() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  int entered = 0;
  program.opened().run([&](CGravlinDoc& document) {
    NextDialog enter("CVisualizationDlg", [](QDialog& dialog) {
      type(control<QLineEdit>(dialog, "lineWidth"), "4");
      click(dialog, "ok");
    });
    if (program.opened().outside.showDialog(document.visualizationParameters.form())) ++entered;
    // Behind the dialog the lock is back.
    turnWheel(program.view(), 120);
  });
  QCOMPARE(entered, 1);
  QCOMPARE(program.document().visualizationParameters.lineWidth, 4.0F);
  QCOMPARE(program.view().state.camera.angleX, 0.0F);
}

/// Makes the mesh a little smaller and has it drawn, as an animated command does.
void animate(CGravlinDoc& document) {
  for (float& coordinate : test::meshOf(document).vertices) coordinate *= 0.99F;
  document.needsRecompute = true;
  document.redraw();
}

void CommandsTest::aDialogWithinADialogLeavesTheOuterOneItsInput() {
  const auto inputPasses = [] { return QGuiApplication::overrideCursor() == nullptr; };
  CommandLock lock;
  {
    const RunningCommand command(lock);
    QVERIFY(!inputPasses());
    {
      const CommandDialog outer(lock);
      { const CommandDialog inner(lock); }
      QVERIFY(inputPasses());
    }
    QVERIFY(!inputPasses());
  }
  QVERIFY(inputPasses());
}

void CommandsTest::aRedrawIsDrawnBeforeItReturns() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  int frames = 0;
  program.opened().run([&](CGravlinDoc& document) {
    while (frames < 3) {
      const QImage before = program.view().grabFramebuffer();
      animate(document);
      QVERIFY(program.view().grabFramebuffer() != before);
      ++frames;
    }
  });
  QCOMPARE(frames, 3);
}

void CommandsTest::anAnimationReachesTheScreenWhileItRuns() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  int shown = 0;
  int shownMeanwhile = 0;
  connect(&program.view(), &QOpenGLWidget::frameSwapped, this, [&] { ++shown; });
  program.opened().run([&](CGravlinDoc& document) {
    const QDeadlineTimer deadline(10000);
    while (shown < 3 && !deadline.hasExpired()) animate(document);
    shownMeanwhile = shown;
  });
  QCOMPARE(shownMeanwhile, 3);
}

void CommandsTest::paintingDuringACommandShowsTheLastPicture() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  CGravlinView& view = program.view();
  const QImage before = view.grabFramebuffer();
  QImage during;
  program.opened().run([&](CGravlinDoc& document) {
    document.displayMode = Points;
    test::meshOf(document).vertices.clear();  // what a command has on the bench is no sight
    view.repaint();
    during = view.grabFramebuffer();
    test::dropMesh(document);
  });
  QCOMPARE(during, before);
  QTRY_VERIFY(view.grabFramebuffer() != before);
}

void CommandsTest::progressIsShownMeanwhile() {
  Program program;
  auto& dialog = control<QDialog>(program.frame(), "CProgressDlg");
  auto& bar = control<QProgressBar>(dialog, "Progress1");
  bool ran = false;
  program.opened().run([&](CGravlinDoc& /*document*/) {
    DesktopOutside& outside = program.opened().outside;
    outside.showProgress({10, 5});
    QVERIFY(dialog.isVisible());
    outside.stepProgress();
    QCOMPARE(bar.value(), 5);
    outside.hideProgress();
    QVERIFY(!dialog.isVisible());
    ran = true;
  });
  QVERIFY(ran);
}

/// Runs the command and returns the text of the message it ends in.
QString messageOf(Program& program, const std::function<void(CGravlinDoc&)>& command) {
  QString text;
  NextDialog message("CMessageDlg", [&](QDialog& dialog) {
    text = control<QPlainTextEdit>(dialog, "text").toPlainText();
    click(dialog, "ok");
  });
  program.opened().run(command);
  return message.answered() ? text : QString();
}

void CommandsTest::aCommandWithoutMemoryEndsInAMessage() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  const auto vertices = program.document().mesh()->vertices;
  const QString text = messageOf(program, [](CGravlinDoc& document) {
    document.keepUndoCopy();
    test::meshOf(document).vertices[0] = 5;
    throw std::bad_alloc();
  });
  QVERIFY2(text.contains("memory"), qPrintable(text));
  QVERIFY(program.step("undo").isEnabled());
  program.step("undo").trigger();
  QVERIFY(program.document().mesh()->vertices == vertices);
}

void CommandsTest::aFailureBehindTheFailureEndsNothing() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  QTimer closing;  // the message, if there was memory for it
  QObject::connect(&closing, &QTimer::timeout, &closing, [] {
    if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) dialog->accept();
  });
  closing.start(5);
  // Further on it would be the window library whose memory is missing, which does not expect that.
  for (std::size_t n = 1; n <= 8; ++n) {
    std::optional<AllocationFailure> failure;
    program.opened().run([&](CGravlinDoc& /*document*/) {
      failure.emplace(n);
      throw std::bad_alloc();
    });
    failure.reset();
    QVERIFY(!program.opened().isBusy());
    QVERIFY(program.step("points").isEnabled());
    program.step("points").trigger();
    QCOMPARE(program.document().displayMode, Points);
  }
}

void CommandsTest::anyOtherExceptionEndsInAMessage() {
  Program program;
  const QString text = messageOf(
      program, [](CGravlinDoc& /*document*/) { throw std::runtime_error("the moon is full"); });
  QVERIFY2(text.contains("the moon is full"), qPrintable(text));
  QVERIFY(program.step("points").isEnabled());
}

void CommandsTest::progressDoesNotOutliveAFailedCommand() {
  Program program;
  auto& dialog = control<QDialog>(program.frame(), "CProgressDlg");
  const QString text = messageOf(program, [&](CGravlinDoc& /*document*/) {
    program.opened().outside.showProgress({10, 1});
    throw std::bad_alloc();
  });
  QVERIFY(!text.isEmpty());
  QVERIFY(!dialog.isVisible());
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::CommandsTest>(argc, argv);
}
#include "CommandsTest.moc"
