#include "Panel/SymbolProvider.h"

#include "Panel/SymbolPixmap.h"

namespace tobrin {

SymbolProvider::SymbolProvider() : QQuickImageProvider(QQuickImageProvider::Pixmap) {}

QPixmap SymbolProvider::requestPixmap(const QString& id, QSize* size, const QSize& requestedSize) {
  constexpr int defaultPixels = 24;
  const QStringList parts = id.split('/');
  const int pixels = requestedSize.width() > 0 ? requestedSize.width() : defaultPixels;
  const QColor color(parts.size() > 1 ? "#" + parts[1] : QStringLiteral("#000000"));
  if (size != nullptr) *size = QSize(pixels, pixels);
  return symbolPixmap(":/Tobrin/Symbols/" + parts[0] + ".svg", color, pixels);
}

}  // namespace tobrin
