#include "doc/forms/RidgeParameters.h"

namespace gravlin {
namespace {

constexpr std::string_view preSmoothingBox = "(1) Pre-Smoothing";
constexpr std::string_view tensorBox = "(2) Curvature Tensor";
constexpr std::string_view thresholdBox = "(3) Thresholding";
constexpr std::string_view connectBox = "(4) Connectting";
constexpr std::string_view visualizationBox = "(5) Visualization";
constexpr std::string_view edgeSmoothingBox = "(6) Ridge Edge Smoothing";

}  // namespace

Form RidgeParameters::form() {
  return {"CRidgeDlg",
          "Ridge Dialog",
          {{.name = "preSmoothing",
            .value = &preSmoothing,
            .group = preSmoothingBox,
            .choices = {{"None", "none"}, {"Common", "common"}, {"Adaptive", "adaptive"}}},
           {.name = "smoothTensor",
            .label = "(2) Curvature Tensor",
            .value = &smoothTensor,
            .group = tensorBox,
            .unit = "Smoothing"},
           {.name = "thresholdMode",
            .value = &thresholdMode,
            .group = thresholdBox,
            .choices = {{"None", "none"}, {"Histgram", "histogram"}, {"Constant", "constant"}}},
           {.name = "histogramUpper",
            .label = "Histgram",
            .value = &histogramUpper,
            .group = thresholdBox,
            .range = {{0.0, 1.0}}},
           {.name = "histogramLower",
            .value = &histogramLower,
            .group = thresholdBox,
            .range = {{0.0, 1.0}}},
           {.name = "constantThreshold",
            .label = "Constant",
            .value = &constantThreshold,
            .group = thresholdBox},
           {.name = "extractOn",
            .value = &extractOn,
            .group = thresholdBox,
            .choices = {{"Vertex", "vertex"}, {"Edge", "edge"}, {"Face", "face", false}}},
           {.name = "absoluteComparison",
            .label = "Absolute Value Comparison",
            .value = &absoluteComparison,
            .group = thresholdBox},
           {.name = "connect", .label = "(4) Connectting", .value = &connect, .group = connectBox},
           {.name = "connectThreshold",
            .label = "Threshold",
            .value = &connectThreshold,
            .group = connectBox},
           {.name = "showRidgeDirection",
            .label = "Ridge direction",
            .value = &showRidgeDirection,
            .group = visualizationBox},
           {.name = "extraction",
            .label = "Extraction",
            .value = &extraction,
            .group = visualizationBox,
            .enabled = false},
           {.name = "smoothRidgeEdges",
            .label = "(6) Ridge Edge Smoothing",
            .value = &smoothRidgeEdges,
            .group = edgeSmoothingBox},
           {.name = "ridgeSmoothIterations",
            .label = "Iteration",
            .value = &ridgeSmoothIterations,
            .group = edgeSmoothingBox}}};
}

}  // namespace gravlin
