#include "Evdev/KeyboardList.h"

#include <libudev.h>
#include <linux/input-event-codes.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cstring>

namespace tobrin {
namespace {

constexpr const char* inputFolder = "/dev/input";
constexpr std::string_view defaultSeat = "seat0";

struct UdevUnref {
  void operator()(udev_device* device) const { udev_device_unref(device); }
  void operator()(udev_enumerate* enumerate) const { udev_enumerate_unref(enumerate); }
};

std::string_view property(udev_device* device, const char* name) {
  const char* value = udev_device_get_property_value(device, name);
  return value == nullptr ? "" : value;
}

/// Where the device manager runs, a device counts once its rules have been through.
bool isReady(udev_device* device) {
  static const bool hasManager = access("/run/udev/control", F_OK) == 0;
  return !hasManager || udev_device_get_is_initialized(device) > 0;
}

bool isOnSeat(udev_device* device, std::string_view seat) {
  const std::string_view own = property(device, "ID_SEAT");
  return seat == (own.empty() ? defaultSeat : own);
}

bool hasAll(std::string_view keys, std::initializer_list<unsigned> wanted) {
  constexpr unsigned wordBits = sizeof(unsigned long) * CHAR_BIT;
  std::vector<unsigned long> words;  // the highest first
  for (const char *at = keys.begin(), *end = keys.end(); at != end;) {
    unsigned long word = 0;
    const auto [next, failure] = std::from_chars(at, end, word, 16);
    if (failure != std::errc{}) return false;
    words.push_back(word);
    at = std::find_if(next, end, [](char c) { return c != ' ' && c != '\n'; });
  }
  return std::all_of(wanted.begin(), wanted.end(), [&](unsigned key) {
    const std::size_t index = key / wordBits;
    return index < words.size() && (words[words.size() - 1 - index] >> (key % wordBits) & 1) != 0;
  });
}

bool isKeyboardDevice(udev_device* device) {
  if (property(device, "ID_INPUT_KEYBOARD") == "1") return true;
  const char* keys = udev_device_get_sysattr_value(device, "device/capabilities/key");
  return keys != nullptr && isKeyboard(keys);
}

bool isMouseDevice(udev_device* device) {
  const char* keys = udev_device_get_sysattr_value(device, "device/capabilities/key");
  return keys != nullptr && hasAll(keys, {BTN_LEFT});
}

/// The device's node if it belongs to the seat; else empty.
std::string nodeOf(udev_device* device, std::string_view seat) {
  const char* node = udev_device_get_devnode(device);
  if (node == nullptr || std::strncmp(udev_device_get_sysname(device), "event", 5) != 0) return {};
  return isReady(device) && isOnSeat(device, seat) ? node : "";
}

}  // namespace

void UdevDeleter::operator()(udev* context) const {
  udev_unref(context);
}

void UdevDeleter::operator()(udev_monitor* monitor) const {
  udev_monitor_unref(monitor);
}

bool isKeyboard(std::string_view keys) {
  return hasAll(keys, {KEY_Q, KEY_W, KEY_E, KEY_R, KEY_T, KEY_Y, KEY_U, KEY_I, KEY_O,
                       KEY_P, KEY_A, KEY_S, KEY_D, KEY_F, KEY_G, KEY_H, KEY_J, KEY_K,
                       KEY_L, KEY_Z, KEY_X, KEY_C, KEY_V, KEY_B, KEY_N, KEY_M}) ||
         hasAll(keys, {KEY_KP0, KEY_KP1, KEY_KP2, KEY_KP3, KEY_KP4, KEY_KP5, KEY_KP6, KEY_KP7,
                       KEY_KP8, KEY_KP9});
}

KeyboardList::KeyboardList() : udev_(udev_new()) {}

bool KeyboardList::isPossible() {
  return access(inputFolder, F_OK) == 0;
}

std::vector<std::string> KeyboardList::nodes(std::string_view seat) const {
  return nodes(seat, isKeyboardDevice);
}

std::vector<std::string> KeyboardList::mice(std::string_view seat) const {
  return nodes(seat, isMouseDevice);
}

template <typename IsWanted>
std::vector<std::string> KeyboardList::nodes(std::string_view seat, IsWanted isWanted) const {
  std::vector<std::string> result;
  const std::unique_ptr<udev_enumerate, UdevUnref> all(udev_enumerate_new(udev_.get()));
  udev_enumerate_add_match_subsystem(all.get(), "input");
  udev_enumerate_scan_devices(all.get());
  for (auto* entry = udev_enumerate_get_list_entry(all.get()); entry != nullptr;
       entry = udev_list_entry_get_next(entry)) {
    const std::unique_ptr<udev_device, UdevUnref> device(
        udev_device_new_from_syspath(udev_.get(), udev_list_entry_get_name(entry)));
    if (!device || !isWanted(device.get())) continue;
    if (std::string node = nodeOf(device.get(), seat); !node.empty())
      result.push_back(std::move(node));
  }
  std::sort(result.begin(), result.end());
  return result;
}

KeyboardWatch::KeyboardWatch()
    : udev_(udev_new()),
      monitor_(udev_monitor_new_from_netlink(udev_.get(), "udev")),
      inotify_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
  if (monitor_) {
    udev_monitor_filter_add_match_subsystem_devtype(monitor_.get(), "input", nullptr);
    udev_monitor_enable_receiving(monitor_.get());
  }
  clear();
}

int KeyboardWatch::hotplugFd() const {
  return monitor_ ? udev_monitor_get_fd(monitor_.get()) : -1;
}

void KeyboardWatch::clear() {
  const auto takeOne = [this] {
    return std::unique_ptr<udev_device, UdevUnref>(udev_monitor_receive_device(monitor_.get()));
  };
  while (monitor_ && takeOne()) {
  }
  if (!inotify_) return;
  // Again each time: the folder goes with the last device and comes back with the next.
  inotify_add_watch(inotify_.get(), inputFolder, IN_CREATE | IN_ATTRIB);
  std::array<char, 4096> notices;
  while (read(inotify_.get(), notices.data(), notices.size()) > 0) {
  }
}

}  // namespace tobrin
