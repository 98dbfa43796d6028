#include <QHelpEvent>
#include <QImage>
#include <QPixmap>
#include <QToolTip>
#include <QWindow>

#include "support/Gui.h"
#include "view/HistogramDrawing.h"
#include "view/windows/GraphWindow.h"

namespace gravlin {
namespace {

using test::showActive;

class GraphWindowTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void theTitleNamesTheFieldAndTheDocument();
  void barsHaveThePlacesLengthsAndColoursOfTheDrawing();
  void statisticsAreWrittenAboveTheBars();
  void anotherWidthMakesAnotherNumberOfBins();
  void aNarrowWindowShowsNothingAndSurvives();
  void newValuesAreDrawnAtOnce();
  void hoveringTellsValueAndCount();
  void aMouseThatRestsIsToldTheBarWhileAnotherWindowIsActive();
  void itStaysAboveTheWindowThatItBelongsTo();
  void withoutValuesTheWindowIsWhite();
};

/// Most values near 0, few far away.
std::vector<double> someValues() {
  std::vector<double> values;
  for (int i = -50; i <= 50; ++i) values.push_back(i * i * i);
  return values;
}

QImage pictureOf(GraphWindow& window) {
  return window.grab().toImage();
}

int pixelsThatAreNotWhite(const QImage& picture) {
  int count = 0;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      if (picture.pixelColor(x, y) != QColor(Qt::white)) ++count;
    }
  }
  return count;
}

void GraphWindowTest::theTitleNamesTheFieldAndTheDocument() {
  GraphWindow window;
  window.setField("Maximum curvature");
  window.setDocumentTitle("bunny.ply2");
  QCOMPARE(window.windowTitle(), "Maximum curvature - bunny.ply2");
  window.setAge(HistogramAge::EarlierShape);
  QCOMPARE(window.windowTitle(), "Maximum curvature of an earlier shape - bunny.ply2");
  window.setAge(HistogramAge::BeforeCurvatureSmoothing);
  QCOMPARE(window.windowTitle(),
           "Maximum curvature (before smoothing of the curvature) - bunny.ply2");
  window.setAge(HistogramAge::BeforeNewEstimate);
  QCOMPARE(window.windowTitle(),
           "Maximum curvature (before a new estimate of the curvature) - bunny.ply2");
  window.setAge(HistogramAge::Current);
  QCOMPARE(window.windowTitle(), "Maximum curvature - bunny.ply2");
}

void GraphWindowTest::barsHaveThePlacesLengthsAndColoursOfTheDrawing() {
  GraphWindow window;
  window.resize(400, 300);
  QVERIFY(showActive(window));
  window.setValues(someValues());
  const QImage picture = pictureOf(window);
  const HistogramDrawing drawing = drawingOf(window.histogram(), {400, 300});
  QCOMPARE(drawing.bars.size(), std::size_t(370));
  for (const HistogramDrawing::Bar& bar : drawing.bars) {
    for (int up = 0; up < bar.length; ++up) {
      const QColor pixel = picture.pixelColor(bar.x, bar.bottom - up);
      QCOMPARE(pixel.red(), int(bar.colour.r * 255));
      QCOMPARE(pixel.green(), int(bar.colour.g * 255));
      QCOMPARE(pixel.blue(), int(bar.colour.b * 255));
    }
    QCOMPARE(picture.pixelColor(bar.x, bar.bottom - bar.length), QColor(Qt::white));
    QCOMPARE(picture.pixelColor(bar.x, bar.bottom + 1), QColor(Qt::white));
  }
}

void GraphWindowTest::statisticsAreWrittenAboveTheBars() {
  GraphWindow window;
  window.resize(400, 300);
  QVERIFY(showActive(window));
  window.setValues(someValues());
  const QImage picture = pictureOf(window);
  for (const HistogramDrawing::Text& line : drawingOf(window.histogram(), {400, 300}).texts) {
    QVERIFY2(pixelsThatAreNotWhite(picture.copy(line.x, line.y, 150, 16)) > 20, line.text.c_str());
  }
}

void GraphWindowTest::anotherWidthMakesAnotherNumberOfBins() {
  GraphWindow window;
  window.resize(400, 300);
  QVERIFY(showActive(window));
  window.setValues(someValues());
  QCOMPARE(window.histogram().binCount, 370);
  window.resize(250, 300);
  QTRY_COMPARE(window.histogram().binCount, 220);
}

void GraphWindowTest::aNarrowWindowShowsNothingAndSurvives() {
  GraphWindow window;
  window.setValues(someValues());
  for (const int width : {31, 30, 29, 1}) {
    window.resize(width, 200);
    const QImage picture = pictureOf(window);
    QCOMPARE(window.histogram().binCount, width - 30);
    // Nothing but what fits of the text, which begins 15 pixels from the left.
    if (width <= 15) QCOMPARE(pixelsThatAreNotWhite(picture), 0);
  }
}

void GraphWindowTest::newValuesAreDrawnAtOnce() {
  GraphWindow window;
  window.resize(400, 300);
  QVERIFY(showActive(window));
  window.setValues(someValues());
  const QImage before = pictureOf(window);
  window.setValues(std::vector<double>{1.0, 2.0, 2.0});
  QVERIFY(pictureOf(window) != before);
}

void GraphWindowTest::hoveringTellsValueAndCount() {
  GraphWindow window;
  window.resize(400, 300);
  QVERIFY(showActive(window));
  window.setValues(someValues());
  const auto hover = [&](int x) {
    QHelpEvent event(QEvent::ToolTip, QPoint(x, 150), window.mapToGlobal(QPoint(x, 150)));
    QCoreApplication::sendEvent(&window, &event);
  };
  hover(200);
  QCOMPARE(QToolTip::text(), QString::fromStdString(*binTextAt(window.histogram(), 200)));
  hover(3);
  QTRY_VERIFY(QToolTip::text().isEmpty());
}

void GraphWindowTest::aMouseThatRestsIsToldTheBarWhileAnotherWindowIsActive() {
  QWidget other;
  other.setGeometry(500, 500, 100, 100);
  QVERIFY(showActive(other));
  GraphWindow window;
  window.setGeometry(0, 0, 400, 300);
  window.setValues(someValues());
  window.show();
  QVERIFY(QTest::qWaitForWindowExposed(&window));
  QVERIFY(!window.isActiveWindow());
  for (const int x : {200, 205, 230}) {
    QTest::mouseMove(&window, QPoint(x, 150));
    QTRY_COMPARE(QToolTip::text(), QString::fromStdString(*binTextAt(window.histogram(), x)));
  }
  QTest::mouseMove(&window, QPoint(3, 150));
  QTRY_VERIFY(QToolTip::text().isEmpty());
}

void GraphWindowTest::itStaysAboveTheWindowThatItBelongsTo() {
  QWidget owner;
  QVERIFY(showActive(owner));
  GraphWindow window(&owner);
  window.show();
  QCOMPARE(window.windowHandle()->transientParent(), owner.windowHandle());
  // Of a common window the window manager would not be told.
  QCOMPARE(window.windowHandle()->type(), Qt::Dialog);
  QVERIFY(!window.isModal());
  QVERIFY(owner.isActiveWindow());
}

void GraphWindowTest::withoutValuesTheWindowIsWhite() {
  GraphWindow window;
  window.resize(400, 300);
  QVERIFY(showActive(window));
  QCOMPARE(pixelsThatAreNotWhite(pictureOf(window)), 0);
}

}  // namespace
}  // namespace gravlin

QTEST_MAIN(gravlin::GraphWindowTest)
#include "GraphWindowTest.moc"
