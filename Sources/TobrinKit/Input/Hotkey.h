/// A keyboard shortcut as a value: key code and modifiers, with its display text. Thread: any.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "Input/PlatformWords.h"

namespace tobrin {

/// A set of modifier keys over a 32-bit raw value, as it is stored.
struct Modifiers {
  uint32_t rawValue = 0;

  static constexpr uint32_t control = 0x1;
  static constexpr uint32_t option = 0x2;
  static constexpr uint32_t shift = 0x4;
  static constexpr uint32_t command = 0x8;

  [[nodiscard]] constexpr bool contains(uint32_t member) const {
    return (rawValue & member) == member;
  }
  bool operator==(const Modifiers&) const = default;
};

struct Hotkey {
  uint32_t keyCode = 0;  ///< virtual key code
  Modifiers modifiers;

  bool operator==(const Hotkey&) const = default;

  /// The shortcuts offered to the user; the first is the default.
  static const std::array<Hotkey, 4>& presets();

  /// Names a key by the current keyboard layout; nothing where the layout gives no character.
  using KeyName = std::function<std::optional<std::string>(uint32_t keyCode)>;

  /// The modifier symbols in the order control, option, shift, command, then the key's label: a
  /// special key's symbol, else `keyName`'s answer in upper case, else the US layout's, else
  /// "Key " and the code. UTF-8.
  [[nodiscard]] std::string displayString(const KeyName& keyName = nullptr) const;

  /// The same for people, in their platform's words: "Ctrl+Alt+Super+K".
  [[nodiscard]] std::string spelledOut(const PlatformWords& words,
                                       const KeyName& keyName = nullptr) const;
};

}  // namespace tobrin
