#include "generator/Gear.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace gravlin::examples {
namespace {

// The surface is a grid: loops of equally many points run around the axis, one inside the other
// from the bore to the teeth over the top of the gear and back along its underside.
constexpr int toothCount = 12;
constexpr int pointsPerTooth = 8;
constexpr int around = toothCount * pointsPerTooth;

constexpr int sectorWidth = around / gearSlotCount;  // columns from one slot to the next
constexpr int slotWidth = sectorWidth / 2;           // columns of a slot's straight part
constexpr double slotInner = 12.0;                   // radii of a slot's two sides
constexpr double slotOuter = 16.0;
constexpr int slotDepth = 6;  // quadrilaterals from one side to the other

constexpr double halfHub = 8.0;
constexpr double halfRim = 6.0;
constexpr double halfWeb = 2.5;

/// A point of a loop without its height.
struct Polar {
  double radius;
  double angle;
};

using Loop = std::vector<Vec3>;

double angleOf(int column) {
  return 2.0 * std::numbers::pi * column / around;
}

Vec3 at(const Polar& p, double z) {
  return {p.radius * std::cos(p.angle), p.radius * std::sin(p.angle), z};
}

Loop circle(double radius, double z) {
  Loop loop;
  for (int i = 0; i < around; ++i) loop.push_back(at({radius, angleOf(i)}, z));
  return loop;
}

/// The outline of the teeth: per tooth the middle of the gap, the foot, the flank and the tip on
/// one side, the middle of the tip and the same back.
Loop teeth(double z) {
  const double degree = std::numbers::pi / 180.0;
  const double pitch = 360.0 / toothCount * degree;
  constexpr std::array<Polar, 5> half = {
      {{20.0, -15.0}, {20.0, -9.6}, {23.8, -7.0}, {27.0, -3.4}, {27.0, 0.0}}};
  Loop loop;
  for (int tooth = 0; tooth < toothCount; ++tooth) {
    for (int k = 0; k < pointsPerTooth; ++k) {
      const bool second = k > 4;
      const Polar& p = half[static_cast<std::size_t>(second ? 8 - k : k)];
      const double side = (second ? -p.angle : p.angle) * degree;
      loop.push_back(at({p.radius, (tooth + 0.5) * pitch + side}, z));
    }
  }
  return loop;
}

/// A bore of radius 5 with a keyway of 3 x 2, everything `grown` further out.
Loop bore(double grown, double z) {
  constexpr int corner = 6;  // columns from the middle of the keyway to its edge
  constexpr int opposite = around / 2;
  const double halfKey = 1.5 + grown;
  const double radius = 5.0 + grown;
  const double top = 7.0 + grown;
  const double keyAngle = std::asin(halfKey / radius);
  const double keyFoot = radius * std::cos(keyAngle);
  Loop loop;
  for (int i = 0; i < around; ++i) {
    const int column = i <= opposite ? i : i - around;
    const int steps = std::abs(column);
    const double side = column < 0 ? -1.0 : 1.0;
    if (steps <= corner - 2) {
      loop.push_back({top, side * halfKey * steps / (corner - 2), z});
    } else if (steps < corner) {
      loop.push_back({(top + keyFoot) / 2.0, side * halfKey, z});
    } else {
      const double share = static_cast<double>(steps - corner) / (opposite - corner);
      loop.push_back(at({radius, side * (keyAngle + share * (std::numbers::pi - keyAngle))}, z));
    }
  }
  return loop;
}

Loop between(const Loop& from, const Loop& to, double share) {
  Loop loop;
  for (std::size_t i = 0; i < from.size(); ++i) {
    loop.push_back((1.0 - share) * from[i] + share * to[i]);
  }
  return loop;
}

/// The first column of a slot's straight part.
int slotStart(int slot) {
  return slot * sectorWidth + (sectorWidth - slotWidth) / 2;
}

bool insideSlot(int column, int margin) {
  const int place = column % sectorWidth - slotStart(0);
  return place >= margin && place <= slotWidth - margin;
}

/// The rows of the web from one side of the slots to the other. `web` has one row more at each end.
/// Bends the ends of the slots into half circles and lets the points between slots make room.
void roundSlotEnds(std::span<Loop> web) {
  const double middle = (slotInner + slotOuter) / 2.0;
  const double radius = (slotOuter - slotInner) / 2.0;
  for (int slot = 0; slot < gearSlotCount; ++slot) {
    for (const bool atEnd : {false, true}) {
      const int column = slotStart(slot) + (atEnd ? slotWidth : 0);
      const double angle = angleOf(column);
      const Vec3 outward = {std::cos(angle), std::sin(angle), 0.0};
      const Vec3 along = (atEnd ? 1.0 : -1.0) * Vec3{-outward.y, outward.x, 0.0};
      for (int k = 0; k <= slotDepth; ++k) {
        const double turn = std::numbers::pi * (static_cast<double>(k) / slotDepth - 0.5);
        web[static_cast<std::size_t>(k) + 1][static_cast<std::size_t>(column)] =
            (middle + radius * std::sin(turn)) * outward + radius * std::cos(turn) * along +
            Vec3{0.0, 0.0, halfWeb};
      }
    }
  }
  for (int round = 0; round < 100; ++round) {
    const std::vector<Loop> old(web.begin(), web.end());
    for (std::size_t k = 1; k + 1 < web.size(); ++k) {
      for (std::size_t i = 0; i < around; ++i) {
        if (insideSlot(static_cast<int>(i), 0)) continue;
        web[k][i] = 0.25 * (old[k - 1][i] + old[k + 1][i] + old[k][(i + 1) % around] +
                            old[k][(i + around - 1) % around]);
      }
    }
  }
}

/// The top of the gear from the edge of the bore to the edge of the teeth.
struct Top {
  std::vector<Loop> loops;
  std::size_t slotRow = 0;  ///< the loop along the inner sides of the slots
};

Top makeTop() {
  Top top;
  std::vector<Loop>& loops = top.loops;
  loops = {bore(0.8, halfHub), circle(9.0, halfHub), circle(9.0, 6.2)};
  const double fillet = 2.0;
  for (int k = 0; k <= 4; ++k) {
    const double turn = std::numbers::pi / 8.0 * k;
    loops.push_back(
        circle(9.0 + fillet - fillet * std::cos(turn), halfWeb + fillet - fillet * std::sin(turn)));
  }
  top.slotRow = loops.size();
  for (int k = 0; k <= slotDepth; ++k) {
    loops.push_back(circle(slotInner + (slotOuter - slotInner) * k / slotDepth, halfWeb));
  }
  loops.push_back(circle(17.3, halfWeb));
  roundSlotEnds(std::span(loops).subspan(top.slotRow - 1, slotDepth + 3));
  loops.push_back(circle(17.55, (halfWeb + halfRim) / 2.0));
  const Loop rim = circle(17.8, halfRim);
  const Loop edge = teeth(halfRim);
  for (const double share : {0.0, 0.3, 0.65, 1.0}) loops.push_back(between(rim, edge, share));
  return top;
}

/// The loops as indices of points, -1 for those that a slot cuts away.
using IndexLoop = std::array<int, around>;

IndexLoop addLoop(Shape& shape, const Loop& loop, bool cutBySlots, double turnedOver) {
  IndexLoop indices;
  for (std::size_t i = 0; i < around; ++i) {
    const Vec3& p = loop[i];
    indices[i] = cutBySlots && insideSlot(static_cast<int>(i), 1)
                     ? -1
                     : shape.add({p.x, p.y, turnedOver * p.z});
  }
  return indices;
}

void addStrip(Shape& shape, const IndexLoop& from, const IndexLoop& to, bool cutBySlots) {
  for (std::size_t i = 0; i < around; ++i) {
    const std::size_t next = (i + 1) % around;
    if (cutBySlots && insideSlot(static_cast<int>(i), 0) && insideSlot(static_cast<int>(next), 0)) {
      continue;
    }
    shape.addQuad(from[i], to[i], to[next], from[next]);
  }
}

/// The walls of a slot between the web's two faces. The loops of either face run along the slot.
void addSlotWalls(Shape& shape, std::span<const IndexLoop> above, std::span<const IndexLoop> below,
                  int slot) {
  struct Place {
    std::size_t row, column;
  };
  std::vector<Place> border;  // counter-clockwise seen from above
  const auto first = static_cast<std::size_t>(slotStart(slot));
  for (std::size_t i = 0; i < slotWidth; ++i) border.push_back({0, first + i});
  for (std::size_t k = 0; k < slotDepth; ++k) border.push_back({k, first + slotWidth});
  for (std::size_t i = slotWidth; i > 0; --i) border.push_back({slotDepth, first + i});
  for (std::size_t k = slotDepth; k > 0; --k) border.push_back({k, first});
  for (std::size_t j = 0; j < border.size(); ++j) {
    const Place& p = border[j];
    const Place& q = border[(j + 1) % border.size()];
    shape.addQuad(above[p.row][p.column], below[p.row][p.column], below[q.row][q.column],
                  above[q.row][q.column]);
  }
}

}  // namespace

Shape gear() {
  const Top top = makeTop();
  Shape shape;
  std::vector<IndexLoop> above, below;
  for (std::size_t k = 0; k < top.loops.size(); ++k) {
    const bool cut = k > top.slotRow && k < top.slotRow + slotDepth;
    above.push_back(addLoop(shape, top.loops[k], cut, 1.0));
    below.push_back(addLoop(shape, top.loops[k], cut, -1.0));
  }
  for (const auto* face : {&above, &below}) {
    for (std::size_t k = 0; k + 1 < face->size(); ++k) {
      const bool cut = k >= top.slotRow && k < top.slotRow + slotDepth;
      const std::size_t inner = face == &above ? k : k + 1;
      const std::size_t outer = face == &above ? k + 1 : k;
      addStrip(shape, (*face)[inner], (*face)[outer], cut);
    }
  }
  for (int slot = 0; slot < gearSlotCount; ++slot) {
    addSlotWalls(shape, std::span(above).subspan(top.slotRow),
                 std::span(below).subspan(top.slotRow), slot);
  }
  // Down the teeth and up the bore.
  std::vector<IndexLoop> sides = {above.back()};
  for (const double z : {2.0, -2.0}) sides.push_back(addLoop(shape, teeth(z), false, 1.0));
  sides.push_back(below.back());
  for (std::size_t k = 0; k + 1 < sides.size(); ++k) addStrip(shape, sides[k], sides[k + 1], false);
  sides = {below.front()};
  for (const double z : {-7.2, -2.4, 2.4, 7.2}) {
    sides.push_back(addLoop(shape, bore(0.0, z), false, 1.0));
  }
  sides.push_back(above.front());
  for (std::size_t k = 0; k + 1 < sides.size(); ++k) addStrip(shape, sides[k], sides[k + 1], false);
  return shape;
}

}  // namespace gravlin::examples
