#include <array>
#include <gtest/gtest.h>
#include <initializer_list>

#include "support/OffscreenView.h"
#include "view/Lights.h"
#include "view/OpenGL.h"

namespace gravlin {
namespace {

using Four = std::array<float, 4>;

constexpr LightingMode allModes[] = {LightingMode::Rgb, LightingMode::Red, LightingMode::Green,
                                     LightingMode::Blue};

class Lights : public ::testing::Test {
 protected:
  static Four light(std::size_t i, GLenum name) {
    Four values = {};
    glGetLightfv(static_cast<GLenum>(GL_LIGHT0 + i), name, values.data());
    return values;
  }
  static Four material(GLenum side, GLenum name) {
    Four values = {};
    glGetMaterialfv(side, name, values.data());
    return values;
  }
  static float number(GLenum name) {
    float value = -1.0F;
    glGetFloatv(name, &value);
    return value;
  }

  test::OffscreenView offscreen;
};

TEST_F(Lights, StandInOppositePairsAroundTheEye) {
  constexpr Four expected[] = {{-52, -16, -50, 0}, {-26, -48, -50, 0}, {16, -52, -50, 0},
                               {52, 16, 50, 0},    {26, 48, 50, 0},    {-16, 52, 50, 0}};
  initLights(LightingMode::Rgb);
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(light(i, GL_POSITION), expected[i]);
    const Four spot = light(i, GL_SPOT_DIRECTION);
    for (std::size_t k = 0; k < 3; ++k) EXPECT_EQ(spot[k], -expected[i][k]);
    EXPECT_TRUE(glIsEnabled(static_cast<GLenum>(GL_LIGHT0 + i)));
  }
  EXPECT_FALSE(glIsEnabled(GL_LIGHT6));
}

TEST_F(Lights, DoNotDependOnTheMatrixThatIsLoaded) {
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  glRotatef(77.0F, 1.0F, 2.0F, 3.0F);
  glTranslatef(5.0F, 6.0F, 7.0F);
  std::array<float, 16> before = {};
  std::array<float, 16> after = {};
  glGetFloatv(GL_MODELVIEW_MATRIX, before.data());
  initLights(LightingMode::Rgb);
  glGetFloatv(GL_MODELVIEW_MATRIX, after.data());
  EXPECT_EQ(light(4, GL_POSITION), (Four{26, 48, 50, 0}));
  EXPECT_EQ(before, after);
}

TEST_F(Lights, AreRedGreenAndBlueInModeRgb) {
  constexpr Four primaries[] = {{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 1, 1}};
  initLights(LightingMode::Rgb);
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(light(i, GL_DIFFUSE), primaries[i % 3]);
    EXPECT_EQ(light(i, GL_SPECULAR), primaries[i % 3]);
  }
}

TEST_F(Lights, AreOneColouredPairAndTwoGreyOnesOtherwise) {
  constexpr Four grey = {0.4F, 0.4F, 0.4F, 1};
  constexpr Four colours[] = {{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 1, 1}};
  for (std::size_t mode = 1; mode <= 3; ++mode) {
    initLights(static_cast<LightingMode>(mode));
    for (std::size_t i = 0; i < 6; ++i) {
      const Four& expected = i % 3 == 0 ? colours[mode - 1] : grey;
      EXPECT_EQ(light(i, GL_DIFFUSE), expected);
      EXPECT_EQ(light(i, GL_SPECULAR), expected);
    }
  }
}

TEST_F(Lights, MaterialIsTheSameOnBothSides) {
  initLights(LightingMode::Green);
  for (const GLenum side : std::initializer_list<GLenum>{GL_FRONT, GL_BACK}) {
    EXPECT_EQ(material(side, GL_AMBIENT), (Four{0, 0, 0, 0}));
    EXPECT_EQ(material(side, GL_DIFFUSE), (Four{1, 1, 1, 0.5F}));
    EXPECT_EQ(material(side, GL_SPECULAR), (Four{0.5F, 0.5F, 0.5F, 0.5F}));
    EXPECT_EQ(material(side, GL_SHININESS)[0], 128.0F);
  }
  Four ambient = {};
  glGetFloatv(GL_LIGHT_MODEL_AMBIENT, ambient.data());
  EXPECT_EQ(ambient, (Four{0.3F, 0.3F, 0.3F, 1}));
}

TEST_F(Lights, SettingThemUpAlsoSetsDepthTestSmoothingAndClearColour) {
  for (const LightingMode mode : allModes) {
    glDisable(GL_DEPTH_TEST);
    glDepthFunc(GL_ALWAYS);
    initLights(mode);
    for (const GLenum feature : std::initializer_list<GLenum>{GL_LIGHTING, GL_DEPTH_TEST,
                                                              GL_POINT_SMOOTH, GL_LINE_SMOOTH}) {
      EXPECT_TRUE(glIsEnabled(feature));
    }
    EXPECT_EQ(number(GL_DEPTH_FUNC), static_cast<float>(GL_LESS));
    for (const GLenum hint : std::initializer_list<GLenum>{
             GL_POINT_SMOOTH_HINT, GL_LINE_SMOOTH_HINT, GL_POLYGON_SMOOTH_HINT}) {
      EXPECT_EQ(number(hint), static_cast<float>(GL_NICEST));
    }
    Four clear = {};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear.data());
    EXPECT_EQ(clear, (Four{1, 1, 1, 0}));
  }
}

TEST_F(Lights, SettingThemUpResetsLineWidthAndPointSize) {
  for (const LightingMode mode : allModes) {
    glLineWidth(7.0F);
    glPointSize(9.0F);
    initLights(mode);
    EXPECT_EQ(number(GL_LINE_WIDTH), 1.0F);
    EXPECT_EQ(number(GL_POINT_SIZE), 3.0F);
  }
}

}  // namespace
}  // namespace gravlin
