// Edge Detection and Export Lines as a user gives them: every choice of the dialogs, the dialogs
// that they lead to, and what a cancel in each of them leaves undone.

#include <algorithm>
#include <functional>
#include <QAbstractButton>
#include <QFile>
#include <QPlainTextEdit>

#include "app/Program.h"
#include "curvature/CurvatureTensor.h"
#include "features/RidgeDetector.h"

namespace gravlin {
namespace {

using namespace test;

class FeatureLinesTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void everyRadioButtonRunsWithEveryPreSmoothing_data();
  void everyRadioButtonRunsWithEveryPreSmoothing();
  void theChoicesAreThereAgainNextTime();
  void faceAndExtractionCannotBeChosen();
  void aCancelChangesNothing();
  void eachNestedDialogCanBeCancelledByItself_data();
  void eachNestedDialogCanBeCancelledByItself();
  void theBoxesOfTheLaterStagesAreObeyed();
  void gapsAreClosedOnlyWhereTheBoxIsTicked();
  void bothKindsOfCreaseThresholdRun();
  void faceAngleAsksForItsPreSmoothing();
  void linesAreExportedAndTheDialogCanBeCancelled();
  void withoutLinesExportingTellsHowToGetSome();
};

/// Runs Local Max, with `fill` for its dialog, and whether it was asked.
bool localMax(Program& program, const std::function<void(QDialog&)>& fill) {
  NextDialog ridges("CRidgeDlg", [&](QDialog& dialog) {
    fill(dialog);
    click(dialog, "ok");
  });
  program.step("local-max").trigger();
  return ridges.answered();
}

const auto withoutTensor = [](QDialog& dialog) { click(dialog, "smoothTensor"); };

void FeatureLinesTest::everyRadioButtonRunsWithEveryPreSmoothing_data() {
  QTest::addColumn<int>("preSmoothing");
  QTest::addColumn<int>("thresholdMode");
  QTest::addColumn<int>("extractOn");
  for (int smoothing = 0; smoothing < 3; ++smoothing) {
    for (int threshold = 0; threshold < 3; ++threshold) {
      const int on = (smoothing + threshold) % 2;
      QTest::addRow("%d %d %d", smoothing, threshold, on) << smoothing << threshold << on;
    }
  }
}

void FeatureLinesTest::everyRadioButtonRunsWithEveryPreSmoothing() {
  QFETCH(int, preSmoothing);
  QFETCH(int, thresholdMode);
  QFETCH(int, extractOn);
  Program program;
  openGourd(program);
  const auto positions = program.document().mesh()->vertices;
  const char* nested = preSmoothing == 1 ? "CSmoothingDlg" : "CAdaptiveSmoothingDlg";
  const char* count = preSmoothing == 1 ? "iterationCount" : "outerIterations";
  NextDialog smoothing(nested, fillIn({{count, "1"}}));
  NextDialog tensor("CTensorSmoothDlg", pressOk);
  QVERIFY(localMax(program, [&](QDialog& dialog) {
    const auto clickChoice = [&](const char* group, int choice) {
      click(dialog, qPrintable(QString("%1_%2").arg(group).arg(choice)));
    };
    clickChoice("preSmoothing", preSmoothing);
    clickChoice("thresholdMode", thresholdMode);
    clickChoice("extractOn", extractOn);
    type(control<QLineEdit>(dialog, "constantThreshold"), "0.2");
  }));
  QVERIFY(tensor.answered());
  QCOMPARE(smoothing.answered(), preSmoothing != 0);
  const RidgeParameters& chosen = program.document().ridgeParameters;
  QCOMPARE(chosen.preSmoothing, preSmoothing);
  QCOMPARE(chosen.thresholdMode, thresholdMode);
  QCOMPARE(chosen.extractOn, extractOn);
  const int shown = extractOn == RidgeParameters::OnEdge ? FeatureLines : RidgeVertices;
  QCOMPARE(program.document().displayMode, shown);
  const TriangleMesh& mesh = *program.document().mesh();
  QVERIFY(mesh.vertices == positions);
  QVERIFY(std::count(mesh.ridgeMarks.begin(), mesh.ridgeMarks.end(), 1) > 0);
  QCOMPARE(mesh.ridgeLinks.empty(), extractOn != RidgeParameters::OnEdge);
}

void FeatureLinesTest::theChoicesAreThereAgainNextTime() {
  Program program;
  openGourd(program);
  QVERIFY(localMax(program, [](QDialog& dialog) {
    withoutTensor(dialog);
    click(dialog, "thresholdMode_2");
    click(dialog, "extractOn_1");
  }));
  NextDialog again("CRidgeDlg", [](QDialog& dialog) {
    QVERIFY(control<QAbstractButton>(dialog, "thresholdMode_2").isChecked());
    QVERIFY(control<QAbstractButton>(dialog, "extractOn_1").isChecked());
    QVERIFY(!control<QAbstractButton>(dialog, "smoothTensor").isChecked());
    click(dialog, "cancel");
  });
  program.step("local-max").trigger();
  QVERIFY(again.answered());
}

void FeatureLinesTest::faceAndExtractionCannotBeChosen() {
  Program program;
  openGourd(program);
  QVERIFY(localMax(program, [](QDialog& dialog) {
    withoutTensor(dialog);
    for (const char* name : {"extractOn_2", "extraction"}) {
      QVERIFY(!control<QAbstractButton>(dialog, name).isEnabled());
      click(dialog, name);
    }
  }));
  QCOMPARE(program.document().ridgeParameters.extractOn, 0);
  QVERIFY(program.document().ridgeParameters.extraction);
}

void FeatureLinesTest::aCancelChangesNothing() {
  Program program;
  openGourd(program);
  NextDialog ridges("CRidgeDlg", [](QDialog& dialog) {
    click(dialog, "preSmoothing_2");
    click(dialog, "thresholdMode_0");
    click(dialog, "extractOn_1");
    click(dialog, "cancel");
  });
  program.step("local-max").trigger();
  QVERIFY(ridges.answered());
  NextDialog angle("CAngleDlg", [](QDialog& dialog) {
    click(dialog, "thresholdMode_0");
    click(dialog, "preSmoothing");
    click(dialog, "cancel");
  });
  program.step("face-angle").trigger();
  QVERIFY(angle.answered());
  QCOMPARE(program.document().ridgeParameters.preSmoothing, 0);
  QVERIFY(!program.document().angleParameters.preSmoothing);
  QCOMPARE(program.document().displayMode, static_cast<int>(FlatShading));
  QVERIFY(program.document().mesh()->ridgeMarks.empty());
}

void FeatureLinesTest::eachNestedDialogCanBeCancelledByItself_data() {
  QTest::addColumn<bool>("smooths");
  QTest::addColumn<bool>("smoothsTensor");
  QTest::newRow("neither") << false << false;
  QTest::newRow("the first is cancelled") << false << true;
  QTest::newRow("the second is cancelled") << true << false;
  QTest::newRow("both run") << true << true;
}

// The stages that were not cancelled give what a run with only those gives.
void FeatureLinesTest::eachNestedDialogCanBeCancelledByItself() {
  QFETCH(bool, smooths);
  QFETCH(bool, smoothsTensor);
  const auto marksOf = [&](bool asksForAll) {
    Program program;
    openGourd(program);
    const auto positions = program.document().mesh()->vertices;
    NextDialog smoothing("CSmoothingDlg", [&](QDialog& dialog) {
      type(control<QLineEdit>(dialog, "iterationCount"), "5");
      click(dialog, smooths ? "ok" : "cancel");
    });
    NextDialog tensor("CTensorSmoothDlg",
                      [&](QDialog& dialog) { click(dialog, smoothsTensor ? "ok" : "cancel"); });
    const bool asked = localMax(program, [&](QDialog& dialog) {
      if (asksForAll || smooths) click(dialog, "preSmoothing_1");
      if (!asksForAll && !smoothsTensor) withoutTensor(dialog);
    });
    if (!asked) qFatal("Local Max did not ask");
    if (smoothing.answered() != (asksForAll || smooths)) qFatal("wrong smoothing dialog");
    if (tensor.answered() != (asksForAll || smoothsTensor)) qFatal("wrong tensor dialog");
    if (program.document().mesh()->vertices != positions) qFatal("positions changed");
    if (program.document().displayMode != RidgeVertices) qFatal("wrong picture");
    return program.document().mesh()->ridgeMarks;
  };
  QVERIFY(marksOf(true) == marksOf(false));
}

void FeatureLinesTest::theBoxesOfTheLaterStagesAreObeyed() {
  Program program;
  openGourd(program);
  QVERIFY(localMax(program, [](QDialog& dialog) {
    withoutTensor(dialog);
    click(dialog, "showRidgeDirection");
  }));
  QCOMPARE(program.document().displayMode, static_cast<int>(RidgeDirections));

  const auto positions = program.document().mesh()->vertices;
  QVERIFY(localMax(program, [](QDialog& dialog) {
    click(dialog, "extractOn_1");
    click(dialog, "smoothRidgeEdges");
    type(control<QLineEdit>(dialog, "ridgeSmoothIterations"), "2");
  }));
  QVERIFY(program.document().mesh()->vertices != positions);
}

// At this threshold joins are found, so that both answers give lines of their own.
void FeatureLinesTest::gapsAreClosedOnlyWhereTheBoxIsTicked() {
  Program program;
  openGourd(program);
  for (const bool ticked : {false, true, false}) {
    QVERIFY(localMax(program, [&](QDialog& dialog) {
      if (program.document().ridgeParameters.smoothTensor) withoutTensor(dialog);
      click(dialog, "extractOn_1");
      auto& box = control<QAbstractButton>(dialog, "connect");
      if (box.isChecked() != ticked) click(dialog, "connect");
      type(control<QLineEdit>(dialog, "connectThreshold"), "1000000");
    }));
    const TriangleMesh& mesh = *program.document().mesh();
    TriangleMesh apart = mesh;
    computeCurvatureTensor(apart);
    extractExtrema(apart);
    const LowThresholds low = thresholdHistogram(apart, {.upper = 0.6F, .lower = 0.3F});
    compareAbsoluteValues(apart);
    fillGaps(apart);
    buildLineGraph(apart);
    TriangleMesh joined = apart;
    connectLines(joined, 1000000.0F, low);
    QVERIFY(joined.ridgeLinks != apart.ridgeLinks && joined.valleyLinks != apart.valleyLinks);
    const TriangleMesh& expected = ticked ? joined : apart;
    QVERIFY(mesh.ridgeLinks == expected.ridgeLinks);
    QVERIFY(mesh.valleyLinks == expected.valleyLinks);
  }
}

void FeatureLinesTest::bothKindsOfCreaseThresholdRun() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  NextDialog byAngle("CAngleDlg", [](QDialog& dialog) {
    click(dialog, "thresholdMode_0");
    click(dialog, "ok");
  });
  program.step("face-angle").trigger();
  QVERIFY(byAngle.answered());
  QCOMPARE(program.document().displayMode, static_cast<int>(FeatureLines));
  QCOMPARE(program.document().mesh()->ridgeLinks[0].size(), 3);

  openGourd(program);
  NextDialog byShare("CAngleDlg", [](QDialog& dialog) {
    click(dialog, "thresholdMode_1");
    click(dialog, "shadedSurface");
    click(dialog, "ok");
  });
  program.step("face-angle").trigger();
  QVERIFY(byShare.answered());
  QVERIFY(!program.document().angleParameters.shadedSurface);
  const auto& links = program.document().mesh()->ridgeLinks;
  QVERIFY(std::any_of(links.begin(), links.end(), [](const auto& list) { return !list.empty(); }));
}

void FeatureLinesTest::faceAngleAsksForItsPreSmoothing() {
  std::vector<std::vector<IndexList>> found;
  for (const char* button : {"ok", "cancel"}) {
    Program program;
    openGourd(program);
    const auto positions = program.document().mesh()->vertices;
    NextDialog smoothing("CAdaptiveSmoothingDlg", [&](QDialog& dialog) {
      type(control<QLineEdit>(dialog, "outerIterations"), "1");
      click(dialog, button);
    });
    NextDialog angle("CAngleDlg", [](QDialog& dialog) {
      click(dialog, "preSmoothing");
      click(dialog, "ok");
    });
    program.step("face-angle").trigger();
    QVERIFY(angle.answered() && smoothing.answered());
    QCOMPARE(program.document().displayMode, static_cast<int>(FeatureLines));
    QVERIFY(program.document().mesh()->vertices == positions);
    found.push_back(program.document().mesh()->ridgeLinks);
  }
  QVERIFY(found[0] != found[1]);
}

QByteArray contentOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void FeatureLinesTest::linesAreExportedAndTheDialogCanBeCancelled() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  NextDialog angle("CAngleDlg", [](QDialog& dialog) {
    click(dialog, "thresholdMode_0");
    click(dialog, "ok");
  });
  program.step("face-angle").trigger();
  QVERIFY(angle.answered());

  for (const auto& [name, start] : {std::pair{"lines.obj", "v "}, std::pair{"lines.vtk", "# vtk"},
                                    std::pair{"lines.svg", "<"}}) {
    const QString path = program.file(name);
    NextDialog file("saveFile", [&](QDialog& dialog) { chooseFile(dialog, path); });
    program.step("export-lines").trigger();
    QVERIFY(file.answered());
    QVERIFY2(contentOf(path).startsWith(start), name);
    QCOMPARE(program.status(), QString("6 lines written to %1.").arg(path));
  }

  NextDialog cancelled("saveFile", [](QDialog& dialog) { dialog.reject(); });
  program.step("export-lines").trigger();
  QVERIFY(cancelled.answered());

  const QString path = program.file("lines.txt");
  NextDialog refused("saveFile", [&](QDialog& dialog) { chooseFile(dialog, path); });
  NextDialog message("CMessageDlg", pressOk);
  program.step("export-lines").trigger();
  QVERIFY(refused.answered() && message.answered());
  QVERIFY(!QFile::exists(path));
}

void FeatureLinesTest::withoutLinesExportingTellsHowToGetSome() {
  Program program;
  openGourd(program);
  const QString path = program.file("lines.obj");
  NextDialog file("saveFile", [&](QDialog& dialog) { chooseFile(dialog, path); });
  QString text;
  NextDialog message("CMessageDlg", [&](QDialog& dialog) {
    text = control<QPlainTextEdit>(dialog, "text").toPlainText();
    click(dialog, "ok");
  });
  program.step("export-lines").trigger();
  QVERIFY(file.answered() && message.answered());
  QVERIFY(text.contains("Edge Detection"));
  QVERIFY(!QFile::exists(path));
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::FeatureLinesTest>(argc, argv);
}

#include "FeatureLinesTest.moc"
