#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <ostream>

#include "support/DocumentAccess.h"
#include "support/ImageComparison.h"
#include "support/OffscreenView.h"

namespace gravlin {
namespace {

/// A picture that is compared with a baseline in the folder baselines/.
struct PictureCase {
  const char* name;
  TriangleMesh (*mesh)();
  int displayMode;
  std::function<void(test::OffscreenView&)> adjust = {};  ///< before it is drawn
  double threshold = test::usualThreshold;                ///< a lower one needs a reason beside it
};

std::ostream& operator<<(std::ostream& out, const PictureCase& picture) {
  return out << picture.name;
}

auto lights(LightingMode mode) {
  return [mode](test::OffscreenView& o) { o.view.setLightingMode(mode); };
}

void pickFace(test::OffscreenView& o) {
  test::meshOf(o.document).pickedFace =
      faceOnRay(*o.document.mesh(), o.view.camera.aimAt({150, 150}, o.target.size));
  o.view.camera.fieldOfView = 2.0F;
  o.view.setLineWidthAndPointSize(1.0F, 15.0F);
}

void turnAndMove(test::OffscreenView& o) {
  o.view.camera.setAngles({20.0F, -40.0F, 110.0F});
  o.view.camera.fieldOfView = 15.0F;
  o.view.camera.pressArrow(ArrowKey::Right);
  o.view.camera.pressArrow(ArrowKey::Up);
}

void widen(test::OffscreenView& o) {
  o.view.setLineWidthAndPointSize(4.0F, 9.0F);
}

void highResolution(test::OffscreenView& o) {
  o.target = {.size = {150, 150}, .pixelRatio = 2.0};
}

const PictureCase pictures[] = {
    {"smooth-shading", test::bumpySphere, SmoothShading},
    {"flat-shading", test::bumpySphere, FlatShading},
    {"wire-frame", test::bumpySphere, WireFrame},
    {"non-manifold-points", test::cutSphere, NonManifoldPoints},
    {"points", test::bumpySphere, Points},
    {"picked-face", test::bumpySphere, PickedFace, pickFace},
    {"picked-face-corners", test::bumpySphere, FlatShading, pickFace},
    {"lighting-rgb", test::cutSphere, SmoothShading, lights(LightingMode::Rgb)},
    {"lighting-red", test::cutSphere, SmoothShading, lights(LightingMode::Red)},
    {"lighting-green", test::cutSphere, SmoothShading, lights(LightingMode::Green)},
    {"lighting-blue", test::cutSphere, SmoothShading, lights(LightingMode::Blue)},
    {"flat-shading-red", test::cutSphere, FlatShading, lights(LightingMode::Red)},
    {"turned", test::cutSphere, FlatShading, turnAndMove},
    {"wire-frame-turned", test::cutSphere, WireFrame, turnAndMove},
    {"wide-lines-and-points", test::cutSphere, NonManifoldPoints, widen},
    {"high-resolution", test::bumpySphere, WireFrame, highResolution},
};

class DisplayPictures : public ::testing::TestWithParam<PictureCase> {};

TEST_P(DisplayPictures, LookLikeTheirBaselines) {
  const PictureCase& picture = GetParam();
  test::OffscreenView offscreen;
  offscreen.show(picture.mesh(), picture.displayMode);
  if (picture.adjust) {
    picture.adjust(offscreen);
    offscreen.show(picture.displayMode);
  }
  test::expectLikeBaseline(offscreen.draw(), picture.name, picture.threshold);
}

INSTANTIATE_TEST_SUITE_P(Gallery, DisplayPictures, ::testing::ValuesIn(pictures),
                         [](const auto& test) {
                           std::string name = test.param.name;
                           std::ranges::replace(name, '-', '_');
                           return name;
                         });

}  // namespace
}  // namespace gravlin
