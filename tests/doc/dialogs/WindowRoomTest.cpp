// Where windows find room on a screen.

#include <QTest>

#include "doc/dialogs/WindowRoom.h"

namespace gravlin {
namespace {

class WindowRoomTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void theFirstPlaceBesideAWindowThatHasRoomIsTaken();
  void withoutRoomBesideTheLowerRightCornerIsCovered();
  void aWindowIsAlwaysInsideTheScreenAndNeverSmallerThanItMayBe();
};

constexpr QRect screen(10, 20, 1000, 800);  // below a panel

void WindowRoomTest::theFirstPlaceBesideAWindowThatHasRoomIsTaken() {
  const WindowExtent extent = {.wanted = {300, 200}, .least = {200, 100}};
  struct Case {
    QRect other;
    QRect place;
  };
  const Case cases[] = {
      {{100, 120, 400, 300}, {500, 120, 300, 200}},   // at the right
      {{500, 120, 400, 300}, {200, 120, 300, 200}},   // at the left
      {{250, 120, 500, 300}, {250, 420, 300, 200}},   // below
      {{250, 400, 500, 400}, {250, 200, 300, 200}},   // above
      {{250, 180, 500, 500}, {750, 180, 260, 200}},   // narrower at the right
      {{150, 180, 700, 400}, {150, 580, 300, 200}},   // below comes before a narrower one
      {{200, 180, 750, 600}, {200, 20, 300, 160}},    // lower, above
      {{-100, 700, 400, 300}, {300, 620, 300, 200}},  // no further down than the screen
      {{400, -50, 700, 300}, {100, 20, 300, 200}},    // nor up
  };
  for (const Case& each : cases) {
    QCOMPARE(placeBeside(each.other, extent, screen), each.place);
  }
}

void WindowRoomTest::withoutRoomBesideTheLowerRightCornerIsCovered() {
  const WindowExtent extent = {.wanted = {300, 200}, .least = {200, 100}};
  QCOMPARE(placeBeside(screen, extent, screen), QRect(710, 620, 300, 200));
  QCOMPARE(placeBeside({60, 70, 900, 700}, extent, screen), QRect(660, 570, 300, 200));
}

void WindowRoomTest::aWindowIsAlwaysInsideTheScreenAndNeverSmallerThanItMayBe() {
  const WindowExtent extents[] = {{{300, 200}, {200, 100}},
                                  {{300, 200}, {300, 200}},
                                  {{900, 700}, {900, 700}},
                                  {{5000, 40}, {100, 40}},
                                  {{3000, 3000}, {2000, 2000}}};
  for (const WindowExtent& extent : extents) {
    for (int x = -600; x < 1200; x += 150) {
      for (int y = -500; y < 1000; y += 125) {
        for (const QSize size : {QSize(300, 200), QSize(950, 700), QSize(3000, 2000)}) {
          const QRect place = placeBeside(QRect(QPoint(x, y), size), extent, screen);
          QVERIFY(screen.contains(place));
          const QSize least = extent.least.boundedTo(screen.size());
          QCOMPARE(place.size().expandedTo(least), place.size());
          QCOMPARE(place.size().boundedTo(extent.wanted), place.size());
        }
      }
    }
  }
}

}  // namespace
}  // namespace gravlin

QTEST_GUILESS_MAIN(gravlin::WindowRoomTest)
#include "WindowRoomTest.moc"
