#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "doc/CGravlinDoc.h"

namespace gravlin {

/// One menu item. Menus, shortcuts and the batch program's steps are all made from these rows.
struct Command {
  std::string_view menuPath;  ///< the menus that lead to it, "Edit/Smoothing"
  std::string_view text;  ///< the item's text with its mnemonic and shortcut, "&Open...\tCtrl+O"
  int id;                 ///< the command's number, unique
  void (CGravlinDoc::*handler)() = nullptr;  ///< null: the item is shown disabled
  std::string_view step = {};                ///< the name in a batch script; empty: none
  Form (*form)(CGravlinDoc&) = nullptr;      ///< the dialog that the handler shows first, if any
  std::optional<FileDialog> file = {};       ///< the file dialog that the handler shows, if any
  bool CGravlinDoc::*ticked = nullptr;       ///< what a tick beside the item shows, if it has one
  bool (*hasWork)(const CGravlinDoc&) = nullptr;  ///< disabled while this is false; null: never
};

/// Every menu item of a document, in menu order: the menus File, Edit, Visualization, Option and
/// EXPERIMET from left to right, each from top to bottom.
std::span<const Command> commandTable();

/// The row whose step or id matches, or null.
const Command* findStep(std::string_view step);
const Command* findCommand(int id);

}  // namespace gravlin
