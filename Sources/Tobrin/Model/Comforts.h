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
  /// An older access to keys, which other programs have, too, is to stay as it is.
  bool keepsWideKeyAccess = false;
  /// Silence while one of these applications is in front, or any that fills the screen.
  QuietApps::Wish quiet{};
  /// Silent are keys of keyboards with these names.
  HeldBackKeyboards::Names heldBackKeyboards = HeldBackKeyboards::usual();
  OutputMemory outputs{};

  bool operator==(const Comforts&) const = default;

  /// What can be read of JSON text; the rest keeps its default, whatever stands there, and of a
  /// list is left out.
  static Comforts fromJson(std::string_view text);
  [[nodiscard]] std::string toJson() const;
};

}  // namespace tobrin
