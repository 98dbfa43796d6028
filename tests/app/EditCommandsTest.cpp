// The commands of the Edit menu as a user gives them: menu, dialog, picture, undo.

#include <QComboBox>
#include <QFile>
#include <QLineEdit>

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
};

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
  const TriangleMesh before = *program.document().currentMesh;
  NextDialog dialog("CSubdivisionDlg", pressOk);
  program.step("subdivision").trigger();
  QVERIFY(dialog.answered());
  QCOMPARE(program.document().currentMesh->faceCount, 16);
  program.step("undo").trigger();
  QVERIFY(program.document().currentMesh->faces == before.faces);
  QVERIFY(program.document().currentMesh->vertices == before.vertices);
}

void EditCommandsTest::simplificationIsUndone() {
  Program program;
  openGourd(program);
  const TriangleMesh before = *program.document().currentMesh;
  NextDialog dialog("CDecimationDlg", fillIn({{"reductionRate", "0.75"}}));
  program.step("simplification").trigger();
  QVERIFY(dialog.answered());
  QCOMPARE(program.document().currentMesh->vertexCount, before.vertexCount / 4);
  program.step("undo").trigger();
  QVERIFY(program.document().currentMesh->faces == before.faces);
  QVERIFY(program.document().currentMesh->vertices == before.vertices);
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::EditCommandsTest>(argc, argv);
}

#include "EditCommandsTest.moc"
