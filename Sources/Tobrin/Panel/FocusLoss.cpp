#include "Panel/FocusLoss.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

/// Pointer and focus leave in either order, at most 100 ms apart; on X11 the toolkit reports the
/// focus another 100 ms late.
constexpr FocusLoss::Duration together = 250ms;
/// A hand takes that long from the tray to the panel; on its way the pointer crosses other windows.
constexpr FocusLoss::Duration onItsWay = 1500ms;

}  // namespace

void FocusLoss::opened() {
  pointer_ = Pointer::awaited;
  left_.reset();
}

void FocusLoss::pointerEntered() {
  pointer_ = Pointer::inside;
}

void FocusLoss::pointerLeft(Time now) {
  pointer_ = Pointer::outside;
  left_ = now;
}

void FocusLoss::focusLost(Time now, bool byKeyboard) {
  lost_ = now;
  byKeyboard_ = byKeyboard;
  pointerAtLoss_ = pointer_;
}

FocusLoss::Duration FocusLoss::patience() const {
  if (byKeyboard_) return 0ms;
  switch (pointerAtLoss_) {
    case Pointer::awaited:
      return onItsWay;
    case Pointer::inside:
      return together;
    case Pointer::outside:
      return 0ms;
  }
  return 0ms;
}

bool FocusLoss::wentWithPointer() const {
  if (byKeyboard_) return false;
  if (pointerAtLoss_ == Pointer::awaited) return pointer_ != Pointer::awaited;
  return left_ && (*left_ < lost_ ? lost_ - *left_ : *left_ - lost_) <= together;
}

}  // namespace tobrin
