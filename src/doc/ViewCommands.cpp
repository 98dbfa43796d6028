// The commands of the menus Visualization and Option that only choose what is drawn and how.

#include "doc/CGravlinDoc.h"
#include "mesh/MeshMeasures.h"

namespace gravlin {

void CGravlinDoc::show(DisplayMode mode) {
  displayMode = mode;
  redraw();
}

void CGravlinDoc::OnFlatShading() {
  if (!currentMesh) return;
  currentMesh->computeFaceNormals();
  show(FlatShading);
}

void CGravlinDoc::OnSmoothShading() {
  if (!currentMesh) return;
  if (currentMesh->vertexNormals.empty()) currentMesh->computeVertexNormals();
  show(SmoothShading);
}

void CGravlinDoc::OnWireFrame() {
  if (!currentMesh) return;
  currentMesh->computeNormals();
  show(WireFrame);
  tellOfHiddenLines();
}

/// Wire frame sets its faces back along their normals, which point at the viewer in no part of a
/// mesh that is inside out.
void CGravlinDoc::tellOfHiddenLines() {
  if (displayMode != WireFrame || !isInsideOut(*currentMesh)) return;
  tell(
      "This mesh is inside out: its normals point inwards, so the faces are set in front of their "
      "lines and hide them.");
  toldMode = WireFrame;
}

void CGravlinDoc::OnPoints() {
  if (currentMesh) show(Points);
}

void CGravlinDoc::OnNonManifoldPoints() {
  show(NonManifoldPoints);
}

void CGravlinDoc::OnEdge() {
  redraw();
}

void CGravlinDoc::OnColourLegend() {
  showsColourLegend = !showsColourLegend;
  redraw();
}

void CGravlinDoc::setLighting(LightingMode mode) {
  outside.setLightingMode(mode);
  redraw();
}

void CGravlinDoc::OnLightingRgb() {
  setLighting(LightingMode::Rgb);
}

void CGravlinDoc::OnLightingRed() {
  setLighting(LightingMode::Red);
}

void CGravlinDoc::OnLightingGreen() {
  setLighting(LightingMode::Green);
}

void CGravlinDoc::OnLightingBlue() {
  setLighting(LightingMode::Blue);
}

void CGravlinDoc::OnOptionVisualization() {
  VisualizationParameters& values = visualizationParameters;
  if (!outside.showDialog(values.form())) return;
  outside.setLineWidthAndPointSize(values.lineWidth, values.pointSize);
  redraw();
}

void CGravlinDoc::OnOptionViewDirection() {
  if (currentMesh) {
    outside.setShownCounts(currentMesh->countUsedVertices(), currentMesh->countValidFaces());
  } else {
    outside.setShownCounts(0, 0);
  }
  const ViewAngles before = outside.viewAngles();
  ViewAngleParameters& angles = viewAngleParameters;
  angles = {.rx = before.rx, .ry = before.ry, .rz = before.rz};
  if (!outside.showDialog(angles.form())) return;
  outside.setViewAngles({.rx = angles.rx, .ry = angles.ry, .rz = angles.rz});
  redraw();
}

}  // namespace gravlin
