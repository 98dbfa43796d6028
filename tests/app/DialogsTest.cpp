// The dialogs of commands as they stand on the screen.

#include <QDialog>
#include <QFontMetrics>
#include <QScreen>

#include "app/Program.h"

namespace gravlin {
namespace {

using namespace test;

class DialogsTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void aRefusalNamesTheField();
  void aRefusalLeavesTheFieldInSight();
  void aRefusalShowsTheWholeName();
  void titlesAreNotCutOff_data();
  void titlesAreNotCutOff();
};

/// Opens the dialog "Smoothing", types a text into a field, presses OK and looks at what comes of
/// it; the dialog is cancelled in the end. Checks that the field waits for another text then.
void refuse(Program& program, const char* name, const char* text,
            const std::function<void(QMessageBox&, QDialog&, QLineEdit&)>& look) {
  bool looked = false;
  bool waits = false;
  NextDialog smoothing("CSmoothingDlg", [&](QDialog& dialog) {
    auto& field = control<QLineEdit>(dialog, name);
    type(field, text);
    control<QPushButton>(dialog, "ok").setFocus();
    NextDialog refusal("refusal", [&](QDialog& box) {
      look(*qobject_cast<QMessageBox*>(&box), dialog, field);
      looked = true;
      press(box, QMessageBox::Ok);
    });
    click(dialog, "ok");
    waits = dialog.focusWidget() == &field && field.selectedText() == text;
    click(dialog, "cancel");
  });
  program.step("smooth-shape").trigger();
  QVERIFY(looked && waits);
}

void DialogsTest::aRefusalNamesTheField() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  const auto look = [](QMessageBox& box, QDialog& /*dialog*/, QLineEdit& /*field*/) {
    QCOMPARE(box.windowTitle(), "Iteration");
    QCOMPARE(box.text(), "Enter an integer between 1 and 10000.");
  };
  refuse(program, "iterationCount", "0", look);
}

void DialogsTest::aRefusalLeavesTheFieldInSight() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  const auto look = [](QMessageBox& box, QDialog& dialog, QLineEdit& field) {
    QVERIFY(!box.frameGeometry().intersects(dialog.frameGeometry()));
    QVERIFY(box.screen()->availableGeometry().contains(box.frameGeometry()));
    QCOMPARE(field.selectedText(), "0");
  };
  refuse(program, "iterationCount", "0", look);
}

/// A title in bold letters in the middle of a bar that has three buttons at its end, with some air:
/// what many window managers draw.
int roomForTitle(const QString& title) {
  constexpr int icons = 2 * 3 + 1;
  QFont bold = QApplication::font();
  bold.setBold(true);
  const QFontMetrics metrics(bold);
  return metrics.horizontalAdvance(title) + icons * metrics.height();
}

void DialogsTest::aRefusalShowsTheWholeName() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  const auto look = [](QMessageBox& box, QDialog& /*dialog*/, QLineEdit& /*field*/) {
    QCOMPARE(box.windowTitle(), "Animation: per ... interations");
    QCOMPARE(box.text(), "Enter an integer.");
    QVERIFY(box.width() >= roomForTitle(box.windowTitle()));
  };
  refuse(program, "animateEvery", "often", look);
}

void DialogsTest::titlesAreNotCutOff_data() {
  QTest::addColumn<QByteArray>("step");
  QTest::addColumn<QByteArray>("dialog");
  QTest::newRow("Tensor Smooth") << QByteArray("smooth-tensor") << QByteArray("CTensorSmoothDlg");
  QTest::newRow("Visualization") << QByteArray("visualization") << QByteArray("CVisualizationDlg");
}

void DialogsTest::titlesAreNotCutOff() {
  QFETCH(QByteArray, step);
  QFETCH(QByteArray, dialog);
  Program program;
  program.open("t.ply2", tetrahedronText);
  int width = 0;
  NextDialog look(dialog.constData(), [&](QDialog& shown) {
    width = shown.width();
    click(shown, "cancel");
  });
  program.step(step.constData()).trigger();
  QVERIFY(look.answered());
  QVERIFY(width >= roomForTitle(QTest::currentDataTag()));
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::DialogsTest>(argc, argv);
}
#include "DialogsTest.moc"
