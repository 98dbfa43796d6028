#pragma once

#include <functional>
#include <QDialog>
#include <string>
#include <vector>

#include "doc/forms/Form.h"

namespace gravlin {

/// What a dialog does with the control of a field, whatever its kind.
struct FieldControl {
  std::function<std::string()> text;  ///< its state as storeText takes it
  std::function<void()> select;       ///< gives it the focus with its text selected
};

/// The modal dialog of any parameter struct, built from its Form. Fields of one group stand in one
/// box, at the place of the group's first field. Every control carries its field's name as object
/// name ("iterationCount"; the buttons of a radio group "weightShape_0", "weightShape_1", ...), the
/// dialog the form's name, its two buttons "ok" and "cancel".
///
/// Typed text is checked on OK only. While a field does not hold what it must, OK is refused: the
/// sentence of storeText is shown beside the dialog, under the name of the field (nameInWords), and
/// the field is selected. Members are written when every field is right, all of them or none.
class ParameterDialog : public QDialog {
 public:
  explicit ParameterDialog(Form form, QWidget* parent = nullptr);

  void accept() override;

 private:
  void refuse(std::size_t index, const std::string& sentence);

  Form form;
  std::vector<FieldControl> controls;  ///< one per field
};

}  // namespace gravlin
