#include "mesh/io/MeshImport.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <new>
#include <system_error>
#include <utility>

#include "mesh/io/CountedNoun.h"
#include "mesh/io/MappedFile.h"
#include "mesh/io/MeshFile.h"
#include "mesh/io/PlyHeader.h"

namespace gravlin {
namespace {

constexpr const char* notKnown =
    "it is neither a PLY, an OBJ, an STL nor an OFF file; File > Open reads Gravlin's own formats";

void read(const std::string& path, ImportResult& result) {
  const MappedFile file(path);
  if (file.view().empty()) throw std::runtime_error("it is empty");
  result.format = standardFormat(file.view(), extensionOf(path));
  if (result.format == nullptr) throw std::runtime_error(notKnown);
  result.mesh = std::make_unique<ImportedMesh>(result.format->import(file.view()));
}

}  // namespace

ImportResult importMeshFile(const std::string& path) {
  ImportResult result;
  std::string reason;
  try {
    read(path, result);
  } catch (const std::bad_alloc&) {
    reason = "there is not enough memory";
  } catch (const std::system_error& error) {
    reason = error.code().message();
  } catch (const std::exception& error) {
    reason = error.what();
  }
  if (!result.mesh) result.error = "Cannot import " + path + ": " + reason + ".";
  return result;
}

const StandardFormat* standardFormatOfFile(const std::string& path) {
  const StandardFormat* format = standardFormatNamed(extensionOf(path));
  if (format == nullptr || !std::filesystem::is_regular_file(path)) return nullptr;
  if (format->extension != "ply") return format;
  std::string begin(8, '\0');
  std::ifstream(path, std::ios::binary)
      .read(begin.data(), static_cast<std::streamsize>(begin.size()));
  return looksLikePly(begin) ? format : nullptr;
}

std::string warningText(const ImportWarnings& warnings) {
  std::string text;
  const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : "; ") + part; };
  const auto addCount = [&add](std::int64_t count, const Noun& noun, const char* what) {
    if (count > 0) add(counted(count, noun) + what);
  };
  addCount(warnings.polygons, {"polygon", "polygons"}, " cut into triangles");
  addCount(warnings.unusableFaces, faceNoun, " with corners that do not exist left out");
  addCount(warnings.incompleteFaces, faceNoun, " of fewer than 3 corners left out");
  addCount(warnings.bytesBehind, {"byte", "bytes"}, " at the end not read");
  if (warnings.endMissing) add("the file may be cut off, for its last word is missing");
  for (const std::string& element : warnings.skippedElements) {
    add("the elements \"" + element + "\" not read");
  }
  return text;
}

}  // namespace gravlin
