#pragma once

#include <memory>
#include <QMainWindow>
#include <QMdiArea>
#include <QSettings>
#include <vector>

#include "app/CChildFrame.h"
#include "app/CommandMenus.h"
#include "app/GuideWindow.h"
#include "app/OpenDocument.h"
#include "app/RecentFiles.h"

class QLabel;

namespace gravlin {

/// The main window: the menus, the windows of all documents, toolbar and status bar. Every action
/// has an object name: "command_<id>" for the items of the command table, else the name that the
/// build functions give it ("fileNew", "windowTile").
class CMainFrame : public QMainWindow {
  Q_OBJECT

 public:
  /// `storage` keeps the recent files and the place of the window; it must outlive the frame.
  explicit CMainFrame(QSettings& storage);
  ~CMainFrame() override;

  /// A new empty document in a window of its own.
  OpenDocument& newDocument();
  /// Loads a file into the active document, or into a new one when none is active.
  void openFile(const QString& path);
  /// Loads the first file as openFile does and every other one into a new document.
  void openFiles(const QStringList& paths);

  /// The document of the active window, or null when there is no window.
  OpenDocument* activeDocument();
  CChildFrame* activeFrame();
  /// The document that the window shows; null for no window and for one that is closing.
  OpenDocument* documentOf(const CChildFrame* frame);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  template <class Triggered>
  QAction* createAction(const char* name, const QString& text, Triggered triggered);
  void buildFileMenu();
  void buildViewMenu();
  void buildWindowMenu();
  void buildHelpMenu();
  void buildToolbar();
  void buildStatusBar();

  void chooseCommand(const Command& command);
  void closeActiveDocument();
  void showGuide();
  void showAbout();

  CChildFrame& addWindow(OpenDocument& document);
  void removeWindow(CChildFrame* frame);
  void forgetClosedDocuments();
  void windowActivated(QMdiSubWindow* window);
  void updateActions();
  void updateModified();
  void updateStatus();
  void updateRecentFiles();
  void listWindows();
  void restoreLayout();
  void storeLayout();

  QSettings& settings;
  RecentFiles recentFiles;
  Desktop desktop;
  std::vector<std::unique_ptr<OpenDocument>> documents;
  int documentsMade = 0;

  QMdiArea* area;
  CommandMenus menus;
  QToolBar* toolbar = nullptr;
  QLabel* statusText = nullptr;
  std::vector<QAction*> needDocument;  ///< actions of the frame that do nothing without one
  std::vector<QAction*> needRest;      ///< actions of the frame that wait for a command to end
  std::vector<QAction*> recentActions;
  std::vector<QAction*> windowList;
  std::unique_ptr<GuideWindow> guide;  ///< made when first asked for
};

}  // namespace gravlin
