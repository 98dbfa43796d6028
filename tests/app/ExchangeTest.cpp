// Import and Export as a user gives them, and what Open asks about a file that Import would read.

#include <QFile>
#include <QFileDialog>
#include <QPushButton>

#include "app/Program.h"

namespace gravlin {
namespace {

using namespace test;

class ExchangeTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void aFileIsImportedAndWeldedAsTheDialogSays();
  void importNeedsNoDocument();
  void theMeshIsExportedInTheFormatOfItsName();
  void openAsksAndImportsByDefault();
  void openAsItIsAndCancelAreObeyed();
  void openAsksAlsoWithoutADocument();
  void filesThatAreDroppedAreImportedWithoutAQuestion();
};

constexpr const char* splitSquare =
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3\nf 4 5 6\n";

void ExchangeTest::aFileIsImportedAndWeldedAsTheDialogSays() {
  Program program;
  program.action("fileNew").trigger();
  const QString path = program.file("split.obj", splitSquare);
  QStringList filters;
  NextDialog file("openFile", [&](QDialog& dialog) {
    filters = qobject_cast<QFileDialog*>(&dialog)->nameFilters();
    chooseFile(dialog, path);
  });
  NextDialog import("CImportDlg", [](QDialog& dialog) {
    click(dialog, "weld");
    click(dialog, "ok");
  });
  program.step("import").trigger();
  QVERIFY(file.answered() && import.answered());
  QCOMPARE(filters.front(), "Meshes (*.ply *.off *.stl *.obj)");
  QCOMPARE(program.document().mesh()->vertexCount, 4);
  QCOMPARE(program.opened().title(), "split.obj");
  QVERIFY2(program.status().endsWith("4 vertices, 2 faces; 2 vertices welded."),
           qPrintable(program.status()));
}

void ExchangeTest::importNeedsNoDocument() {
  Program program;
  while (program.frame().activeDocument() != nullptr) program.action("fileClose").trigger();
  const QString path = program.file("split.obj", splitSquare);
  NextDialog file("openFile", [&](QDialog& dialog) { chooseFile(dialog, path); });
  QVERIFY(program.step("import").isEnabled());
  program.step("import").trigger();
  QVERIFY(file.answered());
  QCOMPARE(program.document().mesh()->vertexCount, 6);
}

void ExchangeTest::theMeshIsExportedInTheFormatOfItsName() {
  Program program;
  program.open("s.ply2", squareText);
  const QString path = program.file("s.obj");
  NextDialog options("CExportDlg", pressOk);
  NextDialog file("saveFile", [&](QDialog& dialog) { chooseFile(dialog, path); });
  program.step("export").trigger();
  QVERIFY(options.answered() && file.answered());
  QFile written(path);
  QVERIFY(written.open(QIODevice::ReadOnly));
  QVERIFY(written.readAll().endsWith("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3\nf 1 3 4\n"));
  QCOMPARE(program.status(), QString("Exported %1: 4 vertices, 2 faces.").arg(path));
}

void ExchangeTest::openAsksAndImportsByDefault() {
  Program program;
  program.open("s.ply2", squareText);
  const QString path = program.file("split.obj", splitSquare);
  NextDialog file("openFile", [&](QDialog& dialog) { chooseFile(dialog, path); });
  QString text;
  NextDialog question("standardFile", [&](QDialog& dialog) {
    text = qobject_cast<QMessageBox*>(&dialog)->text();
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  program.step("open").trigger();
  QVERIFY(file.answered() && question.answered());
  QCOMPARE(text, "split.obj is a Wavefront OBJ file. Import it?");
  QCOMPARE(program.document().mesh()->vertexCount, 6);
}

void ExchangeTest::openAsItIsAndCancelAreObeyed() {
  Program program;
  program.open("s.ply2", squareText);
  const QString path = program.file("split.obj", splitSquare);
  const auto openAnd = [&](const std::function<void(QDialog&)>& answer) {
    NextDialog file("openFile", [&](QDialog& dialog) { chooseFile(dialog, path); });
    NextDialog question("standardFile", answer);
    program.step("open").trigger();
    return file.answered() && question.answered();
  };
  QVERIFY(openAnd([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }));
  QCOMPARE(program.opened().title(), "s.ply2");
  QVERIFY(openAnd([](QDialog& dialog) { click(dialog, "openAsItIs"); }));
  QCOMPARE(program.opened().title(), "split.obj");
  QCOMPARE(program.document().mesh()->vertexCount, 0);
}

void ExchangeTest::openAsksAlsoWithoutADocument() {
  Program program;
  while (program.frame().activeDocument() != nullptr) program.action("fileClose").trigger();
  const QString path = program.file("split.obj", splitSquare);
  NextDialog file("openFile", [&](QDialog& dialog) { chooseFile(dialog, path); });
  NextDialog question("standardFile", [](QDialog& dialog) { click(dialog, "import"); });
  program.step("open").trigger();
  QVERIFY(file.answered() && question.answered());
  QCOMPARE(program.document().mesh()->vertexCount, 6);
}

void ExchangeTest::filesThatAreDroppedAreImportedWithoutAQuestion() {
  Program program;
  program.frame().openFiles({program.file("split.obj", splitSquare)});
  QCOMPARE(program.document().mesh()->vertexCount, 6);
  QVERIFY(program.status().contains("2 open sides of faces coincide"));
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::ExchangeTest>(argc, argv);
}

#include "ExchangeTest.moc"
