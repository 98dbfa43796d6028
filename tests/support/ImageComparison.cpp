#include "support/ImageComparison.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string_view>

namespace gravlin::test {
namespace {

constexpr int windowSize = 8;
constexpr int windowPixels = windowSize * windowSize;

/// Sums over one window of one colour channel of two pictures.
struct Moments {
  int a = 0;
  int b = 0;
  int aa = 0;
  int bb = 0;
  int ab = 0;

  void add(int x, int y) {
    a += x;
    b += y;
    aa += x * x;
    bb += y * y;
    ab += x * y;
  }

  bool sameSingleColour() const {
    return a == b && windowPixels * aa == a * a && windowPixels * bb == b * b;
  }

  double similarity() const {
    // The usual constants, which keep quotients of two small numbers from meaning anything.
    constexpr double steadyMean = 0.01 * 255.0 * 0.01 * 255.0;
    constexpr double steadyVariance = 0.03 * 255.0 * 0.03 * 255.0;
    const double n = windowPixels;
    const double meanA = a / n;
    const double meanB = b / n;
    const double varianceA = aa / n - meanA * meanA;
    const double varianceB = bb / n - meanB * meanB;
    const double covariance = ab / n - meanA * meanB;
    return (2.0 * meanA * meanB + steadyMean) * (2.0 * covariance + steadyVariance) /
           ((meanA * meanA + meanB * meanB + steadyMean) *
            (varianceA + varianceB + steadyVariance));
  }
};

Moments momentsOf(const Image& a, const Image& b, int left, int top, int channel) {
  Moments moments;
  for (int y = top; y < top + windowSize; ++y) {
    for (int x = left; x < left + windowSize; ++x) {
      moments.add(a.pixel(x, y)[channel], b.pixel(x, y)[channel]);
    }
  }
  return moments;
}

bool updating() {
  const char* wanted = std::getenv("GRAVLIN_UPDATE_BASELINES");
  return wanted != nullptr && std::string_view(wanted) == "1";
}

}  // namespace

double structuralSimilarity(const Image& a, const Image& b) {
  if (a.width != b.width || a.height != b.height) return -1.0;
  double sum = 0.0;
  int windows = 0;
  for (int top = 0; top + windowSize <= a.height; top += windowSize / 2) {
    for (int left = 0; left + windowSize <= a.width; left += windowSize / 2) {
      for (int channel = 0; channel < 3; ++channel) {
        const Moments moments = momentsOf(a, b, left, top, channel);
        if (moments.sameSingleColour()) continue;
        sum += moments.similarity();
        ++windows;
      }
    }
  }
  return windows == 0 ? 1.0 : sum / windows;
}

int differentPixels(const Image& a, const Image& b) {
  int count = 0;
  for (std::size_t i = 0; i + 2 < std::min(a.rgb.size(), b.rgb.size()); i += 3) {
    const bool same =
        a.rgb[i] == b.rgb[i] && a.rgb[i + 1] == b.rgb[i + 1] && a.rgb[i + 2] == b.rgb[i + 2];
    if (!same) ++count;
  }
  return count;
}

void expectLikeBaseline(const Image& drawn, const std::string& name, double threshold) {
  const std::filesystem::path expectedPath =
      std::filesystem::path(GRAVLIN_BASELINES) / (name + ".png");
  if (updating()) {
    writePng(drawn, expectedPath);
    return;
  }
  ASSERT_TRUE(std::filesystem::exists(expectedPath)) << "no baseline " << expectedPath;
  const Image expected = readPng(expectedPath);
  const double similarity = structuralSimilarity(drawn, expected);
  if (similarity >= threshold) return;
  const std::filesystem::path drawnPath =
      std::filesystem::path(GRAVLIN_DRAWN_PICTURES) / (name + ".png");
  std::filesystem::create_directories(drawnPath.parent_path());
  writePng(drawn, drawnPath);
  ADD_FAILURE() << "similarity " << similarity << " is below " << threshold << "; expected "
                << expectedPath << ", drawn " << drawnPath;
}

}  // namespace gravlin::test
