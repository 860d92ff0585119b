#include "Evdev/UinputTyper.h"

#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>

#include <chrono>
#include <memory>
#include <system_error>
#include <thread>

#include "Evdev/KeyCodes.h"

namespace tobrin {

UinputTyper::~UinputTyper() {
  if (keyboard_ != nullptr) libevdev_uinput_destroy(keyboard_);
}

bool UinputTyper::open() {
  const std::unique_ptr<libevdev, void (*)(libevdev*)> plan(libevdev_new(), &libevdev_free);
  libevdev_set_name(plan.get(), "Tobrin self-test keyboard");
  for (unsigned key = KEY_ESC; key <= KEY_F24; ++key) {
    libevdev_enable_event_code(plan.get(), EV_KEY, key, nullptr);
  }
  const int failure =
      libevdev_uinput_create_from_device(plan.get(), LIBEVDEV_UINPUT_OPEN_MANAGED, &keyboard_);
  if (failure < 0) {
    problem_ = "no access to /dev/uinput: " + std::generic_category().message(-failure);
    return false;
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  return true;
}

bool UinputTyper::send(uint16_t code, KeyAction action) {
  const auto kernelCodes = kernelCodesOf(code);
  if (kernelCodes.empty()) return false;
  const int value = action == KeyAction::down ? 1 : 0;
  return libevdev_uinput_write_event(keyboard_, EV_KEY, kernelCodes.front(), value) == 0 &&
         libevdev_uinput_write_event(keyboard_, EV_SYN, SYN_REPORT, 0) == 0;
}

}  // namespace tobrin
