/// The values that every part of the system uses: key events, key groups and force tiers. Plain
/// values; names and numbers of groups and tiers are part of the file formats. Thread: any.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tobrin {

/// What a key did.
enum class KeyAction : uint8_t { down, up };

/// One press or release.
struct KeyEvent {
  uint16_t code = 0;  ///< virtual key code (`KeyLayout` knows their places)
  KeyAction action = KeyAction::down;
  uint64_t time = 0;  ///< host ticks, `MachTime`'s clock

  bool operator==(const KeyEvent&) const = default;
};

/// The groups by which a sound pack is organised; the value is the index.
enum class KeyGroup : uint8_t { alpha, space, enter, backspace, modifier, mouse };

/// The groups of a keyboard's keys.
inline constexpr std::array<KeyGroup, 5> allKeyGroups = {
    KeyGroup::alpha, KeyGroup::space, KeyGroup::enter, KeyGroup::backspace, KeyGroup::modifier};

/// The same, and the mouse, which a pack may leave out.
inline constexpr std::array<KeyGroup, 6> allPackGroups = {KeyGroup::alpha,    KeyGroup::space,
                                                          KeyGroup::enter,    KeyGroup::backspace,
                                                          KeyGroup::modifier, KeyGroup::mouse};

/// The group's name in files, in lower case.
std::string_view rawValue(KeyGroup group);

/// The group with exactly this name (case matters), or nothing.
std::optional<KeyGroup> keyGroup(std::string_view rawValue);

/// The four force tiers; the value is the raw value and the index of a voice's layer.
/// A tier position is a real number from 0 (soft) to 3 (slam) along this order.
enum class Tier : uint8_t { soft, medium, hard, slam };

inline constexpr std::size_t tierCount = 4;
inline constexpr std::array<Tier, tierCount> allTiers = {Tier::soft, Tier::medium, Tier::hard,
                                                         Tier::slam};

/// The tier's name in files, in lower case.
std::string_view name(Tier tier);

/// The tier with this raw value (0 to 3), or nothing.
std::optional<Tier> tier(int64_t rawValue);

/// The tier with this name in any letter case, or nothing.
std::optional<Tier> tierNamed(std::string_view name);

inline constexpr std::size_t index(KeyGroup group) {
  return static_cast<std::size_t>(group);
}
inline constexpr std::size_t index(Tier tier) {
  return static_cast<std::size_t>(tier);
}

}  // namespace tobrin
