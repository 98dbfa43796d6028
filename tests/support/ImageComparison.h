#pragma once

#include <string>

#include "view/Image.h"

namespace gravlin::test {

/// How alike two pictures are, from 1 (equal) down to -1: the structural similarity index of Wang,
/// Bovik, Sheikh and Simoncelli in windows of 8 x 8 pixels, averaged over red, green and blue and
/// over all windows except those where both pictures have the same single colour. An empty
/// background would otherwise outweigh every difference. Pictures of different sizes have -1.
double structuralSimilarity(const Image& a, const Image& b);

/// Number of pixels that are not the same in both pictures of the same size.
int differentPixels(const Image& a, const Image& b);

/// The threshold of most pictures. Mesa's other software renderer, which rounds and rasterises in
/// its own way, draws the baselines of the view with a similarity of at least 0.999; a picture
/// turned by two degrees has 0.62, one under lights of another colour 0.71.
constexpr double usualThreshold = 0.99;

/// Compares with the picture `name`.png among the baselines of tests/view. When it is less similar
/// than `threshold`, the test fails and the picture drawn is left in the build folder beside the
/// expected one. With GRAVLIN_UPDATE_BASELINES=1 in the environment the picture drawn becomes the
/// baseline instead: look at it before committing it.
void expectLikeBaseline(const Image& drawn, const std::string& name, double threshold);

}  // namespace gravlin::test
