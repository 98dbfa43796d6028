#pragma once

#include <string>

#include "mesh/TriangleMesh.h"

namespace gravlin::bench {

/// A closed torus with bumps, around x across vertices and twice as many faces, numbered row by
/// row. Only positions (in the units of a file) and faces are set.
TriangleMesh bumpyTorus(int around, int across);

/// The surface that figures are given for: 1,000,000 vertices and 2,000,000 faces.
TriangleMesh largeSurface();

/// The surface with everything built as opening a file builds it: normalised, topology, both
/// normals.
TriangleMesh built(TriangleMesh mesh);

/// The mesh as a "ply2" file holds it, six decimals.
std::string ply2Text(const TriangleMesh& mesh);

/// The same numbers as an OFF file, which other libraries read.
std::string offText(const TriangleMesh& mesh);

/// Writes a file into the temporary folder and returns its path.
std::string writeTemporary(const std::string& name, const std::string& content);

}  // namespace gravlin::bench
