#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>

#include "batch/BatchRun.h"
#include "batch/Dump.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/ScriptedOutside.h"

namespace gravlin {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

class Dump : public ::testing::Test {
 protected:
  void load(TriangleMesh mesh) { test::setMesh(doc, std::move(mesh)); }
  json dumped(const std::vector<std::string>& fields = {}) {
    const test::TemporaryFolder folder;
    const std::string path = folder.file("dump.json");
    std::FILE* stream = std::fopen(path.c_str(), "w");
    dump({doc, view, histogram}, fields, stream);
    std::fclose(stream);
    return json::parse(test::contentOf(path));
  }

  test::ScriptedOutside outside;
  CGravlinDoc doc{outside};
  ViewState view;
  Histogram histogram;
};

TEST_F(Dump, HoldsGeometryTopologyAndNormals) {
  const TriangleMesh mesh = test::bumpyGrid(3, 2);
  load(mesh);
  const json all = dumped();
  EXPECT_EQ(all["vertexCount"], mesh.vertexCount);
  EXPECT_EQ(all["faceCount"], mesh.faceCount);
  EXPECT_EQ(all["vertices"].get<std::vector<float>>(), mesh.vertices);
  EXPECT_EQ(all["faces"].get<std::vector<int>>(), mesh.faces);
  EXPECT_EQ(all["faceAdjacency"].get<std::vector<int>>(), mesh.faceAdjacency);
  EXPECT_EQ(all["vertexKind"].get<std::vector<int>>(), mesh.vertexKind);
  EXPECT_EQ(all["faceNormals"].get<std::vector<float>>(), mesh.faceNormals);
  EXPECT_EQ(all["vertexNormals"].get<std::vector<float>>(), mesh.vertexNormals);
  EXPECT_EQ(all["boxMax"], json({10, 10, 10}));
  EXPECT_EQ(all["extentTolerance"], 1.0);
  for (int i = 0; i < mesh.vertexCount; ++i) {
    const auto ring = all["vertexNeighbours"][static_cast<std::size_t>(i)].get<std::vector<int>>();
    const auto expected = mesh.getNeighbours(i);
    EXPECT_EQ(ring, std::vector<int>(expected.begin(), expected.end()));
    EXPECT_EQ(all["neighbourCount"][static_cast<std::size_t>(i)], mesh.neighbourCount(i));
    EXPECT_EQ(all["vertexFaces"][static_cast<std::size_t>(i)].size(),
              all["vertexFaceCount"][static_cast<std::size_t>(i)]);
  }
}

TEST_F(Dump, WritesNullForWhatHasNotBeenBuilt) {
  load(test::cube());
  const json all = dumped();
  for (const char* name :
       {"maxCurvature", "minDirection", "maxDerivativeGradient", "ridgeMarks", "valleyLinks",
        "edgeCurvatures", "coherentFaces", "strokeSeeds", "maxStrokes", "pickedFace"}) {
    EXPECT_TRUE(all[name].is_null()) << name;
  }
  EXPECT_EQ(all["hasUndo"], false);
}

TEST_F(Dump, HoldsCurvatureLinesAndStrokesWhenTheyAreThere) {
  load(test::twoTriangles());
  TriangleMesh& mesh = test::meshOf(doc);
  mesh.maxCurvature = {0.1, 0.2, 1.0 / 3.0, 4.0};
  mesh.ridgeMarks = {0, 1, 1, 0};
  mesh.ridgeLinks.resize(4);
  mesh.ridgeLinks[1].append(2);
  mesh.ridgeLinks[2].append(1);
  mesh.strokes.strokeSeeds = {{1, 0.25, 0.5}};
  mesh.strokes.maxStrokes = {{{0, 0.5, 0.0}, {1, 0.25, 0.5}}};
  mesh.pickedFace = 1;
  doc.keepUndoCopy();
  const json all = dumped();
  EXPECT_EQ(all["maxCurvature"].get<std::vector<double>>(), mesh.maxCurvature);
  EXPECT_EQ(all["ridgeMarks"], json({0, 1, 1, 0}));
  EXPECT_EQ(all["ridgeLinks"], json::parse("[[],[2],[1],[]]"));
  EXPECT_EQ(all["strokeSeeds"], json::parse("[[1,0.25,0.5]]"));
  EXPECT_EQ(all["maxStrokes"], json::parse("[[[0,0.5,0],[1,0.25,0.5]]]"));
  EXPECT_EQ(all["pickedFace"], 1);
  EXPECT_EQ(all["hasUndo"], true);
}

// A sphere of radius 3 about (1, 2, 3), 20 units large in memory, that comes down to half of that;
// saving measures it anew.
TEST_F(Dump, TellsWithWhichUnitCurvaturesAreThoseOfTheFile) {
  const test::TemporaryFolder folder;
  TriangleMesh sphere = test::icosphere(3, 3.0);
  for (std::size_t c = 0; c < sphere.vertices.size(); ++c) {
    sphere.vertices[c] += static_cast<float>(c % 3 + 1);
  }
  sphere.normalize();
  sphere.computeNormals();
  load(std::move(sphere));
  const std::vector<std::string> names = {"curvatureUnit", "edgeCurvatureUnit"};
  for (const std::string& name : names) EXPECT_TRUE(dumped(names)[name].is_null());
  doc.OnCurvatureMax();
  doc.OnEdgeCurvature();
  for (const std::string& name : names) {
    EXPECT_EQ(dumped(names)[name], dumped()["extentTolerance"]);
    EXPECT_FALSE(dumped().contains(name)) << "there is one unit for all";
  }
  doc.OnFlatShading();  // where a change of shape leaves both as they are
  doc.keepUndoCopy();
  for (float& x : test::meshOf(doc).vertices) x *= 0.5F;
  doc.geometryChanged();
  ASSERT_TRUE(doc.saveFile(folder.file("half.ply2")));
  const json all = dumped();
  const double unit = all["curvatureUnit"];
  EXPECT_NEAR(unit, 0.05 * 6.0, 1e-6);
  EXPECT_EQ(all["edgeCurvatureUnit"], all["curvatureUnit"]);  // there, since it is another one
  EXPECT_NEAR(all["extentTolerance"], 0.05 * 3.0, 1e-6);
  // 1/3 up to the error of the estimate.
  EXPECT_NEAR(std::abs(all["maxCurvature"][17].get<double>()) / unit, 1.0 / 3.0, 0.02);
}

TEST_F(Dump, WritesOnlyTheFieldsThatAreNamed) {
  load(test::cube());
  const json some = dumped({"faceCount", "view"});
  EXPECT_EQ(some.size(), 2U);
  EXPECT_EQ(some["faceCount"], 12);
  EXPECT_EQ(some["view"]["fieldOfView"], 22.5);
}

TEST_F(Dump, HoldsTheHistogramForAWindowOfThreeHundredAndThirtyPixels) {
  EXPECT_TRUE(dumped()["histogram"].is_null());
  histogram.setValues(std::vector<double>{-2, 0, 0, 2});
  const json bins = dumped()["histogram"];
  EXPECT_EQ(bins["values"], 4);
  EXPECT_EQ(bins["mean"], 0);
  EXPECT_EQ(bins["deviation"].get<double>(), std::sqrt(2.0));
  EXPECT_EQ(bins["clipMin"].get<double>(), -3.0 * std::sqrt(2.0));
  EXPECT_EQ(bins["clipMax"].get<double>(), 3.0 * std::sqrt(2.0));
  EXPECT_EQ(bins["binCount"], 300);
  EXPECT_EQ(bins["bins"].size(), 300U);
  EXPECT_EQ(bins["bins"][150], 2);
  EXPECT_EQ(bins["maxBin"], 2);
}

TEST_F(Dump, KeepsPositionsThatAreNotFiniteReadable) {
  load(test::withNan());
  test::meshOf(doc).vertices[0] = -std::numeric_limits<float>::infinity();
  const json all = dumped({"vertices"});
  EXPECT_EQ(all["vertices"][0], "-inf");
  EXPECT_EQ(all["vertices"][7], "nan");
}

TEST_F(Dump, IsNullThroughoutWithoutAMeshAndTellsTheViewAllTheSame) {
  const json all = dumped();
  for (const std::string_view name : dumpFieldNames()) {
    const bool known = name == "displayMode" || name == "hasUndo" || name == "view";
    const bool onlyWhenNamed = name == "shownField" || name.ends_with("Unit");
    EXPECT_EQ(all.contains(name), !onlyWhenNamed) << name;
    EXPECT_EQ(dumped({std::string(name)})[std::string(name)].is_null(), !known) << name;
  }
  for (const char* name :
       {"angleX", "angleY", "angleZ", "fieldOfView", "translation", "lightingMode", "lineWidth",
        "pointSize", "shownVertexCount", "shownFaceCount"}) {
    EXPECT_TRUE(all["view"].contains(name)) << name;
  }
}

/// A coordinate as it is written: what is not finite has a name, all else its shortest text.
void expectWritten(const json& text, float x) {
  if (std::isnan(x)) {
    EXPECT_EQ(text, "nan");
  } else if (std::isinf(x)) {
    EXPECT_EQ(text, x > 0.0F ? "inf" : "-inf");
  } else {
    EXPECT_EQ(text.get<float>(), x);
  }
}

TEST_F(Dump, HoldsEveryNumberOfAHostileMesh) {
  for (const test::NamedMesh& hostile : test::hostileMeshes()) {
    SCOPED_TRACE(hostile.name);
    const TriangleMesh& mesh = hostile.mesh;
    load(mesh);
    const json all = dumped();
    EXPECT_EQ(all["vertexCount"], mesh.vertexCount);
    EXPECT_EQ(all["faceCount"], mesh.faceCount);
    ASSERT_EQ(all["vertices"].size(), mesh.vertices.size());
    for (std::size_t c = 0; c < mesh.vertices.size(); ++c) {
      expectWritten(all["vertices"][c], mesh.vertices[c]);
    }
    EXPECT_EQ(all["faces"], json(mesh.faces));
    if (mesh.vertexCount > 0) {
      EXPECT_EQ(all["vertexKind"], json(mesh.vertexKind));
    }
    if (mesh.faceCount > 0) {
      EXPECT_EQ(all["faceAdjacency"], json(mesh.faceAdjacency));
    }
  }
}

TEST(DumpFields, AreNamedOnce) {
  const std::vector<std::string_view> names = dumpFieldNames();
  EXPECT_EQ(std::set<std::string_view>(names.begin(), names.end()).size(), names.size());
}

}  // namespace
}  // namespace gravlin
