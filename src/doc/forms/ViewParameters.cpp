#include "doc/forms/ViewParameters.h"

namespace gravlin {

Form VisualizationParameters::form() {
  return {"CVisualizationDlg",
          "Visualization",
          {{.name = "lineWidth", .label = "Line width", .value = &lineWidth, .range = {{0, 100}}},
           {.name = "pointSize", .label = "Point size", .value = &pointSize, .range = {{0, 100}}},
           {.name = "grayScale", .label = "Gray-Scale", .value = &grayScale}}};
}

Form ViewAngleParameters::form() {
  return {"CViewAngleDlg",
          "View Angle",
          {{.name = "rx", .label = "Rx", .value = &rx},
           {.name = "ry", .label = "Ry", .value = &ry},
           {.name = "rz", .label = "Rz", .value = &rz}}};
}

}  // namespace gravlin
