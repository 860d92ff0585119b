#include "Model/StatusTexts.h"

namespace tobrin {

std::string StatusTexts::statusLine(const State& state) {
  if (!state.hasPermission) return "Needs Input Monitoring access";
  switch (state.gate.state()) {
    case PlaybackGate::State::off:
      return "Off";
    case PlaybackGate::State::pausedForCall:
      return "Paused while the mic is in use";
    case PlaybackGate::State::playing:
      break;
  }
  return state.packName.value_or("No pack") + " · " +
         (state.forceSensing ? "Force sensing on" : "Fixed strength");
}

std::optional<std::string> StatusTexts::shortcutProblem(const GlobalHotkey::Status& status,
                                                        const std::string& shortcut) {
  using Kind = GlobalHotkey::Status::Kind;
  switch (status.kind) {
    case Kind::active:
    case Kind::off:
      return std::nullopt;
    case Kind::taken:
      return shortcut + " is already used by another app. Pick another.";
    case Kind::reservedBySystem:
      return shortcut + " is a macOS shortcut (System Settings › Keyboard). Pick another.";
    case Kind::failed:
      return "Couldn't set up " + shortcut + " (error " + std::to_string(status.error) + ").";
  }
  return std::nullopt;
}

}  // namespace tobrin
