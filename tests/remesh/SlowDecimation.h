#pragma once

#include "mesh/TriangleMesh.h"

namespace gravlin::test {

/// Decimation as its definition reads, without any of the structures that make it fast: the
/// cheapest edge is searched among all, the tests read rings that are rebuilt after every collapse,
/// matrices are full. Returns how many edges were collapsed. Quadratic; for small meshes without
/// edges of equal cost.
int decimateSlowly(TriangleMesh& mesh, double rate);

}  // namespace gravlin::test
