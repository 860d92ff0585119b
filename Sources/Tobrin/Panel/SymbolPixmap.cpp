#include "Panel/SymbolPixmap.h"

#include <QPainter>
#include <QSvgRenderer>

namespace tobrin {

QPixmap symbolPixmap(const QString& file, const QColor& color, int pixels) {
  QPixmap pixmap(pixels, pixels);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  QSvgRenderer(file).render(&painter);
  // The drawing gives the shape, the colour fills it.
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(pixmap.rect(), color);
  return pixmap;
}

}  // namespace tobrin
