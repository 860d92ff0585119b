/// A symbol drawn from its vector file in one colour. Thread: main.
#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

namespace tobrin {

/// Draws `file` (an SVG in black) with `color` into a square of `pixels`. An unreadable file gives
/// a transparent square.
QPixmap symbolPixmap(const QString& file, const QColor& color, int pixels);

}  // namespace tobrin
