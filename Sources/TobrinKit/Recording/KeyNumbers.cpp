#include "Recording/KeyNumbers.h"

#include "Input/KeyLayout.h"

namespace tobrin {

std::optional<RecordedKey> KeyNumbers::recorded(const KeyEvent& event, std::optional<float> force) {
  const bool isDown = event.action == KeyAction::down;
  auto known = keys_.find(event.code);
  if (known == keys_.end()) {
    if (!isDown) return std::nullopt;
    known = keys_.emplace(event.code, Known{static_cast<uint32_t>(keys_.size()), false}).first;
  }
  if (known->second.isDown == isDown) return std::nullopt;
  known->second.isDown = isDown;
  // Unsigned differences wrap, so that a key just before the first frame has a small negative time.
  const auto time = static_cast<int64_t>(event.time - firstFrame_);
  return RecordedKey{time, event.action, keyGroupOf(event.code), known->second.number,
                     isDown ? force : std::nullopt};
}

}  // namespace tobrin
