#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "doc/forms/Form.h"

namespace gravlin {

/// How the fields of a form are arranged in a dialog, before any widget is made.

enum class ControlKind { CheckBox, RadioGroup, ComboBox, TypedText };
ControlKind kindOf(const Field& field);

/// Fields that are shown together: those of one box, or neighbours that have none.
struct Section {
  std::string_view title;           ///< of the box; empty without one
  std::vector<std::size_t> fields;  ///< indices into Form::fields
};

/// The sections in the order of their first fields.
std::vector<Section> sectionsOf(const Form& form);

/// One button of a radio group.
struct ButtonPlace {
  std::size_t field;   ///< the radio group, an index into Form::fields
  std::size_t choice;  ///< the button

  bool operator==(const ButtonPlace&) const = default;
};

/// For every field the radio button that it stands beside, if any: a typed number whose label is
/// the text of a button in the same box, and the numbers without a label that follow it.
std::vector<std::optional<ButtonPlace>> companionsOf(const Form& form);

/// What to call a field away from its place in the dialog: its label with what stands around it
/// ("Iteration", "Animation: per ... interations"). A number without a label is counted from the
/// last one that has one ("(3) Thresholding: Histgram (2)").
std::string nameInWords(const Form& form, std::size_t index);

/// Whether the buttons of a radio group are few and short enough to stand side by side.
bool fitsOneRow(const Field& radioGroup);

}  // namespace gravlin
