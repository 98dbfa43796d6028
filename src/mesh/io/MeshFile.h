#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "mesh/io/ReadReport.h"
#include "mesh/PositionLoss.h"
#include "mesh/TriangleMesh.h"

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

/// A file opened from disk.
struct OpenResult {
  std::unique_ptr<TriangleMesh> mesh;  ///< with topology and both normals; null on failure
  std::string error;                   ///< the sentence to show on failure, else empty
  std::string notice;                  ///< what was odd about the file, in one sentence, or empty
  ReadExtent extent = ReadExtent::Whole;
  double positionLoss = 0.0;  ///< how far positions lie from the file's, see PositionLoss.h
};

/// Opens and reads a mesh file. Changes nothing but its result.
OpenResult openMeshFile(const std::string& path);

/// A file written to disk.
struct SaveResult {
  std::string path;    ///< the file that was meant: the path given, with ".ply2" where it was added
  std::string error;   ///< the sentence to show on failure, else empty
  std::string notice;  ///< why the file does not hold the mesh, in one sentence, or empty
  NormalizingLoss loss;  ///< by bringing the mesh back from the file's units
};

/// Where a mesh goes that is to be saved under a name: without an extension it gets ".ply2".
std::string pathToSave(const std::string& path);

/// Writes `mesh` in the units of the file it came from to `pathToSave`; a name whose extension
/// has no writer becomes an empty file. Positions go to the file's units
/// and back and the box is found anew, so they may differ in their last bits afterwards. On failure
/// the file that was there stands and `mesh` is as it was.
SaveResult saveMeshFile(const std::string& path, TriangleMesh& mesh);

}  // namespace gravlin
