#include "doc/forms/SmoothingParameters.h"

#include <algorithm>

namespace gravlin {
namespace {

std::vector<Choice> methodChoices() {
  std::vector<Choice> choices;
  for (const std::string_view text : smoothingMethodTexts) choices.push_back({text, {}});
  return choices;
}

}  // namespace

std::optional<SmoothingMethod> SmoothingParameters::chosenMethod() const {
  const auto found = std::find(smoothingMethodTexts.begin(), smoothingMethodTexts.end(), method);
  if (found == smoothingMethodTexts.end()) return std::nullopt;
  return static_cast<SmoothingMethod>(found - smoothingMethodTexts.begin());
}

Form SmoothingParameters::form() {
  return {"CSmoothingDlg",
          "Smoothing",
          {{.name = "method", .label = "Method", .value = &method, .choices = methodChoices()},
           {.name = "iterationCount",
            .label = "Iteration",
            .value = &iterationCount,
            .range = {{1, 10000}}},
           {.name = "stepSize", .label = "Step Size", .value = &stepSize},
           {.name = "animate", .label = "Animate flow", .value = &animate, .group = "Animation"},
           {.name = "animateEvery",
            .label = "per",
            .value = &animateEvery,
            .group = "Animation",
            .unit = "interations"},
           {.name = "preserveVolume",
            .label = "Volume prevervation by re-scaling",
            .value = &preserveVolume}}};
}

}  // namespace gravlin
