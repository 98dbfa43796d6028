#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "curvature/Strokes.h"
#include "curvature/TensorSmoothing.h"
#include "doc/Chunks.h"
#include "doc/DisplayMode.h"
#include "doc/forms/AdaptiveSmoothingParameters.h"
#include "doc/forms/AngleParameters.h"
#include "doc/forms/DecimationParameters.h"
#include "doc/forms/ExportParameters.h"
#include "doc/forms/ImportParameters.h"
#include "doc/forms/NoiseParameters.h"
#include "doc/forms/RidgeParameters.h"
#include "doc/forms/SeedParameters.h"
#include "doc/forms/SmoothingParameters.h"
#include "doc/forms/SubdivisionParameters.h"
#include "doc/forms/TensorSmoothingParameters.h"
#include "doc/forms/ViewParameters.h"
#include "doc/ModeTable.h"
#include "doc/Outside.h"
#include "doc/Shown.h"
#include "features/LineExport.h"
#include "features/RidgeDetector.h"
#include "features/RidgeLineSmoother.h"
#include "features/SilhouetteLines.h"
#include "mesh/FacePicking.h"
#include "mesh/io/MeshFile.h"
#include "mesh/TriangleMesh.h"
#include "remesh/Decimator.h"
#include "remesh/MeshSubdivider.h"
#include "smoothing/MeshSmoother.h"

namespace gravlin {

namespace test {
struct DocumentAccess;  // tests put meshes of their own into documents
}

/// The file that a shape was read from, and what is missing of it since.
struct MeshOrigin {
  std::string path;                       ///< empty for a mesh without a file
  ReadExtent extent = ReadExtent::Whole;  ///< how much of the file was read
  /// How far positions in memory may lie from those of the file, in its units, by what `normalize`
  /// has lost since; see PositionLoss.h. What commands change on purpose is no part of it.
  double positionLoss = 0.0;
  /// The same since the shape was last written to any file, or read.
  double lossSinceSaving = 0.0;
};

/// One open document: the current mesh, one undo copy, the values that the dialogs remember, and a
/// handler for every menu command. Knows nothing of windows; see Outside.
///
/// A command that works on the mesh asks first whether there is one, and does nothing without;
/// those that would write a file say so. Everything behind that question, here and on the floors
/// below, requires a mesh.
///
/// A command ends with `redraw`, which first brings the derived data of the display mode up to
/// date, so results never depend on when or whether a window paints.
class CGravlinDoc final : public ShownSource {
 public:
  explicit CGravlinDoc(Outside& outside);
  ~CGravlinDoc() override;
  CGravlinDoc(const CGravlinDoc&) = delete;
  CGravlinDoc& operator=(const CGravlinDoc&) = delete;

  /// The current mesh; null until a file is opened. Only commands change it.
  const TriangleMesh* mesh() const { return currentMesh.get(); }
  std::unique_ptr<TriangleMesh> undoMesh;  ///< geometry before the last undoable command, or null
  int displayMode = FlatShading;           ///< a DisplayMode
  bool needsRecompute = false;             ///< derived data is stale; redraw clears it
  std::uint64_t revision =
      0;                  ///< raised by every redraw: whatever is cached of an older one is stale
  bool modified = false;  ///< the geometry changed since it was opened or saved
  /// The file last opened or saved. Empty for a new document, and when Undo has brought back the
  /// shape of another file than the one last opened.
  std::string path;
  MeshOrigin meshOrigin;  ///< of the current mesh

  bool showsColourLegend = false;  ///< the scale's values beside a picture that has colours of it

  VisualizationParameters visualizationParameters;
  ViewAngleParameters viewAngleParameters;
  SmoothingParameters smoothingParameters;
  AdaptiveSmoothingParameters adaptiveSmoothingParameters;
  NoiseParameters noiseParameters;
  TensorSmoothingParameters tensorSmoothingParameters;
  SeedParameters seedParameters;
  RidgeParameters ridgeParameters;
  AngleParameters angleParameters;
  SubdivisionParameters subdivisionParameters;
  DecimationParameters decimationParameters;
  ImportParameters importParameters;
  ExportParameters exportParameters;

  // These work on the current mesh; `replaceMesh` alone attaches it.
  MeshSmoother meshSmoother;
  CurvatureTensorSmoother curvatureTensorSmoother;
  MeshSubdivider meshSubdivider;
  Decimator decimator;

  RidgeDetector ridgeDetector;
  RidgeLineSmoother ridgeLineSmoother;

  /// What the links of the mesh stand for and whether a redraw may find them again.
  enum class LinesFrom { Nothing, LocalMax, FaceAngle, SmoothedFaceAngle };
  LinesFrom linesFrom = LinesFrom::Nothing;
  LineOrigin lineOrigin() const {
    return linesFrom == LinesFrom::LocalMax ? LineOrigin::RidgesAndValleys : LineOrigin::Creases;
  }
  SilhouetteLines silhouetteLines;     ///< of the last pen drawing
  std::vector<IndexList> creaseLinks;  ///< [V] all creases by a constant angle; empty: none
  /// Lines that were found are gone with the mesh that they joined vertices of, and none were
  /// looked for since.
  bool linesAreLost = false;

  std::vector<double> vertexErrors;  ///< [V] distance to the undo copy, see ShapeError.h
  std::vector<double> faceErrors;    ///< [F] angle to the undo copy's normals

  // --- File and Edit ---
  void OnFileOpen();
  void OnFileSaveAs();
  void OnFileImport();
  void OnFileExport();
  void OnExportLines();
  void OnEditUndo();
  void OnSmoothingShape();
  void OnSmoothingShapeAdaptive();
  void OnSmoothingCurvatureTensor();
  void OnSmoothingNoise();
  void OnEdgeDetectionLocalMax();
  void OnEdgeDetectionFaceAngle();
  void OnSubdivision();
  void OnSimplification();
  void OnEnhancement();

  // --- Visualization ---
  void OnFlatShading();
  void OnSmoothShading();
  void OnWireFrame();
  void OnPoints();
  void OnNonManifoldPoints();
  void OnEdge();
  void OnColourLegend();
  void OnLightingRgb();
  void OnLightingRed();
  void OnLightingGreen();
  void OnLightingBlue();

  // --- Visualization: curvature ---
  void OnDirectionMax();
  void OnDirectionMin();
  void OnCurvatureMax();
  void OnCurvatureMin();
  void OnCurvatureMean();
  void OnCurvatureGauss();
  void OnCurvatureTotal();
  void OnTensorMax();
  void OnTensorMin();
  void OnStrokeMax();
  void OnStrokeMin();
  void OnEdgeCurvature();
  void OnSilhouette();

  // --- EXPERIMET ---
  void OnShowVertexError();
  void OnShowFaceError();

  /// The command of a mode that is in the table of modes alone.
  template <int number>
  void OnMode() {
    showMode(number);
  }

  // --- Option ---
  void OnOptionVisualization();
  void OnOptionViewDirection();

  // --- What several callers share ---
  /// Loads a file in place of the current mesh, as OnFileOpen does after its dialog. On failure the
  /// document keeps the mesh it had, a message is shown, and the result is false. The undo copy is
  /// left as it is.
  bool openFile(const std::string& filePath);
  /// Loads a file of one of the usual formats in place of the current mesh, as OnFileImport does
  /// after its dialogs. On failure as `openFile`.
  bool importFile(const std::string& filePath, bool weld);
  /// Loads a file that was named without a word on how to read it: one that `standardFormatOfFile`
  /// knows is imported, any other opened.
  bool loadFile(const std::string& filePath);
  /// Opens or imports a file that was chosen for Open, as the user wants where both are possible.
  void openChosenFile(const std::string& filePath);
  /// Writes the current mesh, which must exist, in one of the usual formats, with the values of the
  /// "Export" dialog. It counts as saved as it did before. On failure, and where the mesh came from
  /// this file, the old file stands, a message is shown, and the result is false.
  bool exportMesh(const std::string& filePath);
  /// Writes the current mesh; a name without an extension gets ".ply2". On failure the old file
  /// stands, a message is shown, and the result is false. So it is with the file that the mesh came
  /// from when writing would lose what this file alone holds.
  ///
  /// Asks before a file with content becomes empty because nothing writes its extension, and before
  /// the file last opened or saved is replaced by one whose positions lie more than 1e-5 of the
  /// mesh's extent from those stored: those of the present shape, exactly as they are in memory,
  /// plus what `meshOrigin` says that they lost since that file was read or written. What a file
  /// has already counts only as far as it would change. Where a file becomes empty the result is
  /// false.
  bool saveFile(const std::string& filePath);
  /// Why something that is no mesh may not be written under this name, as a sentence: the mesh was
  /// opened from or saved to the file that is there. Empty when it may.
  std::string lossByOverwriting(const std::string& filePath) const;
  /// Writes the feature lines of the current mesh, which must exist, as .obj, .vtk or .svg. When
  /// none were looked for, and on failure, the old file stands, a message is shown, and the result
  /// is false. When none were found the file has none.
  bool exportLines(const std::string& filePath);
  /// Finds the creases anew with the values of the "Angle" dialog. A mesh must exist.
  void detectCreases();
  /// Shows the face that the ray meets first (mode 30) and tells about it in the status bar. False
  /// when it meets none; then nothing happens.
  bool pickFace(const Ray& ray);
  /// The same for a face that is known; it must be valid.
  void pickFace(int face);
  /// A shape with what is known of where it came from.
  struct KeptShape {
    std::unique_ptr<TriangleMesh> mesh;
    MeshOrigin origin;
  };
  /// Replaces the undo copy with the geometry of the current mesh, which must exist. Called before
  /// the geometry changes, so the document counts as modified and derived data as stale from here
  /// on. Without memory for it a message is shown and the result is false: then the command must
  /// not be run. The copy before is gone in that case, so that there are never three meshes at
  /// once, unless the new one would have fitted in its place.
  bool keepUndoCopy();
  /// The same with a copy that was made before the geometry changed, for commands that may fail on
  /// the way and must not lose the undo copy then.
  void keepUndoCopy(KeptShape copy) noexcept;
  /// Called after vertices moved or faces changed: marks derived data and the histogram as stale,
  /// takes a sentence about the shape before (a picked face, say) out of the status bar, and tells
  /// there when positions are not finite. A mesh must exist.
  void geometryChanged();
  /// A sentence in the status bar when there are such, with the way back if Undo is one.
  void tellOfNonFinitePositions();
  /// Brings derived data up to date and forms the values of the field that is shown, then has every
  /// view drawn. When they show another picture than the one that the status bar has a sentence
  /// about, this sentence goes. Without memory for the values views tell so.
  void redraw();
  /// What views are to show, with the values that the last redraw has formed.
  Shown shown() const override;

 private:
  friend struct test::DocumentAccess;

  std::unique_ptr<TriangleMesh> currentMesh;
  /// The one place where the current mesh is exchanged: whatever works on it is attached anew. The
  /// caller tells the age of the histogram. Returns the mesh that was there.
  std::unique_ptr<TriangleMesh> replaceMesh(std::unique_ptr<TriangleMesh> mesh) noexcept;
  /// Shows a mesh from a file, named so, in place of the current one. It has both normals.
  void showNewMesh(std::unique_ptr<TriangleMesh> mesh, MeshOrigin origin, DisplayMode mode);
  /// Forgets the lines that the document keeps beside those of the mesh.
  void dropLines() noexcept;
  /// Notes where lines that have just been found come from.
  void haveLines(LinesFrom origin);
  /// Gives the shape of the current mesh, which may be a new one, its number.
  void numberShape();
  /// Has the histogram window tell how old its values are.
  void tellHistogramAge();
  /// Whether the name leads to the file last opened or saved, and that is not empty.
  bool holdsItsMesh(const std::string& filePath) const;
  /// Why saving under this name would lose what only the file there holds; empty when it would not.
  std::string lossBySaving(const std::string& filePath) const;
  /// How far a file of this name would lie from the positions stored, and why, as a part of a
  /// sentence; empty when it is not worth a word.
  std::string shiftBySaving(const std::string& target) const;
  bool saveNothing(const std::string& filePath);
  void noteSaved(const SaveResult& saved, const std::string& shift);
  bool hasMeshToSave();  ///< shows a message when there is none
  KeptShape geometryCopy() const;
  void recompute();
  /// Sees that what a mode shows is there before it is shown for the first time.
  void provide(Needs needs);
  void formField();
  /// Gives the histogram window a copy of the field that is shown.
  void fillHistogram();
  /// Shows a mode of the table, and the histogram of its field if it has one.
  void showMode(int number);
  void needFaceNormals();
  void smoothShape(const Chunks& explicitChunks);
  LowThresholds thresholdRidges();
  void showRidgeLines(const LowThresholds& low);
  void show(DisplayMode mode);
  /// The sentence of the status bar, in place of the one that is there.
  void tell(const std::string& sentence);
  void tellOfHiddenLines();
  void setLighting(LightingMode mode);
  void showStrokes(DisplayMode mode);

  Outside& outside;
  std::uint64_t shapes = 0;      ///< how many shapes have a number
  std::uint64_t smoothings = 0;  ///< how many smoothings of curvature values have one
  /// What the values in the histogram window are of; nothing before it has any.
  struct HistogramContents {
    FieldOrigin origin;
    bool principalCurvature;  ///< a field made from the principal curvatures
  };
  std::optional<HistogramContents> histogramContents;
  HistogramAge ageOf(const HistogramContents& contents) const;
  bool histogramIsDue = false;  ///< the next redraw gives the histogram window its values
  /// The values of the field that the last redraw showed.
  struct FormedField {
    std::optional<int> mode;  ///< that they are of; none without a field
    std::vector<double> values;
    bool outOfMemory = false;
  };
  FormedField formedField;
  bool tellsOfShape = false;  ///< the status bar has a sentence that ends with the shape
  /// The mode whose picture the sentence in the status bar is about; it ends with that picture.
  std::optional<int> toldMode;
  /// What `path` holds since it was last saved.
  struct SavedShape {
    std::uint64_t shape;     ///< its number
    double lossByRewriting;  ///< how far vertices move in the file when it is written once more
  };
  std::optional<SavedShape> savedShape;
  MeshOrigin undoOrigin;       ///< of the undo copy
  bool undoIsModified = true;  ///< what `modified` becomes when the undo copy comes back
};

}  // namespace gravlin
