#pragma once

#include <dlfcn.h>
#include <link.h>
#include <memory>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QWheelEvent>
#include <string>
#include <utility>
#include <vector>

#include "app/CGravlinApp.h"
#include "support/Gui.h"

namespace gravlin::test {

inline constexpr const char* tetrahedronText =
    "4 4\n 0 0 0\n 1 0 0\n 0 1 0\n 0 0 1\n 3 0 2 1\n 3 0 1 3\n 3 1 2 3\n 3 0 3 2\n";
inline constexpr const char* squareText =
    "4 2\n 0 0 0\n 1 0 0\n 1 1 0\n 0 1 0\n 3 0 1 2\n 3 0 2 3\n";

/// The whole program in a test, with a folder of its own for files and settings.
class Program {
 public:
  Program() { start(); }

  /// Names a file in the folder, and writes it when there is a text.
  QString file(const char* name, const char* text = nullptr) const {
    QString path = folder.filePath(name);
    if (text == nullptr) return path;
    QFile written(path);
    if (!written.open(QIODevice::WriteOnly) || written.write(text) < 0) {
      qFatal("cannot write %s", name);
    }
    return path;
  }

  /// Starts the program anew with the same settings.
  void start(const std::vector<QString>& files = {}) {
    DesktopArguments line;
    for (const QString& path : files) line.files.push_back(path.toStdString());
    line.settingsFile = file("settings.ini").toStdString();
    app = nullptr;
    app = std::make_unique<CGravlinApp>(line);
    app->start();
    frame().resize(640, 480);  // software draws small pictures faster
    if (!showActive(frame())) qFatal("the main window does not become active");
  }

  CMainFrame& frame() { return app->mainFrame(); }
  OpenDocument& opened() { return *frame().activeDocument(); }
  CGravlinDoc& document() { return opened().document; }
  CGravlinView& view() { return frame().activeFrame()->view(); }
  void open(const char* name, const char* text) { frame().openFile(file(name, text)); }

  /// An action by its object name.
  QAction& action(const QString& name) {
    return control<QAction>(frame(), name.toLatin1().constData());
  }
  /// The item of the command table that scripts know under this name.
  QAction& step(const char* name) { return action(QString("command_%1").arg(findStep(name)->id)); }
  QString status() { return control<QLabel>(frame(), "statusText").text(); }

 private:
  QTemporaryDir folder;
  std::unique_ptr<CGravlinApp> app;
};

/// Presses the button of a message box.
inline void press(QDialog& box, QMessageBox::StandardButton button) {
  QTest::mouseClick(qobject_cast<QMessageBox*>(&box)->button(button), Qt::LeftButton);
}

/// Types a path into a file dialog and confirms it.
inline void chooseFile(QDialog& dialog, const QString& path) {
  auto& name = control<QLineEdit>(dialog, "fileNameEdit");
  type(name, path);
  QTest::keyClick(&name, Qt::Key_Return);
}

/// The bundled closed example with ridges and valleys.
inline void openGourd(Program& program) {
  program.frame().openFile(GRAVLIN_SOURCE_DIR "/examples/gourd.ply2");
}

/// Types texts into the fields of these names and confirms the dialog.
inline auto fillIn(std::vector<std::pair<const char*, const char*>> texts) {
  return [texts = std::move(texts)](QDialog& dialog) {
    for (const auto& [name, text] : texts) type(control<QLineEdit>(dialog, name), text);
    click(dialog, "ok");
  };
}

inline const auto pressOk = [](QDialog& dialog) { click(dialog, "ok"); };
inline const auto pressCancel = [](QDialog& dialog) { click(dialog, "cancel"); };

/// Turns the mouse wheel over the middle of a widget.
inline void turnWheel(QWidget& widget, int delta) {
  QWidget& window = *widget.window();
  const QPoint place = widget.rect().center();
  QWheelEvent event(widget.mapTo(&window, place), widget.mapToGlobal(place), QPoint(),
                    QPoint(0, delta), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(window.windowHandle(), &event);
}

/// Moves the mouse with a button held, one event for every place.
inline void drag(QWidget& widget, Qt::MouseButton button, const std::vector<QPoint>& places) {
  QTest::mousePress(&widget, button, {}, places.front());
  for (const QPoint& place : places) {
    if (place != places.front()) QTest::mouseMove(&widget, place);
  }
  QTest::mouseRelease(&widget, button, {}, places.back());
}

/// Keeps all libraries that are loaded now to the end of the process. A graphics driver goes away
/// with the last context otherwise, and LeakSanitizer cannot name it as the owner of what it left.
inline void keepLibraries() {
  std::vector<std::string> names;
  const auto collect = [](dl_phdr_info* library, std::size_t /*size*/, void* data) {
    static_cast<std::vector<std::string>*>(data)->emplace_back(library->dlpi_name);
    return 0;
  };
  dl_iterate_phdr(collect, &names);
  for (const std::string& name : names) {
    dlopen(name.c_str(), RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
  }
}

/// Runs the test functions of a class with the program's kind of OpenGL and with Qt's own dialogs,
/// which tests can fill in.
template <class Test>
int runGuiTest(int argc, char** argv) {
  CGravlinApp::prepare();
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QApplication application(argc, argv);
  // A main frame that a test closes is not the end of the test.
  QApplication::setQuitOnLastWindowClosed(false);
  Test test;
  const int failures = QTest::qExec(&test, argc, argv);
  keepLibraries();
  return failures;
}

}  // namespace gravlin::test
