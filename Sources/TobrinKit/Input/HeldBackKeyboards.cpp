#include "Input/HeldBackKeyboards.h"

#include <algorithm>

#include "Base/Key.h"
#include "Base/LowerCase.h"
#include "Input/ModifierTracker.h"

namespace tobrin {
namespace {

bool isPress(const KeySource::Event& event) {
  const bool isCapsLock = Key{event.code} == Key::capsLock;  // only its presses are reported
  return event.type == KeySource::EventType::keyDown ||
         (event.type == KeySource::EventType::flagsChanged &&
          (isCapsLock || (event.flags & ModifierTracker::mask(event.code)) != 0));
}

}  // namespace

const HeldBackKeyboards::Names& HeldBackKeyboards::usual() {
  static const Names names = {"ydotool", "dotool", "espanso", "autokey", "on-screen keyboard"};
  return names;
}

void HeldBackKeyboards::set(Names names) {
  for (std::string& name : names)
    name = lowerCase(name);
  std::erase(names, "");
  const MutexLock lock(mutex_);
  names_ = std::move(names);
}

bool HeldBackKeyboards::holdsBack(const KeySource::Event& event) {
  const std::pair key(std::string(event.keyboard), event.code);
  const bool wasHeld = held_.erase(key) > 0;
  if (!isPress(event)) return wasHeld;
  if (!isListed(event.keyboard)) return false;
  held_.insert(key);
  return true;
}

bool HeldBackKeyboards::isListed(std::string_view keyboard) const {
  const std::string name = lowerCase(keyboard);
  const MutexLock lock(mutex_);
  return std::any_of(names_.begin(), names_.end(), [&](const std::string& listed) {
    return name.find(listed) != std::string::npos;
  });
}

}  // namespace tobrin
