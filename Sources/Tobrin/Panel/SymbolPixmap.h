/// A symbol or an icon drawn from its vector file. Thread: main.
#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

namespace tobrin {

/// Draws `file` (an SVG) into a square of `pixels`. An unreadable file gives a transparent square.
QPixmap drawnPixmap(const QString& file, int pixels);

/// The same with `color` in place of the drawing's own.
QPixmap symbolPixmap(const QString& file, const QColor& color, int pixels);

}  // namespace tobrin
