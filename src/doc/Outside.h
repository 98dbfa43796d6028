#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "doc/forms/Form.h"
#include "features/LineExport.h"

namespace gravlin {

/// Which standard file dialog is shown: to open a mesh, to save it, to write something else. All
/// use the filter "All files(*.*)|*.*||". Import and ExportMesh have filters for the usual formats.
enum class FileDialog { Open, Save, Export, Import, ExportMesh };

/// How the values in the histogram window stand to the mesh that is shown.
enum class HistogramAge {
  Current,
  BeforeCurvatureSmoothing,  ///< of its shape, but its curvature has been smoothed since
  BeforeNewEstimate,         ///< of its shape, smoothed, and its curvature is estimated anew since
  EarlierShape               ///< of a shape that is no longer there
};

/// The colour of the lights: three pairs in red, green and blue, or one colour with grey.
enum class LightingMode : int { Rgb = 0, Red = 1, Green = 2, Blue = 3 };

/// The three rotations of a view in degrees, as the "View Angle" dialog shows them.
struct ViewAngles {
  float rx = 0.0F;
  float ry = 0.0F;
  float rz = 0.0F;
};

/// The extent of a long computation: the bar runs from 0 to `last` and each step adds `step`.
struct ProgressRange {
  int last;
  int step;
};

/// What is asked before a command does something that cannot be taken back.
struct Question {
  std::string text;     ///< what would be lost
  std::string goOn;     ///< the words on the button that has it done all the same
  std::string refusal;  ///< one sentence or two for where nobody can be asked: then it is not done
};

/// A file that was chosen for Open and that Import would read.
struct StandardFileQuestion {
  std::string path;
  std::string format;  ///< "Stanford PLY"
};

/// What becomes of it.
enum class StandardFileAnswer { Import, OpenAsItIs, Cancel };

/// Everything that a document asks of the world around it. The desktop answers with windows, the
/// batch program with its arguments, tests with a script; so every command is one code path that
/// runs with and without a window. The "view" is the one the running command was given to.
class Outside {
 public:
  virtual ~Outside() = default;

  /// Shows a modal dialog that edits `form`. True when it was closed with OK; only then were the
  /// form's values changed.
  virtual bool showDialog(const Form& form) = 0;
  /// The chosen path, or nothing when the dialog was cancelled.
  virtual std::optional<std::string> chooseFile(FileDialog kind) = 0;
  /// Shows the "Message" dialog and waits until it is closed.
  virtual void showMessage(const std::string& text) = 0;
  /// Asks whether to go on, with "no" as what somebody says who only presses Return or Escape.
  virtual bool confirm(const Question& question) = 0;
  /// Asks how to read such a file, with Import as what somebody says who only presses Return.
  virtual StandardFileAnswer askAboutStandardFile(const StandardFileQuestion& question) = 0;
  /// One sentence in the status bar.
  virtual void showStatus(const std::string& sentence) = 0;
  /// One sentence in the status bar that only says that all went as it was meant to.
  virtual void showSuccess(const std::string& sentence) = 0;

  /// Shows the "Progress of Computation" dialog at position 0.
  virtual void showProgress(ProgressRange range) = 0;
  virtual void stepProgress() = 0;
  virtual void hideProgress() = 0;

  /// The document has changed: every view of it is drawn anew before this returns.
  virtual void redraw() = 0;

  /// Shows the histogram window, `field` naming the values ("Maximum curvature").
  virtual void showHistogram(std::string_view field) = 0;
  /// Gives the histogram window, shown or not, a copy of the values.
  virtual void setHistogramValues(const std::vector<double>& values) = 0;
  /// What the histogram window tells about the values that it has, and keeps, whatever their age.
  virtual void setHistogramAge(HistogramAge age) = 0;

  virtual void setLightingMode(LightingMode mode) = 0;
  virtual void setLineWidthAndPointSize(float width, float size) = 0;
  virtual ViewAngles viewAngles() const = 0;
  virtual void setViewAngles(const ViewAngles& angles) = 0;
  /// The lines as the view shows them, as SVG text.
  virtual std::string linesAsSvg(const TriangleMesh& mesh, const LinesToDraw& drawing) const = 0;
  /// The numbers of used vertices and valid faces that views print in their corner.
  virtual void setShownCounts(int usedVertices, int validFaces) = 0;
};

}  // namespace gravlin
