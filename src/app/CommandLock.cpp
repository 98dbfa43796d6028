#include "app/CommandLock.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>

namespace gravlin {

bool CommandLock::eventFilter(QObject* /*receiver*/, QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::NativeGesture:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
      return true;
    default:
      return false;
  }
}

void CommandLock::close() {
  closed = true;
  QCoreApplication::instance()->installEventFilter(this);
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

void CommandLock::open() {
  closed = false;
  QGuiApplication::restoreOverrideCursor();
  QCoreApplication::instance()->removeEventFilter(this);
}

RunningCommand::RunningCommand(CommandLock& heldLock) : lock(heldLock) {
  lock.held = true;
  lock.close();
  running.start();
}

RunningCommand::~RunningCommand() {
  // What arrives within a blink of the command's start cannot be an answer to anything newer.
  constexpr qint64 blink = 200;  // ms
  if (running.hasExpired(blink)) QCoreApplication::processEvents();
  lock.open();
  lock.held = false;
}

CommandDialog::CommandDialog(CommandLock& heldLock) : lock(heldLock), opened(heldLock.closed) {
  if (opened) lock.open();
}

CommandDialog::~CommandDialog() {
  if (opened) lock.close();
}

}  // namespace gravlin
