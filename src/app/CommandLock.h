#pragma once

#include <QElapsedTimer>
#include <QObject>

namespace gravlin {

/// Keeps the user's input away from every window while a command runs. Commands run on the thread
/// of the windows and let these be painted now and then; a click that came through could start a
/// second command in the middle of the first. The dialogs of the command itself get their input.
class CommandLock : public QObject {
 public:
  /// A command is running, be it that it waits in a dialog of its own.
  bool isHeld() const { return held; }

  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  friend class RunningCommand;
  friend class CommandDialog;

  void close();
  void open();

  bool held = false;
  bool closed = false;  ///< input is kept away at the moment
};

/// The time in which a command runs; there is one at a time. Input that arrived in the meantime is
/// dropped at its end: it was meant for what the windows showed before.
class RunningCommand {
 public:
  explicit RunningCommand(CommandLock& heldLock);
  ~RunningCommand();
  RunningCommand(const RunningCommand&) = delete;
  RunningCommand& operator=(const RunningCommand&) = delete;

 private:
  CommandLock& lock;
  QElapsedTimer running;
};

/// The time in which a command waits in a modal dialog. Dialogs may open one another: input reaches
/// them until the first of them is closed.
class CommandDialog {
 public:
  explicit CommandDialog(CommandLock& heldLock);
  ~CommandDialog();
  CommandDialog(const CommandDialog&) = delete;
  CommandDialog& operator=(const CommandDialog&) = delete;

 private:
  CommandLock& lock;
  bool opened;  ///< this dialog let the input through, not one around it
};

}  // namespace gravlin
