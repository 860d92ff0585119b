/// Where a panel goes that belongs to a place in one of the desktop's bars. Thread: any.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace tobrin {

/// Kept free at the edges of the screen, in the desktop's pixels.
constexpr int screenEdge = 8;

/// The left upper corner of a window of that size next to `anchor`, below it in the upper half of
/// `room` and above it in the lower half, and within `room`. All in the desktop's coordinates.
QPoint besideAnchor(QPoint anchor, QSize size, QRect room);

}  // namespace tobrin
