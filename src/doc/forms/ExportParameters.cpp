#include "doc/forms/ExportParameters.h"

#include <array>
#include <cstddef>

namespace gravlin {

Form ExportParameters::form() {
  constexpr std::string_view formatBox = "Format";
  constexpr std::string_view fieldsBox = "Numbers of vertices (PLY only)";
  return {
      "CExportDlg",
      "Export",
      {{.name = "format",
        .value = &format,
        .group = formatBox,
        .choices = {{"By the file extension", "name"},
                    {"Stanford PLY", "ply"},
                    {"Wavefront OBJ", "obj"},
                    {"STL", "stl"},
                    {"OFF", "off"}}},
       {.name = "ascii", .label = "Text instead of binary (PLY, STL)", .value = &ascii},
       {.name = "leaveOutUnused", .label = "Leave out unused vertices", .value = &leaveOutUnused},
       {.name = "normals", .label = "Normals", .value = &normals, .group = fieldsBox},
       {.name = "curvature", .label = "Curvature", .value = &curvature, .group = fieldsBox},
       {.name = "directions",
        .label = "Principal directions",
        .value = &directions,
        .group = fieldsBox},
       {.name = "marks", .label = "Ridge and valley marks", .value = &marks, .group = fieldsBox}}};
}

std::string ExportParameters::formatExtension() const {
  constexpr std::array<const char*, 5> extensions = {"", "ply", "obj", "stl", "off"};
  return extensions[static_cast<std::size_t>(format)];
}

}  // namespace gravlin
