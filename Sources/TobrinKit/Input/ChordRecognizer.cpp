#include "Input/ChordRecognizer.h"

#include <utility>

#include "Base/Key.h"
#include "Input/ModifierTracker.h"

namespace tobrin {
namespace {

struct Sides {
  uint32_t modifier;
  Key left;
  Key right;
};
constexpr Sides sides[] = {{Modifiers::control, Key::leftControl, Key::rightControl},
                           {Modifiers::option, Key::leftOption, Key::rightOption},
                           {Modifiers::shift, Key::leftShift, Key::rightShift},
                           {Modifiers::command, Key::leftCommand, Key::rightCommand}};

}  // namespace

void ChordRecognizer::set(const Hotkey& hotkey, std::function<void()> pressed) {
  const MutexLock lock(mutex_);
  hotkey_ = hotkey;
  pressed_ = std::move(pressed);
}

void ChordRecognizer::clear() {
  const MutexLock lock(mutex_);
  pressed_ = nullptr;
}

void ChordRecognizer::observe(const KeyEvent& event) {
  const bool isPress = event.action == KeyAction::down;
  if (isPress) {
    const MutexLock lock(mutex_);
    // A modifier key may be the combination's own key: what counts was held before it.
    if (pressed_ && event.code == hotkey_.keyCode && modifiers() == hotkey_.modifiers.rawValue) {
      pressed_();
    }
  }
  const uint32_t mask = ModifierTracker::mask(event.code);
  held_ = isPress ? held_ | mask : held_ & ~mask;
}

uint32_t ChordRecognizer::modifiers() const {
  uint32_t result = 0;
  for (const Sides& side : sides) {
    const uint32_t either =
        ModifierTracker::mask(codeOf(side.left)) | ModifierTracker::mask(codeOf(side.right));
    if ((held_ & either) != 0) result |= side.modifier;
  }
  return result;
}

}  // namespace tobrin
