#pragma once

#include <functional>
#include <QString>
#include <string>
#include <vector>

#include "app/DesktopOutside.h"
#include "doc/CGravlinDoc.h"

namespace gravlin {

class CChildFrame;

/// One open document with the desktop around it and its windows.
class OpenDocument {
 public:
  /// `titleOfNew` names the document until it has a file ("Gravl1").
  OpenDocument(Desktop& sharedDesktop, QString titleOfNew);

  DesktopOutside outside;
  CGravlinDoc document;
  std::vector<CChildFrame*> frames;  ///< its windows, in the order they were opened

  /// The name of its file, or the title it was made with.
  QString title() const;
  /// Writes the title on its windows, numbered ":1", ":2", ... when there are several.
  void updateTitles();

  /// Takes a window that shows this document. Closing the last one closes the document, which asks
  /// about unsaved changes.
  void addFrame(CChildFrame& frame);
  void removeFrame(CChildFrame& frame);

  /// Runs a command of the document. While it runs no input reaches any window; an exception ends
  /// as a message. Does nothing while another command runs.
  void run(const std::function<void(CGravlinDoc&)>& command);

  /// Loads a file, with `run`; one of the usual formats is imported. False when it could not be
  /// loaded.
  bool open(const QString& path);

  /// Runs `load` with a file that the user has chosen.
  void loadWith(const QString& path,
                const std::function<void(CGravlinDoc&, const std::string&)>& load);

  /// Whether a command runs, of this document or of another one.
  bool isBusy() const { return desktop.lock.isHeld(); }

  /// Whether the mesh may be replaced or closed: it was not changed, or the user has saved it now
  /// or lets the changes go.
  bool mayDropChanges();

 private:
  bool mayCloseAFrame(bool asks);
  void holdViews(bool held);
  /// Returns what is to be told when the command could not come to its end.
  QString runOnHeldViews(const std::function<void(CGravlinDoc&)>& command);
  void noteFile();
  void saveNow();

  Desktop& desktop;
  const QString newTitle;
};

}  // namespace gravlin
