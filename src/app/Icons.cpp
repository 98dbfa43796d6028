#include "app/Icons.h"

#include <array>
#include <functional>
#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>
#include <QXmlStreamReader>
#include <utility>
#include <vector>

namespace gravlin {
namespace {

// The pictograms are drawn in a square of 16 x 16 units.

/// The corners of a hexagon seen as a cube from above, and its middle.
constexpr std::array<QPointF, 6> hexagon = {QPointF(8, 1.5),  QPointF(14, 4.75), QPointF(14, 11.25),
                                            QPointF(8, 14.5), QPointF(2, 11.25), QPointF(2, 4.75)};
constexpr QPointF middle(8, 8);

void drawNew(QPainter& painter) {
  painter.drawPolygon(QPolygonF({{3.5, 1.5}, {9.5, 1.5}, {12.5, 4.5}, {12.5, 14.5}, {3.5, 14.5}}));
  painter.drawPolyline(QPolygonF({{9.5, 1.5}, {9.5, 4.5}, {12.5, 4.5}}));
}

void drawOpen(QPainter& painter) {
  painter.drawPolyline(
      QPolygonF({{1.5, 13.5}, {1.5, 3.5}, {6, 3.5}, {7.5, 5.5}, {12.5, 5.5}, {12.5, 7.5}}));
  painter.drawPolygon(QPolygonF({{1.5, 13.5}, {4, 7.5}, {15, 7.5}, {12.5, 13.5}}));
}

void drawSave(QPainter& painter) {
  painter.drawPolygon(QPolygonF({{2.5, 2.5}, {11.5, 2.5}, {13.5, 4.5}, {13.5, 13.5}, {2.5, 13.5}}));
  painter.drawRect(QRectF(5, 2.5, 5, 3.5));
  painter.drawRect(QRectF(4.5, 8.5, 7, 5));
}

void drawUndo(QPainter& painter) {
  QPainterPath arrow(QPointF(3, 6));
  arrow.lineTo(9.5, 6);
  arrow.arcTo(QRectF(5.75, 6, 7.5, 7.5), 90, -180);
  arrow.lineTo(5, 13.5);
  painter.drawPath(arrow);
  painter.drawPolyline(QPolygonF({{6, 2.75}, {2.75, 6}, {6, 9.25}}));
}

/// Three sides of a cube in three shades, with the light from the upper left.
void drawFlat(QPainter& painter) {
  constexpr std::array<int, 3> shades = {215, 130, 175};
  for (std::size_t side = 0; side < shades.size(); ++side) {
    const std::size_t first = (2 * side + 5) % hexagon.size();
    painter.setBrush(QColor(shades[side], shades[side], shades[side]));
    painter.drawPolygon(QPolygonF({middle, hexagon[first], hexagon[(first + 1) % hexagon.size()],
                                   hexagon[(first + 2) % hexagon.size()]}));
  }
}

void drawSmooth(QPainter& painter) {
  QRadialGradient shade(QPointF(6, 5.5), 9);
  shade.setColorAt(0, QColor(245, 245, 245));
  shade.setColorAt(1, QColor(105, 105, 105));
  painter.setBrush(shade);
  painter.drawEllipse(middle, 6.25, 6.25);
}

void drawWire(QPainter& painter) {
  painter.drawPolygon(hexagon.data(), static_cast<int>(hexagon.size()));
  for (const QPointF& corner : hexagon) painter.drawLine(middle, corner);
}

void drawPoints(QPainter& painter) {
  painter.setBrush(painter.pen().color());
  for (const QPointF& corner : hexagon) painter.drawEllipse(corner, 1, 1);
  painter.drawEllipse(middle, 1, 1);
}

void drawGuide(QPainter& painter) {
  painter.drawEllipse(middle, 6.25, 6.25);
  QPainterPath hook(QPointF(5.75, 6.5));
  hook.arcTo(QRectF(5.75, 4.25, 4.5, 4.25), 180, -225);
  hook.quadTo(8, 8.75, 8, 10);
  painter.drawPath(hook);
  painter.drawPoint(QPointF(8, 12));
}

void draw(Pictogram pictogram, QPainter& painter) {
  switch (pictogram) {
    case Pictogram::New:
      return drawNew(painter);
    case Pictogram::Open:
      return drawOpen(painter);
    case Pictogram::Save:
      return drawSave(painter);
    case Pictogram::Undo:
      return drawUndo(painter);
    case Pictogram::Flat:
      return drawFlat(painter);
    case Pictogram::Smooth:
      return drawSmooth(painter);
    case Pictogram::Wire:
      return drawWire(painter);
    case Pictogram::Points:
      return drawPoints(painter);
    case Pictogram::Guide:
      return drawGuide(painter);
  }
}

/// An icon that a function draws anew at every size.
class DrawnIcon : public QIconEngine {
 public:
  using Draw = std::function<void(QPainter&)>;

  /// `drawPicture` draws in a square of unitsWide x unitsWide.
  DrawnIcon(Draw drawPicture, double unitsWide) : draw(std::move(drawPicture)), units(unitsWide) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*s*/) override {
    constexpr double opacityOfDisabled = 0.35;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(rect.topLeft());
    painter->scale(rect.width() / units, rect.height() / units);
    if (mode == QIcon::Disabled) painter->setOpacity(opacityOfDisabled);
    draw(*painter);
    painter->restore();
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap picture(size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return picture;
  }

  QIconEngine* clone() const override { return new DrawnIcon(*this); }

 private:
  Draw draw;
  double units;
};

struct FilledPolygon {
  QPolygonF corners;
  QColor fill;
};

/// The polygons of a drawing that consists of nothing else.
std::vector<FilledPolygon> polygonsOf(const QString& svg) {
  std::vector<FilledPolygon> polygons;
  QFile file(svg);
  if (!file.open(QIODevice::ReadOnly)) return polygons;
  QXmlStreamReader reader(&file);
  while (!reader.atEnd()) {
    if (reader.readNext() != QXmlStreamReader::StartElement || reader.name() != u"polygon")
      continue;
    FilledPolygon polygon;
    polygon.fill = QColor(reader.attributes().value("fill").toString());
    for (const QString& pair : reader.attributes().value("points").toString().split(' ')) {
      const QStringList xy = pair.split(',');
      polygon.corners << QPointF(xy.value(0).toDouble(), xy.value(1).toDouble());
    }
    polygons.push_back(polygon);
  }
  return polygons;
}

}  // namespace

QIcon iconOf(Pictogram pictogram) {
  constexpr double unitsWide = 16;
  const auto drawInPaletteColours = [pictogram](QPainter& painter) {
    painter.setPen(QPen(QGuiApplication::palette().buttonText(), 1.0, Qt::SolidLine, Qt::RoundCap,
                        Qt::RoundJoin));
    draw(pictogram, painter);
  };
  return QIcon(new DrawnIcon(drawInPaletteColours, unitsWide));
}

QIcon programIcon() {
  constexpr double unitsWide = 128;
  const auto drawPolygons = [polygons = polygonsOf(":/icon/gravlin.svg")](QPainter& painter) {
    painter.setPen(QPen(Qt::white, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const FilledPolygon& polygon : polygons) {
      painter.setBrush(polygon.fill);
      painter.drawPolygon(polygon.corners);
    }
  };
  return QIcon(new DrawnIcon(drawPolygons, unitsWide));
}

}  // namespace gravlin
