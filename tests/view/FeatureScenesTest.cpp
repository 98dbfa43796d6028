// What the modes of feature lines show, by the colours and the surface that they are made of.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>

#include "doc/CGravlinDoc.h"
#include "features/MarkedMeshes.h"
#include "support/DocumentAccess.h"
#include "support/Meshes.h"
#include "support/ScriptedOutside.h"
#include "view/RenderDispatcher.h"
#include "view/Scene.h"

namespace gravlin {
namespace {

using ::testing::ElementsAre;

/// A flat grid with a ridge of three vertices on row 1, a valley of two on row 3 and one crease.
struct Lines {
  test::ScriptedOutside outside;
  CGravlinDoc document{outside};

  Lines() {
    test::setMesh(document, test::grid(4, 4));
    TriangleMesh& mesh = test::meshOf(document);
    test::prepareLines(mesh, 2.0, -1.0);
    const test::GridIndex at{4};
    const auto link = [](std::vector<IndexList>& links, int a, int b) {
      links[static_cast<std::size_t>(a)].append(b);
      links[static_cast<std::size_t>(b)].append(a);
    };
    test::markRidge(mesh, {at(1, 1), at(2, 1), at(3, 1)});
    link(mesh.ridgeLinks, at(1, 1), at(2, 1));
    link(mesh.ridgeLinks, at(2, 1), at(3, 1));
    for (const int v : {at(1, 3), at(2, 3)}) mesh.valleyMarks[static_cast<std::size_t>(v)] = 1;
    link(mesh.valleyLinks, at(1, 3), at(2, 3));
    document.creaseLinks.resize(mesh.ridgeLinks.size());
    link(document.creaseLinks, at(0, 0), at(1, 0));
    for (auto* field : {&mesh.maxDerivativeGradient, &mesh.minDerivativeGradient}) {
      for (int i = 0; i < mesh.vertexCount; ++i) field->insert(field->end(), {1.0, 0.0, 0.0});
    }
  }

  Scene in(DisplayMode mode) {
    document.displayMode = mode;
    return gatherScene(document.shown());
  }
};

std::string nameOf(const Colour& c) {
  const std::string digits = {c.r != 0.0F ? '1' : '0', c.g != 0.0F ? '1' : '0',
                              c.b != 0.0F ? '1' : '0'};
  const std::map<std::string, std::string> names = {
      {"100", "red"}, {"001", "blue"}, {"111", "white"}, {"000", "black"}};
  return names.at(digits);
}

/// "red points 3" for three red points; batches without content are left out.
std::vector<std::string> described(const Scene& scene) {
  std::vector<std::string> texts;
  for (const Batch& batch : scene.batches) {
    if (batch.drawnCount() == 0) continue;
    if (batch.primitive == Primitive::Points) {
      texts.push_back(nameOf(batch.colour) + " points " + std::to_string(batch.drawnCount()));
    } else if (batch.primitive == Primitive::Lines) {
      texts.push_back(nameOf(batch.colour) + " lines " + std::to_string(batch.drawnCount() / 2));
    } else if (batch.drawnCount() == std::size_t{3} * 32) {
      texts.push_back(batch.lit ? "lit surface" : nameOf(batch.colour) + " surface");
    } else {
      texts.push_back(nameOf(batch.colour) + " bars " + std::to_string(batch.drawnCount() / 6));
    }
  }
  return texts;
}

TEST(FeatureScenes, RidgesAreRedAndValleysBlue) {
  Lines lines;
  EXPECT_THAT(described(lines.in(RidgeVertices)),
              ElementsAre("red points 3", "blue points 2", "lit surface"));
  EXPECT_THAT(
      described(lines.in(RidgeDirections)),
      ElementsAre("red points 3", "blue points 2", "lit surface", "red bars 3", "blue bars 2"));
  EXPECT_THAT(
      described(lines.in(RidgeMeshEdges)),
      ElementsAre("red points 3", "red lines 2", "blue points 2", "blue lines 1", "lit surface"));
  EXPECT_THAT(described(lines.in(WeightedRidgeLines)),
              ElementsAre("red lines 2", "blue lines 1", "lit surface"));
  EXPECT_THAT(described(lines.in(FeatureLines)),
              ElementsAre("red lines 2", "blue lines 1", "lit surface"));
}

TEST(FeatureScenes, InGreyScaleRidgesAreWhiteAndValleysBlack) {
  Lines lines;
  lines.document.visualizationParameters.grayScale = true;
  EXPECT_THAT(described(lines.in(RidgeVertices)),
              ElementsAre("white points 3", "black points 2", "lit surface"));
  EXPECT_THAT(described(lines.in(RidgeDirections)),
              ElementsAre("white points 3", "black points 2", "lit surface", "white bars 3",
                          "black bars 2"));
  EXPECT_THAT(described(lines.in(RidgeMeshEdges)),
              ElementsAre("white points 3", "white lines 2", "black points 2", "black lines 1",
                          "lit surface"));
  EXPECT_THAT(described(lines.in(WeightedRidgeLines)),
              ElementsAre("white lines 2", "black lines 1", "lit surface"));
  EXPECT_THAT(described(lines.in(FeatureLines)),
              ElementsAre("white lines 2", "black lines 1", "lit surface"));
}

TEST(FeatureScenes, WithoutShadingTheSurfaceBehindLinesIsAWhiteSheet) {
  Lines lines;
  EXPECT_THAT(described(lines.in(CreaseLines)), ElementsAre("black lines 1", "lit surface"));
  lines.document.angleParameters.shadedSurface = false;
  EXPECT_THAT(described(lines.in(WeightedRidgeLines)),
              ElementsAre("red lines 2", "blue lines 1", "white surface"));
  EXPECT_THAT(described(lines.in(FeatureLines)),
              ElementsAre("red lines 2", "blue lines 1", "white surface"));
  EXPECT_THAT(described(lines.in(CreaseLines)), ElementsAre("black lines 1", "white surface"));
  EXPECT_THAT(described(lines.in(RidgeVertices)),
              ElementsAre("red points 3", "blue points 2", "lit surface"))
      << "marks have a lit surface in any case";
}

TEST(FeatureScenes, StrongerLinesAreWider) {
  Lines lines;
  test::meshOf(lines.document).maxCurvature[static_cast<std::size_t>(test::GridIndex{4}(1, 1))] =
      -10.0;
  std::vector<float> widths;
  for (const Batch& batch : lines.in(WeightedRidgeLines).batches) {
    if (batch.primitive == Primitive::Lines && batch.drawnCount() > 0 && batch.colour.r > 0.0F) {
      widths.push_back(batch.lineWidthFactor);
    }
  }
  // Means of the magnitudes at both ends: (10 + 2) / 2 = 6, the strongest, and 2, a third of it.
  EXPECT_THAT(widths, ElementsAre(2.0F, 4.0F));
}

}  // namespace
}  // namespace gravlin
