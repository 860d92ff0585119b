#include "KeyboardDevices.h"

#include <libudev.h>
#include <sys/xattr.h>

#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "System/Spawn.h"

namespace tobrin::keyboards {
namespace {

/// Runs udevadm with a fixed environment: the one that this program got is the user's.
bool udevadm(std::initializer_list<const char*> arguments) {
  constexpr const char* program = "/usr/bin/udevadm";
  std::vector<std::string> command{program};
  command.insert(command.end(), arguments.begin(), arguments.end());
  SpawnOptions options;
  options.environment = {"PATH=/usr/sbin:/usr/bin:/sbin:/bin"};
  const Spawned started = spawn(std::move(command), options);
  return started.error == 0 && waitForEnd(started.child) == 0;
}

}  // namespace

bool applyRules() {
  return udevadm({"control", "--reload"}) &&
         udevadm({"trigger", "--settle", "--action=change", "--subsystem-match=input",
                  "--property-match=ID_INPUT_KEYBOARD=1"});
}

void takeBackAccess() {
  const std::unique_ptr<udev, decltype(&udev_unref)> context(udev_new(), udev_unref);
  const std::unique_ptr<udev_enumerate, decltype(&udev_enumerate_unref)> list(
      udev_enumerate_new(context.get()), udev_enumerate_unref);
  udev_enumerate_add_match_subsystem(list.get(), "input");
  udev_enumerate_add_match_property(list.get(), "ID_INPUT_KEYBOARD", "1");
  udev_enumerate_scan_devices(list.get());
  udev_list_entry* entry = nullptr;
  udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(list.get())) {
    const char* name = udev_list_entry_get_name(entry);
    const std::unique_ptr<udev_device, decltype(&udev_device_unref)> device(
        udev_device_new_from_syspath(context.get(), name), udev_device_unref);
    const char* node = device != nullptr ? udev_device_get_devnode(device.get()) : nullptr;
    if (node == nullptr || std::strncmp(udev_device_get_sysname(device.get()), "event", 5) != 0) {
      continue;
    }
    lremovexattr(node, "system.posix_acl_access");  // fails where there is none, which is fine
  }
}

}  // namespace tobrin::keyboards
