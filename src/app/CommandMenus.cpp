#include "app/CommandMenus.h"

#include "doc/dialogs/QtText.h"

namespace gravlin {
namespace {

/// The letter that opens a menu of the bar together with Alt.
const std::map<QString, QString> titlesWithMnemonic = {
    {"File", "&File"},     {"Edit", "&Edit"},
    {"View", "&View"},     {"Visualization", "V&isualization"},
    {"Option", "&Option"}, {"EXPERIMET", "E&XPERIMET"},
    {"Window", "&Window"}, {"Help", "&Help"}};

/// Shortcuts of the platform for items whose text names none.
const std::map<std::string_view, QKeySequence> standardShortcuts = {
    {"undo", QKeySequence("Ctrl+Z")}};

QKeySequence shortcutOf(const Command& command) {
  const QString text = toQString(command.text);
  const qsizetype tab = text.indexOf('\t');
  if (tab >= 0) return QKeySequence(text.mid(tab + 1));
  const auto standard = standardShortcuts.find(command.step);
  return standard == standardShortcuts.end() ? QKeySequence() : standard->second;
}

}  // namespace

CommandMenus::CommandMenus(QMenuBar& menuBar, const Choose& choose) : bar(menuBar) {
  for (const char* title : {"File", "Edit", "View"}) submenu(title);
  for (const Command& command : commandTable()) {
    QMenu& menu = submenu(command.menuPath);
    QAction* action = menu.addAction(toQString(command.text));
    action->setObjectName(QString("command_%1").arg(command.id));
    action->setShortcut(shortcutOf(command));
    action->setEnabled(command.handler != nullptr);
    action->setCheckable(command.ticked != nullptr);
    QObject::connect(action, &QAction::triggered, &bar, [&command, choose] { choose(command); });
    actions[command.id] = action;
  }
}

QMenu& CommandMenus::menu(const QString& title) {
  return submenu(title.toStdString());
}

QMenu& CommandMenus::submenu(std::string_view path) {
  const QString key = toQString(path);
  const auto found = menus.find(key);
  if (found != menus.end()) return *found->second;
  const std::size_t slash = path.rfind('/');
  QMenu* made = nullptr;
  if (slash == std::string_view::npos) {
    const auto title = titlesWithMnemonic.find(key);
    made = bar.addMenu(title == titlesWithMnemonic.end() ? key : title->second);
  } else {
    made = submenu(path.substr(0, slash)).addMenu(toPlainLabel(path.substr(slash + 1)));
  }
  made->setObjectName("menu_" + key);
  menus[key] = made;
  return *made;
}

void CommandMenus::update(const CGravlinDoc* document) {
  for (const Command& command : commandTable()) {
    QAction& item = action(command.id);
    const bool usable = document != nullptr && command.handler != nullptr;
    item.setEnabled(usable && (command.hasWork == nullptr || command.hasWork(*document)));
    if (command.ticked != nullptr) {
      item.setChecked(document != nullptr && document->*command.ticked);
    }
  }
}

}  // namespace gravlin
