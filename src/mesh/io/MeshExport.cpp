#include "mesh/io/MeshExport.h"

#include <exception>
#include <new>
#include <stdexcept>

#include "mesh/io/FormatTable.h"
#include "mesh/io/MeshFile.h"
#include "mesh/PositionLoss.h"
#include "mesh/SafeFile.h"

namespace gravlin {
namespace {

/// "ply, off, stl and obj", with `before` in front of each.
std::string extensionsJoined(const char* before, const char* conjunction) {
  std::string text;
  const auto formats = standardFormats();
  for (std::size_t k = 0; k < formats.size(); ++k) {
    if (k > 0) text += k + 1 == formats.size() ? conjunction : ", ";
    text += before + std::string(formats[k].extension);
  }
  return text;
}

const StandardFormat& formatFor(const std::string& path, const ExportOptions& options) {
  const std::string& wanted = options.format.empty() ? extensionOf(path) : options.format;
  if (const StandardFormat* format = standardFormatNamed(wanted)) return *format;
  if (!options.format.empty()) {
    throw std::runtime_error("there is no format \"" + wanted +
                             "\": " + extensionsJoined("", " and ") + " are known");
  }
  throw std::runtime_error("no format belongs to the extension \"" + wanted +
                           "\". Choose a name that ends in " + extensionsJoined(".", " or "));
}

void requireRoomForFields(const StandardFormat& format, const MeshToWrite& mesh) {
  if (format.hasFields || mesh.fields.empty()) return;
  std::string names;
  for (const VertexField& field : mesh.fields) {
    names += (names.empty() ? "\"" : ", \"") + field.name + "\"";
  }
  throw std::runtime_error(std::string(format.name) + " files cannot hold " + names +
                           ": choose PLY, or no fields");
}

std::string lossOf(const StandardFormat& format, const MeshToWrite& mesh, bool ascii) {
  if (format.hasIndices) return {};
  std::string loss = "vertices are numbered anew and unused ones are left out";
  if (!ascii && !mesh.floatsSuffice()) {
    loss += "; single precision moves coordinates by up to " + lossText(mesh.lossByFloats());
  }
  return loss;
}

void write(ExportResult& result, const MeshToWrite& mesh, const ExportOptions& options) {
  const StandardFormat& format = formatFor(result.path, options);
  requireRoomForFields(format, mesh);
  const bool ascii = options.text == ExportOptions::Text::Ascii && format.writeAscii != nullptr;
  SafeFile file(result.path);
  if (file.stream() == nullptr) throw std::runtime_error(file.error());
  (ascii ? format.writeAscii : format.write)(file.stream(), mesh);
  if (!file.commit()) throw std::runtime_error(file.error());
  result.loss = lossOf(format, mesh, ascii);
}

}  // namespace

ExportResult exportMeshFile(const std::string& path, const MeshToWrite& mesh,
                            const ExportOptions& options) {
  ExportResult result;
  const bool nameless = path.empty() || path.ends_with('/');
  const bool bare = !nameless && options.format.empty() && extensionOf(path).empty();
  result.path = bare ? path + ".ply" : path;
  std::string reason;
  try {
    if (nameless) throw std::runtime_error("a file name is missing");
    write(result, mesh, options);
  } catch (const std::bad_alloc&) {
    reason = "there is not enough memory";
  } catch (const std::exception& error) {
    reason = error.what();
  }
  if (!reason.empty()) result.error = "Cannot export " + result.path + ": " + reason + ".";
  return result;
}

}  // namespace gravlin
