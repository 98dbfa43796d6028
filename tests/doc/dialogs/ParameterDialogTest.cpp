#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionButton>

#include "doc/dialogs/ParameterDialog.h"
#include "support/Gui.h"

namespace gravlin {
namespace {

using test::click;
using test::control;
using test::NextDialog;
using test::showActive;
using test::type;

/// One member for every kind of control.
struct Parameters {
  std::string method = "Loop";
  int count = 10;
  float step = 0.5F;
  bool animate = true;
  int every = 1;
  int mode = 1;
  int angle = 165;
  float upper = 0.6F;
  int kind = 0;
  bool hidden = true;

  Form form() {
    return {
        "CEverythingDlg",
        "Everything",
        {{.name = "method",
          .label = "Method",
          .value = &method,
          .choices = {{"Loop", ""}, {"Linear & more", ""}}},
         {.name = "count", .label = "Iteration", .value = &count, .range = {{1, 10000}}},
         {.name = "step", .label = "Step Size", .value = &step},
         {.name = "animate", .label = "Animate flow", .value = &animate, .group = "Animation"},
         {.name = "every",
          .label = "per",
          .value = &every,
          .group = "Animation",
          .unit = "interations"},
         {.name = "mode",
          .label = "",
          .value = &mode,
          .group = "Threshold",
          .choices = {{"Constant Angle (0-180)", "angle"}, {"Histogram(0-100)", "histogram"}}},
         {.name = "angle",
          .label = "Constant Angle (0-180)",
          .value = &angle,
          .group = "Threshold",
          .range = {{0, 180}}},
         {.name = "upper", .label = "Hi", .value = &upper, .group = "Threshold", .range = {{0, 1}}},
         {.name = "kind",
          .label = "On",
          .value = &kind,
          .choices = {{"Vertex", "vertex"}, {"Edge", "edge"}, {"Face", "face", false}}},
         {.name = "hidden", .label = "Extraction", .value = &hidden, .enabled = false}},
        "Go",
        "Never"};
  }
};

class ParameterDialogTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void showsTheValuesItWasGiven();
  void controlsAndButtonsCarryTheNamesOfTheForm();
  void fieldsOfAGroupStandInOneBox();
  void aNumberStandsBesideTheButtonItBelongsTo();
  void aCheckBoxThatSaysTheTitleOfItsBoxTakesTheTitlesPlace();
  void aCaptionStandsUnderTheTextOfItsCheckBox();
  void disabledFieldsAndButtonsCannotBeUsed();
  void okWritesEveryMember();
  void cancelAndEscapeWriteNothing();
  void textIsNotCheckedBeforeOk();
  void refusedOkShowsTheSentenceAndSelectsTheField_data();
  void refusedOkShowsTheSentenceAndSelectsTheField();
  void refusedOkWritesNothingAtAll();
  void enterInAFieldMeansOk();
  void tabGoesThroughTheControlsInTheOrderShown();
  void textTypedIntoAComboBoxCountsAsTyped();
};

void ParameterDialogTest::showsTheValuesItWasGiven() {
  Parameters parameters;
  ParameterDialog dialog(parameters.form());
  QCOMPARE(dialog.windowTitle(), "Everything");
  QCOMPARE(control<QComboBox>(dialog, "method").currentText(), "Loop");
  QCOMPARE(control<QLineEdit>(dialog, "count").text(), "10");
  QCOMPARE(control<QLineEdit>(dialog, "step").text(), "0.5");
  QVERIFY(control<QCheckBox>(dialog, "animate").isChecked());
  QVERIFY(control<QRadioButton>(dialog, "mode_1").isChecked());
  QVERIFY(!control<QRadioButton>(dialog, "mode_0").isChecked());
}

void ParameterDialogTest::controlsAndButtonsCarryTheNamesOfTheForm() {
  Parameters parameters;
  const Form form = parameters.form();
  ParameterDialog dialog(form);
  QCOMPARE(dialog.objectName(), "CEverythingDlg");
  for (const Field& field : form.fields) {
    const QString name = QString::fromUtf8(field.name.data(), static_cast<int>(field.name.size()));
    QCOMPARE(dialog.findChildren<QWidget*>(name).size(), 1);
  }
  QCOMPARE(control<QPushButton>(dialog, "ok").text(), "Go");
  QCOMPARE(control<QPushButton>(dialog, "cancel").text(), "Never");
}

void ParameterDialogTest::fieldsOfAGroupStandInOneBox() {
  Parameters parameters;
  ParameterDialog dialog(parameters.form());
  QStringList titles;
  for (const QGroupBox* box : dialog.findChildren<QGroupBox*>()) titles.append(box->title());
  QCOMPARE(titles, QStringList({"Animation", "Threshold"}));
  const auto* box = qobject_cast<QGroupBox*>(control<QLineEdit>(dialog, "every").parentWidget());
  QVERIFY(box != nullptr);
  QCOMPARE(box, control<QCheckBox>(dialog, "animate").parentWidget());
  QStringList texts;
  for (const QLabel* label : box->findChildren<QLabel*>()) texts.append(label->text());
  QCOMPARE(texts, QStringList({"per", "interations"}));
}

void ParameterDialogTest::aNumberStandsBesideTheButtonItBelongsTo() {
  Parameters parameters;
  ParameterDialog dialog(parameters.form());
  QVERIFY(showActive(dialog));
  const auto middle = [&](const char* name) {
    QWidget& widget = control<QWidget>(dialog, name);
    return widget.mapTo(&dialog, widget.rect().center());
  };
  const int offset = middle("angle").y() - middle("mode_0").y();
  QVERIFY2(std::abs(offset) <= 2, "not in one line");  // centred in whole pixels
  QVERIFY(middle("angle").x() > middle("mode_0").x());
  // Nothing repeats the button's text as a label.
  for (const QLabel* label : dialog.findChildren<QLabel*>()) {
    QVERIFY(label->text() != "Constant Angle (0-180)");
  }
}

void ParameterDialogTest::aCheckBoxThatSaysTheTitleOfItsBoxTakesTheTitlesPlace() {
  bool connects = true;
  ParameterDialog dialog({"CDlg",
                          "Title",
                          {{.name = "connects",
                            .label = "(4) Connectting",
                            .value = &connects,
                            .group = "(4) Connectting"}}});
  QCOMPARE(dialog.findChild<QGroupBox*>()->title(), "");
  QCOMPARE(control<QCheckBox>(dialog, "connects").text(), "(4) Connectting");
}

void ParameterDialogTest::aCaptionStandsUnderTheTextOfItsCheckBox() {
  bool smooths = true;
  ParameterDialog dialog(
      {"CDlg",
       "Title",
       {{.name = "smooths", .label = "Curvature Tensor", .value = &smooths, .unit = "Smoothing"}}});
  QVERIFY(showActive(dialog));
  auto& box = control<QCheckBox>(dialog, "smooths");
  auto& caption = *dialog.findChild<QLabel*>();
  QVERIFY(caption.geometry().top() >= box.geometry().bottom());
  QStyleOptionButton option;
  option.initFrom(&box);
  const QRect text = box.style()->subElementRect(QStyle::SE_CheckBoxContents, &option, &box);
  QCOMPARE(caption.x() + caption.indent(), box.x() + text.left());
}

void ParameterDialogTest::disabledFieldsAndButtonsCannotBeUsed() {
  Parameters parameters;
  ParameterDialog dialog(parameters.form());
  QVERIFY(showActive(dialog));
  QVERIFY(!control<QCheckBox>(dialog, "hidden").isEnabled());
  click(dialog, "hidden");
  click(dialog, "kind_2");
  QVERIFY(control<QRadioButton>(dialog, "kind_0").isChecked());
  click(dialog, "ok");
  QVERIFY(parameters.hidden);
  QCOMPARE(parameters.kind, 0);
}

void ParameterDialogTest::okWritesEveryMember() {
  Parameters parameters;
  ParameterDialog dialog(parameters.form());
  QVERIFY(showActive(dialog));
  control<QComboBox>(dialog, "method").setCurrentIndex(1);
  type(control<QLineEdit>(dialog, "count"), "25");
  type(control<QLineEdit>(dialog, "step"), " 1e-3 ");
  click(dialog, "animate");
  type(control<QLineEdit>(dialog, "every"), "-4");
  click(dialog, "mode_0");
  type(control<QLineEdit>(dialog, "angle"), "180");
  type(control<QLineEdit>(dialog, "upper"), "0");
  click(dialog, "kind_1");
  click(dialog, "ok");
  QCOMPARE(dialog.result(), QDialog::Accepted);
  QCOMPARE(parameters.method, std::string("Linear & more"));
  QCOMPARE(parameters.count, 25);
  QCOMPARE(parameters.step, 1e-3F);
  QCOMPARE(parameters.animate, false);
  QCOMPARE(parameters.every, -4);
  QCOMPARE(parameters.mode, 0);
  QCOMPARE(parameters.angle, 180);
  QCOMPARE(parameters.upper, 0.0F);
  QCOMPARE(parameters.kind, 1);
}

void ParameterDialogTest::cancelAndEscapeWriteNothing() {
  for (const bool byKey : {false, true}) {
    Parameters parameters;
    ParameterDialog dialog(parameters.form());
    QVERIFY(showActive(dialog));
    type(control<QLineEdit>(dialog, "count"), "25");
    if (byKey) {
      QTest::keyClick(&control<QLineEdit>(dialog, "count"), Qt::Key_Escape);
    } else {
      click(dialog, "cancel");
    }
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), QDialog::Rejected);
    QCOMPARE(parameters.count, 10);
  }
}

void ParameterDialogTest::textIsNotCheckedBeforeOk() {
  Parameters parameters;
  ParameterDialog dialog(parameters.form());
  QVERIFY(showActive(dialog));
  auto& count = control<QLineEdit>(dialog, "count");
  type(count, "many");
  QTest::keyClick(&count, Qt::Key_Tab);
  QCOMPARE(QApplication::activeModalWidget(), nullptr);
  QCOMPARE(count.text(), "many");
}

void ParameterDialogTest::refusedOkShowsTheSentenceAndSelectsTheField_data() {
  QTest::addColumn<QByteArray>("field");
  QTest::addColumn<QString>("text");
  QTest::addColumn<QString>("sentence");
  QTest::newRow("no integer") << QByteArray("count") << "1.5"
                              << "Enter an integer.";
  QTest::newRow("nothing") << QByteArray("count") << ""
                           << "Enter an integer.";
  QTest::newRow("too small") << QByteArray("count") << "0"
                             << "Enter an integer between 1 and 10000.";
  QTest::newRow("too large") << QByteArray("angle") << "181"
                             << "Enter an integer between 0 and 180.";
  QTest::newRow("no number") << QByteArray("step") << "0,5"
                             << "Enter a number.";
  QTest::newRow("out of range") << QByteArray("upper") << "1.01"
                                << "Enter a number between 0 and 1.";
}

void ParameterDialogTest::refusedOkShowsTheSentenceAndSelectsTheField() {
  QFETCH(QByteArray, field);
  QFETCH(QString, text);
  QFETCH(QString, sentence);
  Parameters parameters;
  ParameterDialog dialog(parameters.form());
  QVERIFY(showActive(dialog));
  auto& edit = control<QLineEdit>(dialog, field.constData());
  type(edit, text);
  control<QPushButton>(dialog, "ok").setFocus();
  QString shown;
  NextDialog refusal("refusal", [&](QDialog& box) {
    shown = qobject_cast<QMessageBox*>(&box)->text();
    QTest::keyClick(&box, Qt::Key_Return);
  });
  click(dialog, "ok");
  QVERIFY(refusal.answered());
  QCOMPARE(shown, sentence);
  QVERIFY(dialog.isVisible());
  QCOMPARE(dialog.focusWidget(), &edit);
  QCOMPARE(edit.selectedText(), text);
}

void ParameterDialogTest::refusedOkWritesNothingAtAll() {
  Parameters parameters;
  ParameterDialog dialog(parameters.form());
  QVERIFY(showActive(dialog));
  type(control<QLineEdit>(dialog, "count"), "25");
  type(control<QLineEdit>(dialog, "upper"), "7");
  click(dialog, "animate");
  NextDialog refusal("refusal", [](QDialog& box) { box.accept(); });
  click(dialog, "ok");
  QVERIFY(refusal.answered());
  QCOMPARE(parameters.count, 10);
  QCOMPARE(parameters.animate, true);
  // The typed text stays for a second try.
  type(control<QLineEdit>(dialog, "upper"), "0.7");
  click(dialog, "ok");
  QCOMPARE(parameters.count, 25);
  QCOMPARE(parameters.upper, 0.7F);
  QCOMPARE(parameters.animate, false);
}

void ParameterDialogTest::enterInAFieldMeansOk() {
  for (const char* field : {"count", "method"}) {
    Parameters parameters;
    ParameterDialog dialog(parameters.form());
    QVERIFY(showActive(dialog));
    type(control<QLineEdit>(dialog, "count"), "25");
    QTest::keyClick(&control<QWidget>(dialog, field), Qt::Key_Return);
    QCOMPARE(dialog.result(), QDialog::Accepted);
    QCOMPARE(parameters.count, 25);
  }
}

void ParameterDialogTest::tabGoesThroughTheControlsInTheOrderShown() {
  Parameters parameters;
  ParameterDialog dialog(parameters.form());
  QVERIFY(showActive(dialog));
  QStringList visited;
  for (int i = 0; i < 10; ++i) {
    visited.append(QApplication::focusWidget()->objectName());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
  QCOMPARE(visited, QStringList({"method", "count", "step", "animate", "every", "angle", "mode_1",
                                 "upper", "kind_0", "ok"}));
}

void ParameterDialogTest::textTypedIntoAComboBoxCountsAsTyped() {
  Parameters parameters;
  ParameterDialog dialog(parameters.form());
  QVERIFY(showActive(dialog));
  auto& method = control<QComboBox>(dialog, "method");
  QCOMPARE(method.count(), 2);
  QCOMPARE(method.itemText(1), "Linear & more");
  type(*method.lineEdit(), "loop");
  click(dialog, "ok");
  QCOMPARE(parameters.method, std::string("loop"));
}

}  // namespace
}  // namespace gravlin

QTEST_MAIN(gravlin::ParameterDialogTest)
#include "ParameterDialogTest.moc"
