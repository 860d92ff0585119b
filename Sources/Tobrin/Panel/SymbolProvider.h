/// Renders the program's symbols at any size and colour, so that they are sharp on every screen.
/// Thread: main.
#pragma once

#include <QIcon>
#include <QQuickImageProvider>

namespace tobrin {

/// Answers "image://symbol/NAME/RRGGBB".
class SymbolProvider final : public QQuickImageProvider {
 public:
  SymbolProvider();
  QPixmap requestPixmap(const QString& id, QSize* size, const QSize& requestedSize) override;
};

}  // namespace tobrin
