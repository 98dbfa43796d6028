#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "remesh/ButterflySubdivision.h"
#include "remesh/LinearSubdivision.h"
#include "remesh/LoopSubdivision.h"
#include "remesh/MeshSubdivider.h"
#include "remesh/SubdivisionParameters.h"
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

TEST(MeshSubdivider, DoesNothingWithoutAMesh) {
  MeshSubdivider subdivider;
  subdivider.loopSubdivision();
  subdivider.butterflySubdivision();
  subdivider.linearSubdivision();
}

TEST(MeshSubdivider, DialogOffersTheThreeSchemes) {
  SubdivisionParameters parameters;
  const Form form = parameters.form();
  EXPECT_EQ(form.name, "CSubdivisionDlg");
  EXPECT_EQ(form.title, "\uFF80\uFF9E\uFF72\uFF71\uFF9B\uFF78\uFF9E");
  ASSERT_EQ(form.fields.size(), 1U);
  EXPECT_EQ(form.fields[0].label, "method");
  EXPECT_EQ(textOf(form.fields[0]), "Loop");
  std::vector<std::string_view> texts;
  for (const Choice& choice : form.fields[0].choices) texts.push_back(choice.text);
  EXPECT_THAT(texts, ::testing::ElementsAre("Loop", "Modified butterfly", "Linear"));
  EXPECT_EQ(storeText(form.fields[0], "Normal averaging(angle)"), "");
  EXPECT_EQ(parameters.method, "Normal averaging(angle)");
}

}  // namespace
}  // namespace gravlin
