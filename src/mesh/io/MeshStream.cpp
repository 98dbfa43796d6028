#include "mesh/io/MeshStream.h"

namespace gravlin {

std::string fileNameOf(const std::string& path) {
  return path.substr(path.find_last_of('/') + 1);  // all of it without a slash
}

std::string extensionOf(const std::string& path) {
  const std::string name = fileNameOf(path);
  const std::size_t dot = name.find_last_of('.');
  return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

}  // namespace gravlin
