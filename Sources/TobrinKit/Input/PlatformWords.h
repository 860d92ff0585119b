/// What a platform calls its own parts, where the program speaks to a person. The platform supplies
/// one value; the application hands it to all that writes texts for people. All texts are UTF-8 and
/// live as long as the program. Thread: any.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace tobrin {

struct PlatformWords {
  struct KeyLabel {
    uint32_t keyCode;
    std::string_view text;
  };

  // Access to keys.
  std::string_view needsKeyAccess{};     ///< status line
  std::string_view keyAccessTitle{};     ///< over the panel's request
  std::string_view keyAccessButton{};    ///< what grants it
  std::string_view keyAccessNote{};      ///< a sentence: who grants it, and how far it goes
  std::string_view keyAccessForProbe{};  ///< a sentence: what is missing, and what to do
  std::string_view keyAccessCheck{};     ///< of the self-test

  // Motion sensor.
  std::string_view forceNeedsSensor{};  ///< in the panel, where there is none
  std::string_view noSensor{};          ///< a sentence, of the probe
  std::string_view noSensorCheck{};     ///< of the self-test

  // Sound server.
  std::string_view soundStateOnly{};   ///< that nothing is listened to; in parentheses
  std::string_view unknownRecorder{};  ///< where it does not say who records

  // Shortcuts.
  std::string_view reservedShortcut{};          ///< after the shortcut: that the desktop has it
  std::array<std::string_view, 4> modifiers{};  ///< control, option, shift, command
  std::string_view keySeparator{};
  std::span<const KeyLabel> keys{};  ///< those that have no character
};

}  // namespace tobrin
