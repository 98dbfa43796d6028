#pragma once

#include <string_view>

#include "mesh/io/ReadReport.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

// The formats that are nothing but numbers separated by white space, see MeshFile. Each function
// takes the whole text of a file, followed by one NUL that does not belong to it, and fills the
// positions, faces and marks of an empty mesh, in the file's units. What they throw is told at
// readMesh.

ReadReport readData(std::string_view text, TriangleMesh& mesh);
ReadReport readPly(std::string_view text, TriangleMesh& mesh);
ReadReport readPly2(std::string_view text, TriangleMesh& mesh);
ReadReport readPlyR(std::string_view text, TriangleMesh& mesh);

}  // namespace gravlin
