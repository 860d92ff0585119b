/// The user's choices that the sound engine follows, and what it reports of each stroke. Plain
/// values; as JSON by field name, every field optional when read. Thread: any.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Base/KeyEvent.h"
#include "Input/Hotkey.h"

namespace tobrin {

struct EngineSettings {
  bool enabled = true;            ///< sounds on or off; off suspends the engine
  float volume = 0.7f;            ///< master gain, linear; the mixer clamps it to [0, 4]
  bool forceSensing = true;       ///< choose tiers by the motion sensor; off: `fixedTier`
  float sensitivity = 1.0f;       ///< factor on every measured strength
  Tier fixedTier = Tier::medium;  ///< the strength without force sensing
  bool blendTiers = true;         ///< blend neighbouring tiers instead of picking one
  bool releaseSounds = true;      ///< play the key's release
  float spatial = 0.5f;           ///< stereo width, 0 (centre) to 1
  bool quietDuringCalls = true;   ///< pause while a microphone is in use
  bool shortcutEnabled = true;    ///< register the global shortcut
  Hotkey shortcut = Hotkey::presets()[0];

  bool operator==(const EngineSettings&) const = default;

  /// Reads settings from JSON text. A missing field takes its default; text that is no JSON object
  /// or a field of a wrong type or range throws `std::runtime_error` naming the field.
  static EngineSettings fromJson(std::string_view text);

  /// All eleven fields as JSON text.
  [[nodiscard]] std::string toJson() const;
};

/// How hard one stroke was, as the force meter shows it.
struct ForceReading {
  uint16_t code = 0;      ///< the key
  float position = 0;     ///< tier position used, 0 to 3
  float relative = 1.0f;  ///< multiples of the user's typical stroke; 1 where nothing was measured
  float peak = 0;         ///< the sensor's peak in g; 0 where it was not used
  bool sensed = false;    ///< a measured impact

  bool operator==(const ForceReading&) const = default;
};

}  // namespace tobrin
