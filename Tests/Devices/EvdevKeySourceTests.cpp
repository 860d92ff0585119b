// Against the kernel's own devices: run these as root in a virtual machine.
#include "Evdev/EvdevKeySource.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <thread>

#include "Input/KeyMonitor.h"
#include "Support/Eventually.h"
#include "Support/HeardKeys.h"
#include "Tools/Devices/AsNobody.h"
#include "Tools/Devices/Seat.h"
#include "Tools/Devices/VirtualKeyboard.h"

namespace tobrin {
namespace {

using std::chrono::milliseconds;
using testing::exitStatus;
using testing::HeardKeys;
using testing::startAsNobody;
using testing::VirtualKeyboard;

class EvdevKeySourceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!VirtualKeyboard::isPossible()) GTEST_SKIP() << "no /dev/uinput";
  }

  /// Types on a keyboard just plugged in until keys arrive, which takes the time of a hotplug.
  bool becomesHeard(VirtualKeyboard& keyboard) {
    for (int attempt = 0; attempt < 100; ++attempt) {
      keyboard.press({KEY_F12});
      keyboard.release({KEY_F12});
      std::this_thread::sleep_for(milliseconds(50));
      if (!heard.await(0).empty()) {
        std::this_thread::sleep_for(milliseconds(50));
        heard.await(0);
        return true;
      }
    }
    return false;
  }

  HeardKeys heard;
  KeyMonitor monitor{std::make_unique<EvdevKeySource>(), std::ref(heard), testing::patient()};
};

TEST_F(EvdevKeySourceTest, AHundredPlugsAndPullsReleaseWhatWasHeldAndLoseNoKeyOfAnotherKeyboard) {
  VirtualKeyboard steady("Steady");
  ASSERT_TRUE(monitor.start());
  ASSERT_TRUE(becomesHeard(steady));
  const auto descriptors = [] {
    const std::filesystem::directory_iterator open("/proc/self/fd");
    return std::distance(begin(open), end(open));
  };
  const auto before = descriptors();
  for (int round = 0; round < 100; ++round) {
    std::optional<VirtualKeyboard> loose(std::in_place, "Loose plug");
    const bool isTypedOn = round % 10 == 0;
    if (isTypedOn) {
      ASSERT_TRUE(becomesHeard(*loose)) << round;
      loose->press({KEY_LEFTCTRL, KEY_C});
      loose->repeat({KEY_C});
      ASSERT_EQ(heard.await(2), "+59 +8 ") << round;
    }
    steady.press({KEY_A});
    steady.release({KEY_A});
    ASSERT_EQ(heard.await(2), "+0 -0 ") << round;
    if (!isTypedOn) continue;
    loose.reset();
    ASSERT_EQ(heard.await(2), "-59 -8 ") << round;
  }
  EXPECT_TRUE(testing::eventually([&] { return descriptors() == before; })) << descriptors();
}

TEST_F(EvdevKeySourceTest, AGrabbedKeyboardCountsThroughItsTwinOnly) {
  VirtualKeyboard real("Real");
  ASSERT_TRUE(monitor.start());
  ASSERT_TRUE(becomesHeard(real));
  real.press({KEY_LEFTSHIFT});  // its release will go to the remapper
  EXPECT_EQ(heard.await(1), "+56 ");

  const int remapper = open(real.node().c_str(), O_RDONLY);
  ASSERT_EQ(ioctl(remapper, EVIOCGRAB, 1), 0);
  VirtualKeyboard twin("Twin");
  ASSERT_TRUE(becomesHeard(twin));
  real.release({KEY_LEFTSHIFT});
  real.press({KEY_A});
  twin.press({KEY_B});
  EXPECT_EQ(heard.await(1), "+11 ");
  twin.press({KEY_LEFTSHIFT});
  twin.release({KEY_LEFTSHIFT});
  twin.press({KEY_LEFTSHIFT});
  EXPECT_EQ(heard.await(2), "-56 +56 ") << "the lost release costs one press, no more";
  monitor.holdBack({"twin"});
  twin.press({KEY_C});
  close(remapper);
  real.press({KEY_D});
  EXPECT_EQ(heard.await(1), "+2 ");
  monitor.holdBack({});
  twin.press({KEY_E});
  EXPECT_EQ(heard.await(1), "+14 ");
}

TEST_F(EvdevKeySourceTest, AMouseIsHeardOnceItIsWishedForAndItsWayNever) {
  VirtualKeyboard keyboard("Keyboard"), mouse("Mouse", VirtualKeyboard::none);
  ASSERT_TRUE(monitor.start());
  ASSERT_TRUE(becomesHeard(keyboard));
  const auto use = [&](VirtualKeyboard& device) {
    device.press({BTN_LEFT});
    device.move(REL_WHEEL);
    device.release({BTN_LEFT});
  };
  const auto hear = [&](MouseHearing wish, const std::string& expected) {
    monitor.hearMouse(wish);
    std::this_thread::sleep_for(milliseconds(200));
    for (VirtualKeyboard* device : {&mouse, &keyboard})
      use(*device);
    std::this_thread::sleep_for(milliseconds(200));
    EXPECT_EQ(heard.await(0), expected);
  };
  EXPECT_TRUE(monitor.canHearMouse());
  hear(MouseHearing::nothing, "");
  hear(MouseHearing::buttons, "+4096 -4096 +4096 -4096 ");
  hear(MouseHearing::buttonsAndWheel, "+4096 +4102 -4096 +4096 +4102 -4096 ");
  const auto wakeUps = [] {  // of the other threads
    rusage all{}, own{};
    getrusage(RUSAGE_SELF, &all);
    getrusage(RUSAGE_THREAD, &own);
    return all.ru_nvcsw - own.ru_nvcsw;
  };
  const auto before = wakeUps();
  for (int i = 0; i < 100; ++i) {
    mouse.move(REL_X);
    std::this_thread::sleep_for(milliseconds(2));
  }
  EXPECT_LT(wakeUps() - before, 20) << "a mouse that moves wakes nobody";
  mouse.press({BTN_LEFT});
  EXPECT_EQ(heard.await(1), "+4096 ");
  monitor.hearMouse(MouseHearing::nothing);
  EXPECT_EQ(heard.await(1), "-4096 ") << "let go";
}

TEST_F(EvdevKeySourceTest, AnOverrunBufferLeavesNoKeyStuck) {
  VirtualKeyboard keyboard("Fast");
  EvdevKeySource source;
  std::this_thread::sleep_for(milliseconds(500));
  ASSERT_TRUE(source.open());
  for (int i = 0; i < 2000; ++i) {
    keyboard.press({KEY_A});
    keyboard.release({KEY_A});
  }
  keyboard.press({KEY_RIGHTSHIFT, KEY_B});
  int balanceOfA = 0;
  uint32_t flags = 0;
  bool heardLast = false;
  const uint64_t before = machNow();
  std::thread timer([&] {
    std::this_thread::sleep_for(milliseconds(1000));
    source.interrupt();
  });
  source.run([&](const KeySource::Event& event) {
    if (event.code == 0) balanceOfA += event.type == KeySource::EventType::keyDown ? 1 : -1;
    flags = event.flags;
    heardLast |= event.code == 11;
    EXPECT_LT(machDelta(before, event.time.value()), 10'000) << "stamped on our clock";
    EXPECT_LE(event.time.value(), machNow());
  });
  timer.join();
  EXPECT_EQ(balanceOfA, 0);
  EXPECT_EQ(flags, 0x4U);
  EXPECT_TRUE(heardLast);
}

TEST_F(EvdevKeySourceTest, OnlyKeyboardsAreOpened) {
  const VirtualKeyboard buttons("Power button", VirtualKeyboard::none);
  const VirtualKeyboard keyboard("Keyboard");
  const auto isListed = [](const VirtualKeyboard& device) {
    const auto nodes = KeyboardList().nodes("seat0");
    return std::count(nodes.begin(), nodes.end(), device.node()) == 1;
  };
  EXPECT_TRUE(testing::eventually([&] { return isListed(keyboard); }));
  EXPECT_FALSE(isListed(buttons));
  EXPECT_TRUE(KeyboardList().nodes("seat7").empty());
}

TEST_F(EvdevKeySourceTest, KeysOfAnotherUsersSessionAreNotRead) {
  if (access("/run/systemd/seats/seat0", F_OK) == 0) GTEST_SKIP() << "a login manager runs";
  testing::bringToFront(getuid());
  VirtualKeyboard keyboard("Shared");
  ASSERT_TRUE(monitor.start());
  ASSERT_TRUE(becomesHeard(keyboard));
  keyboard.press({KEY_LEFTCTRL, KEY_LEFTALT});
  EXPECT_EQ(heard.await(2), "+59 +58 ");
  testing::bringToFront(getuid() + 1000);
  EXPECT_EQ(heard.await(2), "-59 -58 ") << "left behind in our session";
  keyboard.release({KEY_LEFTALT, KEY_LEFTCTRL});
  keyboard.press({KEY_A});
  keyboard.release({KEY_A});
  std::this_thread::sleep_for(milliseconds(200));
  EXPECT_EQ(heard.await(0), "");
  testing::bringToFront(getuid());
  EXPECT_TRUE(becomesHeard(keyboard));
  testing::bringNobodyToFront();  // a login prompt
  std::this_thread::sleep_for(milliseconds(200));
  keyboard.press({KEY_A});
  keyboard.release({KEY_A});
  std::this_thread::sleep_for(milliseconds(200));
  EXPECT_EQ(heard.await(0), "");
  testing::bringToFront(getuid());
  EXPECT_TRUE(becomesHeard(keyboard));
  testing::removeLoginManager();
}

TEST_F(EvdevKeySourceTest, AKeyboardThatMayBeReadLaterIsOpenedThen) {
  const VirtualKeyboard readable("Readable");
  std::this_thread::sleep_for(milliseconds(500));
  chmod(readable.node().c_str(), 0644);
  const pid_t listener = startAsNobody([] {
    alarm(20);  // ends a listener that never gets a key
    EvdevKeySource source;
    if (!source.open()) return 2;
    int result = 3;
    source.run([&](const KeySource::Event& event) {
      result = event.code;
      source.interrupt();
    });
    return result;
  });
  VirtualKeyboard guarded("Guarded");  // by the device manager: root and its group only
  std::this_thread::sleep_for(milliseconds(500));
  guarded.press({KEY_A});
  std::this_thread::sleep_for(milliseconds(100));
  EXPECT_EQ(waitpid(listener, nullptr, WNOHANG), 0);
  chmod(guarded.node().c_str(), 0644);
  std::this_thread::sleep_for(milliseconds(500));
  guarded.press({KEY_B});
  EXPECT_EQ(exitStatus(listener), 11);
}

TEST_F(EvdevKeySourceTest, AKeyboardThatMayNoLongerBeReadIsLetGo) {
  VirtualKeyboard lent("Lent");
  std::this_thread::sleep_for(milliseconds(500));
  chmod(lent.node().c_str(), 0644);
  const pid_t listener = startAsNobody([] {
    alarm(20);  // ends a listener that holds on to it
    EvdevKeySource source;
    if (!source.open()) return 2;
    std::string told;
    source.run([&](const KeySource::Event& event) {
      told += event.type == KeySource::EventType::keyDown ? '+' : '-';
    });
    return told == "+-" && !source.problem().empty() && !source.hasPermission() ? 0 : 3;
  });
  std::this_thread::sleep_for(milliseconds(500));
  lent.press({KEY_A});
  std::this_thread::sleep_for(milliseconds(100));
  chmod(lent.node().c_str(), 0600);
  EXPECT_EQ(exitStatus(listener), 0);
}

}  // namespace
}  // namespace tobrin
