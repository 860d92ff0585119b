#include "Motion/DeviceWatch.h"

#include <libudev.h>
#include <unistd.h>

#include "System/Waiting.h"

namespace tobrin {

void DeviceWatch::Release::operator()(udev* context) const {
  udev_unref(context);
}
void DeviceWatch::Release::operator()(udev_monitor* monitor) const {
  udev_monitor_unref(monitor);
}

DeviceWatch::DeviceWatch(const char* subsystem) : context_(udev_new()) {
  if (!context_) return;
  const bool udevRuns = access("/run/udev/control", F_OK) == 0;
  monitor_.reset(udev_monitor_new_from_netlink(context_.get(), udevRuns ? "udev" : "kernel"));
  if (!monitor_) return;
  udev_monitor_filter_add_match_subsystem_devtype(monitor_.get(), subsystem, nullptr);
  if (udev_monitor_enable_receiving(monitor_.get()) < 0) monitor_.reset();
}

DeviceWatch::~DeviceWatch() = default;

int DeviceWatch::fd() const {
  return monitor_ ? udev_monitor_get_fd(monitor_.get()) : -1;
}

void DeviceWatch::note() {
  if (!monitor_) return;
  while (udev_device* device = udev_monitor_receive_device(monitor_.get())) {
    udev_device_unref(device);
    noted_ = true;
  }
}

bool DeviceWatch::wait(const WakeEvent& interrupt) {
  note();
  while (!noted_) {
    waitForAny({interrupt.fd(), fd()}, -1);
    if (isRaised(interrupt)) return false;
    note();
  }
  noted_ = false;
  return true;
}

}  // namespace tobrin
