/// Where a panel goes that belongs to a place in one of the desktop's bars, and for which room.
/// Thread: any.
#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>

namespace tobrin {

/// Kept free at the edges of the screen, in the desktop's pixels.
constexpr int screenEdge = 8;

/// The left upper corner of a window of that size next to `anchor`, below it in the upper half of
/// `room` and above it in the lower half, and within `room`. All in the desktop's coordinates.
QPoint besideAnchor(QPoint anchor, QSize size, QRect room);

/// Of rooms on several screens the one with the least height; empty where there are none.
QRect lowestOf(const QList<QRect>& rooms);

}  // namespace tobrin
