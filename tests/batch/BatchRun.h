#pragma once

#include <string>
#include <vector>

#include "mesh/TriangleMesh.h"
#include "support/TemporaryFolder.h"

namespace gravlin::test {

/// What a program left behind.
struct RunResult {
  int status = -1;  ///< exit status; -1 when it ended by a signal
  std::string output;
  std::string errors;
};

/// Runs the batch program inside this process, so that sanitizers and debuggers see it.
RunResult runBatchHere(const std::vector<std::string>& arguments);

/// Runs a command line through the shell.
RunResult runShell(const std::string& command);

/// Writes a mesh as "ply2" text, also faces and coordinates that the program would not write, and
/// returns its path.
std::string writeMeshFile(const TemporaryFolder& folder, const std::string& name,
                          const TriangleMesh& mesh);

}  // namespace gravlin::test
