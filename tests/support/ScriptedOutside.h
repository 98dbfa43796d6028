#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "doc/Outside.h"

namespace gravlin::test {

/// What a test does in a dialog: looks at the form or fills it in, and says whether OK closes it.
using DialogAnswer = std::function<bool(const Form&)>;

/// OK with the values as they stand.
DialogAnswer ok();
/// Cancel after nothing was typed.
DialogAnswer cancel();
/// Types texts into the fields of these names, then OK. A name that the form does not have and a
/// text that its field refuses fail the test.
DialogAnswer okWith(std::vector<std::pair<std::string, std::string>> texts);

/// A world that answers documents from a script and records everything that they ask of it, in
/// order. A dialog without a scripted answer fails the test and is cancelled.
class ScriptedOutside : public Outside {
 public:
  // --- The script ---
  std::deque<DialogAnswer> dialogAnswers;              ///< taken from the front
  std::deque<std::optional<std::string>> fileAnswers;  ///< nothing: cancelled
  std::deque<bool> confirmAnswers;                     ///< whether to go on
  std::deque<StandardFileAnswer> standardFileAnswers;  ///< how to read a file of a usual format
  std::function<void()> whenRedrawn;  ///< called inside redraw, to look at the document there
  ViewAngles angles;                  ///< of the view that the command was given to

  // --- The record ---
  /// One text per call, in order: "dialog CNoiseDlg", "open file", "save file", "message ...",
  /// "question ...", "standard file ...", "status ...", "show progress 0..10 by 1", "step
  /// progress", "hide progress", "redraw", "histogram ...", "histogram values 42", "lighting 2",
  /// "line width 1 point size 3", "angles 10 20 30", "counts 8 12".
  std::vector<std::string> calls;
  std::vector<std::string> messages;
  std::vector<std::string> statuses;
  std::vector<double> histogramValues;  ///< as last given
  HistogramAge histogramAge = HistogramAge::Current;

  /// How many recorded calls equal `call`.
  int count(const std::string& call) const;
  /// Whether every scripted answer has been asked for.
  bool finished() const {
    return dialogAnswers.empty() && fileAnswers.empty() && confirmAnswers.empty() &&
           standardFileAnswers.empty();
  }
  /// Forgets the record; the script stays.
  void forget();

  bool showDialog(const Form& form) override;
  std::optional<std::string> chooseFile(FileDialog kind) override;
  void showMessage(const std::string& text) override;
  bool confirm(const Question& question) override;
  StandardFileAnswer askAboutStandardFile(const StandardFileQuestion& question) override;
  void showStatus(const std::string& sentence) override;
  void showSuccess(const std::string& sentence) override { showStatus(sentence); }
  void showProgress(ProgressRange range) override;
  void stepProgress() override { calls.emplace_back("step progress"); }
  void hideProgress() override { calls.emplace_back("hide progress"); }
  void redraw() override;
  void showHistogram(std::string_view field) override;
  void setHistogramValues(const std::vector<double>& values) override;
  void setHistogramAge(HistogramAge age) override { histogramAge = age; }
  void setLightingMode(LightingMode mode) override;
  void setLineWidthAndPointSize(float width, float size) override;
  ViewAngles viewAngles() const override { return angles; }
  void setViewAngles(const ViewAngles& newAngles) override;
  std::string linesAsSvg(const TriangleMesh& mesh, const LinesToDraw& drawing) const override;
  void setShownCounts(int usedVertices, int validFaces) override;
};

}  // namespace gravlin::test
