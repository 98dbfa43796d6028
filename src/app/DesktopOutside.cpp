#include "app/DesktopOutside.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

#include "doc/dialogs/CMessageDlg.h"
#include "doc/dialogs/ParameterDialog.h"
#include "doc/dialogs/QtText.h"
#include "doc/dialogs/WindowRoom.h"
#include "mesh/io/FormatTable.h"
#include "mesh/io/MeshFile.h"
#include "mesh/io/MeshWriter.h"
#include "numeric/PrintableText.h"
#include "view/LineSvg.h"

namespace gravlin {
namespace {

QString titleOf(FileDialog kind) {
  switch (kind) {
    case FileDialog::Open:
      return "Open";
    case FileDialog::Save:
      return "Save As";
    case FileDialog::Export:
    case FileDialog::ExportMesh:
      return "Export";
    case FileDialog::Import:
      return "Import";
  }
  return {};
}

/// The file's own name, or one like it if meshes are not written with its extension.
QString nameToSave(const QString& file) {
  if (file.isEmpty() || hasWriter(extensionOf(toPath(file)))) return file;
  return QFileInfo(file).completeBaseName() + ".ply2";
}

}  // namespace

void setFilters(QFileDialog& dialog, FileDialog kind) {
  // What is shown is "All files(*.*)"; the pattern behind it lets names without a dot through, too.
  const QString all = "All files(*.*) (*)";
  if (kind != FileDialog::Import && kind != FileDialog::ExportMesh) {
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setNameFilter(all);
    return;
  }
  QStringList filters;
  QString every;
  for (const StandardFormat& format : standardFormats()) {
    const QString pattern = "*." + toQString(format.extension);
    filters.append(toQString(format.name) + " (" + pattern + ")");
    every += every.isEmpty() ? pattern : " " + pattern;
  }
  filters.prepend("Meshes (" + every + ")");
  filters.append("All files (*)");
  dialog.setNameFilters(filters);
}

QString askForFile(Desktop& desktop, FileDialog kind, const QString& suggested) {
  const bool opens = kind == FileDialog::Open || kind == FileDialog::Import;
  QFileDialog dialog(desktop.window, titleOf(kind), desktop.folder);
  dialog.setObjectName(opens ? "openFile" : "saveFile");
  dialog.setAcceptMode(opens ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
  dialog.setFileMode(opens ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
  setFilters(dialog, kind);
  // The document appends the same ending; this makes the question about overwriting a file concern
  // the one that will be written.
  if (kind == FileDialog::Save) dialog.setDefaultSuffix("ply2");
  if (kind == FileDialog::ExportMesh) dialog.setDefaultSuffix("ply");
  if (!suggested.isEmpty()) dialog.selectFile(suggested);
  if (dialog.exec() != QDialog::Accepted) return {};
  QString chosen = dialog.selectedFiles().constFirst();
  desktop.folder = QFileInfo(chosen).absolutePath();
  return chosen;
}

DesktopOutside::DesktopOutside(Desktop& sharedDesktop)
    : desktop(sharedDesktop), progress(sharedDesktop.window), graph(sharedDesktop.window) {
}

bool DesktopOutside::showDialog(const Form& form) {
  const CommandDialog waiting(desktop.lock);
  return ParameterDialog(form, desktop.window).exec() == QDialog::Accepted;
}

std::optional<std::string> DesktopOutside::chooseFile(FileDialog kind) {
  const CommandDialog waiting(desktop.lock);
  chosenFile.clear();
  const bool opens = kind == FileDialog::Open || kind == FileDialog::Import;
  if (opens && !mayDropChanges()) return std::nullopt;
  chosenFile =
      askForFile(desktop, kind, kind == FileDialog::Save ? nameToSave(currentFile) : QString());
  if (chosenFile.isEmpty()) return std::nullopt;
  return toPath(chosenFile);
}

void DesktopOutside::showMessage(const std::string& text) {
  const CommandDialog waiting(desktop.lock);
  CMessageDlg(printable(text), desktop.window).exec();
}

bool DesktopOutside::confirm(const Question& question) {
  const CommandDialog waiting(desktop.lock);
  QMessageBox box(QMessageBox::Warning, "Gravlin", toQString(printable(question.text)),
                  QMessageBox::Cancel, desktop.window);
  box.setObjectName("question");
  box.setTextFormat(Qt::PlainText);  // names of files may hold anything
  QPushButton* goOn = box.addButton(toQString(question.goOn), QMessageBox::AcceptRole);
  goOn->setObjectName("goOn");
  box.setDefaultButton(QMessageBox::Cancel);
  box.setEscapeButton(QMessageBox::Cancel);
  box.exec();
  return box.clickedButton() == goOn;
}

StandardFileAnswer DesktopOutside::askAboutStandardFile(const StandardFileQuestion& question) {
  const CommandDialog waiting(desktop.lock);
  const QString name = toPrintable(QFileInfo(fromPath(question.path)).fileName());
  QMessageBox box(QMessageBox::Question, "Gravlin",
                  name + " is a " + toQString(question.format) + " file. Import it?",
                  QMessageBox::Cancel, desktop.window);
  box.setObjectName("standardFile");
  box.setTextFormat(Qt::PlainText);  // names of files may hold anything
  QPushButton* import = box.addButton("Import", QMessageBox::AcceptRole);
  import->setObjectName("import");
  QPushButton* open = box.addButton("Open as it is", QMessageBox::AcceptRole);
  open->setObjectName("openAsItIs");
  box.setDefaultButton(import);
  box.setEscapeButton(QMessageBox::Cancel);
  box.exec();
  if (box.clickedButton() == import) return StandardFileAnswer::Import;
  return box.clickedButton() == open ? StandardFileAnswer::OpenAsItIs : StandardFileAnswer::Cancel;
}

void DesktopOutside::showStatus(const std::string& sentence) {
  status = toQString(printable(sentence));
  desktop.statusChanged();
}

void DesktopOutside::showProgress(ProgressRange range) {
  progress.start(range);
}
void DesktopOutside::stepProgress() {
  progress.step();
}
void DesktopOutside::hideProgress() {
  progress.finish();
}

void DesktopOutside::redraw() {
  for (CGravlinView* view : views) view->drawNow();
}

void DesktopOutside::showHistogram(std::string_view field) {
  constexpr QSize leastSize = {300, 200};  // the four lines above and bars that can still be read
  graph.setField(toQString(field));
  if (!graph.testAttribute(Qt::WA_Moved)) {
    placeBeside(*desktop.window, graph, leastSize);
  }
  graph.show();
  graph.raise();
}

void DesktopOutside::setHistogramValues(const std::vector<double>& values) {
  graph.setValues(values);
}

void DesktopOutside::setLightingMode(LightingMode mode) {
  if (activeView != nullptr) activeView->state.setLightingMode(mode);
}

void DesktopOutside::setLineWidthAndPointSize(float width, float size) {
  if (activeView != nullptr) activeView->state.setLineWidthAndPointSize(width, size);
}

ViewAngles DesktopOutside::viewAngles() const {
  return activeView == nullptr ? ViewAngles{} : activeView->state.camera.angles();
}

void DesktopOutside::setViewAngles(const ViewAngles& angles) {
  if (activeView != nullptr) activeView->state.camera.setAngles(angles);
}

std::string DesktopOutside::linesAsSvg(const TriangleMesh& mesh, const LinesToDraw& drawing) const {
  if (activeView == nullptr) return {};
  const ViewSize size = {activeView->width(), activeView->height()};
  return gravlin::linesAsSvg(mesh, drawing, activeView->state.camera, size);
}

void DesktopOutside::setShownCounts(int usedVertices, int validFaces) {
  if (activeView == nullptr) return;
  activeView->state.shownVertexCount = usedVertices;
  activeView->state.shownFaceCount = validFaces;
}

}  // namespace gravlin
