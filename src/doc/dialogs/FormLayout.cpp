#include "doc/dialogs/FormLayout.h"

#include <algorithm>

namespace gravlin {
namespace {

/// The button of a radio group in the same box whose text is the field's label.
std::optional<ButtonPlace> buttonLabelledLike(const Form& form, const Field& field) {
  for (std::size_t i = 0; i < form.fields.size(); ++i) {
    const Field& other = form.fields[i];
    if (kindOf(other) != ControlKind::RadioGroup || other.group != field.group) continue;
    for (std::size_t choice = 0; choice < other.choices.size(); ++choice) {
      if (other.choices[choice].text == field.label) return ButtonPlace{i, choice};
    }
  }
  return std::nullopt;
}

}  // namespace

ControlKind kindOf(const Field& field) {
  if (std::holds_alternative<bool*>(field.value)) return ControlKind::CheckBox;
  if (field.choices.empty()) return ControlKind::TypedText;
  return std::holds_alternative<int*>(field.value) ? ControlKind::RadioGroup
                                                   : ControlKind::ComboBox;
}

std::vector<Section> sectionsOf(const Form& form) {
  std::vector<Section> sections;
  for (std::size_t i = 0; i < form.fields.size(); ++i) {
    const std::string_view title = form.fields[i].group;
    auto section = std::find_if(sections.begin(), sections.end(),
                                [&](const Section& s) { return s.title == title; });
    if (title.empty()) {
      // Fields without a box stay between the boxes that they were declared between.
      const bool goesOn = !sections.empty() && sections.back().title.empty();
      section = goesOn ? sections.end() - 1 : sections.end();
    }
    if (section == sections.end()) section = sections.insert(section, {title, {}});
    section->fields.push_back(i);
  }
  return sections;
}

std::vector<std::optional<ButtonPlace>> companionsOf(const Form& form) {
  std::vector<std::optional<ButtonPlace>> places(form.fields.size());
  for (std::size_t i = 0; i < form.fields.size(); ++i) {
    const Field& field = form.fields[i];
    if (kindOf(field) != ControlKind::TypedText) continue;
    if (!field.label.empty()) {
      places[i] = buttonLabelledLike(form, field);
    } else if (i > 0 && form.fields[i - 1].group == field.group) {
      places[i] = places[i - 1];
    }
  }
  return places;
}

std::string nameInWords(const Form& form, std::size_t index) {
  const Field& field = form.fields[index];
  std::size_t labelled = index;
  while (labelled > 0 && form.fields[labelled].label.empty() &&
         form.fields[labelled - 1].group == field.group) {
    --labelled;
  }
  std::string name(form.fields[labelled].label);
  if (name.empty()) return std::string(field.group.empty() ? form.title : field.group);
  if (labelled != index) name += " (" + std::to_string(index - labelled + 1) + ')';
  if (!field.unit.empty()) name += " ... " + std::string(field.unit);
  if (!field.group.empty() && field.group != name) name = std::string(field.group) + ": " + name;
  return name;
}

bool fitsOneRow(const Field& radioGroup) {
  constexpr std::size_t lettersInARow = 40;
  constexpr std::size_t lettersOfAButton = 4;
  std::size_t letters = 0;
  for (const Choice& choice : radioGroup.choices) letters += choice.text.size() + lettersOfAButton;
  return letters <= lettersInARow;
}

}  // namespace gravlin
