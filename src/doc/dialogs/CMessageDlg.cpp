#include "doc/dialogs/CMessageDlg.h"

#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "doc/dialogs/QtText.h"

namespace gravlin {

CMessageDlg::CMessageDlg(const std::string& text, QWidget* parent) : QDialog(parent) {
  setObjectName("CMessageDlg");
  setWindowTitle("Message");
  auto* shown = new QPlainTextEdit(toQString(text), this);
  shown->setObjectName("text");
  shown->setReadOnly(true);
  shown->setTabChangesFocus(true);
  auto* buttons = new QDialogButtonBox(this);
  QPushButton* ok = buttons->addButton("OK", QDialogButtonBox::AcceptRole);
  ok->setObjectName("ok");
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(shown);
  layout->addWidget(buttons);
  const int letter = fontMetrics().averageCharWidth();
  const int line = fontMetrics().lineSpacing();
  resize(64 * letter, 10 * line);
  ok->setFocus();
}

}  // namespace gravlin
