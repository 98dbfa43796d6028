#include "doc/dialogs/ParameterDialog.h"

#include <algorithm>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <utility>

#include "doc/dialogs/FormLayout.h"
#include "doc/dialogs/QtText.h"
#include "doc/dialogs/WindowRoom.h"

namespace gravlin {
namespace {

// The columns of a section; the last one takes up what is left.
enum Column : int { LabelColumn, ControlColumn, RestColumn, ColumnCount };

/// Makes the widgets of a form inside a dialog.
class FormBuilder {
 public:
  FormBuilder(const Form& shownForm, QDialog& parent)
      : form(shownForm),
        dialog(parent),
        companions(companionsOf(shownForm)),
        controls(shownForm.fields.size()) {}

  std::vector<FieldControl> build();

 private:
  QLayout* createColumns();
  QWidget* createSection(const Section& section);
  QDialogButtonBox* createButtons();
  void addField(QGridLayout& grid, std::size_t index);
  void addCheckBox(QGridLayout& grid, std::size_t index);
  void addRadioGroup(QGridLayout& grid, std::size_t index);
  QRadioButton* createRadioButton(const Field& field, std::size_t choice, QWidget* holder);
  bool addCompanions(QHBoxLayout& row, const ButtonPlace& button);
  void addComboBox(QGridLayout& grid, std::size_t index);
  void addTypedText(QGridLayout& grid, std::size_t index);
  QLineEdit* createEdit(std::size_t index);
  void addRow(QGridLayout& grid, const Field& field, QWidget* control);
  QLabel* createLabel(std::string_view text);
  void identify(QWidget& control, const Field& field);

  const Form& form;
  QDialog& dialog;
  const std::vector<std::optional<ButtonPlace>> companions;
  std::vector<FieldControl> controls;  ///< one per field
  std::vector<QWidget*> tabOrder;      ///< in the order shown
};

std::vector<FieldControl> FormBuilder::build() {
  auto* layout = new QVBoxLayout(&dialog);
  layout->addStrut(widthOfTitle(dialog));
  layout->addLayout(createColumns());
  layout->addWidget(createButtons());
  layout->setSizeConstraint(QLayout::SetFixedSize);
  for (std::size_t i = 1; i < tabOrder.size(); ++i) {
    QWidget::setTabOrder(tabOrder[i - 1], tabOrder[i]);
  }
  tabOrder.front()->setFocus();
  return std::move(controls);
}

/// One column, or two for what would be a tall pile of boxes.
QLayout* FormBuilder::createColumns() {
  constexpr std::size_t mostInOneColumn = 4;
  const std::vector<Section> sections = sectionsOf(form);
  auto* columns = new QHBoxLayout;
  QVBoxLayout* column = nullptr;
  std::size_t shown = 0;
  for (const Section& section : sections) {
    const bool halfWay = sections.size() > mostInOneColumn && columns->count() == 1 &&
                         2 * shown >= form.fields.size();
    if (column == nullptr || halfWay) {
      column = new QVBoxLayout;
      columns->addLayout(column);
      columns->setAlignment(column, Qt::AlignTop);
    }
    column->addWidget(createSection(section));
    shown += section.fields.size();
  }
  return columns;
}

QWidget* FormBuilder::createSection(const Section& section) {
  const bool firstSaysTitle = form.fields[section.fields.front()].label == section.title;
  QWidget* box = nullptr;
  if (section.title.empty()) {
    box = new QWidget(&dialog);
  } else {
    box = new QGroupBox(firstSaysTitle ? QString() : toPlainLabel(section.title), &dialog);
  }
  auto* grid = new QGridLayout(box);
  if (section.title.empty()) grid->setContentsMargins(0, 0, 0, 0);
  grid->setColumnStretch(RestColumn, 1);
  for (const std::size_t i : section.fields) {
    if (!companions[i]) addField(*grid, i);
  }
  return box;
}

void FormBuilder::addField(QGridLayout& grid, std::size_t index) {
  switch (kindOf(form.fields[index])) {
    case ControlKind::CheckBox:
      return addCheckBox(grid, index);
    case ControlKind::RadioGroup:
      return addRadioGroup(grid, index);
    case ControlKind::ComboBox:
      return addComboBox(grid, index);
    case ControlKind::TypedText:
      return addTypedText(grid, index);
  }
}

QDialogButtonBox* FormBuilder::createButtons() {
  auto* buttons = new QDialogButtonBox(&dialog);
  QPushButton* ok = buttons->addButton(toPlainLabel(form.okText), QDialogButtonBox::AcceptRole);
  QPushButton* cancel =
      buttons->addButton(toPlainLabel(form.cancelText), QDialogButtonBox::RejectRole);
  ok->setObjectName("ok");
  ok->setDefault(true);
  cancel->setObjectName("cancel");
  tabOrder.push_back(ok);
  tabOrder.push_back(cancel);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  return buttons;
}

void FormBuilder::addCheckBox(QGridLayout& grid, std::size_t index) {
  const Field& field = form.fields[index];
  auto* box = new QCheckBox(toPlainLabel(field.label), grid.parentWidget());
  box->setChecked(textOf(field) == "1");
  identify(*box, field);
  grid.addWidget(box, grid.rowCount(), LabelColumn, 1, ColumnCount);
  if (!field.unit.empty()) {  // a caption below the box
    QLabel* caption = createLabel(field.unit);
    // Under the text of the box, which it goes on with.
    QStyleOptionButton option;
    option.initFrom(box);
    caption->setIndent(
        box->style()->subElementRect(QStyle::SE_CheckBoxContents, &option, box).left());
    grid.addWidget(caption, grid.rowCount(), LabelColumn, 1, ColumnCount);
  }
  controls[index] = {[box] { return std::string(box->isChecked() ? "1" : "0"); },
                     [box] { box->setFocus(); }};
}

void FormBuilder::addRadioGroup(QGridLayout& grid, std::size_t index) {
  const Field& field = form.fields[index];
  auto* holder = new QWidget(grid.parentWidget());
  holder->setObjectName(toQString(field.name));
  holder->setEnabled(field.enabled);
  auto* group = new QButtonGroup(holder);
  std::vector<QHBoxLayout*> rows;
  bool oneRow = fitsOneRow(field);
  for (std::size_t i = 0; i < field.choices.size(); ++i) {
    auto* button = createRadioButton(field, i, holder);
    group->addButton(button, static_cast<int>(i));
    rows.push_back(new QHBoxLayout);
    rows.back()->addWidget(button);
    if (addCompanions(*rows.back(), {index, i})) oneRow = false;
    rows.back()->addStretch();
  }
  auto* layout = new QBoxLayout(oneRow ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, holder);
  layout->setContentsMargins(0, 0, 0, 0);
  for (QHBoxLayout* row : rows) layout->addLayout(row);
  if (oneRow) layout->addStretch();
  addRow(grid, field, holder);
  controls[index] = {[group] { return std::to_string(group->checkedId()); },
                     [group] { group->buttons().front()->setFocus(); }};
}

QRadioButton* FormBuilder::createRadioButton(const Field& field, std::size_t choice,
                                             QWidget* holder) {
  auto* button = new QRadioButton(toPlainLabel(field.choices[choice].text), holder);
  button->setObjectName(toQString(field.name) + '_' + QString::number(choice));
  button->setEnabled(field.choices[choice].enabled);
  button->setChecked(textOf(field) == std::to_string(choice));
  // Tab goes to the chosen button; the arrow keys lead to the others.
  button->setFocusPolicy(button->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
  tabOrder.push_back(button);
  return button;
}

/// Puts the numbers that stand beside a button behind it. False when there are none.
bool FormBuilder::addCompanions(QHBoxLayout& row, const ButtonPlace& button) {
  bool any = false;
  for (std::size_t i = 0; i < form.fields.size(); ++i) {
    if (!companions[i] || *companions[i] != button) continue;
    row.addWidget(createEdit(i));
    if (!form.fields[i].unit.empty()) row.addWidget(createLabel(form.fields[i].unit));
    any = true;
  }
  return any;
}

void FormBuilder::addComboBox(QGridLayout& grid, std::size_t index) {
  const Field& field = form.fields[index];
  auto* box = new QComboBox(grid.parentWidget());
  box->setEditable(true);
  box->setInsertPolicy(QComboBox::NoInsert);
  // The text counts exactly as typed: nothing completes or corrects it.
  box->setCompleter(nullptr);
  box->setMaxVisibleItems(static_cast<int>(field.choices.size()));
  for (const Choice& choice : field.choices) box->addItem(toQString(choice.text));
  box->setCurrentText(toQString(textOf(field)));
  box->lineEdit()->setCursorPosition(0);
  identify(*box, field);
  addRow(grid, field, box);
  controls[index] = {[box] { return box->currentText().toStdString(); },
                     [box] {
                       box->setFocus();
                       box->lineEdit()->selectAll();
                     }};
}

void FormBuilder::addTypedText(QGridLayout& grid, std::size_t index) {
  const Field& field = form.fields[index];
  if (field.unit.empty()) return addRow(grid, field, createEdit(index));
  // Label, number and unit read like a sentence, which columns would tear apart.
  auto* row = new QHBoxLayout;
  if (!field.label.empty()) row->addWidget(createLabel(field.label));
  row->addWidget(createEdit(index));
  row->addWidget(createLabel(field.unit));
  row->addStretch();
  grid.addLayout(row, grid.rowCount(), LabelColumn, 1, ColumnCount);
}

QLineEdit* FormBuilder::createEdit(std::size_t index) {
  constexpr int lettersShown = 12;
  const Field& field = form.fields[index];
  auto* edit = new QLineEdit(toQString(textOf(field)), &dialog);
  edit->setFixedWidth(edit->fontMetrics().averageCharWidth() * lettersShown);
  identify(*edit, field);
  controls[index] = {[edit] { return edit->text().toStdString(); },
                     [edit] {
                       edit->setFocus();
                       edit->selectAll();
                     }};
  return edit;
}

/// Puts the control behind its label, or at the edge without one.
void FormBuilder::addRow(QGridLayout& grid, const Field& field, QWidget* control) {
  const int row = grid.rowCount();
  const Column column = field.label.empty() ? LabelColumn : ControlColumn;
  if (!field.label.empty()) {
    QLabel* label = createLabel(field.label);
    label->setBuddy(control);
    grid.addWidget(label, row, LabelColumn);
  }
  const bool isNumber = kindOf(field) == ControlKind::TypedText;
  grid.addWidget(control, row, column, 1, isNumber ? 1 : ColumnCount - column);
}

QLabel* FormBuilder::createLabel(std::string_view text) {
  auto* label = new QLabel(toPlainLabel(text), &dialog);
  label->setTextFormat(Qt::PlainText);
  return label;
}

void FormBuilder::identify(QWidget& control, const Field& field) {
  control.setObjectName(toQString(field.name));
  control.setAccessibleName(toQString(field.label));
  control.setEnabled(field.enabled);
  tabOrder.push_back(&control);
}

}  // namespace

ParameterDialog::ParameterDialog(Form shownForm, QWidget* parent)
    : QDialog(parent), form(std::move(shownForm)) {
  setObjectName(toQString(form.name));
  setWindowTitle(toQString(form.title));
  controls = FormBuilder(form, *this).build();
}

void ParameterDialog::accept() {
  std::vector<std::size_t> indices;  // of the fields that can be changed
  std::vector<Setting> settings;
  for (std::size_t i = 0; i < form.fields.size(); ++i) {
    if (!form.fields[i].enabled) continue;
    indices.push_back(i);
    settings.push_back({std::string(form.fields[i].name), controls[i].text()});
  }
  if (const std::optional<Refusal> refusal = storeSettings(form, settings)) {
    return refuse(indices[refusal->setting], refusal->sentence);
  }
  QDialog::accept();
}

void ParameterDialog::refuse(std::size_t index, const std::string& sentence) {
  QMessageBox box(QMessageBox::Warning, toQString(nameInWords(form, index)), toQString(sentence),
                  QMessageBox::Ok, this);
  box.setObjectName("refusal");
  makeRoomForTitle(box);
  // The sentence does not name the field, so that stays in sight with its text marked.
  placeBeside(*this, box);
  controls[index].select();
  box.exec();
  controls[index].select();
}

}  // namespace gravlin
