#pragma once

#include <functional>
#include <QDialog>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace gravlin::test {

/// Answers the next modal dialog with this object name: `answer` gets it once it is shown and
/// active and is expected to close it. Any other modal dialog in the way of it, or none at all for
/// ten seconds, is a failure; what is open then is dismissed, so that the test goes on to report
/// it.
class NextDialog {
 public:
  NextDialog(const char* name, std::function<void(QDialog&)> answer)
      : expected(name), answering(std::move(answer)) {
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] { look(); });
    timer.start(pollingInterval);
  }

  /// Whether the dialog came and was answered.
  bool answered() const { return isAnswered; }

 private:
  static constexpr int pollingInterval = 5;  // ms
  static constexpr int mostPolls = 2000;

  void look() {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog != nullptr && dialog->objectName() == expected && dialog->isVisible()) {
      if (dialog->isActiveWindow()) {
        timer.stop();
        isAnswered = true;
        return answering(*dialog);
      }
      // Nobody else gives the focus to a window on a screen without a window manager.
      dialog->activateWindow();
    }
    if (++polls < mostPolls) return;
    timer.stop();
    qWarning("waited in vain for %s", qPrintable(expected));
    if (dialog != nullptr) dialog->reject();
  }

  const QString expected;
  std::function<void(QDialog&)> answering;
  QTimer timer;
  int polls = 0;
  bool isAnswered = false;
};

/// A control inside a window by its object name; the test ends when it is missing.
template <class Widget>
Widget& control(QWidget& window, const char* name) {
  auto* found = window.findChild<Widget*>(name);
  if (found == nullptr) qFatal("no %s called %s", Widget::staticMetaObject.className(), name);
  return *found;
}

/// Clicks on a button, for check boxes and radio buttons on the mark at their left end.
inline void click(QWidget& window, const char* button) {
  constexpr int insideTheMark = 8;
  auto& clicked = control<QAbstractButton>(window, button);
  QTest::mouseClick(&clicked, Qt::LeftButton, {}, QPoint(insideTheMark, clicked.height() / 2));
}

/// Shows a window and waits until keys go to it.
inline bool showActive(QWidget& window) {
  window.show();
  window.activateWindow();  // as in NextDialog
  return QTest::qWaitForWindowExposed(&window) && QTest::qWaitForWindowActive(&window);
}

/// Replaces the text of a control as somebody typing would.
inline void type(QWidget& field, const QString& text) {
  field.setFocus();
  QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(&field, Qt::Key_Delete);
  QTest::keyClicks(&field, text);
}

}  // namespace gravlin::test
