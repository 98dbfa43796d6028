#pragma once

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "mesh/TriangleMesh.h"
#include "numeric/SparseMatrix.h"
#include "smoothing/DenseLaplacians.h"
#include "smoothing/ImplicitStep.h"
#include "support/CapturedText.h"
#include "support/DenseMatrix.h"
#include "support/Meshes.h"

namespace gravlin::test {

/// A step of the flow moves an octahedron but not a vertex beside it that no face uses.
template <class Flow>
void expectLoneVertexStays(float dt) {
  const CapturedText text;
  TriangleMesh mesh = makeMesh(
      {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}, {7, 8, 9}},
      {{0, 2, 4}, {2, 1, 4}, {1, 3, 4}, {3, 0, 4}, {2, 0, 5}, {1, 2, 5}, {3, 1, 5}, {0, 3, 5}});
  Flow(mesh, dt).step();
  EXPECT_EQ(mesh.position(6), (Vec3{7, 8, 9}));
  EXPECT_LT(mesh.position(0).x, 0.9);
}

/// The matrix written out in full.
inline DenseMatrix dense(const SparseMatrix& matrix, int n) {
  DenseMatrix result(n);
  for (int row = 0; row < n; ++row) {
    const std::size_t i = static_cast<std::size_t>(row) + 1;
    result.at(row, row) = matrix.sa[i];
    for (int k = matrix.ija[i]; k < matrix.ija[i + 1]; ++k) {
      const std::size_t at = static_cast<std::size_t>(k);
      result.at(row, matrix.ija[at] - 1) += matrix.sa[at];
    }
  }
  return result;
}

/// Columns of each row rise, stay within 1 .. n and leave out the diagonal; rows follow each other
/// without gaps from position n + 2 on.
inline void expectRowsInRisingOrder(const SparseMatrix& matrix, int n) {
  ASSERT_EQ(matrix.ija[1], n + 2);
  for (int row = 1; row <= n; ++row) {
    const int begin = matrix.ija[static_cast<std::size_t>(row)];
    const int end = matrix.ija[static_cast<std::size_t>(row) + 1];
    ASSERT_LE(begin, end);
    for (int k = begin; k < end; ++k) {
      const int column = matrix.ija[static_cast<std::size_t>(k)];
      EXPECT_NE(column, row);
      EXPECT_GE(column, 1);
      EXPECT_LE(column, n);
      if (k > begin) {
        EXPECT_LT(matrix.ija[static_cast<std::size_t>(k) - 1], column);
      }
    }
  }
}

/// Leaves the passes of each coordinate in the test's record.
inline void recordPasses(const std::string& mesh, const ImplicitStep& step) {
  std::ostringstream passes;
  passes << step.solves[0].iter << ' ' << step.solves[1].iter << ' ' << step.solves[2].iter;
  std::string key = "passes " + mesh;
  std::replace(key.begin(), key.end(), ' ', '_');
  testing::Test::RecordProperty(key, passes.str());
}

struct SolvedStep {
  const TriangleMesh& before;
  const TriangleMesh& after;
  const SparseMatrix& system;
  double tolerance;
};

/// |before - A after| <= tolerance x |before| for each coordinate.
inline void expectSolved(const SolvedStep& step) {
  const DenseMatrix system = dense(step.system, step.before.vertexCount);
  for (int axis = 0; axis < 3; ++axis) {
    const std::vector<double> b = coordinates(step.before, axis);
    const std::vector<double> product = system.times(coordinates(step.after, axis));
    double residual = 0.0;
    double size = 0.0;
    for (std::size_t i = 0; i < b.size(); ++i) {
      residual += (b[i] - product[i]) * (b[i] - product[i]);
      size += b[i] * b[i];
    }
    // Positions are stored in single precision, which the matrix magnifies by up to its row sums.
    EXPECT_LE(std::sqrt(residual), step.tolerance * std::sqrt(size) * 1.05 + 1e-6) << axis;
  }
}

/// One pass less would have left a residual above the tolerance: of a solve with that many passes
/// it is formed anew from the matrix written out in full.
inline void expectNoPassTooMany(const SolvedStep& step, const ImplicitStep& outcome) {
  const int n = step.before.vertexCount;
  const DenseMatrix system = dense(step.system, n);
  for (int axis = 0; axis < 3; ++axis) {
    const int passes = outcome.solves[static_cast<std::size_t>(axis)].iter;
    const std::vector<double> b = coordinates(step.before, axis);
    std::vector<double> oneBased(b.size() + 1, 0.0);
    std::copy(b.begin(), b.end(), oneBased.begin() + 1);
    std::vector<double> x = oneBased;
    // The first pass is made whenever there is a residual at all.
    if (passes < 2) continue;
    const LinbcgSettings fewer = {.itol = 1, .tol = 0.0, .itmax = passes - 2};
    linbcg(step.system, n, oneBased, x, fewer);
    x.erase(x.begin());
    const std::vector<double> product = system.times(x);
    double residual = 0.0;
    double size = 0.0;
    for (std::size_t i = 0; i < b.size(); ++i) {
      residual += (b[i] - product[i]) * (b[i] - product[i]);
      size += b[i] * b[i];
    }
    EXPECT_GT(std::sqrt(residual), step.tolerance * std::sqrt(size)) << axis;
  }
}

/// On any mesh a step leaves faces and kinds alone, keeps vertices that are not interior where they
/// are and finite positions finite, in at most 101 passes.
template <class Flow>
void expectHarmlessStep(const NamedMesh& named, float dt) {
  SCOPED_TRACE(::testing::Message() << named.name << ", dt " << dt);
  const CapturedText text;
  TriangleMesh mesh = named.mesh;
  const ImplicitStep step = Flow(mesh, dt).step();
  for (const LinbcgResult& solve : step.solves) EXPECT_LE(solve.iter, 101);
  EXPECT_EQ(mesh.faces, named.mesh.faces);
  EXPECT_EQ(mesh.vertexKind, named.mesh.vertexKind);
  ASSERT_EQ(mesh.vertices.size(), named.mesh.vertices.size());
  const auto finite = [](float x) { return std::isfinite(x); };
  const auto& before = named.mesh.vertices;
  if (!std::all_of(before.begin(), before.end(), finite) || !(dt >= 0.0F && dt < 1e3F)) return;
  EXPECT_TRUE(std::all_of(mesh.vertices.begin(), mesh.vertices.end(), finite));
  for (int i = 0; i < mesh.vertexCount; ++i) {
    if (mesh.vertexKind[static_cast<std::size_t>(i)] == InteriorVertex) continue;
    EXPECT_EQ(mesh.position(i), named.mesh.position(i)) << i;
  }
}

}  // namespace gravlin::test
