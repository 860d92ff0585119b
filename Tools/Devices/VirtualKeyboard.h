/// A keyboard that the kernel treats like a real one, made through uinput: plugged in when
/// constructed, pulled out when destroyed. Needs root and /dev/uinput. Thread: any.
#pragma once

#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>
#include <unistd.h>

#include <initializer_list>
#include <stdexcept>
#include <string>

namespace tobrin::testing {

class VirtualKeyboard final {
 public:
  static bool isPossible() { return access("/dev/uinput", R_OK | W_OK) == 0; }

  /// The kernel's codes from the first to the last.
  struct Keys {
    unsigned first, last;
  };
  static constexpr Keys all{KEY_ESC, KEY_MICMUTE}, keypad{KEY_KP7, KEY_KPDOT}, none{1, 0};

  /// Has a power button, a mouse button and a wheel besides.
  explicit VirtualKeyboard(const std::string& name, Keys keys = all) {
    libevdev* plan = libevdev_new();
    libevdev_set_name(plan, name.c_str());
    libevdev_enable_event_code(plan, EV_KEY, KEY_POWER, nullptr);
    libevdev_enable_event_code(plan, EV_KEY, BTN_LEFT, nullptr);
    libevdev_enable_event_code(plan, EV_REL, REL_X, nullptr);
    libevdev_enable_event_code(plan, EV_REL, REL_WHEEL, nullptr);
    libevdev_enable_event_code(plan, EV_MSC, MSC_TIMESTAMP, nullptr);
    for (unsigned key = keys.first; key <= keys.last; ++key)
      libevdev_enable_event_code(plan, EV_KEY, key, nullptr);
    const int failure =
        libevdev_uinput_create_from_device(plan, LIBEVDEV_UINPUT_OPEN_MANAGED, &device_);
    libevdev_free(plan);
    if (failure < 0) throw std::runtime_error("uinput refuses the keyboard");
  }
  ~VirtualKeyboard() { libevdev_uinput_destroy(device_); }
  VirtualKeyboard(const VirtualKeyboard&) = delete;
  VirtualKeyboard& operator=(const VirtualKeyboard&) = delete;

  [[nodiscard]] std::string node() const { return libevdev_uinput_get_devnode(device_); }

  void press(std::initializer_list<unsigned> keys) { write(keys, 1); }
  void release(std::initializer_list<unsigned> keys) { write(keys, 0); }
  /// What the kernel says of keys that are held for long.
  void repeat(std::initializer_list<unsigned> keys) { write(keys, 2); }
  /// Moves a mouse or turns its wheel, by the kernel's code of it; with the time, as touchpads say
  /// it.
  void move(unsigned direction) {
    libevdev_uinput_write_event(device_, EV_MSC, MSC_TIMESTAMP, ++time_);
    libevdev_uinput_write_event(device_, EV_REL, direction, 1);
    libevdev_uinput_write_event(device_, EV_SYN, SYN_REPORT, 0);
  }

 private:
  void write(std::initializer_list<unsigned> keys, int value) {
    for (const unsigned key : keys) {
      libevdev_uinput_write_event(device_, EV_KEY, key, value);
      libevdev_uinput_write_event(device_, EV_SYN, SYN_REPORT, 0);
    }
  }

  libevdev_uinput* device_ = nullptr;
  int time_ = 0;
};

}  // namespace tobrin::testing
