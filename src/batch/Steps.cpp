#include <algorithm>
#include <charconv>

#include "batch/Dump.h"
#include "batch/Report.h"
#include "batch/Session.h"
#include "batch/Step.h"
#include "batch/ViewSteps.h"
#include "doc/CommandTable.h"

namespace gravlin {
namespace {

/// "&Open...\tCtrl+O" as people say it: "Open...".
std::string spokenText(std::string_view menuText) {
  std::string spoken(menuText.substr(0, menuText.find('\t')));
  spoken.erase(std::remove(spoken.begin(), spoken.end(), '&'), spoken.end());
  spoken.erase(spoken.find_last_not_of(' ') + 1);
  return spoken;
}

/// The items that lead to a command, "Edit > Smoothing > Shape".
std::string menuPathOf(const Command& row) {
  std::string path;
  for (const char c : row.menuPath) path += c == '/' ? std::string(" > ") : std::string(1, c);
  return path + " > " + spokenText(row.text);
}

/// A window shows the empty mesh of a file that it could make nothing of; a chain ends there, so
/// that no later step takes it for the mesh.
void endAtUnreadableFile(Session& session) {
  if (session.document.meshOrigin.extent == ReadExtent::Nothing) session.outside.failed = true;
}

Step stepOf(const Command& row) {
  Step step;
  step.name = row.step;
  step.menu = row.menuPath.substr(0, row.menuPath.find('/'));
  step.summary = menuPathOf(row);
  if (row.file) step.operands = {"FILE"};
  if (row.form != nullptr) {
    step.hasDialog = true;
    step.form = [&row](Session& session) { return row.form(session.document); };
  }
  step.run = [&row](Session& session, const StepCall& call) {
    if (row.file) session.outside.chosenFile = call.operands[0];
    if (row.form != nullptr) {
      session.outside.answerNext(row.form(session.document).name, call.settings);
    }
    (session.document.*row.handler)();
    session.outside.forgetAnswers();
    if (row.file == FileDialog::Open) endAtUnreadableFile(session);
  };
  return step;
}

Step presetStep() {
  return {.name = "preset",
          .menu = "Chain",
          .summary = "set the values that a step's dialog remembers, without running it",
          .subject = Subject::WithOptions,
          .run = [](Session& session, const StepCall& call) {
            applySettings(call.subject->form(session), call.settings);
          }};
}

Step cancelStep() {
  return {.name = "cancel",
          .menu = "Chain",
          .summary = "answer Cancel the next time that a step's dialog is shown",
          .subject = Subject::Named,
          .run = [](Session& session, const StepCall& call) {
            session.outside.cancelNext(call.subject->form(session).name);
          }};
}

std::vector<Step> makeSteps() {
  std::vector<Step> steps;
  for (const Command& row : commandTable()) {
    if (row.handler != nullptr && !row.step.empty()) steps.push_back(stepOf(row));
  }
  for (Step step : {presetStep(), cancelStep(), cameraStep(), pickStep(), renderStep(),
                    renderHistogramStep(), dumpStep(), reportStep()}) {
    steps.push_back(std::move(step));
  }
  return steps;
}

}  // namespace

std::span<const Step> allSteps() {
  static const std::vector<Step> steps = makeSteps();
  return steps;
}

bool isComboBox(const Field& field) {
  return std::holds_alternative<std::string*>(field.value) && !field.choices.empty();
}

void checkEntries(const Form& form, const StepCall& call) {
  if (call.anyText) return;
  for (const Setting& setting : call.settings) {
    const Field& field = fieldNamed(form, setting.field);
    const auto isEntry = [&](const Choice& choice) { return choice.text == setting.text; };
    if (!isComboBox(field) || std::any_of(field.choices.begin(), field.choices.end(), isEntry)) {
      continue;
    }
    std::string entries;
    for (const Choice& choice : field.choices) {
      entries += (entries.empty() ? "\"" : ", \"") + std::string(choice.text) + "\"";
    }
    throw UsageError("--" + kebabCase(setting.field) + ": there is no entry \"" + setting.text +
                     "\". Choose one of " + entries + "; " + anyTextOption +
                     " before it passes the text on as typed into the dialog.");
  }
}

void applySettings(const Form& form, std::span<const Setting> settings) {
  if (const std::optional<Refusal> refusal = storeSettings(form, settings)) {
    throw UsageError("--" + kebabCase(settings[refusal->setting].field) + ": " + refusal->sentence);
  }
}

}  // namespace gravlin
