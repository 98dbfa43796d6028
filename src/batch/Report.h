#pragma once

#include <string>

#include "batch/Step.h"
#include "doc/Shown.h"
#include "features/LineExport.h"

namespace gravlin {

/// `report`: a readable summary of the mesh on standard output.
Step reportStep();

/// The summary of the mesh, which must be there: counts, kinds, topology, area, volume, box,
/// curvatures and lines, as far as they are there, and the field of a mode with a number from
/// `firstOwnMode` on that is shown. `origin` tells ridges and valleys from creases. Lengths are in
/// the units of the file that the mesh came from. Requires topology.
std::string summarize(const Shown& shown, LineOrigin origin);

}  // namespace gravlin
