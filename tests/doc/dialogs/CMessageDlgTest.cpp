#include <QPlainTextEdit>

#include "doc/dialogs/CMessageDlg.h"
#include "support/Gui.h"

namespace gravlin {
namespace {

using test::click;
using test::control;
using test::NextDialog;

class CMessageDlgTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void aMessageShowsItsLinesReadOnly();
  void aMessageEndsWithItsButtonOrEnter();
};

void CMessageDlgTest::aMessageShowsItsLinesReadOnly() {
  CMessageDlg dialog("Cannot read it:\n<b>no such file</b>");
  QCOMPARE(dialog.windowTitle(), "Message");
  auto& text = control<QPlainTextEdit>(dialog, "text");
  QCOMPARE(text.toPlainText(), "Cannot read it:\n<b>no such file</b>");
  QVERIFY(text.isReadOnly());
}

void CMessageDlgTest::aMessageEndsWithItsButtonOrEnter() {
  for (const bool byKey : {false, true}) {
    CMessageDlg dialog("text");
    NextDialog message("CMessageDlg", [byKey](QDialog& shown) {
      if (byKey) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
      } else {
        click(shown, "ok");
      }
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QVERIFY(message.answered());
  }
}

}  // namespace
}  // namespace gravlin

QTEST_MAIN(gravlin::CMessageDlgTest)
#include "CMessageDlgTest.moc"
