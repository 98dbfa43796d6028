#include "view/HistogramDrawing.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "view/Text.h"
#include "view/ValueText.h"

namespace gravlin {
namespace {

constexpr int margin = 15;  // on the left, on the right and below the bars
constexpr int textTop = 8;
constexpr int lineHeight = 17;
constexpr int emSize = 13;
constexpr int textLines = 4;
constexpr int barsTop = 2 * textTop + textLines * lineHeight;

using Rgb = std::array<std::uint8_t, 3>;

void setPixel(Image& image, int x, int y, const Rgb& rgb) {
  if (x < 0 || y < 0 || x >= image.width || y >= image.height) return;
  const std::size_t at = 3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                              static_cast<std::size_t>(x));
  std::copy(rgb.begin(), rgb.end(), image.rgb.begin() + static_cast<std::ptrdiff_t>(at));
}

void paint(Image& image, const HistogramDrawing::Bar& bar) {
  const auto byte = [](float component) { return static_cast<std::uint8_t>(component * 255.0F); };
  const Rgb rgb = {byte(bar.colour.r), byte(bar.colour.g), byte(bar.colour.b)};
  for (int y = 0; y < bar.length; ++y) setPixel(image, bar.x, bar.bottom - y, rgb);
}

void paint(Image& image, const HistogramDrawing::Text& text, const Font& font) {
  const TextImage line = font.draw(text.text, emSize);
  for (int row = 0; row < line.height; ++row) {
    for (int column = 0; column < line.width; ++column) {
      const std::uint8_t grey =
          line.grey[static_cast<std::size_t>(row) * static_cast<std::size_t>(line.width) +
                    static_cast<std::size_t>(column)];
      setPixel(image, text.x + column, text.y + line.height - 1 - row, {grey, grey, grey});
    }
  }
}

}  // namespace

HistogramDrawing drawingOf(const Histogram& histogram, const ViewSize& size) {
  HistogramDrawing drawing;
  if (histogram.values.empty()) return drawing;
  const std::array<std::string, textLines> lines = {
      "Clip Min: " + fixedText(histogram.clipMin), "Clip Max: " + fixedText(histogram.clipMax),
      "Average : " + fixedText(histogram.spread.mean),
      "Varience: " + fixedText(histogram.spread.deviation)};  // deliberate: not its square
  int y = textTop;
  for (const std::string& line : lines) {
    drawing.texts.push_back({margin, y, line});
    y += lineHeight;
  }
  const std::int64_t height = std::max(0, size.height - margin - barsTop);
  drawing.bars.reserve(histogram.bins.size());
  for (std::size_t i = 0; i < histogram.bins.size(); ++i) {
    const auto length = static_cast<int>(histogram.bins[i] * height / histogram.maxBin);
    drawing.bars.push_back({margin + static_cast<int>(i), size.height - margin - 1, length,
                            scaleColour(scalePlace(histogram.binStart[i], histogram.spread))});
  }
  return drawing;
}

std::optional<std::string> binTextAt(const Histogram& histogram, int x) {
  if (histogram.values.empty() || x < margin || x - margin >= histogram.binCount) {
    return std::nullopt;
  }
  const auto bin = static_cast<std::size_t>(x - margin);
  return shortText(histogram.binStart[bin]) + ": " + std::to_string(histogram.bins[bin]);
}

Image drawHistogram(Histogram& histogram, const ViewSize& size) {
  histogram.setWindowWidth(size.width);
  Image image = {size.width, size.height, {}};
  image.rgb.assign(3 * static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height),
                   255);
  const HistogramDrawing drawing = drawingOf(histogram, size);
  const Font font;
  for (const HistogramDrawing::Text& text : drawing.texts) paint(image, text, font);
  for (const HistogramDrawing::Bar& bar : drawing.bars) paint(image, bar);
  return image;
}

}  // namespace gravlin
