// Random actions on the real window: menus, dialogs with any values, files, mouse, wheel, keys,
// windows opened, moved and closed. After each of them the invariants of every document hold and no
// command hangs on. With --opens it opens files one after the other in one window instead, and
// looks at the memory that this takes for good.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "app/CChildFrame.h"
#include "app/GuideWindow.h"
#include "app/Program.h"
#include "doc/CommandTable.h"
#include "endurance/Journal.h"
#include "endurance/Options.h"
#include "endurance/RandomSource.h"
#include "numeric/TextSink.h"
#include "support/DocumentAccess.h"
#include "support/DocumentInvariants.h"
#include "support/ScriptedOutside.h"
#include "view/windows/GraphWindow.h"

namespace gravlin::endurance {
namespace {

constexpr int mostWindows = 5;
constexpr int mostFaces = 1500;  ///< larger meshes only take more time

std::string textOf(const QString& text) {
  return text.toStdString();
}

/// Closes whatever asks for an answer, one way or another.
class Answerer {
 public:
  Answerer(RandomSource& source, Journal& log, test::Program& usedProgram)
      : random(source), journal(log), program(usedProgram) {
    lookLater();
  }

  int answers() const { return count; }
  /// How often each dialog came, by its object name.
  const std::map<std::string, int>& tally() const { return seen; }

 private:
  static constexpr int interval = 2;       // ms
  static constexpr int mostAttempts = 12;  ///< at one dialog, which may refuse what was typed

  /// A timer of its own each time: a dialog that opens while another one is answered is seen, too.
  void lookLater() {
    QTimer::singleShot(interval, &context, [this] { look(); });
  }

  void look() {
    lookLater();
    if (QWidget* popup = QApplication::activePopupWidget()) {
      QTest::keyClick(popup, random.oneIn(3) ? Qt::Key_Down : Qt::Key_Escape);
      return;
    }
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr || !dialog->isVisible()) return;
    attempts = dialog == last ? attempts + 1 : 0;
    last = dialog;
    if (attempts > mostAttempts) {
      journal.note("gives up " + nameOf(*dialog));
      return dialog->reject();
    }
    ++count;
    if (attempts == 0) ++seen[textOf(dialog->objectName())];
    if (auto* box = qobject_cast<QMessageBox*>(dialog)) return answer(*box);
    if (auto* files = qobject_cast<QFileDialog*>(dialog)) return answer(*files);
    fillIn(*dialog);
  }

  static std::string nameOf(const QDialog& dialog) {
    return textOf(dialog.objectName()) + " \"" + textOf(dialog.windowTitle()) + "\"";
  }

  void answer(QMessageBox& box) {
    const auto buttons = box.buttons();
    if (buttons.isEmpty()) return box.reject();
    QAbstractButton* button = buttons[random.below(static_cast<int>(buttons.size()))];
    journal.note(textOf(box.text().left(60)) + " -> " + textOf(button->text()));
    QTest::mouseClick(button, Qt::LeftButton);
  }

  void answer(QFileDialog& dialog) {
    if (random.oneIn(5)) {
      journal.note("no file");
      return dialog.reject();
    }
    const bool opens = dialog.acceptMode() == QFileDialog::AcceptOpen;
    const QString path = opens ? anyFileToOpen() : anyFileToWrite();
    journal.note((opens ? "opens " : "writes ") + textOf(path));
    test::chooseFile(dialog, path);
  }

  QString anyFileToOpen() {
    if (random.oneIn(10)) return program.file("not there.ply2");
    const MeshText mesh = anyMeshText(random);
    const std::string name = "mesh" + std::to_string(random.below(6)) + "." + mesh.extension;
    return program.file(name.c_str(), mesh.text.c_str());
  }

  QString anyFileToWrite() {
    static const std::vector<std::string> names = {"a.ply2",    "b.plyR",    "c",
                                                   "d.obj",     "e.png",     "lines.obj",
                                                   "lines.vtk", "lines.svg", "no folder/f.ply2"};
    return program.file(random.anyOf(names).c_str());
  }

  void fillIn(QDialog& dialog) {
    std::string words = nameOf(dialog);
    for (QLineEdit* edit : dialog.findChildren<QLineEdit*>()) {
      if (!edit->isEnabled() || !edit->isVisible() || random.oneIn(2)) continue;
      const std::string dialogName = textOf(dialog.objectName());
      const std::string field = textOf(edit->objectName());
      const QString text = QString::fromStdString(anyText(random, {dialogName, field}));
      test::type(*edit, text);
      words += " " + textOf(edit->objectName()) + "=" + textOf(text);
    }
    for (QComboBox* box : dialog.findChildren<QComboBox*>()) {
      if (!random.oneIn(4)) box->setCurrentIndex(random.below(std::max(1, box->count())));
      words += " " + textOf(box->currentText());
    }
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>()) {
      const bool isMark = qobject_cast<QCheckBox*>(button) != nullptr ||
                          qobject_cast<QRadioButton*>(button) != nullptr;
      if (!isMark || !button->isEnabled() || random.oneIn(2)) continue;
      button->click();
      words += " " + textOf(button->objectName());
    }
    close(dialog, words);
  }

  void close(QDialog& dialog, const std::string& words) {
    QStringList names = {"ok", "ok", "ok", "ok", "cancel"};
    const QString name = names[random.below(static_cast<int>(names.size()))];
    auto* button = dialog.findChild<QAbstractButton*>(name);
    journal.note(words + " -> " + (button != nullptr ? textOf(name) : "Escape"));
    if (button != nullptr) return QTest::mouseClick(button, Qt::LeftButton);
    dialog.reject();
  }

  RandomSource& random;
  Journal& journal;
  test::Program& program;
  QObject context;
  const QDialog* last = nullptr;
  int attempts = 0;
  int count = 0;
  std::map<std::string, int> seen;
};

/// The names of the dialogs that commands show first.
std::set<std::string> dialogsOfCommands() {
  test::ScriptedOutside outside;
  CGravlinDoc document(outside);
  std::set<std::string> names;
  for (const Command& row : commandTable()) {
    if (row.form != nullptr) names.emplace(row.form(document).name);
  }
  return names;
}

/// Somebody who does anything.
class User {
 public:
  User(const Options& chosen, Journal& log)
      : options(chosen), journal(log), random(chosen.seed), answerer(random, log, program) {}

  int run() {
    const Extent extent(options);
    // An action that finds nothing to act on is none.
    while (extent.goesOn(journal.actions())) {
      act();
      const bool isDue = journal.actions() > 5;
      if (options.plant == "crash" && isDue) std::abort();
      if (options.plant == "hang" && isDue) std::this_thread::sleep_for(std::chrono::hours(1));
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
      QCoreApplication::processEvents();
      check();
      keepSmall();
    }
    countDialogs();
    return 0;
  }

 private:
  // --- Actions ---

  void act() {
    // With nothing to look at most actions do nothing.
    const OpenDocument* shown = program.frame().activeDocument();
    const bool hasMesh = shown != nullptr && shown->document.mesh() != nullptr;
    if (!hasMesh && !random.oneIn(5)) return openFile();
    struct Kind {
      int weight;
      void (User::*act)();
    };
    static const std::vector<Kind> kinds = {
        {40, &User::chooseItem}, {14, &User::dragMouse},    {6, &User::doubleClick},
        {8, &User::turnWheel},   {8, &User::pressKey},      {4, &User::resizeFrame},
        {5, &User::moveWindow},  {5, &User::useHistogram},  {2, &User::useGuide},
        {5, &User::openFile},    {1, &User::closeMainFrame}};
    int total = 0;
    for (const Kind& kind : kinds) total += kind.weight;
    int drawn = random.below(total);
    for (const Kind& kind : kinds) {
      if ((drawn -= kind.weight) < 0) return (this->*kind.act)();
    }
  }

  static void collect(QMenu& menu, std::vector<QAction*>& items) {
    Q_EMIT menu.aboutToShow();
    for (QAction* action : menu.actions()) {
      if (action->menu() != nullptr) {
        collect(*action->menu(), items);
      } else if (action->isEnabled() && action->isVisible() && !action->isSeparator()) {
        items.push_back(action);
      }
    }
  }

  void chooseItem() {
    std::vector<QAction*> items;
    for (QAction* top : program.frame().menuBar()->actions()) {
      if (top->menu() != nullptr) collect(*top->menu(), items);
    }
    std::erase_if(items, [](QAction* item) { return item->objectName() == "fileExit"; });
    if (items.empty()) return;
    QAction* item = random.anyOf(items);
    journal.begin("chooses " + textOf(item->text()));
    item->trigger();
  }

  CGravlinView* view() {
    CChildFrame* frame = program.frame().activeFrame();
    return frame != nullptr && frame->isVisible() && !frame->isMinimized() ? &frame->view()
                                                                           : nullptr;
  }

  QPoint anyPoint(const QWidget& widget) {
    return {random.below(std::max(1, widget.width())), random.below(std::max(1, widget.height()))};
  }

  Qt::MouseButton anyButton() {
    static const std::vector<Qt::MouseButton> buttons = {Qt::LeftButton, Qt::LeftButton,
                                                         Qt::RightButton, Qt::MiddleButton};
    return random.anyOf(buttons);
  }

  void dragMouse() {
    CGravlinView* target = view();
    if (target == nullptr) return;
    const Qt::MouseButton button = anyButton();
    journal.begin("drags with button " + std::to_string(static_cast<int>(button)));
    std::vector<QPoint> places;
    const int moves = 1 + random.below(6);
    for (int k = 0; k < moves; ++k) places.push_back(anyPoint(*target));
    test::drag(*target, button, places);
  }

  void doubleClick() {
    CGravlinView* target = view();
    if (target == nullptr) return;
    const QPoint place = random.oneIn(2) ? target->rect().center() : anyPoint(*target);
    journal.begin("double click");
    QTest::mouseDClick(target, anyButton(), {}, place);
  }

  void turnWheel() {
    CGravlinView* target = view();
    if (target == nullptr) return;
    static const std::vector<int> deltas = {120, -120, 15, -15, 0, 12000, -12000, 2147483647};
    const int delta = random.anyOf(deltas);
    journal.begin("turns the wheel by " + std::to_string(delta));
    test::turnWheel(*target, delta);
  }

  void pressKey() {
    static const std::vector<Qt::Key> keys = {Qt::Key_Left,   Qt::Key_Right, Qt::Key_Up,
                                              Qt::Key_Down,   Qt::Key_Tab,   Qt::Key_Escape,
                                              Qt::Key_Return, Qt::Key_A,     Qt::Key_F6};
    static const std::vector<Qt::Key> shortcuts = {Qt::Key_O, Qt::Key_S, Qt::Key_N, Qt::Key_W};
    QWidget* target = view();
    if (target == nullptr) target = &program.frame();
    if (random.oneIn(4)) {
      const Qt::Key key = random.anyOf(shortcuts);
      journal.begin("presses Ctrl and " + std::to_string(key));
      return QTest::keyClick(target, key, Qt::ControlModifier);
    }
    const Qt::Key key = random.anyOf(keys);
    journal.begin("presses " + std::to_string(key));
    const int times = 1 + random.below(5);
    for (int k = 0; k < times; ++k) QTest::keyClick(target, key);
  }

  void resizeFrame() {
    const QSize size(60 + random.below(1100), 60 + random.below(900));
    journal.begin("makes the main window " + std::to_string(size.width()) + " x " +
                  std::to_string(size.height()));
    if (random.oneIn(4)) {
      random.oneIn(2) ? program.frame().showMaximized() : program.frame().showNormal();
    } else {
      program.frame().resize(size);
    }
  }

  std::vector<CChildFrame*> windows() {
    std::vector<CChildFrame*> found;
    for (CChildFrame* frame : program.frame().findChildren<CChildFrame*>()) {
      if (!frame->isHidden()) found.push_back(frame);
    }
    return found;
  }

  void moveWindow() {
    const std::vector<CChildFrame*> all = windows();
    if (all.empty()) return;
    CChildFrame& frame = *random.anyOf(all);
    switch (random.below(7)) {
      case 0:
        journal.begin("fills the area with a window");
        return frame.showMaximized();
      case 1:
        journal.begin("makes an icon of a window");
        return frame.showMinimized();
      case 2:
        journal.begin("makes a window normal");
        return frame.showNormal();
      case 3:
        journal.begin("rolls a window up");
        return frame.showShaded();
      case 4:
        journal.begin("closes a window");
        frame.close();
        return;
      default:
        journal.begin("moves a window");
        frame.showNormal();
        frame.setGeometry(random.below(600) - 100, random.below(500) - 100, 1 + random.below(800),
                          1 + random.below(700));
    }
  }

  void useHistogram() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      auto* graph = qobject_cast<GraphWindow*>(window);
      if (graph == nullptr || !graph->isVisible()) continue;
      journal.begin("uses the histogram");
      for (int k = 0; k < 5; ++k) QTest::mouseMove(graph, anyPoint(*graph));
      QTest::mouseClick(graph, Qt::LeftButton, {}, anyPoint(*graph));
      if (random.oneIn(2)) graph->resize(1 + random.below(900), 1 + random.below(700));
      if (random.oneIn(4)) graph->close();
      return;
    }
  }

  void useGuide() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      auto* list = window->isVisible() ? window->findChild<QListWidget*>("contents") : nullptr;
      if (list == nullptr) continue;
      journal.begin("turns a page of the guide");
      list->setCurrentRow(random.below(std::max(1, list->count())));
      if (random.oneIn(3)) window->close();
      return;
    }
  }

  void openFile() {
    const MeshText mesh = anyMeshText(random);
    const std::string name = "mesh" + std::to_string(random.below(6)) + "." + mesh.extension;
    journal.begin("drops " + name + " of " + std::to_string(mesh.text.size()) + " bytes");
    program.frame().openFile(program.file(name.c_str(), mesh.text.c_str()));
  }

  /// The program may end, and is started again with what it has remembered.
  void closeMainFrame() {
    journal.begin("closes the main window");
    if (program.frame().close()) program.start();
  }

  // --- At the end ---

  /// Says how many dialogs came. Each has come a dozen times in a long run.
  void countDialogs() {
    std::set<std::string> missing = dialogsOfCommands();
    const std::size_t all = missing.size();
    for (const auto& [name, times] : answerer.tally()) missing.erase(name);
    std::printf(
        "%d window actions with %d dialogs, %zu different ones, %zu of the %zu of commands\n",
        journal.actions(), answerer.answers(), answerer.tally().size(), all - missing.size(), all);
    std::fflush(stdout);
    if (options.plant == "dialog") missing = {"CMissingDlg"};
    const bool isLong = journal.actions() >= 5000 || options.plant == "dialog";
    if (isLong && !missing.empty()) journal.fail("the dialog " + *missing.begin() + " never came");
  }

  // --- In between ---

  void check() {
    if (QApplication::activeModalWidget() != nullptr) journal.fail("a dialog stays open");
    for (CChildFrame* frame : program.frame().findChildren<CChildFrame*>()) {
      if (frame->isHidden()) continue;
      OpenDocument& opened = *program.frame().documentOf(frame);
      if (opened.isBusy()) journal.fail("a command does not end");
      if (options.plant == "damage" && opened.document.mesh()) {
        test::meshOf(opened.document).faces.push_back(0);
      }
      for (const std::string& words : test::brokenInvariants(opened.document)) {
        journal.fail(words);
      }
    }
  }

  /// Large meshes and many windows would only cost time.
  void keepSmall() {
    std::vector<CChildFrame*> all = windows();
    while (static_cast<int>(all.size()) > mostWindows) {
      journal.note("one window less");
      all.back()->closeWithoutAsking();
      all.pop_back();
    }
    for (CChildFrame* frame : all) {
      OpenDocument& opened = *program.frame().documentOf(frame);
      CGravlinDoc& document = opened.document;
      if (!document.mesh() || document.mesh()->faceCount <= mostFaces) continue;
      journal.note("a small mesh again");
      document.modified = false;
      opened.open(program.file("small.ply2", test::tetrahedronText));
    }
    if (all.empty()) program.frame().newDocument();
  }

  const Options& options;
  Journal& journal;
  RandomSource random;
  test::Program program;
  Answerer answerer;
};

// --- Opening again and again ---

/// What the process holds, in MB.
double residentMemory() {
  long total = 0;
  long resident = 0;
  std::FILE* file = std::fopen("/proc/self/statm", "re");
  if (file == nullptr) return 0.0;
  const int found = std::fscanf(file, "%ld %ld", &total, &resident);
  std::fclose(file);
  constexpr double page = 4096.0 / 1048576.0;
  return found == 2 ? page * static_cast<double>(resident) : 0.0;
}

int openAgainAndAgain(const Options& options, Journal& journal) {
  const int settled = std::min(500, options.opens / 2);
  test::Program program;
  const QStringList files = {
      program.file("a.ply2", test::tetrahedronText), program.file("b.ply2", test::squareText),
      GRAVLIN_SOURCE_DIR "/examples/gourd.ply2", GRAVLIN_SOURCE_DIR "/examples/relief.ply2"};
  std::vector<int> lost;
  double before = residentMemory();
  for (int k = 0; k < options.opens; ++k) {
    const QString& path = files[k % files.size()];
    journal.begin("opens " + textOf(path));
    program.frame().openFile(path);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    if (program.document().path != textOf(path)) journal.fail("a file was not opened");
    if (options.plant == "growth") lost.resize(lost.size() + 1000000, 1);
    if (k + 1 == settled) before = residentMemory();
  }
  const double growth = residentMemory() - before;
  std::printf("%d opens in one window, growth from number %d on %.1f MB\n", options.opens, settled,
              growth);
  std::fflush(stdout);
  if (growth > options.mostGrowth) journal.fail("memory grows by more than it may");
  return 0;
}

int run(const Options& options) {
  const ScopedTextSink quiet(quietTextSink());
  Journal journal(options.journal("endurance_window"));
  if (options.opens > 0) return openAgainAndAgain(options, journal);
  return User(options, journal).run();
}

}  // namespace
}  // namespace gravlin::endurance

int main(int argc, char** argv) {
  const gravlin::endurance::Options options = gravlin::endurance::readOptions(argc, argv);
  gravlin::CGravlinApp::prepare();
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  const int status = gravlin::endurance::run(options);
  gravlin::test::keepLibraries();
  return status;
}
