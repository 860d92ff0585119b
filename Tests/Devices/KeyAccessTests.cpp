// The grant of access to keyboards, with the device manager at work: as root in a virtual machine.
#include <gtest/gtest.h>
#include <libudev.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <cstdlib>
#include <memory>
#include <thread>

#include "Tools/Devices/Seat.h"
#include "Tools/Devices/VirtualKeyboard.h"

namespace tobrin {
namespace {

using testing::VirtualKeyboard;

/// Whether the user at the seat gets the device from the device manager.
bool isGivenToTheSeat(const std::string& node) {
  struct stat status {};
  stat(node.c_str(), &status);
  const std::unique_ptr<udev, decltype(&udev_unref)> context(udev_new(), udev_unref);
  const std::unique_ptr<udev_device, decltype(&udev_device_unref)> device(
      udev_device_new_from_devnum(context.get(), 'c', status.st_rdev), udev_device_unref);
  return device != nullptr && udev_device_has_current_tag(device.get(), "uaccess") > 0;
}

int keyAccess(const char* action) {
  // NOLINTNEXTLINE(cert-env33-c): words of this test
  return std::system((TOBRIN_KEY_ACCESS " " + std::string(action)).c_str());
}

TEST(KeyAccess, KeyboardsAloneAreGivenToTheSeatAndTakenBack) {
  if (!VirtualKeyboard::isPossible()) GTEST_SKIP() << "no /dev/uinput";
  const VirtualKeyboard keyboard("Keyboard");
  const VirtualKeyboard buttons("Buttons", VirtualKeyboard::none);
  std::this_thread::sleep_for(std::chrono::milliseconds(500));  // the device manager's rules
  ASSERT_FALSE(isGivenToTheSeat(keyboard.node()));
  const bool buttonsBefore = isGivenToTheSeat(buttons.node());
  ASSERT_EQ(keyAccess("grant"), 0);
  EXPECT_TRUE(isGivenToTheSeat(keyboard.node()));
  EXPECT_EQ(isGivenToTheSeat(buttons.node()), buttonsBefore);

  const VirtualKeyboard later("Later");
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  EXPECT_TRUE(isGivenToTheSeat(later.node()));

  ASSERT_TRUE(testing::letSomebodyIn(keyboard.node()));
  ASSERT_EQ(keyAccess("--remove"), 0);
  EXPECT_FALSE(isGivenToTheSeat(keyboard.node()));
  EXPECT_LT(getxattr(keyboard.node().c_str(), "system.posix_acl_access", nullptr, 0), 0);
}

}  // namespace
}  // namespace tobrin
