#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace gravlin {

/// One button of a radio group, or one line of a combo box.
struct Choice {
  std::string_view text;  ///< as the dialog shows it
  std::string_view word;  ///< as a script writes it; empty for the lines of a combo box
  bool enabled = true;    ///< a disabled button is shown and cannot be chosen
};

/// The values that OK accepts, both ends included.
struct Range {
  double least;
  double largest;
};

/// One member of a parameter struct as a dialog and a script see it. The kind of control follows
/// from the member's type: bool is a check box; int with choices is a radio group (the value is the
/// index of the chosen button); string with choices is a combo box whose text may also be typed;
/// int and float without choices are typed text. A number whose label is the text of a radio button
/// in the same group stands beside that button, and so do the numbers without a label that follow
/// it.
struct Field {
  std::string_view
      name;  ///< the member's name; the control's object name; in kebab case the option
  std::string_view label = {};  ///< text before the control, or of the check box
  std::variant<int*, float*, bool*, std::string*> value;  ///< the member that OK writes
  std::string_view group = {};                            ///< title of the box around it, if any
  std::string_view unit = {};                 ///< text behind the control, below a check box
  std::optional<Range> range = std::nullopt;  ///< checked on OK only
  std::vector<Choice> choices = {};
  bool enabled = true;
};

/// What a modal dialog edits: the members of one parameter struct, in the order shown. The pointers
/// in `fields` stay valid as long as the struct they were taken from stays where it is.
struct Form {
  std::string_view name;   ///< the dialog's class name, "CSmoothingDlg"
  std::string_view title;  ///< its caption, "Smoothing"
  std::vector<Field> fields;
  std::string_view okText = "OK";
  std::string_view cancelText = "CANCEL";
};

/// "iterationCount" becomes "iteration-count".
std::string kebabCase(std::string_view lowerCamelCase);

/// The value of a field as its control shows it: "1" or "0" for a check box, the index for a radio
/// group, the shortest decimal text that reads back to the same float.
std::string textOf(const Field& field);

/// Both ends of what OK accepts, as they are shown. A field without a range has that of its type.
struct RangeTexts {
  std::string least;
  std::string largest;
};

/// Of an int or float field.
RangeTexts rangeTexts(const Field& field);

/// Parses `text` as the field's control does on OK and stores it. On failure nothing is stored and
/// the result is the sentence to show: "Enter an integer.", "Enter a number.",
/// "Enter an integer between A and B.", "Enter a number between A and B." or, for a number too
/// large for a field without a range, "Enter any finite number."; an integer without one has that
/// of its type. On success it is empty. Blanks around the number are ignored; anything else behind
/// it makes the text no number, and so are "nan" and "inf". A decimal point is a point in every
/// locale. A check box takes "0" or "1", a radio group the index or the word of a button; one shown
/// disabled cannot be clicked, but a script may still name it.
std::string storeText(const Field& field, std::string_view text);

/// The new value of a field as it was typed.
struct Setting {
  std::string field;  ///< the member's name, "iterationCount"
  std::string text;   ///< as storeText takes it
};

/// The field of this name, which the form must have.
const Field& fieldNamed(const Form& form, std::string_view name);

/// Why a setting was not accepted.
struct Refusal {
  std::size_t setting;   ///< the first that was refused, as an index
  std::string sentence;  ///< of storeText
};

/// Types the settings into a form, in their order: all of them, or none when one is refused. Every
/// setting names a field of the form. Dialogs and command lines both end here.
std::optional<Refusal> storeSettings(const Form& form, std::span<const Setting> settings);

}  // namespace gravlin
