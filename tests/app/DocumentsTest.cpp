// Documents and their windows: opening, saving, closing, several at once.

#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>

#include "app/Program.h"
#include "support/DocumentAccess.h"

namespace gravlin {
namespace {

using namespace test;

class DocumentsTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void theProgramStartsWithAnEmptyDocument();
  void filesOfTheCommandLineAreOpened();
  void openLoadsIntoTheActiveDocument();
  void openWithoutADocumentMakesOne();
  void aFileThatCannotBeOpenedLeavesTheDocumentAsItWas();
  void newDocumentsAreNumberedUntilTheyHaveAFile();
  void severalWindowsOnADocumentAreNumbered();
  void twoWindowsShowTheSameDocumentFromDifferentSides();
  void lightingConcernsTheActiveWindowOnly();
  void closingOneOfTwoWindowsKeepsTheDocument();
  void theWindowMenuListsAndActivatesWindows();
  void cascadeAndTileArrangeTheWindows();
  void undoBelongsToItsDocument();
  void undoTwiceTheSecondDoesNothing();
  void saveAsksForAFileLikeSaveAs();
  void aNameWithoutAnExtensionIsSavedAsPly2();
  void saveOffersANameUnderWhichMeshesAreWritten();
  void aFileIsLeftEmptyOnlyWhenTheUserSaysSo();
  void aFileWhoseVerticesWouldMoveIsReplacedOnlyWhenTheUserSaysSo();
  void afterUndoBringsBackAnotherFilesShapeNoNameIsOffered();
  void changesAreMarkedInTheTitleUntilTheyAreSaved();
  void theMainWindowMarksTheChangesOfTheDocumentThatFillsIt();
  void theTitlesAreRightAsSoonAsTheQuestionHasSaved();
  void closingAsksAboutChanges();
  void savingBeforeClosingCanBeCancelled();
  void closingTheWindowByItsButtonAsksToo();
  void leavingTheProgramAsksForEveryChangedDocument();
  void aFileDoesNotReplaceChangesUnasked();
  void recentFilesListTheFourLastOnes();
  void filesThatNothingIsReadFromAreNoRecentFiles();
  void controlCharactersOfFileNamesAreShownEscaped();
  void aRecentFileOpensInTheActiveDocument();
  void aRecentFileThatIsGoneLeavesTheList();
  void aDroppedFileIsOpened();
  void theFileDialogRemembersItsFolder();
};

/// Moves a vertex as an undoable command does.
void change(Program& program) {
  program.opened().run([](CGravlinDoc& document) {
    document.keepUndoCopy();
    test::meshOf(document).vertices[0] += 1.0F;
    document.geometryChanged();
    document.redraw();
  });
}

/// A drop of files on the main window, as the window system delivers it.
void drop(CMainFrame& frame, const QList<QUrl>& urls) {
  QMimeData data;
  data.setUrls(urls);
  const QPoint place = frame.rect().center();
  QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&frame, &enter);
  if (!enter.isAccepted()) return;
  QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&frame, &event);
}

void DocumentsTest::theProgramStartsWithAnEmptyDocument() {
  Program program;
  QVERIFY(!program.document().mesh());
  QCOMPARE(program.opened().title(), "Gravl1");
  QCOMPARE(program.frame().activeFrame()->title(), "Gravl1");
  QVERIFY(program.frame().windowTitle().startsWith("Gravlin"));
}

void DocumentsTest::filesOfTheCommandLineAreOpened() {
  Program program;
  program.start({program.file("t.ply2", tetrahedronText), program.file("s.ply2", squareText)});
  QCOMPARE(program.opened().title(), "s.ply2");
  QCOMPARE(program.document().mesh()->faceCount, 2);
  program.action("fileClose").trigger();
  QTRY_COMPARE(program.opened().title(), "t.ply2");
  QCOMPARE(program.document().mesh()->faceCount, 4);
  program.action("fileClose").trigger();
  QTRY_COMPARE(program.frame().activeDocument(), nullptr);
}

void DocumentsTest::openLoadsIntoTheActiveDocument() {
  Program program;
  const QString path = program.file("t.ply2", tetrahedronText);
  const CGravlinDoc* document = &program.document();
  NextDialog choose("openFile", [&](QDialog& dialog) { chooseFile(dialog, path); });
  program.step("open").trigger();
  QVERIFY(choose.answered());
  QCOMPARE(&program.document(), document);
  QCOMPARE(program.document().mesh()->faceCount, 4);
  QCOMPARE(program.document().displayMode, int(FlatShading));
  QCOMPARE(program.frame().activeFrame()->title(), "t.ply2");
  NextDialog cancel("openFile", [](QDialog& dialog) { dialog.reject(); });
  program.step("open").trigger();
  QVERIFY(cancel.answered());
  QCOMPARE(program.document().mesh()->faceCount, 4);
}

void DocumentsTest::openWithoutADocumentMakesOne() {
  Program program;
  program.action("fileClose").trigger();
  QTRY_COMPARE(program.frame().activeDocument(), nullptr);
  NextDialog cancel("openFile", [](QDialog& dialog) { dialog.reject(); });
  program.step("open").trigger();
  QVERIFY(cancel.answered());
  QCOMPARE(program.frame().activeDocument(), nullptr);
  const QString path = program.file("t.ply2", tetrahedronText);
  NextDialog choose("openFile", [&](QDialog& dialog) { chooseFile(dialog, path); });
  program.step("open").trigger();
  QVERIFY(choose.answered());
  QCOMPARE(program.opened().title(), "t.ply2");
}

void DocumentsTest::aFileThatCannotBeOpenedLeavesTheDocumentAsItWas() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  QString text;
  NextDialog message("CMessageDlg", [&](QDialog& dialog) {
    text = control<QPlainTextEdit>(dialog, "text").toPlainText();
    click(dialog, "ok");
  });
  program.frame().openFile(program.file("missing.ply2"));
  QVERIFY(message.answered());
  QVERIFY2(text.contains("missing.ply2"), qPrintable(text));
  QCOMPARE(program.opened().title(), "t.ply2");
  QCOMPARE(program.document().mesh()->faceCount, 4);
}

void DocumentsTest::newDocumentsAreNumberedUntilTheyHaveAFile() {
  Program program;
  program.action("fileNew").trigger();
  QCOMPARE(program.opened().title(), "Gravl2");
  program.open("t.ply2", tetrahedronText);
  QCOMPARE(program.frame().activeFrame()->title(), "t.ply2");
  program.action("fileNew").trigger();
  QCOMPARE(program.frame().activeFrame()->title(), "Gravl3");
}

void DocumentsTest::severalWindowsOnADocumentAreNumbered() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  program.action("windowNew").trigger();
  QCOMPARE(program.opened().frames.size(), 2U);
  QCOMPARE(program.opened().frames[0]->title(), "t.ply2:1");
  QCOMPARE(program.opened().frames[1]->title(), "t.ply2:2");
  QCOMPARE(program.frame().activeFrame(), program.opened().frames[1]);
  program.opened().frames[0]->close();
  QTRY_COMPARE(program.opened().frames[0]->title(), "t.ply2");
}

void DocumentsTest::twoWindowsShowTheSameDocumentFromDifferentSides() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  program.action("windowNew").trigger();
  program.action("windowTile").trigger();
  CGravlinView& first = program.opened().frames[0]->view();
  CGravlinView& second = program.opened().frames[1]->view();
  QTRY_VERIFY(first.isVisible() && second.isVisible());
  const QImage firstBefore = first.grabFramebuffer();
  const QPoint middle = second.rect().center();
  drag(second, Qt::LeftButton, {middle, middle + QPoint(60, 0)});
  QCOMPARE(first.state.camera.angleZ, 0.0F);
  QCOMPARE(second.state.camera.angleZ, 20.0F);
  QCOMPARE(first.grabFramebuffer(), firstBefore);
  // A command changes both.
  const QImage secondBefore = second.grabFramebuffer();
  program.step("wire-frame").trigger();
  QVERIFY(first.grabFramebuffer() != firstBefore);
  QVERIFY(second.grabFramebuffer() != secondBefore);
}

void DocumentsTest::lightingConcernsTheActiveWindowOnly() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  program.action("windowNew").trigger();
  program.step("lighting-blue").trigger();
  QCOMPARE(program.opened().frames[0]->view().state.lightingMode, LightingMode::Rgb);
  QCOMPARE(program.opened().frames[1]->view().state.lightingMode, LightingMode::Blue);
}

void DocumentsTest::closingOneOfTwoWindowsKeepsTheDocument() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  change(program);
  program.action("windowNew").trigger();
  // The document stays open in the other window, so there is nothing to ask.
  program.opened().frames[1]->close();
  QTRY_COMPARE(program.opened().frames.size(), 1U);
  QVERIFY(program.document().modified);
  program.step("points").trigger();
  QCOMPARE(program.document().displayMode, int(Points));
}

void DocumentsTest::theWindowMenuListsAndActivatesWindows() {
  Program program;
  program.action("fileNew").trigger();
  program.open("t.ply2", tetrahedronText);
  auto& menu = control<QMenu>(program.frame(), "menu_Window");
  menu.popup(program.frame().mapToGlobal(QPoint(10, 10)));
  QTRY_VERIFY(menu.isVisible());
  QCOMPARE(program.action("window_1").text(), "&1 Gravl1");
  QCOMPARE(program.action("window_2").text(), "&2 t.ply2");
  QVERIFY(program.action("window_2").isChecked());
  QTest::mouseClick(&menu, Qt::LeftButton, {},
                    menu.actionGeometry(&program.action("window_1")).center());
  QTRY_COMPARE(program.opened().title(), "Gravl1");
}

void DocumentsTest::cascadeAndTileArrangeTheWindows() {
  Program program;
  program.action("fileNew").trigger();
  CChildFrame* second = program.frame().activeFrame();
  QVERIFY(second->isMaximized());
  program.action("windowTile").trigger();
  CChildFrame* first = nullptr;
  for (auto* frame : program.frame().findChildren<CChildFrame*>()) {
    if (frame != second) first = frame;
  }
  QVERIFY(!first->isMaximized() && !second->isMaximized());
  QVERIFY(!first->geometry().intersects(second->geometry()));
  program.action("windowCascade").trigger();
  QVERIFY(first->geometry().intersects(second->geometry()));
  QVERIFY(first->pos() != second->pos());
}

void DocumentsTest::undoBelongsToItsDocument() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  const auto before = program.document().mesh()->vertices;
  change(program);
  QVERIFY(program.document().mesh()->vertices != before);
  program.action("fileNew").trigger();
  QVERIFY(!program.step("undo").isEnabled());
  program.step("undo").trigger();
  program.action("fileClose").trigger();
  QTRY_COMPARE(program.opened().title(), "t.ply2");
  QVERIFY(program.step("undo").isEnabled());
  QVERIFY(program.document().mesh()->vertices != before);
  QTest::keyClick(program.frame().windowHandle(), Qt::Key_Z, Qt::ControlModifier);
  QVERIFY(program.document().mesh()->vertices == before);
}

void DocumentsTest::undoTwiceTheSecondDoesNothing() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  QVERIFY(!program.step("undo").isEnabled());
  change(program);
  QVERIFY(program.step("undo").isEnabled());
  program.step("undo").trigger();
  QVERIFY(!program.step("undo").isEnabled());
  const auto revision = program.document().revision;
  const auto vertices = program.document().mesh()->vertices;
  program.step("undo").trigger();
  program.opened().run(&CGravlinDoc::OnEditUndo);
  QCOMPARE(program.document().revision, revision);
  QVERIFY(program.document().mesh()->vertices == vertices);
}

void DocumentsTest::saveAsksForAFileLikeSaveAs() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  for (const char* item : {"command_57603", "command_57604"}) {
    const QString path = program.file((std::string(item) + ".ply2").c_str());
    NextDialog choose("saveFile", [&](QDialog& dialog) { chooseFile(dialog, path); });
    program.action(item).trigger();
    QVERIFY(choose.answered());
    QVERIFY(QFile::exists(path));
    QCOMPARE(program.opened().title(), QFileInfo(path).fileName());
    QCOMPARE(program.status(), "Saved " + QFileInfo(path).fileName() + '.');
  }
}

void DocumentsTest::aNameWithoutAnExtensionIsSavedAsPly2() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  NextDialog choose("saveFile", [&](QDialog& dialog) { chooseFile(dialog, program.file("out")); });
  program.action("command_57604").trigger();
  QVERIFY(choose.answered());
  QVERIFY(QFile::exists(program.file("out.ply2")));
  QVERIFY(!QFile::exists(program.file("out")));
}

void DocumentsTest::saveOffersANameUnderWhichMeshesAreWritten() {
  Program program;
  for (const auto& [file, offered] : {std::pair("cloud.one.data", "cloud.one.ply2"),
                                      {"scan.ply", "scan.ply2"},
                                      {"model.obj", "model.ply2"},
                                      {"marked.plyR", "marked.plyR"}}) {
    program.open(file, "1 0 0 0 0 0 0");
    QString name;
    NextDialog look("saveFile", [&](QDialog& dialog) {
      name = control<QLineEdit>(dialog, "fileNameEdit").text();
      dialog.reject();
    });
    program.step("save").trigger();
    QVERIFY(look.answered());
    QCOMPARE(name, offered);
  }
}

/// Saves under the name of a file that is there, which Qt asks about first, and has `answer` deal
/// with the question that comes then. Returns its text.
QString saveOver(Program& program, const char* name, std::function<void(QDialog&)> answer) {
  QString text;
  std::unique_ptr<NextDialog> replace;
  std::unique_ptr<NextDialog> question;
  NextDialog choose("saveFile", [&](QDialog& dialog) {
    // Qt's own question has no name.
    replace = std::make_unique<NextDialog>("", [&](QDialog& box) {
      question = std::make_unique<NextDialog>("question", [&](QDialog& asked) {
        text = dynamic_cast<QMessageBox&>(asked).text();
        answer(asked);
      });
      press(box, QMessageBox::Yes);
    });
    chooseFile(dialog, program.file(name));
  });
  program.step("save").trigger();
  return text;
}

QByteArray contentOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

const auto pressReturn = [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); };

void DocumentsTest::aFileIsLeftEmptyOnlyWhenTheUserSaysSo() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  const QString model = program.file("model.obj", "v 1 2 3");
  QCOMPARE(saveOver(program, "model.obj", pressReturn),
           "Save writes no .obj files: the file would be left empty. File > Export writes them.");
  QCOMPARE(contentOf(model), "v 1 2 3");
  saveOver(program, "model.obj", [](QDialog& box) { box.reject(); });
  QCOMPARE(contentOf(model), "v 1 2 3");
  saveOver(program, "model.obj", [](QDialog& box) { click(box, "goOn"); });
  QCOMPARE(contentOf(model), "");
  QCOMPARE(program.opened().title(), "t.ply2");
}

void DocumentsTest::aFileWhoseVerticesWouldMoveIsReplacedOnlyWhenTheUserSaysSo() {
  constexpr const char* rising = "4 2\n0.13 0 0\n0.24 2 0\n0.37 0 1\n0.41 1 0\n3 0 1 2\n3 1 2 3\n";
  Program program;
  program.open("rising.ply2", rising);
  QVERIFY(program.status().contains("its box could not be measured"));
  const QString asked = saveOver(program, "rising.ply2", pressReturn);
  QVERIFY2(asked.startsWith("Saving over rising.ply2 moves its vertices by up to 0.0"),
           qPrintable(asked));
  QCOMPARE(contentOf(program.file("rising.ply2")), rising);
  saveOver(program, "rising.ply2", [](QDialog& box) { click(box, "goOn"); });
  QVERIFY(contentOf(program.file("rising.ply2")) != rising);
}

void DocumentsTest::afterUndoBringsBackAnotherFilesShapeNoNameIsOffered() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  change(program);
  NextDialog discard("saveChanges", [](QDialog& box) { press(box, QMessageBox::Discard); });
  program.open("s.ply2", squareText);
  QVERIFY(discard.answered());
  program.step("undo").trigger();
  QVERIFY2(program.status().contains("before s.ply2 was opened"), qPrintable(program.status()));
  QString name = "none";
  NextDialog look("saveFile", [&](QDialog& dialog) {
    name = control<QLineEdit>(dialog, "fileNameEdit").text();
    dialog.reject();
  });
  program.step("save").trigger();
  QVERIFY(look.answered());
  QCOMPARE(name, "");
  QCOMPARE(program.opened().title(), "Gravl1");
}

void DocumentsTest::changesAreMarkedInTheTitleUntilTheyAreSaved() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  QVERIFY(!program.frame().activeFrame()->isWindowModified());
  change(program);
  QVERIFY(program.frame().activeFrame()->isWindowModified());
  NextDialog choose("saveFile", [&](QDialog& d) { chooseFile(d, program.file("out.ply2")); });
  QTest::keyClick(program.frame().windowHandle(), Qt::Key_S, Qt::ControlModifier);
  QVERIFY(choose.answered());
  QVERIFY(!program.frame().activeFrame()->isWindowModified());
}

void DocumentsTest::theMainWindowMarksTheChangesOfTheDocumentThatFillsIt() {
  Program program;
  CMainFrame& frame = program.frame();
  program.open("t.ply2", tetrahedronText);
  change(program);
  const auto isMarked = [&] {
    return frame.isWindowModified() && frame.windowTitle().contains("[*]");
  };
  QVERIFY(isMarked());
  program.action("fileNew").trigger();
  QVERIFY(!isMarked());
  program.action("fileClose").trigger();
  QTRY_COMPARE(program.opened().title(), "t.ply2");
  QTRY_VERIFY2(isMarked(), qPrintable(frame.windowTitle()));
  // Nor does the mark stay when the changed document is the one that goes.
  program.action("fileNew").trigger();
  program.open("s.ply2", squareText);
  auto& area = *frame.findChild<QMdiArea*>();
  area.activateNextSubWindow();
  QTRY_COMPARE(program.opened().title(), "t.ply2");
  QVERIFY(isMarked());
  NextDialog discard("saveChanges", [](QDialog& box) { press(box, QMessageBox::Discard); });
  program.action("fileClose").trigger();
  QVERIFY(discard.answered());
  QTRY_COMPARE(program.opened().title(), "s.ply2");
  QTRY_VERIFY2(!isMarked(), qPrintable(frame.windowTitle()));
  // A main window with smaller windows inside has no mark, nor a place for it.
  change(program);
  QVERIFY(isMarked());
  program.action("windowCascade").trigger();
  program.step("points").trigger();
  QVERIFY(!frame.isWindowModified());
  program.frame().activeFrame()->showMaximized();
  QTRY_VERIFY2(isMarked(), qPrintable(frame.windowTitle()));
}

void DocumentsTest::theTitlesAreRightAsSoonAsTheQuestionHasSaved() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  change(program);
  QVERIFY(program.frame().isWindowModified());
  NextDialog save("saveChanges", [](QDialog& box) { press(box, QMessageBox::Save); });
  NextDialog name("saveFile", [&](QDialog& d) { chooseFile(d, program.file("out.ply2")); });
  NextDialog file("openFile", [&](QDialog& dialog) {
    // The command that asked goes on with its own dialog.
    QCOMPARE(program.frame().activeFrame()->title(), "out.ply2");
    QVERIFY(!program.frame().activeFrame()->isWindowModified());
    QVERIFY(!program.frame().isWindowModified());
    QVERIFY(program.frame().windowTitle().contains("out.ply2"));
    dialog.reject();
  });
  program.step("open").trigger();
  QVERIFY(save.answered() && name.answered() && file.answered());
  QCOMPARE(program.frame().activeFrame()->title(), "out.ply2");
}

void DocumentsTest::closingAsksAboutChanges() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  change(program);
  NextDialog cancel("saveChanges", [](QDialog& box) { press(box, QMessageBox::Cancel); });
  QTest::keyClick(program.frame().windowHandle(), Qt::Key_W, Qt::ControlModifier);
  QVERIFY(cancel.answered());
  QCOMPARE(program.opened().title(), "t.ply2");
  QVERIFY(program.document().modified);

  NextDialog save("saveChanges", [&](QDialog& box) { press(box, QMessageBox::Save); });
  NextDialog choose("saveFile", [&](QDialog& d) { chooseFile(d, program.file("kept.ply2")); });
  program.action("fileClose").trigger();
  QVERIFY(save.answered() && choose.answered());
  QTRY_COMPARE(program.frame().activeDocument(), nullptr);
  QVERIFY(QFile::exists(program.file("kept.ply2")));

  program.open("t.ply2", tetrahedronText);
  change(program);
  NextDialog discard("saveChanges", [](QDialog& box) { press(box, QMessageBox::Discard); });
  program.action("fileClose").trigger();
  QVERIFY(discard.answered());
  QTRY_COMPARE(program.frame().activeDocument(), nullptr);
}

void DocumentsTest::savingBeforeClosingCanBeCancelled() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  change(program);
  NextDialog save("saveChanges", [](QDialog& box) { press(box, QMessageBox::Save); });
  NextDialog cancel("saveFile", [](QDialog& dialog) { dialog.reject(); });
  program.action("fileClose").trigger();
  QVERIFY(save.answered() && cancel.answered());
  QCOMPARE(program.opened().title(), "t.ply2");
  QVERIFY(program.document().modified);
}

void DocumentsTest::closingTheWindowByItsButtonAsksToo() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  change(program);
  NextDialog cancel("saveChanges", [](QDialog& box) { press(box, QMessageBox::Cancel); });
  QVERIFY(!program.frame().activeFrame()->close());
  QVERIFY(cancel.answered());
  NextDialog discard("saveChanges", [](QDialog& box) { press(box, QMessageBox::Discard); });
  QVERIFY(program.frame().activeFrame()->close());
  QVERIFY(discard.answered());
  QTRY_COMPARE(program.frame().activeDocument(), nullptr);
}

void DocumentsTest::leavingTheProgramAsksForEveryChangedDocument() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  change(program);
  program.action("fileNew").trigger();
  program.open("s.ply2", squareText);
  change(program);
  QStringList asked;
  const auto answer = [&](QMessageBox::StandardButton button) {
    return [&asked, button](QDialog& box) {
      asked.append(qobject_cast<QMessageBox*>(&box)->text());
      press(box, button);
    };
  };
  NextDialog first("saveChanges", answer(QMessageBox::Cancel));
  program.action("fileExit").trigger();
  QVERIFY(first.answered());
  QVERIFY(program.frame().isVisible());
  QCOMPARE(asked.size(), 1);
  asked.clear();
  NextDialog one("saveChanges", answer(QMessageBox::Discard));
  NextDialog other("saveChanges", answer(QMessageBox::Discard));
  program.action("fileExit").trigger();
  QVERIFY(one.answered() && other.answered());
  QCOMPARE(asked, QStringList({"Save changes to t.ply2?", "Save changes to s.ply2?"}));
  QVERIFY(!program.frame().isVisible());
}

void DocumentsTest::aFileDoesNotReplaceChangesUnasked() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  change(program);
  const QString other = program.file("s.ply2", squareText);
  NextDialog cancel("saveChanges", [](QDialog& box) { press(box, QMessageBox::Cancel); });
  program.frame().openFile(other);
  QVERIFY(cancel.answered());
  QCOMPARE(program.document().mesh()->faceCount, 4);
  NextDialog cancelAgain("saveChanges", [](QDialog& box) { press(box, QMessageBox::Cancel); });
  program.step("open").trigger();
  QVERIFY(cancelAgain.answered());
  QCOMPARE(program.document().mesh()->faceCount, 4);
  NextDialog discard("saveChanges", [](QDialog& box) { press(box, QMessageBox::Discard); });
  program.frame().openFile(other);
  QVERIFY(discard.answered());
  QCOMPARE(program.document().mesh()->faceCount, 2);
  QVERIFY(!program.document().modified);
}

QStringList recentTexts(Program& program) {
  QStringList texts;
  for (int i = 1; i <= RecentFiles::mostFiles; ++i) {
    const QAction& action = program.action(QString("recentFile_%1").arg(i));
    if (action.isVisible()) texts.append(action.text());
  }
  return texts;
}

void DocumentsTest::recentFilesListTheFourLastOnes() {
  Program program;
  QVERIFY(recentTexts(program).isEmpty());
  for (const char* name : {"a.ply2", "b.ply2", "c.ply2", "d.ply2", "e.ply2", "c.ply2"}) {
    program.open(name, squareText);
  }
  const auto check = [&] {
    const QStringList texts = recentTexts(program);
    QCOMPARE(texts.size(), 4);
    const char* const expected[] = {"c.ply2", "e.ply2", "d.ply2", "b.ply2"};
    for (int i = 0; i < 4; ++i) {
      QVERIFY2(texts[i].startsWith(QString("&%1 ").arg(i + 1)), qPrintable(texts[i]));
      QVERIFY2(texts[i].endsWith(expected[i]), qPrintable(texts[i]));
    }
  };
  check();
  program.start();
  check();
}

void DocumentsTest::filesThatNothingIsReadFromAreNoRecentFiles() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  program.open("model.txt", "v 0 0 0");
  program.open("garbage.ply2", "no numbers");
  program.open("damaged.ply2", "4 2\n0 0 0\n");
  const QStringList texts = recentTexts(program);
  QCOMPARE(texts.size(), 2);
  QVERIFY(texts[0].endsWith("damaged.ply2"));
  QVERIFY(texts[1].endsWith("t.ply2"));
}

void DocumentsTest::controlCharactersOfFileNamesAreShownEscaped() {
  Program program;
  program.open("a\nb\x1b.ply2", "3 1 0 0 0 1 0 0 0 1 x 3 0 1 2");
  QCOMPARE(program.opened().title(), "a\\nb\\x1b.ply2");
  QVERIFY2(program.status().contains("/a\\nb\\x1b.ply2: "), qPrintable(program.status()));
  QVERIFY(recentTexts(program).constFirst().endsWith("a\\nb\\x1b.ply2"));
}

void DocumentsTest::aRecentFileOpensInTheActiveDocument() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  program.open("s.ply2", squareText);
  program.action("fileNew").trigger();
  program.action("recentFile_2").trigger();
  QCOMPARE(program.opened().title(), "t.ply2");
  QCOMPARE(program.frame().findChildren<CChildFrame*>().size(), 2);
  QVERIFY(recentTexts(program).front().endsWith("t.ply2"));
}

void DocumentsTest::aRecentFileThatIsGoneLeavesTheList() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  program.open("s.ply2", squareText);
  QVERIFY(QFile::remove(program.file("t.ply2")));
  NextDialog message("CMessageDlg", [](QDialog& dialog) { click(dialog, "ok"); });
  program.action("recentFile_2").trigger();
  QVERIFY(message.answered());
  QCOMPARE(recentTexts(program).size(), 1);
  QCOMPARE(program.opened().title(), "s.ply2");
}

void DocumentsTest::aDroppedFileIsOpened() {
  Program program;
  const QString path = program.file("t.ply2", tetrahedronText);
  drop(program.frame(), {QUrl("https://example.org/x.ply2")});
  QCoreApplication::processEvents();
  QVERIFY(!program.document().mesh());
  drop(program.frame(), {QUrl::fromLocalFile(path)});
  QTRY_COMPARE(program.opened().title(), "t.ply2");
  QCOMPARE(program.frame().findChildren<CChildFrame*>().size(), 1);
  const QString second = program.file("s.ply2", squareText);
  drop(program.frame(), {QUrl::fromLocalFile(path), QUrl::fromLocalFile(second)});
  QTRY_COMPARE(program.frame().findChildren<CChildFrame*>().size(), 2);
  QTRY_COMPARE(program.opened().title(), "s.ply2");
}

void DocumentsTest::theFileDialogRemembersItsFolder() {
  Program program;
  const QString path = program.file("t.ply2", tetrahedronText);
  NextDialog choose("openFile", [&](QDialog& dialog) { chooseFile(dialog, path); });
  program.step("open").trigger();
  QVERIFY(choose.answered());
  QVERIFY(program.frame().close());
  program.start();
  QString folder;
  NextDialog look("openFile", [&](QDialog& dialog) {
    folder = qobject_cast<QFileDialog*>(&dialog)->directory().absolutePath();
    dialog.reject();
  });
  program.step("open").trigger();
  QVERIFY(look.answered());
  QCOMPARE(folder, QFileInfo(path).absolutePath());
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::DocumentsTest>(argc, argv);
}
#include "DocumentsTest.moc"
