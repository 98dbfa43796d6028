#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "remesh/ButterflySubdivision.h"
#include "remesh/LinearSubdivision.h"
#include "remesh/LoopSubdivision.h"
#include "remesh/MeshSubdivider.h"
#include "support/Meshes.h"

namespace gravlin {
namespace {

TEST(MeshSubdivider, PutsTheRefinedMeshInThePlaceOfItsMesh) {
  const TriangleMesh old = test::icosphere(1);
  MeshSubdivider subdivider;
  TriangleMesh mesh = old;
  subdivider.attach(&mesh);
  subdivider.loopSubdivision();
  EXPECT_EQ(mesh.vertices, loopSubdivision(old).vertices);
  mesh = old;
  subdivider.butterflySubdivision();
  EXPECT_EQ(mesh.vertices, butterflySubdivision(old).vertices);
  mesh = old;
  subdivider.linearSubdivision();
  EXPECT_EQ(mesh.vertices, linearSubdivision(old).vertices);
  subdivider.linearSubdivision();
  EXPECT_EQ(mesh.faceCount, 16 * old.faceCount);
}

}  // namespace
}  // namespace gravlin
