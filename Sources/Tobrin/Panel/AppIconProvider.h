/// Pictures of applications for Image elements: "image://app/NAME", by the desktop's theme or the
/// path of a file. Thread: main.
#pragma once

#include <QQuickImageProvider>

namespace tobrin {

class AppIconProvider final : public QQuickImageProvider {
 public:
  AppIconProvider() : QQuickImageProvider(QQuickImageProvider::Pixmap) {}
  QPixmap requestPixmap(const QString& id, QSize* size, const QSize& requestedSize) override;
};

}  // namespace tobrin
