#pragma once

#include <memory>
#include <QSettings>

#include "app/CMainFrame.h"
#include "app/DesktopArguments.h"

namespace gravlin {

/// The running program: its settings and its main frame. A QApplication must exist.
class CGravlinApp {
 public:
  /// Organisation and name under which the settings are kept.
  static constexpr const char* registryKey = "Local AppWizard-Generated Applications";
  static constexpr const char* applicationName = "Gravlin";

  explicit CGravlinApp(const DesktopArguments& commandLine);

  /// What must be settled before the QApplication is made: the kind of OpenGL that views get.
  static void prepare();

  /// Shows the main frame with a new document, into which the first file of the command line is
  /// loaded; every other file gets a document of its own.
  void start();

  CMainFrame& mainFrame() { return frame; }

 private:
  const QStringList files;
  std::unique_ptr<QSettings> settings;
  CMainFrame frame;
};

/// The program from its command line to its exit code.
int runGravlin(int argc, char** argv);

}  // namespace gravlin
