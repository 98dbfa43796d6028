#pragma once

#include <functional>
#include <map>
#include <QAction>
#include <QMenuBar>

#include "doc/CommandTable.h"

namespace gravlin {

/// The menus that the command table makes. Every item is an action named "command_<id>" with the
/// table's text; one without a handler is disabled for good.
class CommandMenus {
 public:
  using Choose = std::function<void(const Command&)>;

  /// Fills `menuBar`; choosing an item calls `choose`.
  CommandMenus(QMenuBar& menuBar, const Choose& choose);

  /// A menu by the title that the table gives it ("File"); made at the right end when it is new.
  QMenu& menu(const QString& title);
  /// The action of a command; the id must be in the table.
  QAction& action(int id) { return *actions.at(id); }
  /// The same by the command's step in scripts.
  QAction& action(std::string_view step) { return action(findStep(step)->id); }
  /// Enables every item that has a handler and work if there is a document to command, and ticks
  /// what is ticked in it.
  void update(const CGravlinDoc* document);

 private:
  QMenu& submenu(std::string_view path);

  QMenuBar& bar;
  std::map<QString, QMenu*> menus;  ///< by path
  std::map<int, QAction*> actions;  ///< by command id
};

}  // namespace gravlin
