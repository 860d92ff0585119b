#include "Panel/Placing/BesideAnchor.h"

#include <algorithm>

namespace tobrin {

QPoint besideAnchor(QPoint anchor, QSize size, QRect room) {
  constexpr int gap = 8;  // between anchor and window
  const bool below = anchor.y() < room.center().y();
  const int left = anchor.x() - size.width() / 2;
  const int top = below ? anchor.y() + gap : anchor.y() - gap - size.height();
  // The left and upper edges are seen even of a window that is larger than the room.
  return {qMax(room.left(), qMin(left, room.right() + 1 - size.width())),
          qMax(room.top(), qMin(top, room.bottom() + 1 - size.height()))};
}

QRect lowestOf(const QList<QRect>& rooms) {
  const auto lowest = std::ranges::min_element(rooms, {}, &QRect::height);
  return lowest == rooms.end() ? QRect() : *lowest;
}

}  // namespace tobrin
