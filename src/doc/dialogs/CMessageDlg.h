#pragma once

#include <QDialog>
#include <string>

namespace gravlin {

/// The modal dialog "Message": one read-only text of any length ("text") that can be copied, and a
/// button to close it ("ok").
class CMessageDlg : public QDialog {
 public:
  explicit CMessageDlg(const std::string& text, QWidget* parent = nullptr);
};

}  // namespace gravlin
