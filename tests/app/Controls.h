#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>

#include "support/Gui.h"

namespace gravlin::test {

/// What a control holds; of a radio group the number of the chosen button.
inline QString textIn(QDialog& dialog, const char* name) {
  auto* control = dialog.findChild<QWidget*>(name);
  if (control == nullptr) qFatal("no control called %s", name);
  if (const auto* edit = qobject_cast<QLineEdit*>(control)) return edit->text();
  if (const auto* list = qobject_cast<QComboBox*>(control)) return list->currentText();
  if (const auto* box = qobject_cast<QCheckBox*>(control)) return box->isChecked() ? "1" : "0";
  for (const QRadioButton* button : control->findChildren<QRadioButton*>()) {
    if (button->isChecked()) return button->objectName().section('_', -1);
  }
  return "none";
}

/// Types or clicks until the control holds the text.
inline void enter(QDialog& dialog, const char* name, const QString& text) {
  auto* control = dialog.findChild<QWidget*>(name);
  if (auto* list = qobject_cast<QComboBox*>(control)) {
    type(*list->lineEdit(), text);
  } else if (qobject_cast<QLineEdit*>(control) != nullptr) {
    type(*control, text);
  } else if (qobject_cast<QCheckBox*>(control) == nullptr) {
    click(dialog, (QByteArray(name) + '_' + text.toLatin1()).constData());
  } else if (textIn(dialog, name) != text) {
    click(dialog, name);
  }
}

}  // namespace gravlin::test
