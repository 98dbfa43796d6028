#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "doc/CGravlinDoc.h"
#include "mesh/io/MeshExport.h"
#include "mesh/io/MeshImport.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/ScriptedOutside.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class MeshExportCommand : public ::testing::Test {
 protected:
  /// A sphere of radius 3 about (7, 0, 0), imported from a file.
  void importSphere() {
    const TriangleMesh sphere = test::icosphere(3, 3.0);
    const MeshToWrite mesh(sphere, {{7, 0, 0}, 1.0}, MeshToWrite::Vertices::All);
    const std::string path = folder.file("sphere.ply");
    ASSERT_EQ(exportMeshFile(path, mesh, {}).error, "");
    ASSERT_TRUE(doc.importFile(path, false));
    outside.forget();
  }
  const VertexProperty& property(const ImportedMesh& mesh, const std::string& name) {
    for (const VertexProperty& each : mesh.properties) {
      if (each.name == name) return each;
    }
    ADD_FAILURE() << "there is no " << name;
    static const VertexProperty none;
    return none;
  }

  test::TemporaryFolder folder;
  test::ScriptedOutside outside;
  CGravlinDoc doc{outside};
};

TEST_F(MeshExportCommand, WithoutAMeshThereIsAMessage) {
  doc.OnFileExport();
  EXPECT_THAT(outside.messages, ElementsAre("There is no mesh to export."));
}

TEST_F(MeshExportCommand, TheDialogComesBeforeTheNameAndCancelOfEitherWritesNothing) {
  importSphere();
  outside.dialogAnswers = {test::cancel(), test::ok(), test::ok()};
  outside.fileAnswers = {std::nullopt, folder.file("out.obj")};
  doc.OnFileExport();
  doc.OnFileExport();
  EXPECT_EQ(folder.entryCount(), 1);
  doc.OnFileExport();
  EXPECT_THAT(test::contentOf(folder.file("out.obj")), StartsWith("# written by Gravlin "));
  EXPECT_EQ(outside.statuses.back(),
            "Exported " + folder.file("out.obj") + ": 642 vertices, 1280 faces.");
  EXPECT_TRUE(outside.finished());
}

/// On a sphere of radius 3 both curvatures are 1/3 in the file's units, and normals point outward.
/// The twelve vertices with five neighbours are off by a fifth; in the view's cube the radius
/// is 10.
TEST_F(MeshExportCommand, FieldsAreInUnitsOfTheFile) {
  importSphere();
  doc.exportParameters.normals = true;
  doc.exportParameters.curvature = true;
  doc.exportParameters.directions = true;
  ASSERT_TRUE(doc.exportMesh(folder.file("out.ply")));
  const ImportResult back = importMeshFile(folder.file("out.ply"));
  ASSERT_NE(back.mesh, nullptr) << back.error;
  const ImportedMesh& mesh = *back.mesh;
  for (std::size_t i = 0; i < 642; ++i) {
    const double max = property(mesh, "maxCurvature").values[i];
    const double min = property(mesh, "minCurvature").values[i];
    EXPECT_NEAR(max, 1.0 / 3.0, 0.08);
    EXPECT_NEAR(min, 1.0 / 3.0, 0.08);
    // Formed before or after the change of units: the last bits differ.
    EXPECT_NEAR(property(mesh, "meanCurvature").values[i], 0.5 * (max + min), 1e-12);
    EXPECT_NEAR(property(mesh, "gaussCurvature").values[i], max * min, 1e-12);
    EXPECT_NEAR(property(mesh, "totalCurvature").values[i], max + min, 1e-12);
    const double x = (mesh.positions[3 * i] - 7.0) / 3.0;
    const double nx = property(mesh, "nx").values[i];
    EXPECT_NEAR(nx, x, 0.02);
    const double ny = property(mesh, "ny").values[i];
    const double nz = property(mesh, "nz").values[i];
    EXPECT_NEAR(nx * property(mesh, "maxDirectionX").values[i] +
                    ny * property(mesh, "maxDirectionY").values[i] +
                    nz * property(mesh, "maxDirectionZ").values[i],
                0.0, 1e-5);
  }
  EXPECT_EQ(mesh.properties.size(), 3U + 5U + 6U);
}

TEST_F(MeshExportCommand, MarksAreThoseOfTheMeshAndAskedForBeforeTheyAreThere) {
  importSphere();
  doc.exportParameters.marks = true;
  EXPECT_FALSE(doc.exportMesh(folder.file("out.ply")));
  EXPECT_THAT(outside.messages.back(), HasSubstr("Edit > Edge Detection > Local Max"));
  EXPECT_EQ(folder.entryCount(), 1);
  test::meshOf(doc).ridgeMarks.assign(642, 0);
  test::meshOf(doc).valleyMarks.assign(642, 1);
  test::meshOf(doc).ridgeMarks[5] = 1;
  ASSERT_TRUE(doc.exportMesh(folder.file("out.ply")));
  const ImportResult back = importMeshFile(folder.file("out.ply"));
  EXPECT_EQ(property(*back.mesh, "ridgeMarks").values[5], 1.0);
  EXPECT_EQ(property(*back.mesh, "ridgeMarks").values[6], 0.0);
  EXPECT_EQ(property(*back.mesh, "valleyMarks").values[6], 1.0);
}

TEST_F(MeshExportCommand, AFormatThatCannotHoldTheFieldsSaysSo) {
  importSphere();
  doc.exportParameters.normals = true;
  EXPECT_FALSE(doc.exportMesh(folder.file("out.stl")));
  EXPECT_THAT(outside.messages.back(), HasSubstr("STL files cannot hold \"nx\", \"ny\", \"nz\""));
}

TEST_F(MeshExportCommand, TheFileThatTheMeshCameFromIsNotReplaced) {
  importSphere();
  const std::string before = test::contentOf(folder.file("sphere.ply"));
  EXPECT_FALSE(doc.exportMesh(folder.file("sphere.ply")));
  EXPECT_THAT(outside.messages.back(), HasSubstr("would be lost there"));
  EXPECT_EQ(test::contentOf(folder.file("sphere.ply")), before);
}

TEST_F(MeshExportCommand, WhatWasLeftOutOrLostIsTold) {
  ASSERT_TRUE(doc.openFile(folder.write("a.ply2", "4 2 9 9 9 0 0 0 1 0 0 0 1 0 3 1 2 3 3 1 1 2")));
  doc.exportParameters.ascii = true;
  ASSERT_TRUE(doc.exportMesh(folder.file("a.stl")));
  EXPECT_EQ(outside.statuses.back(),
            "Exported " + folder.file("a.stl") +
                ": 4 vertices, 1 face; 1 face without corners left out; vertices are numbered anew "
                "and unused ones are left out.");
  EXPECT_THAT(test::contentOf(folder.file("a.stl")), StartsWith("solid"));
}

TEST_F(MeshExportCommand, AMeshFromOpenIsWrittenInTheUnitsOfItsFile) {
  ASSERT_TRUE(doc.openFile(folder.write("a.ply2", "3 1 0 0 0 4 0 0 0 2 0 3 0 1 2")));
  doc.exportParameters.format = ExportParameters::Off;
  ASSERT_TRUE(doc.exportMesh(folder.file("a.txt")));
  EXPECT_THAT(test::contentOf(folder.file("a.txt")),
              HasSubstr("\n3 1 0\n0 0 0\n4 0 0\n0 2 0\n3 0 1 2\n"));
  EXPECT_FALSE(doc.modified);
}

}  // namespace
}  // namespace gravlin
