// The program's windows on a screen that is smaller than they would like to be. The scale factors
// under which this runs make it one.

#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QToolButton>

#include "app/Program.h"

namespace gravlin {
namespace {

using namespace test;

class SmallScreenTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void theFirstWindowFitsTheScreen();
  void theGuideFitsTheScreen();
  void aNarrowWindowPutsItsLastMenusBehindAButton();
};

/// Fits when a frame is drawn around it, too.
bool fitsTheScreen(const QWidget& window) {
  constexpr QSize leastFrame = {2, 16};
  const QSize size = window.size() + leastFrame;
  return size.boundedTo(window.screen()->availableSize()) == size;
}

void SmallScreenTest::theFirstWindowFitsTheScreen() {
  const QTemporaryDir folder;
  DesktopArguments line;
  line.settingsFile = folder.filePath("settings.ini").toStdString();
  CGravlinApp app(line);
  app.start();
  QVERIFY(QTest::qWaitForWindowExposed(&app.mainFrame()));
  QVERIFY(fitsTheScreen(app.mainFrame()));
  QVERIFY(app.mainFrame().width() > app.mainFrame().screen()->availableSize().width() / 2);
}

void SmallScreenTest::theGuideFitsTheScreen() {
  Program program;
  QTest::keyClick(program.frame().windowHandle(), Qt::Key_F1);
  QWidget* guide = nullptr;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->objectName() == "GuideWindow") guide = window;
  }
  QVERIFY(guide != nullptr);
  QVERIFY(QTest::qWaitForWindowExposed(guide));
  QVERIFY(fitsTheScreen(*guide));
}

void SmallScreenTest::aNarrowWindowPutsItsLastMenusBehindAButton() {
  Program program;
  for (const bool filled : {true, false}) {
    if (!filled) program.action("windowCascade").trigger();
    program.frame().resize(260, 240);
    QTRY_COMPARE(program.frame().width(), 260);
    QMenuBar& bar = *program.frame().menuBar();
    auto& button = control<QToolButton>(bar, "qt_menubar_ext_button");
    QTRY_VERIFY(button.isVisible());
    QCOMPARE(bar.height(), bar.sizeHint().height());  // one row
    QVERIFY(bar.rect().contains(button.geometry()));
    // Every menu is in the bar or behind the button.
    for (QAction* menu : bar.actions()) {
      const QRect place = bar.actionGeometry(menu);
      const bool inBar = !place.isEmpty() && place.right() < button.x();
      QVERIFY2(inBar != button.menu()->actions().contains(menu), qPrintable(menu->text()));
    }
  }
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::SmallScreenTest>(argc, argv);
}
#include "SmallScreenTest.moc"
