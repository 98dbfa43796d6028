// The commands of the Edit menu that exchange the faces, as a user gives them: menu, dialog, undo.

#include "app/Program.h"

namespace gravlin {
namespace {

using namespace test;

class EditCommandsTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void subdivisionIsUndone();
  void simplificationIsUndone();
};

void EditCommandsTest::subdivisionIsUndone() {
  Program program;
  program.open("t.ply2", tetrahedronText);
  const TriangleMesh before = *program.document().mesh();
  NextDialog dialog("CSubdivisionDlg", pressOk);
  program.step("subdivision").trigger();
  QVERIFY(dialog.answered());
  QCOMPARE(program.document().mesh()->faceCount, 16);
  program.step("undo").trigger();
  QVERIFY(program.document().mesh()->faces == before.faces);
  QVERIFY(program.document().mesh()->vertices == before.vertices);
}

void EditCommandsTest::simplificationIsUndone() {
  Program program;
  openGourd(program);
  const TriangleMesh before = *program.document().mesh();
  NextDialog dialog("CDecimationDlg", fillIn({{"reductionRate", "0.75"}}));
  program.step("simplification").trigger();
  QVERIFY(dialog.answered());
  QCOMPARE(program.document().mesh()->vertexCount, before.vertexCount / 4);
  program.step("undo").trigger();
  QVERIFY(program.document().mesh()->faces == before.faces);
  QVERIFY(program.document().mesh()->vertices == before.vertices);
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  return gravlin::test::runGuiTest<gravlin::EditCommandsTest>(argc, argv);
}

#include "EditCommandsTest.moc"
