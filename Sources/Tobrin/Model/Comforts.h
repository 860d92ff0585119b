/// The user's choices that the sound engine does not follow itself, saved beside its settings. A
/// plain value. Thread: any.
#pragma once

#include <string>
#include <string_view>

#include "Input/HeldBackKeyboards.h"
#include "Model/OutputMemory.h"
#include "Model/QuietApps.h"

namespace tobrin {

struct Comforts {
  /// Each stroke gets the sound of another key while a program records what is played.
  bool maskWhileRecorded = true;
  /// Silence while the screen is locked.
  bool quietWhileLocked = true;
  /// Mouse buttons sound, and the wheel.
  bool mouseSounds = false;
  bool wheelSounds = false;
  /// The user keeps an older access to keys, which other programs have too.
  bool keepsWideKeyAccess = false;
  /// Silence while one of these applications is in front, or any that fills the screen.
  QuietApps::Wish quiet{};
  /// Keys of keyboards with these names are silent.
  HeldBackKeyboards::Names heldBackKeyboards = HeldBackKeyboards::usual();
  OutputMemory outputs{};

  bool operator==(const Comforts&) const = default;

  /// Takes what can be read from JSON text. A field that cannot be read keeps its default; an entry
  /// of a list that cannot be read is left out.
  static Comforts fromJson(std::string_view text);
  [[nodiscard]] std::string toJson() const;
};

}  // namespace tobrin
