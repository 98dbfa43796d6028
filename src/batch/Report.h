#pragma once

#include <string>

#include "batch/Step.h"
#include "features/LineExport.h"
#include "mesh/TriangleMesh.h"

namespace gravlin {

/// `report`: a readable summary of the mesh on standard output.
Step reportStep();

/// The summary: counts, kinds, topology, area, volume, box, curvatures and lines, as far as they
/// are there. `origin` tells ridges and valleys from creases. Lengths are in the units of the file
/// that the mesh came from. Requires topology.
std::string summarize(const TriangleMesh& mesh, LineOrigin origin);

}  // namespace gravlin
