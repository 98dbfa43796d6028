#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <ostream>

#include "support/ImageComparison.h"
#include "support/OffscreenView.h"

namespace gravlin {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

/// A picture of feature lines that is compared with a baseline in the folder baselines/.
struct PictureCase {
  const char* name;
  TriangleMesh (*mesh)();
  std::function<void(test::OffscreenView&)> find;
};

std::ostream& operator<<(std::ostream& out, const PictureCase& picture) {
  return out << picture.name;
}

auto localMax(Texts texts) {
  texts.emplace_back("smoothTensor", "0");
  return [texts](test::OffscreenView& o) {
    o.outside.dialogAnswers = {test::okWith(texts)};
    o.document.OnEdgeDetectionLocalMax();
  };
}

auto faceAngle(Texts texts) {
  return [texts](test::OffscreenView& o) {
    o.outside.dialogAnswers = {test::okWith(texts)};
    o.document.OnEdgeDetectionFaceAngle();
  };
}

/// What `find` found, in another mode of the same lines.
auto inMode(int mode, std::function<void(test::OffscreenView&)> find) {
  return [mode, find](test::OffscreenView& o) {
    find(o);
    o.show(mode);
  };
}

auto inGrey(std::function<void(test::OffscreenView&)> find) {
  return [find](test::OffscreenView& o) {
    o.document.visualizationParameters.grayScale = true;
    find(o);
  };
}

void silhouette(test::OffscreenView& o) {
  o.document.OnSilhouette();
}

const Texts edges = {{"extractOn", "edge"}};
const Texts constantAngle = {{"thresholdMode", "angle"}, {"angle", "170"}};

const PictureCase pictures[] = {
    {"ridge-vertices", test::bumpySphere, localMax({})},
    {"ridge-vertices-grey", test::bumpySphere, inGrey(localMax({}))},
    {"ridge-directions", test::bumpySphere, localMax({{"showRidgeDirection", "1"}})},
    {"ridge-mesh-edges", test::bumpySphere, inMode(RidgeMeshEdges, localMax({}))},
    {"ridge-lines", test::bumpySphere, localMax(edges)},
    {"ridge-lines-open", test::cutSphere, localMax(edges)},
    {"weighted-ridge-lines", test::bumpySphere, inMode(WeightedRidgeLines, localMax(edges))},
    {"creases-by-histogram", test::bumpySphere, faceAngle({})},
    {"creases-by-angle-white", test::cutSphere,
     faceAngle({{"thresholdMode", "angle"}, {"shadedSurface", "0"}})},
    {"crease-lines", test::bumpySphere, inMode(CreaseLines, faceAngle(constantAngle))},
    {"silhouette", test::bumpySphere, silhouette},
    {"silhouette-open", test::cutSphere, silhouette},
};

class FeaturePictures : public ::testing::TestWithParam<PictureCase> {};

TEST_P(FeaturePictures, LookLikeTheirBaselines) {
  const PictureCase& picture = GetParam();
  test::OffscreenView offscreen;
  offscreen.show(picture.mesh(), FlatShading);
  picture.find(offscreen);
  test::expectLikeBaseline(offscreen.draw(), picture.name, test::usualThreshold);
}

INSTANTIATE_TEST_SUITE_P(Gallery, FeaturePictures, ::testing::ValuesIn(pictures),
                         [](const auto& test) {
                           std::string name = test.param.name;
                           std::ranges::replace(name, '-', '_');
                           return name;
                         });

}  // namespace
}  // namespace gravlin
