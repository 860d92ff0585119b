#include "Evdev/HeldKeys.h"

#include "Base/Key.h"
#include "Evdev/KeyCodes.h"
#include "Input/ModifierTracker.h"

namespace tobrin {

std::optional<KeySource::Event> HeldKeys::take(uint32_t kernelCode, Change change,
                                               std::optional<uint64_t> time) {
  auto code = virtualCodeOf(kernelCode);
  if (!code) code = mouseCodeOf(kernelCode);
  if (!code || kernelCode >= held_.size()) return std::nullopt;
  held_[kernelCode] = change != Change::release;
  const uint32_t mask = ModifierTracker::mask(*code);
  flags_ = change == Change::release ? flags_ & ~mask : flags_ | mask;

  KeySource::Event event{.code = *code, .flags = flags_, .time = time, .keyboard = keyboard_};
  if (ModifierTracker::isModifier(*code)) {
    // Caps Lock changes its flag when pressed, all others when pressed and released.
    const bool capsReleased = *code == codeOf(Key::capsLock) && change == Change::release;
    if (change == Change::repeat || capsReleased) return std::nullopt;
    event.type = KeySource::EventType::flagsChanged;
    return event;
  }
  event.type =
      change == Change::release ? KeySource::EventType::keyUp : KeySource::EventType::keyDown;
  event.autorepeat = change == Change::repeat;
  return event;
}

void HeldKeys::preset(uint32_t kernelCode) {
  take(kernelCode, Change::press, std::nullopt);
}

void HeldKeys::releaseAll(std::optional<uint64_t> time, const KeySource::Sink& sink) {
  for (uint32_t kernelCode = 0; kernelCode < held_.size(); ++kernelCode) {
    if (!held_[kernelCode]) continue;
    if (const auto event = take(kernelCode, Change::release, time)) sink(*event);
  }
}

}  // namespace tobrin
