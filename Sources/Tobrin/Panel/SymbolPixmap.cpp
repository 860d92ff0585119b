#include "Panel/SymbolPixmap.h"

#include <QPainter>
#include <QSvgRenderer>

namespace tobrin {

QPixmap drawnPixmap(const QString& file, int pixels) {
  QPixmap pixmap(pixels, pixels);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  QSvgRenderer(file).render(&painter);
  return pixmap;
}

QPixmap symbolPixmap(const QString& file, const QColor& color, int pixels) {
  QPixmap pixmap = drawnPixmap(file, pixels);
  // The drawing gives the shape, the colour fills it.
  QPainter painter(&pixmap);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(pixmap.rect(), color);
  return pixmap;
}

}  // namespace tobrin
