#include <gtest/gtest.h>
#include <set>
#include <string>

#include "mesh/io/FormatTable.h"
#include "mesh/io/MeshFile.h"
#include "support/Meshes.h"
#include "support/TemporaryFolder.h"

namespace gravlin {
namespace {

using test::TemporaryFolder;

TEST(FormatTable, OpenReadsFourExtensionsAndSaveWritesTwo) {
  std::set<std::string> opened;
  std::set<std::string> saved;
  for (const FileFormat& format : ownFormats()) {
    if (format.open != nullptr) opened.emplace(format.extension);
    if (format.save != nullptr) saved.emplace(format.extension);
  }
  EXPECT_EQ(opened, (std::set<std::string>{"data", "ply", "ply2", "plyR"}));
  EXPECT_EQ(saved, (std::set<std::string>{"ply2", "plyR"}));
}

TEST(FormatTable, CapitalLettersMakeAnotherExtension) {
  for (const char* extension : {"PLY2", "Ply", "plyr", "OBJ", "", "ply22", "pl"}) {
    EXPECT_EQ(ownFormat(extension), nullptr) << extension;
  }
  ASSERT_NE(ownFormat("obj"), nullptr);
  EXPECT_EQ(ownFormat("obj")->open, nullptr);
}

/// Every row that Save writes and Open reads holds what it says: faces, and marks where it names
/// them.
TEST(FormatTable, WhatARowSaysItHoldsComesBack) {
  for (const FileFormat& format : ownFormats()) {
    if (format.save == nullptr) continue;
    TriangleMesh mesh = test::octahedron();
    mesh.ridgeMarks = {0, 1, 0, 0, 1, 0};
    mesh.valleyMarks = {1, 0, 0, 0, 0, 0};
    const TemporaryFolder folder;
    const std::string path = folder.file("mesh." + std::string(format.extension));
    ASSERT_EQ(saveMeshFile(path, mesh).error, "");
    const OpenResult back = openMeshFile(path);
    ASSERT_NE(back.mesh, nullptr) << path;
    EXPECT_EQ(back.mesh->faces, mesh.faces) << path;
    const bool marks = format.holds.find("marks") != std::string_view::npos;
    EXPECT_EQ(back.mesh->ridgeMarks, marks ? mesh.ridgeMarks : std::vector<int>()) << path;
    EXPECT_EQ(back.mesh->valleyMarks, marks ? mesh.valleyMarks : std::vector<int>()) << path;
  }
}

}  // namespace
}  // namespace gravlin
