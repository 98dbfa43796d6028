#pragma once

#include <cstdio>
#include <string>

namespace gravlin {

/// A mesh file as the reader and the writer see it. The extension alone decides the format, capital
/// letters counting as different. Whoever opens the stream closes it.
///
/// All formats are numbers separated by white space, V vertices and F faces:
/// - "data"  V; then x y z of each vertex. Points only.
/// - "ply2"  V; F; x y z of each vertex; a number that is ignored and three corners of each face.
/// - "ply"   as "ply2", with five numbers x z y and two that are ignored of each vertex.
/// - "plyR"  as "ply2", then the number of ridge vertices, that of valley vertices, their indices.
/// - "obj"   opens as an empty mesh.
/// Only "ply2" and "plyR" are written. See readMesh and writeMesh.
struct MeshFile {
  std::FILE* stream = nullptr;
  std::string path;
  std::string extension;  ///< what follows the last dot of the file name
};

/// What follows the last dot of the file name in `path`; empty without a dot.
std::string extensionOf(const std::string& path);

/// What follows the last slash.
std::string fileNameOf(const std::string& path);

}  // namespace gravlin
