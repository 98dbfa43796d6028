// The commands of the Edit menu as a user gives them: menu, dialog, picture, undo.

#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QRadioButton>

#include "app/Program.h"

namespace gravlin {
namespace {

using namespace test;

class EditCommandsTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void smoothingRunsWithWhatIsTypedAndIsUndone();
  void smoothingRemembersItsValuesAndCancelChangesNothing();
  void anAnimatedFlowIsDrawnAfterEveryChunkAndItsProgressIsHiddenAtTheEnd();
  void noiseAndAdaptiveSmoothingRunFromTheirDialogs();
  void subdivisionIsUndone();
  void simplificationIsUndone();
  void localMaxAsksItsNestedDialogsAndShowsLines();
  void aCancelInANestedDialogSkipsOnlyThatStage();
  void everyChoiceOfTheRidgeDialogCanBeClicked();
  void faceAngleShowsCreases();
};

/// The bundled closed example with ridges and valleys.
void openGourd(Program& program) {
  program.frame().openFile(GRAVLIN_SOURCE_DIR "/examples/gourd.ply2");
}

auto fillIn(std::vector<std::pair<const char*, const char*>> texts) {
  return [texts](QDialog& dialog) {
    for (const auto& [name, text] : texts) type(control<QLineEdit>(dialog, name), text);
    click(dialog, "ok");
  };
}

const auto pressOk = [](QDialog& dialog) { click(dialog, "ok"); };
const auto pressCancel = [](QDialog& dialog) { click(dialog, "cancel"); };

void EditCommandsTest::smoothingRunsWithWhatIsTypedAndIsUndone() {
  Program program;
  openGourd(program);
  const auto before = program.document().currentMesh->vertices;
  NextDialog dialog("CSmoothingDlg", [](QDialog& d) {
    control<QComboBox>(d, "method").setCurrentText("Taubin Smoothing (k=0.1)");
    type(control<QLineEdit>(d, "iterationCount"), "3");
    click(d, "animate");
    click(d, "ok");
  });
  program.step("smooth-shape").trigger();
  QVERIFY(dialog.answered());
  QVERIFY(program.document().currentMesh->vertices != before);
  program.step("undo").trigger();
  QVERIFY(program.document().currentMesh->vertices == before);
}

void EditCommandsTest::smoothingRemembersItsValuesAndCancelChangesNothing() {
  Program program;
  openGourd(program);
  NextDialog first("CSmoothingDlg", fillIn({{"iterationCount", "2"}, {"stepSize", "0.25"}}));
  program.step("smooth-shape").trigger();
  QVERIFY(first.answered());
  const auto before = program.document().currentMesh->vertices;
  QString count;
  NextDialog second("CSmoothingDlg", [&](QDialog& dialog) {
    count = control<QLineEdit>(dialog, "iterationCount").text();
    type(control<QLineEdit>(dialog, "iterationCount"), "77");
    click(dialog, "cancel");
  });
  program.step("smooth-shape").trigger();
  QVERIFY(second.answered());
  QCOMPARE(count, "2");
  QCOMPARE(program.document().smoothingParameters.iterationCount, 2);
  QVERIFY(program.document().currentMesh->vertices == before);
}

void EditCommandsTest::anAnimatedFlowIsDrawnAfterEveryChunkAndItsProgressIsHiddenAtTheEnd() {
  Program program;
  openGourd(program);
  auto& progress = control<QDialog>(program.frame(), "CProgressDlg");
  int drawn = 0;
  bool progressSeen = false;
  QObject::connect(&program.view(), &QOpenGLWidget::aboutToCompose, [&] {
    ++drawn;
    progressSeen = progressSeen || progress.isVisible();
  });
  NextDialog dialog("CSmoothingDlg", fillIn({{"iterationCount", "6"}, {"animateEvery", "2"}}));
  const auto revision = program.document().revision;
  program.step("smooth-shape").trigger();
  QVERIFY(dialog.answered());
  QCOMPARE(program.document().revision, revision + 4);  // three chunks and the end
  QVERIFY(drawn > 0);
  QVERIFY(progressSeen);
  QVERIFY(!progress.isVisible());
}

void EditCommandsTest::noiseAndAdaptiveSmoothingRunFromTheirDialogs() {
  Program program;
  openGourd(program);
  const auto smooth = program.document().currentMesh->vertices;
  NextDialog noise("CNoiseDlg", fillIn({{"noiseSize", "0.1"}}));
  program.step("noise").trigger();
  QVERIFY(noise.answered());
  const auto noisy = program.document().currentMesh->vertices;
  QVERIFY(noisy != smooth);
  NextDialog adaptive("CAdaptiveSmoothingDlg", fillIn({{"outerIterations", "1"}}));
  program.step("smooth-adaptive").trigger();
  QVERIFY(adaptive.answered());
  QVERIFY(program.document().currentMesh->vertices != noisy);
  program.step("undo").trigger();
  QVERIFY(program.document().currentMesh->vertices == noisy);
}

void EditCommandsTest::subdivisionIsUndone() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  NextDialog dialog("CSubdivisionDlg", pressOk);
  program.step("subdivision").trigger();
  QVERIFY(dialog.answered());
  QCOMPARE(program.document().currentMesh->faceCount, 16);
  program.step("undo").trigger();
  QCOMPARE(program.document().currentMesh->faceCount, 4);
}

void EditCommandsTest::simplificationIsUndone() {
  Program program;
  openGourd(program);
  const int vertices = program.document().currentMesh->vertexCount;
  NextDialog dialog("CDecimationDlg", fillIn({{"reductionRate", "0.75"}}));
  program.step("simplification").trigger();
  QVERIFY(dialog.answered());
  QCOMPARE(program.document().currentMesh->vertexCount, vertices / 4);
  program.step("undo").trigger();
  QCOMPARE(program.document().currentMesh->vertexCount, vertices);
}

/// A radio button of a dialog by the text beside it.
void choose(QDialog& dialog, const QString& text) {
  for (auto* button : dialog.findChildren<QRadioButton*>()) {
    if (button->text() == text && button->isEnabled()) return button->click();
  }
  qFatal("no radio button %s", qPrintable(text));
}

void EditCommandsTest::localMaxAsksItsNestedDialogsAndShowsLines() {
  Program program;
  openGourd(program);
  const auto positions = program.document().currentMesh->vertices;
  NextDialog smoothing("CSmoothingDlg", fillIn({{"iterationCount", "2"}}));
  NextDialog tensor("CTensorSmoothDlg", pressOk);
  NextDialog ridges("CRidgeDlg", [](QDialog& dialog) {
    choose(dialog, "Common");
    choose(dialog, "Edge");
    click(dialog, "ok");
  });
  program.step("local-max").trigger();
  QVERIFY(ridges.answered() && smoothing.answered() && tensor.answered());
  QCOMPARE(program.document().displayMode, static_cast<int>(FeatureLines));
  QVERIFY(program.document().currentMesh->vertices == positions);
}

void EditCommandsTest::aCancelInANestedDialogSkipsOnlyThatStage() {
  Program program;
  openGourd(program);
  NextDialog tensor("CTensorSmoothDlg", pressCancel);
  NextDialog ridges("CRidgeDlg", pressOk);
  program.step("local-max").trigger();
  QVERIFY(ridges.answered() && tensor.answered());
  QCOMPARE(program.document().displayMode, static_cast<int>(RidgeVertices));
}

void EditCommandsTest::everyChoiceOfTheRidgeDialogCanBeClicked() {
  Program program;
  openGourd(program);
  NextDialog ridges("CRidgeDlg", [](QDialog& dialog) {
    for (const char* text : {"Common", "Adaptive", "Constant", "Histgram", "Edge", "Vertex"}) {
      choose(dialog, text);
    }
    click(dialog, "cancel");
  });
  program.step("local-max").trigger();
  QVERIFY(ridges.answered());
  QCOMPARE(program.document().ridgeParameters.preSmoothing, 0);
  QCOMPARE(program.document().displayMode, static_cast<int>(FlatShading));
}

void EditCommandsTest::faceAngleShowsCreases() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  NextDialog dialog("CAngleDlg", [](QDialog& d) {
    choose(d, "Constant Angle (0-180)");
    click(d, "ok");
  });
  program.step("face-angle").trigger();
  QVERIFY(dialog.answered());
  QCOMPARE(program.document().displayMode, static_cast<int>(FeatureLines));
  QCOMPARE(program.document().currentMesh->ridgeLinks[0].size(), 3);
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::EditCommandsTest>(argc, argv);
}

#include "EditCommandsTest.moc"
