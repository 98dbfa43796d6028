#pragma once

#include <vector>

#include "mesh/TriangleMesh.h"
#include "support/DenseMatrix.h"

namespace gravlin::test {

// The operators of the flows written out as V x V matrices. Taken from the faces alone, with
// angles and areas from edge lengths, so that they share nothing with rings and ring walks. For
// manifold meshes whose faces all have an area. Rows of vertices on a boundary are 0.

/// Whether every edge at the vertex belongs to two faces.
std::vector<bool> interiorVertices(const TriangleMesh& mesh);
/// Row i: 1 / n for each of the n neighbours of an interior vertex, -1 on the diagonal.
DenseMatrix umbrellaMatrix(const TriangleMesh& mesh);
/// Row i: cot alpha + cot beta for each neighbour of an interior vertex; rows add up to 0.
DenseMatrix cotangentMatrix(const TriangleMesh& mesh);
/// Per vertex the summed area of its faces.
std::vector<double> ringAreas(const TriangleMesh& mesh);
/// Per vertex the number of neighbours.
std::vector<double> valences(const TriangleMesh& mesh);

/// One coordinate of every vertex.
std::vector<double> coordinates(const TriangleMesh& mesh, int axis);

/// The largest coordinate of b - a in size; infinite if one is not a number.
double largestDifference(const TriangleMesh& a, const TriangleMesh& b);

/// Moves every vertex by factor x (matrix x positions), row i divided by divisor[i] where given.
void moveBy(TriangleMesh& mesh, double factor, const DenseMatrix& matrix,
            const std::vector<double>& divisor = {});

}  // namespace gravlin::test
