#include "app/OpenDocument.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>
#include <QFileInfo>
#include <QMessageBox>
#include <utility>

#include "app/CChildFrame.h"
#include "doc/dialogs/QtText.h"

namespace gravlin {
namespace {

/// Runs the command and tells what kept it from ending, if anything did. To tell of memory that is
/// missing takes none.
QString complaintOf(CGravlinDoc& document, const std::function<void(CGravlinDoc&)>& command) {
  try {
    command(document);
    return {};
  } catch (const std::bad_alloc&) {
    return QStringLiteral(
        "There is not enough memory to finish this command. What it has done so far stands, and "
        "the mesh can be saved.");
  } catch (const std::exception& error) {
    return QStringLiteral("The command has ended early: ") + error.what();
  }
}

/// Runs what the desktop does around a command. Memory may be missing there as well, even for the
/// message; no exception may reach the loop that brought the event. False when it was missing.
template <class Work>
bool runUnlessOutOfMemory(Work work) {
  try {
    work();
    return true;
  } catch (const std::bad_alloc&) {
    std::fputs("gravlin: There is not enough memory.\n", stderr);
    return false;
  }
}

}  // namespace

OpenDocument::OpenDocument(Desktop& sharedDesktop, QString titleOfNew)
    : outside(sharedDesktop),
      document(outside),
      desktop(sharedDesktop),
      newTitle(std::move(titleOfNew)) {
  outside.mayDropChanges = [this] { return mayDropChanges(); };
}

QString OpenDocument::title() const {
  return document.path.empty() ? newTitle
                               : toPrintable(QFileInfo(fromPath(document.path)).fileName());
}

void OpenDocument::updateTitles() {
  outside.setDocumentTitle(title());
  int number = 0;
  for (CChildFrame* frame : frames) {
    ++number;
    frame->setTitle(frames.size() == 1 ? title() : title() + ':' + QString::number(number));
    frame->setWindowModified(document.modified);
  }
}

void OpenDocument::addFrame(CChildFrame& frame) {
  CGravlinView& view = frame.view();
  frames.push_back(&frame);
  outside.views.push_back(&view);
  if (outside.activeView == nullptr) outside.activeView = &view;
  frame.mayClose = [this](bool asks) { return mayCloseAFrame(asks); };
  QObject::connect(&view, &CGravlinView::picked, &frame, [this, &view] {
    run([&view](CGravlinDoc& doc) { doc.pickFace(view.state.camera.pickRay); });
  });
  QObject::connect(&view, &CGravlinView::drawingFailed, &frame, [this](const QString& sentence) {
    outside.showMessage(sentence.toStdString());
  });
  updateTitles();
}

void OpenDocument::removeFrame(CChildFrame& frame) {
  std::erase(frames, &frame);
  std::erase(outside.views, &frame.view());
  if (outside.activeView == &frame.view()) {
    outside.activeView = outside.views.empty() ? nullptr : outside.views.front();
  }
  updateTitles();
}

void OpenDocument::run(const std::function<void(CGravlinDoc&)>& command) {
  if (desktop.lock.isHeld()) return;
  QString complaint;
  runUnlessOutOfMemory([&] {
    const RunningCommand running(desktop.lock);
    desktop.commandChanged();
    complaint = runOnHeldViews(command);
  });
  runUnlessOutOfMemory([this] { noteFile(); });
  runUnlessOutOfMemory([this] { updateTitles(); });
  // Menus that stayed as they are while a command runs would leave nothing to be chosen.
  const auto wakeMenus = [this] { desktop.commandChanged(); };
  if (!runUnlessOutOfMemory(wakeMenus)) runUnlessOutOfMemory(wakeMenus);
  if (complaint.isEmpty()) return;
  runUnlessOutOfMemory([&] { outside.showMessage(complaint.toStdString()); });
}

QString OpenDocument::runOnHeldViews(const std::function<void(CGravlinDoc&)>& command) {
  holdViews(true);
  QString complaint = complaintOf(document, command);
  runUnlessOutOfMemory([this] { outside.hideProgress(); });
  // What the command did before it failed is shown as it is.
  if (!complaint.isEmpty()) complaintOf(document, [](CGravlinDoc& doc) { doc.redraw(); });
  holdViews(false);
  return complaint;
}

bool OpenDocument::open(const QString& path) {
  bool opened = false;
  outside.chosenFile = path;
  run([&](CGravlinDoc& doc) { opened = doc.loadFile(toPath(path)); });
  return opened;
}

void OpenDocument::loadWith(const QString& path,
                            const std::function<void(CGravlinDoc&, const std::string&)>& load) {
  outside.chosenFile = path;
  run([&](CGravlinDoc& doc) { load(doc, toPath(path)); });
}

void OpenDocument::holdViews(bool held) {
  for (CGravlinView* view : outside.views) view->hold(held);
}

/// Tells the desktop about the file last asked for, if the document has taken it. One of which
/// nothing was read is not offered again.
void OpenDocument::noteFile() {
  if (document.path.empty()) outside.currentFile.clear();
  const QString asked = std::exchange(outside.chosenFile, QString());
  if (asked.isEmpty() || toPath(asked) != document.path) return;
  outside.currentFile = asked;
  const MeshOrigin& origin = document.meshOrigin;
  const bool unreadable = origin.extent == ReadExtent::Nothing && origin.path == document.path;
  if (!unreadable) desktop.fileUsed(asked);
}

bool OpenDocument::mayDropChanges() {
  if (!document.modified) return true;
  QMessageBox box(QMessageBox::Warning, "Gravlin", "Save changes to " + title() + "?",
                  QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, desktop.window);
  box.setObjectName("saveChanges");
  box.setDefaultButton(QMessageBox::Save);
  const int answer = box.exec();
  if (answer == QMessageBox::Save) {
    saveNow();
    return !document.modified;
  }
  return answer == QMessageBox::Discard;
}

/// With its last window the document goes.
bool OpenDocument::mayCloseAFrame(bool asks) {
  if (isBusy()) return false;
  return frames.size() != 1 || !asks || mayDropChanges();
}

/// Saves like the menu does, also when asked in the middle of a command.
void OpenDocument::saveNow() {
  if (!desktop.lock.isHeld()) return run(&CGravlinDoc::OnFileSaveAs);
  document.OnFileSaveAs();
  noteFile();
  updateTitles();
  desktop.commandChanged();
}

}  // namespace gravlin
