#include "Model/ShortcutChoice.h"

#include <algorithm>
#include <utility>

#include "Base/Log.h"
#include "Input/ModifierTracker.h"
#include "Model/StatusTexts.h"

namespace tobrin {

ShortcutChoice::ShortcutChoice(ShortcutService& service, const PlatformWords& words,
                               KeyOfScanCode keyOfScanCode, std::function<void()> pressed)
    : service_(service),
      words_(words),
      keyOfScanCode_(std::move(keyOfScanCode)),
      hotkey_(service, std::move(pressed)) {}

void ShortcutChoice::choose(bool isWanted, const Hotkey& shortcut) {
  isWanted_ = isWanted;
  shortcut_ = shortcut;
  hotkey_.registerHotkey(isWanted && !isCapturing_ ? std::optional(shortcut) : std::nullopt);
  if (isWanted && problem())
    logLine("shortcut " + display(shortcut) + " unavailable: " + *problem());
}

void ShortcutChoice::capture(bool captures) {
  isCapturing_ = captures;
  choose();
}

ShortcutRoute ShortcutChoice::route() const {
  const bool isActive = status().kind == GlobalHotkey::Status::Kind::active;
  return isActive ? service_.route() : ShortcutRoute::exclusive;
}

std::optional<std::string> ShortcutChoice::problem() const {
  return StatusTexts(words_).shortcutProblem(status(), display(shortcut_));
}

std::string ShortcutChoice::display(const Hotkey& shortcut) const {
  return shortcut.spelledOut(words_,
                             [this](uint32_t keyCode) { return service_.keyName(keyCode); });
}

std::vector<Hotkey> ShortcutChoice::offered() const {
  std::vector<Hotkey> offered(Hotkey::presets().begin(), Hotkey::presets().end());
  if (std::find(offered.begin(), offered.end(), shortcut_) == offered.end())
    offered.push_back(shortcut_);
  return offered;
}

std::optional<Hotkey> ShortcutChoice::of(uint32_t scanCode, Modifiers modifiers) const {
  const auto code = keyOfScanCode_(scanCode);
  const bool isOwnKey = code && !ModifierTracker::isModifier(*code);
  const bool isFree = (modifiers.rawValue & ~Modifiers::shift) != 0;
  if (!isOwnKey || !isFree) return std::nullopt;
  return Hotkey{.keyCode = *code, .modifiers = modifiers};
}

}  // namespace tobrin
