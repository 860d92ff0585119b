// Against the kernel's own devices: run these as root in a virtual machine.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <thread>

#include "Force/ForceSensor.h"
#include "Motion/FindMotionSource.h"
#include "Motion/IioDevice.h"
#include "Motion/Sysfs.h"
#include "Support/Eventually.h"
#include "Tools/Devices/AsNobody.h"
#include "Tools/Devices/VirtualAccelerometer.h"

namespace tobrin {
namespace {

using std::chrono::milliseconds;
using testing::VirtualAccelerometer;

constexpr double windowMs = 12;

class MotionSourceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!testing::UhidDevice::isPossible()) GTEST_SKIP() << "no /dev/uhid";
    ASSERT_TRUE(eventually([] { return !findMotionSource(); })) << "a sensor from before";
  }

  /// The kernel and its device manager take their time with each new device.
  static bool eventually(const std::function<bool()>& condition) {
    return testing::eventually(condition, std::chrono::seconds(15));
  }

  /// Waits for a source that opens, and starts a sensor on it.
  bool start() {
    return eventually([this] {
      auto source = findMotionSource();
      if (!source) return false;
      sensor.emplace(std::move(source));
      return sensor->start();
    });
  }

  bool streams() {
    const uint64_t before = sensor->reportsReceived();
    return eventually([&] { return sensor->reportsReceived() > before + 200; });
  }

  /// Strikes and looks where the sensor saw it.
  void expectStrikeInPlace(VirtualAccelerometer& device, double g) {
    ASSERT_TRUE(streams()) << sensor->problem();
    const uint64_t time = device.strike(g);
    std::this_thread::sleep_for(milliseconds(30));
    const auto window = sensor->window(time - machTicks(windowMs), time + machTicks(windowMs));
    ASSERT_TRUE(window) << sensor->description();
    EXPECT_GT(window->samples, 2);
    EXPECT_NEAR(machDelta(window->peakTime, time), 1.5, 4.5) << sensor->description();
    EXPECT_GT(static_cast<double>(window->peak), g * 0.4) << sensor->description();
    EXPECT_LT(static_cast<double>(window->peak), g * 1.2) << sensor->description();
  }

  [[nodiscard]] double measuredRate() const {
    const uint64_t before = sensor->reportsReceived();
    const uint64_t start = machNow();
    std::this_thread::sleep_for(milliseconds(1000));
    return static_cast<double>(sensor->reportsReceived() - before) * 1000 /
           machDelta(machNow(), start);
  }

  std::optional<ForceSensor> sensor;
};

TEST_F(MotionSourceTest, AnIioSensorStreamsAtItsHighestRateAndIsPutBack) {
  VirtualAccelerometer device(VirtualAccelerometer::Sensor{});
  ASSERT_TRUE(start());
  expectStrikeInPlace(device, 0.5);
  EXPECT_NEAR(measuredRate(), 1000, 30) << sensor->description();
  EXPECT_LT(machDelta(machNow(), sensor->lastSampleTime()), 10);
  const IioDevice found = IioDevice::findAll({})[0];
  EXPECT_EQ(sysfs::readNumber(found.folder / "buffer/enable"), 1);
  EXPECT_EQ(sensor->description(), found.title() + ", 1000 Hz");
  ForceSensor second(findMotionSource());
  EXPECT_FALSE(second.start());
  EXPECT_EQ(second.problem(), "accel_3d (iio:device0) is in use by another program");
  EXPECT_NEAR(measuredRate(), 1000, 30) << "left alone";
  sensor->stop();
  EXPECT_EQ(sysfs::readNumber(found.folder / "buffer/enable"), 0);
  EXPECT_EQ(sysfs::readNumber(*found.rateFile()), 100) << "as the device was found";
  ASSERT_TRUE(sensor->start());
  expectStrikeInPlace(device, 0.05);
}

TEST_F(MotionSourceTest, AnIioSensorMayGoAndComeBack) {
  std::optional<VirtualAccelerometer> device(std::in_place, VirtualAccelerometer::Sensor{});
  ASSERT_TRUE(start());
  for (int round = 0; round < 3; ++round) {
    expectStrikeInPlace(*device, 0.5);
    device.reset();
    std::this_thread::sleep_for(milliseconds(200));
    EXPECT_TRUE(sensor->isRunning());
    device.emplace(VirtualAccelerometer::Sensor{});
  }
  expectStrikeInPlace(*device, 0.5);
  device.reset();
  sensor->stop();  // while there is no device
}

TEST_F(MotionSourceTest, ASensorThatMayNotBeReadIsReportedInWords) {
  const VirtualAccelerometer device(VirtualAccelerometer::Sensor{});
  ASSERT_TRUE(start());
  sensor.reset();
  const IioDevice found = IioDevice::findAll({})[0];
  chmod(found.node.c_str(), 0600);
  const auto asNobody = [&](bool rawReadable) {
    for (std::size_t axis = 0; axis < 3; ++axis)
      chmod(found.axisFile(axis, "raw").c_str(), rawReadable ? 0644 : 0600);
    return testing::exitStatus(testing::startAsNobody([&] {
      const auto source = findMotionSource();
      if (source->open()) return 1;
      const std::string expected =
          "cannot open " + found.node.string() + ": Permission denied; a udev rule has to allow it";
      return source->problem() == expected ? 2 : 3;
    }));
  };
  EXPECT_EQ(asNobody(true), 1) << "single readings need no more than the right to read";
  EXPECT_EQ(asNobody(false), 2);
}

TEST_F(MotionSourceTest, TheShippedRuleLetsMembersOfInputUseTheBuffer) {
  const std::filesystem::path rules = "/run/udev/rules.d";
  std::filesystem::create_directories(rules);
  std::filesystem::copy_file(TOBRIN_MOTION_RULES, rules / "70-tobrin-motion.rules",
                             std::filesystem::copy_options::overwrite_existing);
  ASSERT_EQ(std::system("udevadm control --reload"), 0);
  const VirtualAccelerometer device(VirtualAccelerometer::Sensor{});
  ASSERT_TRUE(eventually([] { return findMotionSource() != nullptr; }));
  ASSERT_EQ(std::system("udevadm settle"), 0);
  const auto useBuffer = [] {
    ForceSensor own(findMotionSource());
    if (!own.start()) return 1;
    const bool fast = eventually([&] { return own.reportsReceived() > 500; });
    return fast && own.description().ends_with(", 1000 Hz") ? 0 : 2;
  };
  const gid_t input = getgrnam("input")->gr_gid;
  EXPECT_EQ(testing::exitStatus(testing::startAsNobody(useBuffer, input)), 0);
}

TEST_F(MotionSourceTest, ARawDeviceIsStampedOnArrivalAndMayComeBack) {
  for (const uint8_t reportId : {uint8_t{0}, uint8_t{7}}) {
    std::optional<VirtualAccelerometer> device(std::in_place, VirtualAccelerometer::Raw{reportId});
    ASSERT_TRUE(start());
    EXPECT_EQ(sensor->description().find("HID motion sensor /dev/hidraw"), 0u);
    EXPECT_NEAR(measuredRate(), 1000, 30);
    expectStrikeInPlace(*device, 0.5);
    device.reset();
    std::this_thread::sleep_for(milliseconds(200));
    device.emplace(VirtualAccelerometer::Raw{reportId});
    expectStrikeInPlace(*device, 0.5);
    sensor.reset();
  }
}

}  // namespace
}  // namespace tobrin
