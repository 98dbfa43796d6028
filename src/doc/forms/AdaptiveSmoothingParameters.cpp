#include "doc/forms/AdaptiveSmoothingParameters.h"

namespace gravlin {
namespace {

constexpr std::string_view averagingGroup = "Face Normal Averaging";
constexpr std::string_view integrationGroup = "Face Normal Integration";
constexpr std::string_view differenceGroup = "Difference of normals";

}  // namespace

Form AdaptiveSmoothingParameters::form() {
  return {"CAdaptiveSmoothingDlg",
          "Adaptive Smoothing",
          {{.name = "outerIterations", .label = "Outer Iteration", .value = &outerIterations},
           {.name = "threshold", .label = "Threshold", .value = &threshold},
           {.name = "meetAtVertex",
            .label = "Meet at vertex effect[0:1]",
            .value = &meetAtVertex,
            .range = {{0, 1}}},
           {.name = "animate", .label = "Animate flow", .value = &animate},
           {.name = "animateEvery", .label = "per", .value = &animateEvery, .unit = "interations"},
           {.name = "integrationError",
            .label = "",
            .value = &integrationError,
            .group = integrationGroup,
            .choices = {{"Distance error", "distance"}, {"Derivative error", "derivative"}}},
           {.name = "integrationIterations",
            .label = "Inner iteration",
            .value = &integrationIterations,
            .group = integrationGroup},
           {.name = "integrationStep",
            .label = "Step size",
            .value = &integrationStep,
            .group = integrationGroup,
            .range = {{0, 1}}},
           {.name = "derivativeVariant",
            .label = "L~2*",
            .value = &derivativeVariant,
            .group = integrationGroup},
           {.name = "averagingIterations",
            .label = "Inner iteration",
            .value = &averagingIterations,
            .group = averagingGroup},
           {.name = "weightShape",
            .label = "",
            .value = &weightShape,
            .group = averagingGroup,
            .choices = {{"Similar func.", "similar"}, {"Exp. func.", "exp"}}},
           {.name = "medianWeighted",
            .label = "Weighted",
            .value = &medianWeighted,
            .group = averagingGroup},
           {.name = "averagingKind",
            .label = "",
            .value = &averagingKind,
            .group = averagingGroup,
            .choices = {{"Weight function", "weight"}, {"Median", "median"}}},
           {.name = "normalDifference",
            .label = "",
            .value = &normalDifference,
            .group = differenceGroup,
            .choices = {{"Curvature", "curvature"}, {"Angle", "angle"}}}}};
}

AdaptiveSmoothingOptions AdaptiveSmoothingParameters::options() const {
  return {.threshold = threshold,
          .meetAtVertex = meetAtVertex,
          .integrationError = static_cast<IntegrationError>(integrationError),
          .integrationIterations = integrationIterations,
          .integrationStep = integrationStep,
          .averagingIterations = averagingIterations,
          .weightShape = static_cast<WeightShape>(weightShape),
          .derivativeVariant = derivativeVariant,
          .medianWeighted = medianWeighted,
          .normalDifference = static_cast<NormalDifference>(normalDifference)};
}

}  // namespace gravlin
