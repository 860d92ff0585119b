#include "Panel/AppIconProvider.h"

#include <QIcon>

namespace tobrin {

QPixmap AppIconProvider::requestPixmap(const QString& id, QSize* size, const QSize& requestedSize) {
  const QString name = QUrl::fromPercentEncoding(id.toUtf8());
  const QIcon icon = name.startsWith('/') ? QIcon(name) : QIcon::fromTheme(name);
  QPixmap pixmap = icon.pixmap(requestedSize);
  if (pixmap.isNull()) {  // the theme has none
    pixmap = QPixmap(requestedSize);
    pixmap.fill(Qt::transparent);
  }
  if (size != nullptr) *size = pixmap.size();
  return pixmap;
}

}  // namespace tobrin
