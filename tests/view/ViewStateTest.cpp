#include <gtest/gtest.h>
#include <limits>

#include "view/ViewState.h"

namespace gravlin {
namespace {

TEST(ViewState, ChoosingLightsPutsLineWidthAndPointSizeBack) {
  for (const LightingMode mode :
       {LightingMode::Rgb, LightingMode::Red, LightingMode::Green, LightingMode::Blue}) {
    ViewState view;
    view.setLineWidthAndPointSize(7.5F, 12.0F);
    EXPECT_EQ(view.lineWidth, 7.5F);
    EXPECT_EQ(view.pointSize, 12.0F);
    view.setLightingMode(mode);
    EXPECT_EQ(view.lightingMode, mode);
    EXPECT_EQ(view.lineWidth, 1.0F);
    EXPECT_EQ(view.pointSize, 3.0F);
  }
}

TEST(ViewState, RefusesWidthsAndSizesThatAreNotAboveZero) {
  ViewState view;
  view.setLineWidthAndPointSize(2.0F, 5.0F);
  for (const float bad : {0.0F, -1.0F, std::numeric_limits<float>::quiet_NaN(),
                          std::numeric_limits<float>::infinity()}) {
    view.setLineWidthAndPointSize(bad, bad);
    EXPECT_EQ(view.lineWidth, 2.0F);
    EXPECT_EQ(view.pointSize, 5.0F);
  }
}

TEST(ViewState, ShowsNoCountsAtFirst) {
  const ViewState view;
  EXPECT_EQ(view.shownVertexCount, 0);
  EXPECT_EQ(view.shownFaceCount, 0);
}

}  // namespace
}  // namespace gravlin
