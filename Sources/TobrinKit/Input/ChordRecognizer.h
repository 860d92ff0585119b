/// Recognises one key combination in a stream of key events: the way to a global shortcut where the
/// desktop offers none. Other programs see the keys as well. Thread: any.
#pragma once

#include <cstdint>
#include <functional>

#include "Base/KeyEvent.h"
#include "Base/Mutex.h"
#include "Input/Hotkey.h"

namespace tobrin {

class ChordRecognizer final {
 public:
  /// From now on `pressed` is called within `observe` at each press of the combination: exactly
  /// its modifiers, of either side, Caps Lock and Num Lock aside. Thread: any.
  void set(const Hotkey& hotkey, std::function<void()> pressed);

  /// When it returns, the last `pressed` has ended. Not to be called within `pressed`.
  void clear();

  /// Takes one event; must get every event, even while no combination is set. Thread: key.
  void observe(const KeyEvent& event);

 private:
  [[nodiscard]] uint32_t modifiers() const;

  uint32_t held_ = 0;  // key thread: flags of the modifier keys held, as `ModifierTracker` has them

  Mutex mutex_;
  Hotkey hotkey_ TOBRIN_GUARDED_BY(mutex_);
  std::function<void()> pressed_ TOBRIN_GUARDED_BY(mutex_);  // empty: no combination is set
};

}  // namespace tobrin
