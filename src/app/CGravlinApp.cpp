#include "app/CGravlinApp.h"

#include <cstdio>
#include <QApplication>
#include <QFileInfo>
#include <QOpenGLContext>
#include <QSurfaceFormat>

#include "app/DisplayCheck.h"
#include "app/Icons.h"
#include "doc/dialogs/QtText.h"

namespace gravlin {
namespace {

std::unique_ptr<QSettings> openSettings(const std::string& file) {
  if (!file.empty()) return std::make_unique<QSettings>(fromPath(file), QSettings::IniFormat);
  return std::make_unique<QSettings>(CGravlinApp::registryKey, CGravlinApp::applicationName);
}

QStringList absolutePaths(const std::vector<std::string>& files) {
  QStringList paths;
  for (const std::string& file : files) {
    paths.append(QFileInfo(fromPath(file)).absoluteFilePath());
  }
  return paths;
}

}  // namespace

CGravlinApp::CGravlinApp(const DesktopArguments& commandLine)
    : files(absolutePaths(commandLine.files)),
      settings(openSettings(commandLine.settingsFile)),
      frame(*settings) {
}

void CGravlinApp::prepare() {
  // The fixed pipeline with lights and matrices, which only a compatibility context has.
  QSurfaceFormat format;
  format.setRenderableType(QSurfaceFormat::OpenGL);
  format.setProfile(QSurfaceFormat::CompatibilityProfile);
  format.setVersion(2, 1);
  format.setDepthBufferSize(24);
  format.setSwapBehavior(QSurfaceFormat::DoubleBuffer);
  QSurfaceFormat::setDefaultFormat(format);
}

void CGravlinApp::start() {
  frame.newDocument();
  frame.show();
  frame.openFiles(files);
}

int runGravlin(int argc, char** argv) {
  if (const std::optional<int> exitCode = answerWithoutWindow(argc, argv)) return *exitCode;
  CGravlinApp::prepare();
  std::optional<DisplayCheck> check(std::in_place);
  QApplication application(argc, argv);
  check.reset();
  QApplication::setApplicationName(CGravlinApp::applicationName);
  QApplication::setWindowIcon(programIcon());
  const std::optional<DesktopArguments> commandLine = readDesktopArguments(argc, argv);
  if (!commandLine) return 2;
  if (!QOpenGLContext().create()) {
    std::fprintf(stderr, "gravlin: OpenGL is missing here. %s\n", adviceWithoutDisplay);
    return 1;
  }
  CGravlinApp gravlin(*commandLine);
  gravlin.start();
  return QApplication::exec();
}

}  // namespace gravlin
