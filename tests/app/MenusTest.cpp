// Menus, toolbar and status bar of the real window, held against the command table.

#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>

#include "app/Program.h"
#include "doc/dialogs/QtText.h"

namespace gravlin {
namespace {

using namespace test;

class MenusTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void theBarHasTheMenusInTheirOrder();
  void theMenusHoldTheTablesItemsInItsOrder();
  void everyItemIsNamedByItsCommandNumber();
  void fileMenuHasTheItemsOfTheFrameInPlace();
  void itemsWithoutAHandlerAreDisabled();
  void shortcutsAreTheQuotedAndTheStandardOnes();
  void withoutADocumentOnlyTheFramesOwnItemsWork();
  void anItemChosenWithTheMouseRunsItsCommand();
  void anItemChosenWithTheKeyboardRunsItsCommand();
  void commandsThatNeedAMeshDoNothingWithoutOne();
  void aTickShowsWhatIsOnInTheActiveDocument();
  void toolbarAndStatusBarCanBeHidden();
  void toolbarButtonsAreTheMenusItems();
  void aboutTellsTheVersion();
};

QString withoutMnemonic(QString text) {
  return text.remove('&');
}

using Item = std::pair<QString, QString>;  ///< path of the menu, text of the item

/// Every item of a menu and its submenus that the table made, in the order shown.
void collect(const QMenu& menu, const QString& path, std::vector<Item>& items) {
  for (const QAction* action : menu.actions()) {
    if (action->menu() != nullptr) {
      collect(*action->menu(), path + '/' + withoutMnemonic(action->menu()->title()), items);
    } else if (action->objectName().startsWith("command_")) {
      items.emplace_back(path, action->text());
    }
  }
}

void MenusTest::theBarHasTheMenusInTheirOrder() {
  Program program;
  QStringList titles;
  for (const QAction* action : program.frame().menuBar()->actions()) {
    if (action->menu() != nullptr) titles.append(withoutMnemonic(action->text()));
  }
  QCOMPARE(titles, QStringList({"File", "Edit", "View", "Visualization", "Option", "EXPERIMET",
                                "Window", "Help"}));
}

void MenusTest::theMenusHoldTheTablesItemsInItsOrder() {
  Program program;
  std::vector<Item> shown;
  for (const QAction* action : program.frame().menuBar()->actions()) {
    if (action->menu() != nullptr) {
      collect(*action->menu(), withoutMnemonic(action->menu()->title()), shown);
    }
  }
  std::vector<Item> expected;
  for (const Command& command : commandTable()) {
    expected.emplace_back(toQString(command.menuPath), toQString(command.text));
  }
  QCOMPARE(shown.size(), expected.size());
  for (std::size_t i = 0; i < shown.size(); ++i) QCOMPARE(shown[i], expected[i]);
}

void MenusTest::everyItemIsNamedByItsCommandNumber() {
  Program program;
  for (const Command& command : commandTable()) {
    QCOMPARE(program.action(QString("command_%1").arg(command.id)).text(), toQString(command.text));
  }
}

void MenusTest::fileMenuHasTheItemsOfTheFrameInPlace() {
  Program program;
  QStringList texts;
  for (const QAction* action : control<QMenu>(program.frame(), "menu_File").actions()) {
    if (action->isVisible()) texts.append(action->isSeparator() ? "-" : action->text());
  }
  // Without recent files two separators meet, of which the menu shows one.
  QCOMPARE(texts.count("-"), 3);
  texts.removeAt(texts.lastIndexOf("-"));
  QCOMPARE(texts,
           QStringList({"&New", "&Open...\tCtrl+O", "&Close", "-", "&Save\tCtrl+S", "Save &As... ",
                        "Import...", "Export...", "Export Lines...", "-", "E&xit"}));
}

void MenusTest::itemsWithoutAHandlerAreDisabled() {
  Program program;
  int disabled = 0;
  for (const Command& command : commandTable()) {
    const QAction& item = program.action(QString("command_%1").arg(command.id));
    QCOMPARE(item.isEnabled(), command.handler != nullptr && command.step != "undo");
    if (command.handler == nullptr) ++disabled;
  }
  QVERIFY(disabled > 0);
}

void MenusTest::shortcutsAreTheQuotedAndTheStandardOnes() {
  Program program;
  const std::vector<std::pair<QString, QString>> expected = {
      {"fileNew", "Ctrl+N"},       {"fileClose", "Ctrl+W"},     {"fileExit", "Ctrl+Q"},
      {"command_57601", "Ctrl+O"}, {"command_57603", "Ctrl+S"}, {"command_57643", "Ctrl+Z"},
      {"helpGuide", "F1"}};
  for (const auto& [name, keys] : expected) {
    QCOMPARE(program.action(name).shortcut(), QKeySequence(keys));
  }
}

void MenusTest::withoutADocumentOnlyTheFramesOwnItemsWork() {
  Program program;
  program.action("fileClose").trigger();
  QTRY_COMPARE(program.frame().activeDocument(), nullptr);
  for (const Command& command : commandTable()) {
    const bool isOpen = command.step == "open" || command.step == "import";
    QCOMPARE(program.action(QString("command_%1").arg(command.id)).isEnabled(), isOpen);
  }
  for (const char* name : {"fileClose", "windowNew", "windowCascade", "windowTile"}) {
    QVERIFY2(!program.action(name).isEnabled(), name);
  }
  for (const char* name : {"fileNew", "fileExit", "helpGuide", "helpAbout"}) {
    QVERIFY2(program.action(name).isEnabled(), name);
  }
  program.action("fileNew").trigger();
  QVERIFY(program.frame().activeDocument() != nullptr);
  QVERIFY(program.step("flat-shading").isEnabled());
}

void MenusTest::anItemChosenWithTheMouseRunsItsCommand() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  QMenuBar& bar = *program.frame().menuBar();
  auto& menu = control<QMenu>(program.frame(), "menu_Visualization");
  QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.actionGeometry(menu.menuAction()).center());
  QTRY_VERIFY(menu.isVisible());
  QTest::mouseClick(&menu, Qt::LeftButton, {},
                    menu.actionGeometry(&program.step("points")).center());
  QTRY_VERIFY(!menu.isVisible());
  QCOMPARE(program.document().displayMode, int(Points));
}

void MenusTest::anItemChosenWithTheKeyboardRunsItsCommand() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  QTest::keyClick(program.frame().windowHandle(), Qt::Key_I, Qt::AltModifier);
  auto& menu = control<QMenu>(program.frame(), "menu_Visualization");
  QTRY_VERIFY(menu.isVisible());
  QTest::keyClick(&menu, Qt::Key_Down);
  QTest::keyClick(&menu, Qt::Key_Return);
  QTRY_VERIFY(!menu.isVisible());
  QCOMPARE(program.document().displayMode, int(SmoothShading));
}

void MenusTest::commandsThatNeedAMeshDoNothingWithoutOne() {
  Program program;
  const int mode = program.document().displayMode;
  const auto revision = program.document().revision;
  for (const char* step : {"points", "flat-shading", "smooth-shading", "wire-frame", "undo"}) {
    program.step(step).trigger();
  }
  QCOMPARE(program.document().displayMode, mode);
  QCOMPARE(program.document().revision, revision);
}

void MenusTest::aTickShowsWhatIsOnInTheActiveDocument() {
  Program program;
  QAction& legend = program.step("colour-legend");
  QVERIFY(legend.isCheckable() && !legend.isChecked());
  legend.trigger();
  QVERIFY(legend.isChecked());
  QVERIFY(program.document().showsColourLegend);
  program.action("fileNew").trigger();
  QVERIFY(!legend.isChecked());
  program.action("fileClose").trigger();
  QTRY_VERIFY(legend.isChecked());
  legend.trigger();
  QVERIFY(!legend.isChecked());
  QVERIFY(!program.step("points").isCheckable());
}

void MenusTest::toolbarAndStatusBarCanBeHidden() {
  Program program;
  const auto toolbar = [&] { return program.frame().findChild<QToolBar*>("toolbar")->isVisible(); };
  const auto statusBar = [&] { return program.frame().statusBar()->isVisible(); };
  QVERIFY(toolbar() && statusBar());
  program.action("viewToolbar").trigger();
  program.action("viewStatusBar").trigger();
  QVERIFY(!toolbar() && !statusBar());
  QVERIFY(program.frame().close());
  program.start();
  QVERIFY(!toolbar() && !statusBar());
  QVERIFY(!program.action("viewToolbar").isChecked());
  QVERIFY(!program.action("viewStatusBar").isChecked());
  program.action("viewToolbar").trigger();
  program.action("viewStatusBar").trigger();
  QVERIFY(toolbar() && statusBar());
}

void MenusTest::toolbarButtonsAreTheMenusItems() {
  Program program;
  const QList<QAction*> buttons = program.frame().findChild<QToolBar*>("toolbar")->actions();
  for (const char* step :
       {"open", "undo", "flat-shading", "smooth-shading", "wire-frame", "points"}) {
    QVERIFY2(buttons.contains(&program.step(step)), step);
  }
  for (const QAction* button : buttons) QVERIFY(button->isSeparator() || !button->icon().isNull());
}

void MenusTest::aboutTellsTheVersion() {
  Program program;
  QString text;
  NextDialog about("about", [&](QDialog& box) {
    text = qobject_cast<QMessageBox*>(&box)->text();
    press(box, QMessageBox::Ok);
  });
  program.action("helpAbout").trigger();
  QVERIFY(about.answered());
  QVERIFY(text.contains("Gravlin " GRAVLIN_VERSION));
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::MenusTest>(argc, argv);
}
#include "MenusTest.moc"
