#pragma once

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "batch/Step.h"
#include "doc/CGravlinDoc.h"
#include "doc/Outside.h"
#include "view/Histogram.h"
#include "view/LineSvg.h"
#include "view/ViewState.h"

namespace gravlin {

/// The world of a document that runs without a window: dialogs are answered by what stands on the
/// command line, messages and sentences go to a stream, and the one view is a ViewState.
///
/// A dialog that nothing was said about is closed with OK and the values that it remembers.
class BatchOutside : public Outside {
 public:
  /// Texts for the user go to `errors`, with a progress bar only when that is a terminal.
  BatchOutside(ViewState& view, std::FILE* errors);

  // --- What the next command will be answered ---
  std::string chosenFile;  ///< the path for the next file dialog
  ViewSize viewSize;       ///< of the view, which is that of the picture that comes next
  /// Fills these settings into the next dialog of this name.
  void answerNext(std::string_view formName, std::vector<Setting> settings);
  /// Answers Cancel to the next dialog of this name; asked twice, to the next two.
  void cancelNext(std::string_view formName) { ++cancels[std::string(formName)]; }
  /// Forgets answers that no dialog asked for.
  void forgetAnswers() { answers.clear(); }

  // --- What the commands said ---
  bool failed = false;  ///< later steps must not run: a message was shown, or a file not read
  Histogram histogram;  ///< of the values last given

  /// The document whose counts the view prints.
  void attach(const CGravlinDoc* shownDocument) { document = shownDocument; }

  bool showDialog(const Form& form) override;
  std::optional<std::string> chooseFile(FileDialog kind) override;
  void showMessage(const std::string& text) override;
  bool confirm(const Question& question) override;
  StandardFileAnswer askAboutStandardFile(const StandardFileQuestion& question) override;
  void showStatus(const std::string& sentence) override;
  void showSuccess(const std::string&) override {}
  void showProgress(ProgressRange range) override;
  void stepProgress() override;
  void hideProgress() override;
  void redraw() override;
  void showHistogram(std::string_view) override {}
  void setHistogramValues(const std::vector<double>& values) override {
    histogram.setValues(values);
  }
  void setHistogramAge(HistogramAge) override {}
  void setLightingMode(LightingMode mode) override { view.setLightingMode(mode); }
  void setLineWidthAndPointSize(float width, float size) override {
    view.setLineWidthAndPointSize(width, size);
  }
  ViewAngles viewAngles() const override { return view.camera.angles(); }
  void setViewAngles(const ViewAngles& angles) override { view.camera.setAngles(angles); }
  std::string linesAsSvg(const TriangleMesh& mesh, const LinesToDraw& drawing) const override {
    return gravlin::linesAsSvg(mesh, drawing, view.camera, viewSize);
  }
  void setShownCounts(int usedVertices, int validFaces) override;

 private:
  void say(const std::string& text);
  void drawProgress();

  ViewState& view;
  std::FILE* errors;
  const CGravlinDoc* document = nullptr;
  std::map<std::string, std::vector<Setting>, std::less<>> answers;
  std::map<std::string, int, std::less<>> cancels;
  bool terminal;
  ProgressRange progress = {0, 0};
  int progressPosition = 0;
};

}  // namespace gravlin
