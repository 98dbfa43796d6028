#include "doc/CommandTable.h"

#include <algorithm>

namespace gravlin {
namespace {

using Doc = CGravlinDoc;

/// The form of a member of the document, for the table's last column but one.
template <auto parameters>
Form formOf(Doc& doc) {
  return (doc.*parameters).form();
}

bool canUndo(const Doc& doc) {
  return doc.undoMesh != nullptr;
}

// The texts are the program's vocabulary, odd spellings included: users, scripts and manuals know
// the items by them. A row without a handler is a command that does not exist yet.
constexpr Command commands[] = {
    {"File", "&Open...\tCtrl+O", 57601, &Doc::OnFileOpen, "open", nullptr, FileDialog::Open},
    {"File", "&Save\tCtrl+S", 57603, &Doc::OnFileSaveAs, "", nullptr, FileDialog::Save},
    {"File", "Save &As... ", 57604, &Doc::OnFileSaveAs, "save", nullptr, FileDialog::Save},
    {"File", "Import...", 32821, &Doc::OnFileImport, "import", formOf<&Doc::importParameters>,
     FileDialog::Import},
    {"File", "Export...", 32822, &Doc::OnFileExport, "export", formOf<&Doc::exportParameters>,
     FileDialog::ExportMesh},
    {"File", "Export Lines...", 32820, &Doc::OnExportLines, "export-lines", nullptr,
     FileDialog::Export},

    {"Edit", "Undo (1 history only)", 57643, &Doc::OnEditUndo, "undo", nullptr, std::nullopt,
     nullptr, canUndo},
    {"Edit/Smoothing", "Shape", 32772, &Doc::OnSmoothingShape, "smooth-shape",
     formOf<&Doc::smoothingParameters>},
    {"Edit/Smoothing", "Shape(Adaptive)", 32773, &Doc::OnSmoothingShapeAdaptive, "smooth-adaptive",
     formOf<&Doc::adaptiveSmoothingParameters>},
    {"Edit/Smoothing", "Curvature Tensor", 32791, &Doc::OnSmoothingCurvatureTensor, "smooth-tensor",
     formOf<&Doc::tensorSmoothingParameters>},
    {"Edit/Smoothing", "Noise", 32794, &Doc::OnSmoothingNoise, "noise",
     formOf<&Doc::noiseParameters>},
    {"Edit/Edge Detection", "Local Max", 32776, &Doc::OnEdgeDetectionLocalMax, "local-max",
     formOf<&Doc::ridgeParameters>},
    {"Edit/Edge Detection", "Face Angle", 32777, &Doc::OnEdgeDetectionFaceAngle, "face-angle",
     formOf<&Doc::angleParameters>},
    {"Edit", "Subdivision", 32778, &Doc::OnSubdivision, "subdivision",
     formOf<&Doc::subdivisionParameters>},
    {"Edit", "Simplification (not yet)", 32779, &Doc::OnSimplification, "simplification",
     formOf<&Doc::decimationParameters>},
    {"Edit", "Enhancement (not yet)", 32783, &Doc::OnEnhancement},
    {"Edit", "Edge Flip", 32784},

    {"Visualization", "Flat Shading", 32780, &Doc::OnFlatShading, "flat-shading"},
    {"Visualization", "Smooth Shading", 32781, &Doc::OnSmoothShading, "smooth-shading"},
    {"Visualization", "Wire Frame", 32782, &Doc::OnWireFrame, "wire-frame"},
    {"Visualization/Curvature/Direction", "max", 32787, &Doc::OnDirectionMax, "direction-max"},
    {"Visualization/Curvature/Direction", "min", 32788, &Doc::OnDirectionMin, "direction-min"},
    {"Visualization/Curvature/Curvature", "max", 32789, &Doc::OnCurvatureMax, "curvature-max"},
    {"Visualization/Curvature/Curvature", "min", 32790, &Doc::OnCurvatureMin, "curvature-min"},
    {"Visualization/Curvature/Curvature", "mean", 32792, &Doc::OnCurvatureMean, "curvature-mean"},
    {"Visualization/Curvature/Curvature", "gauss", 32793, &Doc::OnCurvatureGauss,
     "curvature-gauss"},
    {"Visualization/Curvature/Curvature", "total", 32795, &Doc::OnCurvatureTotal,
     "curvature-total"},
    {"Visualization/Curvature/Tensor", "max", 32796, &Doc::OnTensorMax, "tensor-max"},
    {"Visualization/Curvature/Tensor", "min", 32797, &Doc::OnTensorMin, "tensor-min"},
    {"Visualization/Curvature/Stroke", "max", 32805, &Doc::OnStrokeMax, "stroke-max",
     formOf<&Doc::seedParameters>},
    {"Visualization/Curvature/Stroke", "min", 32806, &Doc::OnStrokeMin, "stroke-min",
     formOf<&Doc::seedParameters>},
    {"Visualization", "Edge Curvature", 32803, &Doc::OnEdgeCurvature, "edge-curvature"},
    {"Visualization/Local Property", "Diffrences of Normals", 32798},
    {"Visualization", "Points", 32799, &Doc::OnPoints, "points"},
    {"Visualization", "Non-Manifold Points", 32800, &Doc::OnNonManifoldPoints,
     "non-manifold-points"},
    {"Visualization", "Edge (not yet)", 32801, &Doc::OnEdge},
    {"Visualization", "Silhouette", 32804, &Doc::OnSilhouette, "silhouette"},
    {"Visualization/Ligthing", "RGB", 32807, &Doc::OnLightingRgb, "lighting-rgb"},
    {"Visualization/Ligthing", "Red", 32808, &Doc::OnLightingRed, "lighting-red"},
    {"Visualization/Ligthing", "Green", 32809, &Doc::OnLightingGreen, "lighting-green"},
    {"Visualization/Ligthing", "Blue", 32810, &Doc::OnLightingBlue, "lighting-blue"},
    {"Visualization", "Colour legend", 32815, &Doc::OnColourLegend, "colour-legend", nullptr,
     std::nullopt, &Doc::showsColourLegend},

    {"Option", "Visualization", 32785, &Doc::OnOptionVisualization, "visualization",
     formOf<&Doc::visualizationParameters>},
    {"Option", "View Direction", 32786, &Doc::OnOptionViewDirection, "view-direction",
     formOf<&Doc::viewAngleParameters>},

    {"EXPERIMET", "Show Vertex Error", 32811, &Doc::OnShowVertexError, "show-vertex-error"},
    {"EXPERIMET", "Show Face Error", 32812, &Doc::OnShowFaceError, "show-face-error"},
    {"EXPERIMET", "Set Ideal Mesh", 32813},
    {"EXPERIMET", "Error (Do not select this!!)", 32814},
};

template <class Matches>
const Command* firstRow(Matches matches) {
  const Command* row = std::find_if(std::begin(commands), std::end(commands), matches);
  return row == std::end(commands) ? nullptr : row;
}

}  // namespace

std::span<const Command> commandTable() {
  return commands;
}

const Command* findStep(std::string_view step) {
  return step.empty() ? nullptr : firstRow([&](const Command& row) { return row.step == step; });
}

const Command* findCommand(int id) {
  return firstRow([&](const Command& row) { return row.id == id; });
}

}  // namespace gravlin
