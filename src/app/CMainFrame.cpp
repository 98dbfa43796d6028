#include "app/CMainFrame.h"

#include <algorithm>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QOpenGLContext>
#include <QStatusBar>
#include <QToolBar>
#include <utility>

#include "app/Icons.h"
#include "doc/dialogs/QtText.h"
#include "doc/dialogs/WindowRoom.h"

namespace gravlin {
namespace {

// Rows of the command table between which the frame puts items of its own.
constexpr int openId = 57601;
constexpr int importId = 32821;
constexpr int saveId = 57603;

/// A path as an item of a menu, with its number as mnemonic and shortened at the left.
QString recentText(int place, const QString& path, const QFontMetrics& metrics) {
  constexpr int widest = 400;  // the widget's own pixels
  QString shown = toPrintable(path);
  if (shown.startsWith(QDir::homePath() + '/')) shown.replace(0, QDir::homePath().size(), "~");
  shown = metrics.elidedText(shown, Qt::ElideLeft, widest).replace('&', "&&");
  return QString("&%1 %2").arg(place + 1).arg(shown);
}

/// What the document said last, or what can be done with it.
QString statusOf(const OpenDocument* document) {
  if (document == nullptr) return "Choose File > New or File > Open, or drop a file on the window.";
  if (!document->outside.status.isEmpty()) return document->outside.status;
  if (!document->document.mesh()) return "Choose File > Open, or drop a file on the window.";
  return "Drag to turn, drag with the right button to zoom, double-click to pick a face.";
}

QStringList localFiles(const QMimeData& data) {
  QStringList paths;
  for (const QUrl& url : data.urls()) {
    if (url.isLocalFile()) paths.append(url.toLocalFile());
  }
  return paths;
}

}  // namespace

CMainFrame::CMainFrame(QSettings& storage)
    : settings(storage),
      recentFiles(storage),
      area(new QMdiArea(this)),
      menus(*menuBar(), [this](const Command& command) { chooseCommand(command); }) {
  setObjectName("CMainFrame");
  setWindowTitle("Gravlin");
  setAcceptDrops(true);
  setCentralWidget(area);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  area->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  connect(area, &QMdiArea::subWindowActivated, this, &CMainFrame::windowActivated);
  desktop.window = this;
  desktop.statusChanged = [this] { updateStatus(); };
  desktop.commandChanged = [this] { updateActions(); };
  desktop.fileUsed = [this](const QString& path) {
    recentFiles.add(path);
    updateRecentFiles();
  };
  buildFileMenu();
  buildWindowMenu();
  buildHelpMenu();
  buildToolbar();
  buildStatusBar();
  buildViewMenu();
  restoreLayout();
  updateRecentFiles();
  updateActions();
}

CMainFrame::~CMainFrame() {
  // The windows look at their documents to the last, so they go first, and nobody is told.
  for (CChildFrame* frame : findChildren<CChildFrame*>()) disconnect(frame, nullptr, this, nullptr);
  disconnect(area, nullptr, this, nullptr);
  delete area;
}

// --- Menus, toolbar, status bar ---

template <class Triggered>
QAction* CMainFrame::createAction(const char* name, const QString& text, Triggered triggered) {
  auto* action = new QAction(text, this);
  action->setObjectName(name);
  connect(action, &QAction::triggered, this, triggered);
  return action;
}

void CMainFrame::buildFileMenu() {
  QMenu& menu = menus.menu("File");
  QAction& open = menus.action(openId);
  QAction& save = menus.action(saveId);
  QAction* create = createAction("fileNew", "&New", [this] { newDocument(); });
  create->setShortcut(QKeySequence("Ctrl+N"));
  QAction* closeDocument = createAction("fileClose", "&Close", [this] { closeActiveDocument(); });
  closeDocument->setShortcut(QKeySequence("Ctrl+W"));
  menu.insertAction(&open, create);
  menu.insertAction(&save, closeDocument);
  menu.insertSeparator(&save);
  needRest.push_back(create);
  needDocument.push_back(closeDocument);

  menu.addSeparator();
  for (int i = 0; i < RecentFiles::mostFiles; ++i) {
    QAction* recent = createAction("", "", [this, i] {
      const QString path = recentFiles.paths()[i];  // saving on the way changes the list
      openFile(path);
    });
    recent->setObjectName(QString("recentFile_%1").arg(i + 1));
    menu.addAction(recent);
    recentActions.push_back(recent);
    needRest.push_back(recent);
  }
  menu.addSeparator();
  QAction* exit = createAction("fileExit", "E&xit", [this] { close(); });
  exit->setShortcut(QKeySequence("Ctrl+Q"));
  menu.addAction(exit);
  needRest.push_back(exit);
}

void CMainFrame::buildViewMenu() {
  QMenu& menu = menus.menu("View");
  QAction* showToolbar = toolbar->toggleViewAction();
  showToolbar->setObjectName("viewToolbar");
  showToolbar->setText("&Toolbar");
  menu.addAction(showToolbar);
  QAction* showStatusBar = createAction("viewStatusBar", "&Status Bar",
                                        [this](bool on) { statusBar()->setVisible(on); });
  showStatusBar->setCheckable(true);
  showStatusBar->setChecked(true);
  menu.addAction(showStatusBar);
}

void CMainFrame::buildWindowMenu() {
  QMenu& menu = menus.menu("Window");
  menu.addAction(createAction("windowNew", "&New Window", [this] {
    if (OpenDocument* document = activeDocument()) addWindow(*document);
  }));
  menu.addAction(createAction("windowCascade", "&Cascade", [this] { area->cascadeSubWindows(); }));
  menu.addAction(createAction("windowTile", "&Tile", [this] { area->tileSubWindows(); }));
  for (QAction* action : menu.actions()) needDocument.push_back(action);
  menu.addSeparator();
  connect(&menu, &QMenu::aboutToShow, this, &CMainFrame::listWindows);
}

void CMainFrame::buildHelpMenu() {
  QMenu& menu = menus.menu("Help");
  QAction* open = createAction("helpGuide", "&Guide", [this] { showGuide(); });
  open->setShortcut(QKeySequence("F1"));
  menu.addAction(open);
  menu.addAction(createAction("helpAbout", "&About Gravlin...", [this] { showAbout(); }));
}

void CMainFrame::buildToolbar() {
  toolbar = addToolBar("Toolbar");
  toolbar->setObjectName("toolbar");
  toolbar->setIconSize(QSize(20, 20));
  struct Button {
    QAction* action;
    Pictogram picture;
    const char* tip;
  };
  const auto add = [this](std::initializer_list<Button> buttons) {
    for (const Button& button : buttons) {
      button.action->setIcon(iconOf(button.picture));
      button.action->setIconVisibleInMenu(false);
      button.action->setToolTip(button.tip);
      toolbar->addAction(button.action);
    }
  };
  add({{findChild<QAction*>("fileNew"), Pictogram::New, "New"},
       {&menus.action(openId), Pictogram::Open, "Open"},
       {&menus.action(saveId), Pictogram::Save, "Save"}});
  toolbar->addSeparator();
  add({{&menus.action("undo"), Pictogram::Undo, "Undo"}});
  toolbar->addSeparator();
  add({{&menus.action("flat-shading"), Pictogram::Flat, "Flat Shading"},
       {&menus.action("smooth-shading"), Pictogram::Smooth, "Smooth Shading"},
       {&menus.action("wire-frame"), Pictogram::Wire, "Wire Frame"},
       {&menus.action("points"), Pictogram::Points, "Points"}});
  toolbar->addSeparator();
  add({{findChild<QAction*>("helpGuide"), Pictogram::Guide, "Guide"}});
}

void CMainFrame::buildStatusBar() {
  statusText = new QLabel(statusBar());
  statusText->setObjectName("statusText");
  statusText->setTextFormat(Qt::PlainText);
  // A long sentence is cut off rather than making the window wider.
  statusText->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  statusBar()->addWidget(statusText, 1);
}

// --- What the actions do ---

void CMainFrame::chooseCommand(const Command& command) {
  OpenDocument* document = activeDocument();
  if (document != nullptr) return document->run(command.handler);
  if (command.id != openId && command.id != importId) return;
  // Without a document the chosen file gets one of its own.
  const bool opens = command.id == openId;
  const QString path = askForFile(desktop, opens ? FileDialog::Open : FileDialog::Import);
  if (path.isEmpty()) return;
  newDocument().loadWith(path, [opens](CGravlinDoc& loading, const std::string& file) {
    if (opens) return loading.openChosenFile(file);
    loading.importFile(file, false);
  });
  updateRecentFiles();
}

void CMainFrame::closeActiveDocument() {
  OpenDocument* document = activeDocument();
  if (document == nullptr || !document->mayDropChanges()) return;
  for (CChildFrame* frame : std::vector(document->frames)) frame->closeWithoutAsking();
}

void CMainFrame::showGuide() {
  if (!guide) guide = std::make_unique<GuideWindow>();
  guide->show();
  guide->raise();
  guide->activateWindow();
}

void CMainFrame::showAbout() {
  QString text = QString("Gravlin %1\n\nA workbench for triangle meshes.").arg(GRAVLIN_VERSION);
  QMessageBox box(QMessageBox::NoIcon, "About Gravlin", text, QMessageBox::Ok, this);
  box.setObjectName("about");
  box.exec();
}

// --- Documents and their windows ---

OpenDocument& CMainFrame::newDocument() {
  ++documentsMade;
  documents.push_back(
      std::make_unique<OpenDocument>(desktop, QString("Gravl%1").arg(documentsMade)));
  addWindow(*documents.back());
  return *documents.back();
}

CChildFrame& CMainFrame::addWindow(OpenDocument& document) {
  const CChildFrame* active = activeFrame();
  const bool fillsArea = active == nullptr || active->isMaximized();
  auto* frame = new CChildFrame(document.document);
  area->addSubWindow(frame);
  document.addFrame(*frame);
  connect(frame, &CChildFrame::closing, this, &CMainFrame::removeWindow);
  connect(frame, &QObject::destroyed, this, &CMainFrame::forgetClosedDocuments);
  if (fillsArea) {
    frame->showMaximized();
  } else {
    frame->show();
  }
  area->setActiveSubWindow(frame);
  return *frame;
}

void CMainFrame::removeWindow(CChildFrame* frame) {
  if (OpenDocument* document = documentOf(frame)) document->removeFrame(*frame);
}

/// Called when a window is gone: nothing looks at the document of the last one any more.
void CMainFrame::forgetClosedDocuments() {
  std::erase_if(documents, [](const auto& document) { return document->frames.empty(); });
  updateActions();
  updateStatus();
}

OpenDocument* CMainFrame::activeDocument() {
  return documentOf(activeFrame());
}

OpenDocument* CMainFrame::documentOf(const CChildFrame* frame) {
  const auto found = std::ranges::find_if(documents, [frame](const auto& document) {
    return std::ranges::find(document->frames, frame) != document->frames.end();
  });
  return found == documents.end() ? nullptr : found->get();
}

CChildFrame* CMainFrame::activeFrame() {
  return qobject_cast<CChildFrame*>(area->currentSubWindow());
}

void CMainFrame::windowActivated(QMdiSubWindow* window) {
  auto* frame = qobject_cast<CChildFrame*>(window);
  if (OpenDocument* document = documentOf(frame)) document->outside.activeView = &frame->view();
  updateActions();
  updateStatus();
}

void CMainFrame::openFile(const QString& path) {
  if (desktop.lock.isHeld()) return;
  OpenDocument* document = activeDocument();
  if (document == nullptr) document = &newDocument();
  if (!document->mayDropChanges()) return;
  if (!document->open(path)) recentFiles.remove(path);
  updateRecentFiles();
}

void CMainFrame::openFiles(const QStringList& paths) {
  bool first = true;
  for (const QString& path : paths) {
    if (!std::exchange(first, false)) newDocument();
    openFile(path);
  }
}

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) {
  if (!localFiles(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void CMainFrame::dropEvent(QDropEvent* event) {
  const QStringList paths = localFiles(*event->mimeData());
  event->acceptProposedAction();
  // The program that the files come from waits for the end of the drop, not for their loading.
  QMetaObject::invokeMethod(
      this, [this, paths] { openFiles(paths); }, Qt::QueuedConnection);
}

void CMainFrame::closeEvent(QCloseEvent* event) {
  if (desktop.lock.isHeld()) return event->ignore();
  for (const auto& document : documents) {
    if (document->document.modified) area->setActiveSubWindow(document->frames.front());
    if (!document->mayDropChanges()) return event->ignore();
  }
  storeLayout();
  // The program ends with its last window, whatever that is.
  for (const auto& document : documents) document->outside.closeHistogram();
  if (guide) guide->close();
  event->accept();
}

// --- What follows from the state of things ---

void CMainFrame::updateActions() {
  updateModified();
  const OpenDocument* document = activeDocument();
  const bool hasDocument = document != nullptr;
  const bool rests = !desktop.lock.isHeld();
  menus.update(rests && hasDocument ? &document->document : nullptr);
  menus.action(openId).setEnabled(rests);
  menus.action(importId).setEnabled(rests);
  for (QAction* action : needDocument) action->setEnabled(rests && hasDocument);
  for (QAction* action : needRest) action->setEnabled(rests);
}

/// The area forgets the mark of a window that fills it again after another one was closed.
void CMainFrame::updateModified() {
  const OpenDocument* document = activeDocument();
  const bool hasPlace = windowTitle().contains("[*]");
  setWindowModified(hasPlace && document != nullptr && document->document.modified);
}

void CMainFrame::updateStatus() {
  statusText->setText(statusOf(activeDocument()));
}

void CMainFrame::updateRecentFiles() {
  const QStringList& paths = recentFiles.paths();
  for (int i = 0; i < RecentFiles::mostFiles; ++i) {
    QAction& action = *recentActions[static_cast<std::size_t>(i)];
    action.setVisible(i < paths.size());
    if (i >= paths.size()) continue;
    action.setText(recentText(i, paths[i], fontMetrics()));
    action.setStatusTip("Open " + paths[i]);
  }
}

/// Lists the windows at the end of the Window menu, the active one with a mark.
void CMainFrame::listWindows() {
  qDeleteAll(windowList);
  windowList.clear();
  for (QMdiSubWindow* window : area->subWindowList()) {
    auto* frame = qobject_cast<CChildFrame*>(window);
    if (frame == nullptr || frame->isHidden()) continue;
    const int number = static_cast<int>(windowList.size()) + 1;
    const QString text = QString(number < 10 ? "&%1 %2" : "%1 %2")
                             .arg(number)
                             .arg(QString(frame->title()).replace('&', "&&"));
    QAction* action = createAction("", text, [this, frame] { area->setActiveSubWindow(frame); });
    action->setObjectName(QString("window_%1").arg(number));
    action->setCheckable(true);
    action->setChecked(frame == activeFrame());
    menus.menu("Window").addAction(action);
    windowList.push_back(action);
  }
}

void CMainFrame::restoreLayout() {
  resize(sizeOnScreen(*this, {1000, 720}));
  restoreGeometry(settings.value("Window/geometry").toByteArray());
  restoreState(settings.value("Window/state").toByteArray());
  statusBar()->setVisible(settings.value("Window/statusBar", true).toBool());
  findChild<QAction*>("viewStatusBar")->setChecked(!statusBar()->isHidden());
  desktop.folder = settings.value("Window/folder").toString();
}

void CMainFrame::storeLayout() {
  settings.setValue("Window/geometry", saveGeometry());
  settings.setValue("Window/state", saveState());
  settings.setValue("Window/statusBar", !statusBar()->isHidden());
  settings.setValue("Window/folder", desktop.folder);
}

}  // namespace gravlin
