// The view in the real window: mouse, wheel, keys, picking and lights.

#include <QLabel>

#include "app/Program.h"

namespace gravlin {
namespace {

using namespace test;

class NavigationTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void aDragOfSevenPixelsTurnsByTwoDegrees();
  void aDragOfTwoPixelsAnEventNeverTurns();
  void theLeftButtonWinsOverTheRightOne();
  void theRightButtonZoomsWithoutLimit();
  void aNotchOfTheWheelTiltsBySixDegrees();
  void arrowKeysMoveAndOtherKeysDoNothing();
  void everyChangeOfTheViewChangesThePicture();
  void aDoubleClickPicksTheFaceUnderTheMouse();
  void aDoubleClickBesideTheMeshDoesNothing();
  void pickingFollowsTurningAndMoving();
  void lightingChangesThePictureAndResetsStyles_data();
  void lightingChangesThePictureAndResetsStyles();
  void visualizationDialogGivesTheViewItsStyles();
  void viewDirectionDialogShowsAndSetsTheAngles();
  void anEmptyDocumentShowsWhiteWithoutCounts();
  void openingAnotherFileKeepsTheCamera();
};

QImage pictureOf(CGravlinView& view) {
  return view.grabFramebuffer();
}

/// The middle of the view, from where drags begin.
QPoint middleOf(const CGravlinView& view) {
  return view.rect().center();
}

void NavigationTest::aDragOfSevenPixelsTurnsByTwoDegrees() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  CGravlinView& view = program.view();
  const QPoint from = middleOf(view);
  drag(view, Qt::LeftButton, {from, from + QPoint(7, 0)});
  QCOMPARE(view.state.camera.angleZ, 2.0F);
  QCOMPARE(view.state.camera.angleY, 0.0F);
  drag(view, Qt::LeftButton, {from, from + QPoint(0, -7)});
  QCOMPARE(view.state.camera.angleZ, 2.0F);
  QCOMPARE(view.state.camera.angleY, -2.0F);
}

void NavigationTest::aDragOfTwoPixelsAnEventNeverTurns() {
  Program program;
  CGravlinView& view = program.view();
  const QPoint from = middleOf(view);
  std::vector<QPoint> places;
  for (int i = 0; i <= 10; ++i) places.push_back(from + QPoint(2 * i, 2 * i));
  drag(view, Qt::LeftButton, places);
  QCOMPARE(view.state.camera.angleZ, 0.0F);
  QCOMPARE(view.state.camera.angleY, 0.0F);
}

void NavigationTest::theLeftButtonWinsOverTheRightOne() {
  Program program;
  CGravlinView& view = program.view();
  const QPoint from = middleOf(view);
  QTest::mousePress(&view, Qt::RightButton, {}, from);
  QTest::mousePress(&view, Qt::LeftButton, {}, from);
  QTest::mouseMove(&view, from + QPoint(0, 30));
  QCOMPARE(view.state.camera.angleY, 10.0F);
  QCOMPARE(view.state.camera.fieldOfView, 22.5F);
  QTest::mouseRelease(&view, Qt::LeftButton, {}, from + QPoint(0, 30));
  QTest::mouseMove(&view, from + QPoint(0, 50));
  QCOMPARE(view.state.camera.angleY, 10.0F);
  QCOMPARE(view.state.camera.fieldOfView, 22.5F + 20 * 0.05F);
  QTest::mouseRelease(&view, Qt::RightButton, {}, from + QPoint(0, 50));
}

void NavigationTest::theRightButtonZoomsWithoutLimit() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  CGravlinView& view = program.view();
  const QPoint from = middleOf(view);
  drag(view, Qt::RightButton, {from, from + QPoint(50, 100)});
  QCOMPARE(view.state.camera.fieldOfView, 27.5F);
  for (int i = 0; i < 6; ++i) drag(view, Qt::RightButton, {from, from - QPoint(0, 100)});
  QCOMPARE(view.state.camera.fieldOfView, -2.5F);
  pictureOf(view);
}

void NavigationTest::aNotchOfTheWheelTiltsBySixDegrees() {
  Program program;
  CGravlinView& view = program.view();
  turnWheel(view, -120);
  QCOMPARE(view.state.camera.angleX, -6.0F);
  turnWheel(view, 10);
  QCOMPARE(view.state.camera.angleX, -6.0F);
  turnWheel(view, 240);
  QCOMPARE(view.state.camera.angleX, 6.0F);
}

void NavigationTest::arrowKeysMoveAndOtherKeysDoNothing() {
  Program program;
  CGravlinView& view = program.view();
  const auto translation = [&] { return view.state.camera.translation; };
  const auto start = translation();
  const auto press = [&](Qt::Key key) { QTest::keyClick(program.frame().windowHandle(), key); };
  press(Qt::Key_Up);
  QVERIFY(translation()[2] > start[2]);
  press(Qt::Key_Down);
  press(Qt::Key_Left);
  const auto left = translation();
  QVERIFY(left[0] < start[0]);
  press(Qt::Key_Right);
  // There and back again, rounded to single precision at every step.
  for (std::size_t i = 0; i < 3; ++i) QVERIFY(std::abs(translation()[i] - start[i]) < 1e-6F);
  const auto before = translation();
  for (const Qt::Key key : {Qt::Key_Space, Qt::Key_A, Qt::Key_PageUp, Qt::Key_Home}) press(key);
  QVERIFY(translation() == before);
}

void NavigationTest::everyChangeOfTheViewChangesThePicture() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  CGravlinView& view = program.view();
  const QPoint from = middleOf(view);
  QImage last = pictureOf(view);
  const auto changed = [&] {
    const QImage now = pictureOf(view);
    return std::exchange(last, now) != now;
  };
  QVERIFY(!changed());
  drag(view, Qt::LeftButton, {from, from + QPoint(60, 0)});
  QVERIFY(changed());
  drag(view, Qt::RightButton, {from, from + QPoint(0, 60)});
  QVERIFY(changed());
  turnWheel(view, 120);
  QVERIFY(changed());
  QTest::keyClick(program.frame().windowHandle(), Qt::Key_Left);
  QVERIFY(changed());
  for (const char* step : {"smooth-shading", "wire-frame", "points", "flat-shading"}) {
    program.step(step).trigger();
    QVERIFY2(changed(), step);
  }
}

void NavigationTest::aDoubleClickPicksTheFaceUnderTheMouse() {
  Program program;
  program.open("s.ply2", squareText);
  CGravlinView& view = program.view();
  QCOMPARE(program.document().displayMode, int(FlatShading));
  QTest::mouseDClick(&view, Qt::LeftButton, {}, middleOf(view) + QPoint(20, 3));
  QCOMPARE(program.document().displayMode, int(PickedFace));
  QVERIFY(program.status().contains("Face 0") || program.status().contains("face 0"));
  // The square's diagonal goes from left to right through the middle of the picture.
  QTest::mouseDClick(&view, Qt::LeftButton, {}, middleOf(view) - QPoint(20, 30));
  QVERIFY2(program.status().contains("ace 1"), qPrintable(program.status()));
  // It is red now.
  const QImage picture = pictureOf(view);
  const QPoint pixel = (middleOf(view) - QPoint(20, 30)) * picture.width() / view.width();
  const QColor colour = picture.pixelColor(pixel);
  QVERIFY(colour.red() > 2 * colour.green() && colour.red() > 2 * colour.blue());
}

void NavigationTest::aDoubleClickBesideTheMeshDoesNothing() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  const auto revision = program.document().revision;
  const QString status = program.status();
  QTest::mouseDClick(&program.view(), Qt::LeftButton, {}, QPoint(5, 5));
  QCOMPARE(program.document().displayMode, int(FlatShading));
  QCOMPARE(program.document().revision, revision);
  QCOMPARE(program.status(), status);
  Program empty;
  QTest::mouseDClick(&empty.view(), Qt::LeftButton, {}, middleOf(empty.view()));
  QVERIFY(!empty.document().mesh());
}

void NavigationTest::pickingFollowsTurningAndMoving() {
  Program program;
  program.open("s.ply2", squareText);
  CGravlinView& view = program.view();
  const QPoint place = middleOf(view) + QPoint(40, 10);
  QTest::mouseDClick(&view, Qt::LeftButton, {}, place);
  QVERIFY2(program.status().contains("ace 0"), qPrintable(program.status()));
  view.state.camera.angleZ = 180;
  QTest::mouseDClick(&view, Qt::LeftButton, {}, place);
  QVERIFY2(program.status().contains("ace 1"), qPrintable(program.status()));
  // Moved far to the side, the mesh is not there any more.
  view.state.camera.translation = {100, 0, 0};
  const auto revision = program.document().revision;
  QTest::mouseDClick(&view, Qt::LeftButton, {}, place);
  QCOMPARE(program.document().revision, revision);
}

void NavigationTest::lightingChangesThePictureAndResetsStyles_data() {
  QTest::addColumn<QByteArray>("step");
  QTest::addColumn<int>("mode");
  QTest::newRow("Red") << QByteArray("lighting-red") << 1;
  QTest::newRow("Green") << QByteArray("lighting-green") << 2;
  QTest::newRow("Blue") << QByteArray("lighting-blue") << 3;
  QTest::newRow("RGB") << QByteArray("lighting-rgb") << 0;
}

void NavigationTest::lightingChangesThePictureAndResetsStyles() {
  QFETCH(QByteArray, step);
  QFETCH(int, mode);
  Program program;
  program.open("t.ply2", tetrahedronText);
  CGravlinView& view = program.view();
  // Every other mode is different from the one that is asked for.
  program.step(mode == 0 ? "lighting-red" : "lighting-rgb").trigger();
  const QImage before = pictureOf(view);
  view.state.setLineWidthAndPointSize(5, 7);
  program.step(step.constData()).trigger();
  QCOMPARE(int(view.state.lightingMode), mode);
  QCOMPARE(view.state.lineWidth, 1.0F);
  QCOMPARE(view.state.pointSize, 3.0F);
  QVERIFY(pictureOf(view) != before);
}

void NavigationTest::visualizationDialogGivesTheViewItsStyles() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  program.step("points").trigger();
  CGravlinView& view = program.view();
  const QImage before = pictureOf(view);
  NextDialog enter("CVisualizationDlg", [](QDialog& dialog) {
    type(control<QLineEdit>(dialog, "lineWidth"), "2.5");
    type(control<QLineEdit>(dialog, "pointSize"), "9");
    click(dialog, "ok");
  });
  program.step("visualization").trigger();
  QVERIFY(enter.answered());
  QCOMPARE(view.state.lineWidth, 2.5F);
  QCOMPARE(view.state.pointSize, 9.0F);
  QVERIFY(pictureOf(view) != before);
  // After the lights were set up anew the dialog still shows what was entered last.
  program.step("lighting-red").trigger();
  QCOMPARE(view.state.pointSize, 3.0F);
  NextDialog confirm("CVisualizationDlg", [](QDialog& dialog) {
    QCOMPARE(control<QLineEdit>(dialog, "pointSize").text(), "9");
    click(dialog, "ok");
  });
  program.step("visualization").trigger();
  QVERIFY(confirm.answered());
  QCOMPARE(view.state.pointSize, 9.0F);
}

void NavigationTest::viewDirectionDialogShowsAndSetsTheAngles() {
  Program program;
  CGravlinView& view = program.view();
  const QPoint from = middleOf(view);
  drag(view, Qt::LeftButton, {from, from + QPoint(30, -60)});
  NextDialog enter("CViewAngleDlg", [](QDialog& dialog) {
    QCOMPARE(control<QLineEdit>(dialog, "rx").text(), "0");
    QCOMPARE(control<QLineEdit>(dialog, "ry").text(), "-20");
    QCOMPARE(control<QLineEdit>(dialog, "rz").text(), "10");
    type(control<QLineEdit>(dialog, "rx"), "12.5");
    click(dialog, "ok");
  });
  program.step("view-direction").trigger();
  QVERIFY(enter.answered());
  QCOMPARE(view.state.camera.angleX, 12.5F);
  QCOMPARE(view.state.camera.angleY, -20.0F);
  NextDialog cancel("CViewAngleDlg", [](QDialog& dialog) {
    QCOMPARE(control<QLineEdit>(dialog, "rx").text(), "12.5");
    type(control<QLineEdit>(dialog, "rx"), "90");
    click(dialog, "cancel");
  });
  program.step("view-direction").trigger();
  QVERIFY(cancel.answered());
  QCOMPARE(view.state.camera.angleX, 12.5F);
}

void NavigationTest::anEmptyDocumentShowsWhiteWithoutCounts() {
  Program program;
  const QImage picture = pictureOf(program.view());
  QVERIFY(!picture.isNull());
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      QCOMPARE(picture.pixelColor(x, y).rgb(), QColor(Qt::white).rgb());
    }
  }
  QCOMPARE(program.view().state.shownVertexCount, 0);
}

void NavigationTest::openingAnotherFileKeepsTheCamera() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  CGravlinView& view = program.view();
  drag(view, Qt::LeftButton, {middleOf(view), middleOf(view) + QPoint(30, 0)});
  program.open("s.ply2", squareText);
  QCOMPARE(view.state.camera.angleZ, 10.0F);
  pictureOf(view);
  QCOMPARE(view.state.shownVertexCount, 4);
  QCOMPARE(view.state.shownFaceCount, 2);
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::NavigationTest>(argc, argv);
}
#include "NavigationTest.moc"
