#include "view/Lights.h"

#include <array>
#include <GL/gl.h>

namespace gravlin {
namespace {

using Four = std::array<GLfloat, 4>;

constexpr Four red = {1.0F, 0.0F, 0.0F, 1.0F};
constexpr Four green = {0.0F, 1.0F, 0.0F, 1.0F};
constexpr Four blue = {0.0F, 0.0F, 1.0F, 1.0F};
constexpr Four grey = {0.4F, 0.4F, 0.4F, 1.0F};

// Directions: their fourth coordinate is 0.
constexpr std::array<Four, 6> positions = {{{-52.0F, -16.0F, -50.0F, 0.0F},
                                            {-26.0F, -48.0F, -50.0F, 0.0F},
                                            {16.0F, -52.0F, -50.0F, 0.0F},
                                            {52.0F, 16.0F, 50.0F, 0.0F},
                                            {26.0F, 48.0F, 50.0F, 0.0F},
                                            {-16.0F, 52.0F, 50.0F, 0.0F}}};

/// Colours of lights 0, 1 and 2; lights 3, 4 and 5 are their opposites.
std::array<Four, 3> pairColours(LightingMode mode) {
  switch (mode) {
    case LightingMode::Red:
      return {red, grey, grey};
    case LightingMode::Green:
      return {green, grey, grey};
    case LightingMode::Blue:
      return {blue, grey, grey};
    case LightingMode::Rgb:
      break;
  }
  return {red, green, blue};
}

void placeLights(LightingMode mode) {
  const std::array<Four, 3> colours = pairColours(mode);
  glMatrixMode(GL_MODELVIEW);
  glPushMatrix();
  glLoadIdentity();
  for (std::size_t i = 0; i < positions.size(); ++i) {
    const auto light = static_cast<GLenum>(GL_LIGHT0 + i);
    const Four& position = positions[i];
    const Four& colour = colours[i % 3];
    const std::array<GLfloat, 3> back = {-position[0], -position[1], -position[2]};
    glLightfv(light, GL_POSITION, position.data());
    glLightfv(light, GL_DIFFUSE, colour.data());
    glLightfv(light, GL_SPECULAR, colour.data());
    glLightfv(light, GL_SPOT_DIRECTION, back.data());
    glEnable(light);
  }
  glPopMatrix();
}

void setMaterial() {
  constexpr Four ambient = {0.0F, 0.0F, 0.0F, 0.0F};
  constexpr Four diffuse = {1.0F, 1.0F, 1.0F, 0.5F};
  constexpr Four specular = {0.5F, 0.5F, 0.5F, 0.5F};
  glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, ambient.data());
  glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, diffuse.data());
  glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, specular.data());
  glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 128.0F);
}

}  // namespace

void initLights(LightingMode mode) {
  glClearColor(1.0F, 1.0F, 1.0F, 0.0F);
  placeLights(mode);
  constexpr Four globalAmbient = {0.3F, 0.3F, 0.3F, 1.0F};
  glLightModelfv(GL_LIGHT_MODEL_AMBIENT, globalAmbient.data());
  setMaterial();
  glEnable(GL_LIGHTING);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LESS);
  glEnable(GL_POINT_SMOOTH);
  glEnable(GL_LINE_SMOOTH);
  glHint(GL_POINT_SMOOTH_HINT, GL_NICEST);
  glHint(GL_LINE_SMOOTH_HINT, GL_NICEST);
  glHint(GL_POLYGON_SMOOTH_HINT, GL_NICEST);
  glLineWidth(1.0F);
  glPointSize(3.0F);
}

}  // namespace gravlin
