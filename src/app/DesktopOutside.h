#pragma once

#include <functional>
#include <QString>
#include <vector>

#include "app/CommandLock.h"
#include "doc/dialogs/CProgressDlg.h"
#include "doc/Outside.h"
#include "view/windows/CGravlinView.h"
#include "view/windows/GraphWindow.h"

namespace gravlin {

/// What the documents of one main frame share.
struct Desktop {
  QWidget* window = nullptr;  ///< dialogs stand in front of it
  QString folder;             ///< where file dialogs open
  CommandLock lock;
  std::function<void()> statusChanged;           ///< a document has a new sentence to show
  std::function<void()> commandChanged;          ///< a command has begun or ended
  std::function<void(const QString&)> fileUsed;  ///< a document was opened from or saved to it
};

/// Shows the standard file dialog, with the name `suggested` filled in. Empty when it was
/// cancelled.
QString askForFile(Desktop& desktop, FileDialog kind, const QString& suggested = {});

/// The desktop around one document: its views, the dialogs of its commands, its line in the status
/// bar. Commands that concern one view are given to the active one.
class DesktopOutside : public Outside {
 public:
  explicit DesktopOutside(Desktop& sharedDesktop);

  std::vector<CGravlinView*> views;    ///< in the order they were opened
  CGravlinView* activeView = nullptr;  ///< one of `views`, or null when there are none
  QString status;                      ///< the document's last sentence
  QString chosenFile;   ///< what the document was asked to open or save to and has not taken yet
  QString currentFile;  ///< what it was opened from or saved to
  std::function<bool()> mayDropChanges;  ///< asked before a file replaces the mesh

  /// The document's name in the titles of its other windows.
  void setDocumentTitle(const QString& title) { graph.setDocumentTitle(title); }
  void closeHistogram() { graph.close(); }

  // --- Outside ---
  bool showDialog(const Form& form) override;
  std::optional<std::string> chooseFile(FileDialog kind) override;
  void showMessage(const std::string& text) override;
  bool confirm(const Question& question) override;
  StandardFileAnswer askAboutStandardFile(const StandardFileQuestion& question) override;
  void showStatus(const std::string& sentence) override;
  void showSuccess(const std::string& sentence) override { showStatus(sentence); }
  void showProgress(ProgressRange range) override;
  void stepProgress() override;
  void hideProgress() override;
  void redraw() override;
  void showHistogram(std::string_view field) override;
  void setHistogramValues(const std::vector<double>& values) override;
  void setHistogramAge(HistogramAge age) override { graph.setAge(age); }
  void setLightingMode(LightingMode mode) override;
  void setLineWidthAndPointSize(float width, float size) override;
  ViewAngles viewAngles() const override;
  void setViewAngles(const ViewAngles& angles) override;
  std::string linesAsSvg(const TriangleMesh& mesh, const LinesToDraw& drawing) const override;
  void setShownCounts(int usedVertices, int validFaces) override;

 private:
  Desktop& desktop;
  CProgressDlg progress;
  GraphWindow graph;
};

}  // namespace gravlin
