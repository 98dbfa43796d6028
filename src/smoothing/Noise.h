#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin {

/// Moves every vertex along its normal by a normally distributed amount with standard deviation
/// `size`; a vertex without a normal stays. The amounts depend on nothing but `size` and the
/// vertex's index, so the same mesh always gets the same noise. Uses `vertexNormals` as they stand,
/// which must have been computed; they become stale.
void addNoise(TriangleMesh& mesh, float size);

}  // namespace gravlin
