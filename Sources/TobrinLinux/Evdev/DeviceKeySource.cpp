#include "Evdev/DeviceKeySource.h"

#include "Evdev/KeyRule.h"

namespace tobrin {

bool DeviceKeySource::open() {
  used_ = &direct_;
  if (direct_.open()) return true;
  if (!KeyboardList::isPossible()) return false;  // as in a sandbox: there is nothing to ask for
  used_ = &broker_;
  return broker_.open();
}

void DeviceKeySource::close() {
  direct_.close();
  broker_.close();
}

void DeviceKeySource::interrupt() {
  direct_.interrupt();
  broker_.interrupt();
}

bool DeviceKeySource::hasPermission() const {
  return direct_.hasPermission() || broker_.hasPermission();
}

/// Not what an administrator has given in another way, such as the membership in a group.
bool DeviceKeySource::canGiveBackPermission() const {
  return used_ == &broker_ || isKeyRuleInstalled();
}

std::string DeviceKeySource::problem() const {
  const std::string direct = direct_.problem(), broker = broker_.problem();
  return used_ == &direct_ || broker.empty() ? used_.load()->problem() : direct + "; " + broker;
}

}  // namespace tobrin
