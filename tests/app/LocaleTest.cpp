// The program on a desktop whose numbers have a comma.

#include <clocale>
#include <QComboBox>
#include <QRegularExpression>

#include "app/Program.h"
#include "support/CapturedText.h"
#include "support/GermanLocale.h"

namespace gravlin {
namespace {

using namespace test;

class LocaleTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void linesOfTheSolverHaveAPointAllTheSame();
};

void LocaleTest::linesOfTheSolverHaveAPointAllTheSame() {
  QCOMPARE(std::localeconv()->decimal_point, ",");  // as Qt found it
  Program program;
  openGourd(program);
  const CapturedText text;
  NextDialog dialog("CSmoothingDlg", [](QDialog& smoothing) {
    type(*control<QComboBox>(smoothing, "method").lineEdit(), "Laplacian Flow (implicit)");
    type(control<QLineEdit>(smoothing, "iterationCount"), "1");
    click(smoothing, "ok");
  });
  program.step("smooth-shape").trigger();
  QVERIFY(dialog.answered());
  const QString output = QString::fromStdString(text.output);
  QVERIFY(!output.isEmpty());
  const QRegularExpression line(R"(^iter=[ 0-9]{3}[0-9] err=[ 0-9]{4}[0-9]\.[0-9]{6}$)");
  for (const QString& written : output.chopped(1).split('\n')) {
    QVERIFY2(line.match(written).hasMatch(), qPrintable(written));
  }
}

}  // namespace
}  // namespace gravlin

int main(int argc, char** argv) {
  const gravlin::test::GermanLocale locale;
  return gravlin::test::runGuiTest<gravlin::LocaleTest>(argc, argv);
}

#include "LocaleTest.moc"
