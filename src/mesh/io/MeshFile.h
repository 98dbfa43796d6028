#pragma once

#include <memory>
#include <string>

#include "mesh/io/MeshStream.h"
#include "mesh/io/ReadReport.h"
#include "mesh/PositionLoss.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

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
/// and back and the box is found anew, so they may differ in their last bits afterwards; an
/// imported mesh stays as it is. On failure the file that was there stands and `mesh` is as it was.
SaveResult saveMeshFile(const std::string& path, TriangleMesh& mesh);

}  // namespace gravlin
