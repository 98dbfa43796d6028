#pragma once

#include <QIcon>

namespace gravlin {

/// The pictures of the toolbar, drawn in the colours of the palette at whatever size is asked for.
enum class Pictogram { New, Open, Save, Undo, Flat, Smooth, Wire, Points, Guide };

QIcon iconOf(Pictogram pictogram);

/// The icon of the program, made of the polygons of packaging/gravlin.svg.
QIcon programIcon();

}  // namespace gravlin
