#include "batch/BatchRun.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>

#include "batch/Program.h"

namespace gravlin::test {
namespace {

/// Text that something writes to a stream.
class CapturedStream {
 public:
  CapturedStream() : stream(open_memstream(&text, &size)) {}
  ~CapturedStream() {
    std::fclose(stream);
    std::free(text);
  }
  CapturedStream(const CapturedStream&) = delete;
  CapturedStream& operator=(const CapturedStream&) = delete;

  std::FILE* get() const { return stream; }
  std::string str() const {
    std::fflush(stream);
    return {text, size};
  }

 private:
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* stream;
};

}  // namespace

RunResult runBatchHere(const std::vector<std::string>& arguments) {
  const CapturedStream output;
  const CapturedStream errors;
  RunResult result;
  result.status = runBatch(arguments, {output.get(), errors.get()});
  result.output = output.str();
  result.errors = errors.str();
  return result;
}

RunResult runShell(const std::string& command) {
  const TemporaryFolder folder;
  const std::string errors = folder.file("errors");
  std::FILE* pipe = popen(("( " + command + "\n) 2> '" + errors + "'").c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("the shell could not be started");
  RunResult result;
  char part[4096];
  while (const std::size_t size = std::fread(part, 1, sizeof part, pipe)) {
    result.output.append(part, size);
  }
  const int status = pclose(pipe);
  if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
  result.errors = contentOf(errors);
  return result;
}

std::string writeMeshFile(const TemporaryFolder& folder, const std::string& name,
                          const TriangleMesh& mesh) {
  std::ostringstream text;
  text.precision(9);
  text << mesh.vertexCount << '\n' << mesh.faceCount << '\n';
  for (std::size_t i = 0; i < mesh.vertices.size(); ++i) {
    text << mesh.vertices[i] << (i % 3 == 2 ? '\n' : ' ');
  }
  for (std::size_t i = 0; i < mesh.faces.size(); ++i) {
    text << (i % 3 == 0 ? "3 " : "") << mesh.faces[i] << (i % 3 == 2 ? '\n' : ' ');
  }
  return folder.write(name, text.str());
}

}  // namespace gravlin::test
