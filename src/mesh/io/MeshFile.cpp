#include "mesh/io/MeshFile.h"

#include <array>
#include <cerrno>
#include <new>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <utility>
#include <vector>

#include "mesh/io/MeshReader.h"
#include "mesh/io/MeshWriter.h"
#include "mesh/SafeFile.h"

namespace gravlin {
namespace {

struct CloseStream {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

/// Opens a regular file or a pipe. A folder would only fail at the first read, and a device may
/// never end.
Stream openForReading(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) throw std::runtime_error("it is a folder");
    if (!S_ISREG(status.st_mode) && !S_ISFIFO(status.st_mode)) {
      throw std::runtime_error("it is a device");
    }
  }
  Stream stream(std::fopen(path.c_str(), "re"));
  if (!stream) throw std::system_error(errno, std::generic_category());
  return stream;
}

/// Runs `work` and returns why it failed, as the end of a sentence; nothing when it did not.
template <class Work>
std::string reasonOfFailure(Work work) {
  try {
    work();
  } catch (const std::bad_alloc&) {
    return "there is not enough memory";
  } catch (const std::system_error& error) {
    return error.code().message();
  } catch (const std::exception& error) {
    return error.what();
  }
  return {};
}

std::string sentence(const std::string& beginning, const std::string& path,
                     const std::string& reason) {
  return reason.empty() ? std::string() : beginning + path + ": " + reason + ".";
}

/// Puts a mesh back to where and how large it was, bit by bit, unless told to let it be.
class PlaceGuard {
 public:
  explicit PlaceGuard(TriangleMesh& guarded)
      : mesh(guarded),
        vertices(guarded.vertices),
        boxMax(guarded.boxMax),
        boxMin(guarded.boxMin),
        extentTolerance(guarded.extentTolerance) {}
  ~PlaceGuard() {
    if (released) return;
    mesh.vertices = std::move(vertices);
    mesh.boxMax = boxMax;
    mesh.boxMin = boxMin;
    mesh.extentTolerance = extentTolerance;
  }
  PlaceGuard(const PlaceGuard&) = delete;
  PlaceGuard& operator=(const PlaceGuard&) = delete;

  void release() { released = true; }

 private:
  TriangleMesh& mesh;
  std::vector<float> vertices;
  std::array<float, 3> boxMax;
  std::array<float, 3> boxMin;
  double extentTolerance;
  bool released = false;
};

/// What writing found.
struct Written {
  std::string oddities;  ///< as of writeMesh
  NormalizingLoss loss;
};

Written save(const std::string& path, TriangleMesh& mesh) {
  SafeFile file(path);
  if (file.stream() == nullptr) throw std::runtime_error(file.error());
  Written written;
  if (mesh.importFrame) {  // positions are brought to the file's units one by one
    written.oddities = writeMesh({file.stream(), path, extensionOf(path)}, mesh);
    if (!file.commit()) throw std::runtime_error(file.error());
    return written;
  }
  PlaceGuard guard(mesh);
  mesh.denormalize();
  written.oddities = writeMesh({file.stream(), path, extensionOf(path)}, mesh);
  written.loss = normalizeMeasuringLoss(mesh);
  if (!file.commit()) throw std::runtime_error(file.error());
  guard.release();
  return written;
}

}  // namespace

OpenResult openMeshFile(const std::string& path) {
  OpenResult result;
  auto mesh = std::make_unique<TriangleMesh>();
  ReadReport report;
  const std::string reason = reasonOfFailure([&] {
    const Stream stream = openForReading(path);
    report = readMesh({stream.get(), path, extensionOf(path)}, *mesh);
    mesh->computeNormals();
  });
  result.error = sentence("Cannot open ", path, reason);
  if (!result.error.empty()) return result;
  result.mesh = std::move(mesh);
  const bool unreadable = report.extent == ReadExtent::Nothing && report.hasReader;
  result.notice =
      sentence(unreadable ? "Nothing was read from " : "Opened ", path, report.oddities);
  result.extent = report.extent;
  result.positionLoss = report.positionLoss;
  return result;
}

std::string pathToSave(const std::string& path) {
  return extensionOf(path).empty() ? path + ".ply2" : path;
}

SaveResult saveMeshFile(const std::string& path, TriangleMesh& mesh) {
  SaveResult result;
  result.path = pathToSave(path);
  Written written;
  const std::string reason = reasonOfFailure([&] {
    if (path.empty() || path.ends_with('/')) throw std::runtime_error("a file name is missing");
    written = save(result.path, mesh);
  });
  result.error = sentence("Cannot save ", result.path, reason);
  result.notice = sentence("Saved ", result.path, written.oddities);
  result.loss = written.loss;
  return result;
}

}  // namespace gravlin
