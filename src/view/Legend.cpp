#include "view/Legend.h"

#include <cmath>
#include <string>

#include "view/ValueText.h"

namespace gravlin {
namespace {

constexpr int margin = 8;
constexpr int barWidth = 14;
constexpr int barHeight = 141;  // odd, so that one row lies in the middle
constexpr int labelHeight = 16;
constexpr double lastPlace = 2.1;  // of the scale, on either side of the mean

double valueAt(double place, const Spread& spread) {
  return spread.mean + place / 1.5 * spread.deviation;
}

/// A field without values, or with one that is not finite, has no scale to name values of.
std::string labelOf(double value) {
  return std::isnan(value) ? "-" : shortText(value, 4);
}

}  // namespace

LegendLayout legendOf(const FieldColours& colours, const ViewSize& size) {
  const int left = size.width - margin - barWidth;
  LegendLayout layout;
  layout.bar = {left, margin, barWidth, {}};
  for (int row = 0; row < barHeight; ++row) {
    const double place = lastPlace * (1.0 - 2.0 * row / (barHeight - 1));
    // Through the value, so that a field of equal values has a black bar as it has a black mesh.
    layout.bar.rows.push_back(colours[valueAt(place, colours.spread)]);
  }
  for (const int part : {0, 1, 2}) {
    const double value = valueAt(lastPlace * (1 - part), colours.spread);
    const int middle = margin + part * (barHeight - 1) / 2;
    layout.labels.push_back({.x = left - margin / 2,
                             .y = middle - (part == 0 ? 0 : labelHeight * part / 2),
                             .text = labelOf(value),
                             .rightAligned = true});
  }
  return layout;
}

}  // namespace gravlin
