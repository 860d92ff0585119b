/// The keys held on one keyboard, or the buttons on one mouse, by kernel code: turns its raw
/// presses and releases into key source events. Each keyboard has one, so that a keyboard that
/// loses a release (a remapper took it over, its session went into the background) cannot leave a
/// modifier stuck on the others. Thread: key.
#pragma once

#include <bitset>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "Input/KeySource.h"

namespace tobrin {

class HeldKeys {
 public:
  enum class Change : uint8_t { release, press, repeat };

  /// `keyboard` is the keyboard's name for itself, which each event carries.
  explicit HeldKeys(std::string keyboard = {}) : keyboard_(std::move(keyboard)) {}

  /// The name that it was made with.
  [[nodiscard]] const std::string& name() const { return keyboard_; }

  /// What a change of one key means; nothing for keys without a virtual code, and for what changes
  /// of modifier keys are not handed on (a repeat, a Caps Lock release). `time` is handed on.
  std::optional<KeySource::Event> take(uint32_t kernelCode, Change change,
                                       std::optional<uint64_t> time);

  /// Notes a key as held without an event: it was when the keyboard was found.
  void preset(uint32_t kernelCode);

  [[nodiscard]] bool isHeld(uint32_t kernelCode) const {
    return kernelCode < held_.size() && held_[kernelCode];
  }

  /// Releases all that is held: the keyboard is gone.
  void releaseAll(std::optional<uint64_t> time, const KeySource::Sink& sink);

 private:
  static constexpr std::size_t kernelCodeCount = 0x300;

  const std::string keyboard_;
  std::bitset<kernelCodeCount> held_;
  uint32_t flags_ = 0;  // of the modifier keys among them
};

}  // namespace tobrin
