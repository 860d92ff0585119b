// The key broker with real keyboards, consoles and a message bus; the login manager and the service
// that asks administrators are stand-ins. As root in a virtual machine.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "Base/MachTime.h"
#include "Evdev/BrokerKeySource.h"
#include "Evdev/EvdevKeySource.h"
#include "Evdev/KeyBroker.h"
#include "Evdev/KeyConsent.h"
#include "Evdev/KeyRecord.h"
#include "Evdev/KeyboardList.h"
#include "Input/KeyMonitor.h"
#include "Support/Eventually.h"
#include "Support/HeardKeys.h"
#include "Tools/Devices/SystemServices.h"
#include "Tools/Devices/VirtualKeyboard.h"

namespace tobrin {
namespace {

using std::chrono::milliseconds;
using testing::eventually;
using testing::VirtualKeyboard;
using Session = testing::SystemServices::Session;

constexpr unsigned ours = 1, theirs = 2;  // consoles

void strike(VirtualKeyboard& keyboard, unsigned key) {
  keyboard.press({key});
  keyboard.release({key});
}

class KeyBroker : public ::testing::Test {
 protected:
  explicit KeyBroker(const std::string& options = "")
      : system(keyBrokerName, TOBRIN_KEYS " /proc/" + std::to_string(getpid()) + "/exe" + options) {
  }

  void SetUp() override {
    if (!VirtualKeyboard::isPossible()) GTEST_SKIP() << "no /dev/uinput";
    ASSERT_TRUE(testing::showConsole(ours));
    goToFront();
  }

  void endBroker() {
    const pid_t broker = system.ownerOf(keyBrokerName);
    if (broker <= 0 || kill(broker, SIGKILL) != 0) ADD_FAILURE() << "no broker runs";
  }
  void goToFront() { system.change(mine(1), stranger(0)); }
  static Session mine(int isActive) { return {.console = ours, .isActive = isActive}; }
  static Session stranger(int isActive) {
    return {.user = 1000, .console = theirs, .isActive = isActive};
  }

  /// What the program is told when it asks; `agrees` is the administrator.
  std::string ask(bool agrees, bool remember = true) {
    system.agrees = agrees;
    std::optional<std::string> answer;
    KeyConsent consent(remember, [&](const std::string& problem) { answer = problem; });
    while (!answer) {
      pollfd wait{consent.descriptor(), POLLIN, 0};
      if (poll(&wait, 1, 10'000) <= 0) return "no answer";
      consent.process();
    }
    return *answer;
  }

  /// Types F12 until that is heard.
  bool isHeard(VirtualKeyboard& keyboard) {
    return eventually([&] {
      strike(keyboard, KEY_F12);
      std::this_thread::sleep_for(milliseconds(20));
      return heard.await(0).find("-111") != std::string::npos;
    });
  }

  testing::SystemServices system;
  testing::HeardKeys heard;
  KeyMonitor monitor{std::make_unique<BrokerKeySource>(), std::ref(heard), testing::patient()};
};

TEST_F(KeyBroker, AnAdministratorsConsentIsAskedForKeptAndTakenBack) {
  VirtualKeyboard keyboard("Keyboard");
  EXPECT_FALSE(monitor.start());
  EXPECT_EQ(monitor.problem(), "an administrator has not allowed it");
  EXPECT_EQ(system.questions, 0);
  EXPECT_EQ(ask(false), "it was not allowed");
  system.hasAgent = false;
  EXPECT_EQ(ask(false), "no program of this desktop asks for passwords: start a polkit agent");
  system.hasAgent = true;
  EXPECT_FALSE(monitor.start());
  system.change(mine(0), stranger(1));
  EXPECT_EQ(ask(true), "only the user in front of the computer may ask");
  EXPECT_EQ(system.questions, 2);
  goToFront();

  EXPECT_EQ(ask(true, false), "");
  EXPECT_TRUE(broker::isAllowed());
  endBroker();
  EXPECT_TRUE(eventually([] { return !broker::isAllowed(); })) << "it was not to be remembered";

  EXPECT_EQ(ask(true), "");
  endBroker();
  EXPECT_TRUE(eventually([] { return broker::isAllowed(); }));
  ASSERT_TRUE(monitor.start());
  ASSERT_TRUE(isHeard(keyboard));
  // As the same user, at the same seat, with that consent; and no device has changed its rights.
  EXPECT_EQ(std::system("dbus-send --bus=\"$DBUS_SYSTEM_BUS_ADDRESS\" --print-reply "
                        "--dest=app.tobrin.Keys1 /app/tobrin/Keys1 app.tobrin.Keys1.Open 2>&1 | "
                        "grep -q NotTobrin"),
            0);
  struct stat node {};
  stat(keyboard.node().c_str(), &node);
  EXPECT_EQ(node.st_mode & 0777U, 0660U);

  keyboard.press({KEY_A});
  EXPECT_EQ(heard.await(1), "+0 ");
  EXPECT_EQ(broker::takeBack(), "");
  EXPECT_EQ(heard.await(1), "-0 ");
  EXPECT_TRUE(eventually([&] { return !monitor.isRunning(); }));
  EXPECT_FALSE(monitor.hasPermission());

  keyboard.release({KEY_A});
  EXPECT_EQ(ask(true), "");
  ASSERT_TRUE(monitor.start());
  ASSERT_TRUE(isHeard(keyboard));
  std::filesystem::remove(system.state() / std::to_string(getuid()));
  EXPECT_TRUE(eventually([&] { return !monitor.isRunning(); })) << "from outside";
}

TEST_F(KeyBroker, NothingThatIsTypedElsewhereIsDeliveredInAHundredSwitches) {
  VirtualKeyboard keyboard("Keyboard");
  ASSERT_EQ(ask(true), "");
  ASSERT_TRUE(monitor.start());
  for (int round = 0; round < 100; ++round) {
    ASSERT_TRUE(isHeard(keyboard)) << round;
    keyboard.press({KEY_A});
    ASSERT_EQ(heard.await(1), "+0 ") << round;
    const bool isLock = round % 4 == 3;
    if (isLock) {
      Session locked = mine(1);
      locked.isLocked = 1;
      system.change(locked, stranger(0));
      ASSERT_EQ(heard.await(1), "-0 ") << round;
    } else {
      testing::showConsole(theirs);
    }
    strike(keyboard, KEY_B);  // before the login manager has noticed
    std::this_thread::sleep_for(milliseconds(20));
    if (!isLock) {
      system.change(mine(0), stranger(round % 4));  // or a login prompt
      ASSERT_EQ(heard.await(1), "-0 ") << round;
    }
    strike(keyboard, KEY_B);
    const KeyPause pause = isLock ? KeyPause::locked : KeyPause::inBackground;
    ASSERT_TRUE(eventually([&] { return monitor.pause() == pause; })) << round;
    keyboard.press({KEY_C});  // still held on the way back
    testing::showConsole(ours);
    goToFront();
    keyboard.release({KEY_A, KEY_C});
    ASSERT_EQ(heard.await(0), "") << round;
    ASSERT_TRUE(eventually([&] { return monitor.pause() == KeyPause::none; })) << round;
  }
  EXPECT_FALSE(monitor.goesOnWhileLocked());
}

TEST_F(KeyBroker, ABrokerThatIsKilledWhileItsUserTypesLeavesNoKeyStuckAndComesBack) {
  VirtualKeyboard keyboard("Keyboard");
  ASSERT_EQ(ask(true), "");
  ASSERT_TRUE(monitor.start());
  for (int round = 0; round < 20; ++round) {
    ASSERT_TRUE(isHeard(keyboard)) << round;
    keyboard.press({KEY_LEFTCTRL, KEY_A});
    ASSERT_EQ(heard.await(2), "+59 +0 ") << round;
    endBroker();
    EXPECT_EQ(heard.await(2), "-59 -0 ") << round;
    keyboard.release({KEY_A, KEY_LEFTCTRL});
  }
  ASSERT_TRUE(isHeard(keyboard));
  system.restart();
  goToFront();
  EXPECT_TRUE(isHeard(keyboard)) << "after the message bus";
}

TEST_F(KeyBroker, WhatAProgramDoesToItsStreamHarmsNobodyElse) {
  VirtualKeyboard keyboard("Keyboard");
  ASSERT_EQ(ask(true), "");
  ASSERT_TRUE(monitor.start());
  ASSERT_TRUE(isHeard(keyboard));
  std::string problem;
  FileDescriptor idle = broker::open(problem);
  const FileDescriptor second = broker::open(problem), third = broker::open(problem);
  ASSERT_TRUE(idle && second && third) << problem;
  EXPECT_FALSE(broker::open(problem)) << "no more than four for one user";
  EXPECT_LT(send(idle.get(), "x", 1, MSG_NOSIGNAL), 0) << "nothing is read from there";
  for (int i = 0; i < 2000; ++i)
    strike(keyboard, KEY_A);
  EXPECT_TRUE(isHeard(keyboard)) << "while the others do not read";
  pollfd wait{idle.get(), 0, 0};
  EXPECT_EQ(poll(&wait, 1, 10'000), 1) << "it is cut off";
  EXPECT_TRUE(broker::open(problem)) << problem;

  // Signals of a false login manager: the sender does not have its name.
  system.change(mine(0), stranger(1));
  EXPECT_NE(std::system("dbus-send --bus=\"$DBUS_SYSTEM_BUS_ADDRESS\" "
                        "/org/freedesktop/login1/session/_31 "
                        "org.freedesktop.DBus.Properties.PropertiesChanged "
                        "string:org.freedesktop.login1.Session dict:string:boolean:Active,true "
                        "array:string:"),
            -1);
  std::this_thread::sleep_for(milliseconds(200));
  heard.await(0);
  strike(keyboard, KEY_B);
  std::this_thread::sleep_for(milliseconds(200));
  EXPECT_EQ(heard.await(0), "");
}

TEST_F(KeyBroker, KeyboardsComeAndGo) {
  ASSERT_EQ(ask(true), "");
  ASSERT_TRUE(monitor.start());
  for (int round = 0; round < 10; ++round) {
    std::optional<VirtualKeyboard> keyboard(std::in_place, "Loose plug");
    ASSERT_TRUE(isHeard(*keyboard)) << round;
    keyboard->press({KEY_LEFTSHIFT, KEY_C});
    keyboard->repeat({KEY_C});
    ASSERT_EQ(heard.await(2), "+56 +8 ");
    keyboard.reset();
    ASSERT_EQ(heard.await(2), "-56 -8 ") << round;
  }

  VirtualKeyboard moved("Given to another seat");
  ASSERT_TRUE(isHeard(moved));
  moved.press({KEY_C});
  ASSERT_EQ(heard.await(1), "+8 ");
  const std::filesystem::path rule = "/run/udev/rules.d/99-moved.rules";
  std::ofstream(rule) << "SUBSYSTEM==\"input\", ATTRS{name}==\"Given to another seat\", "
                         "ENV{ID_SEAT}=\"seat-other\"\n";
  ASSERT_EQ(std::system("udevadm control --reload && udevadm trigger --action=change "
                        "--subsystem-match=input --settle"),
            0);
  EXPECT_EQ(heard.await(1), "-8 ");
  strike(moved, KEY_B);
  std::this_thread::sleep_for(milliseconds(200));
  EXPECT_EQ(heard.await(0), "");
  std::filesystem::remove(rule);
}

TEST_F(KeyBroker, TellsOfTheKeyboardsThatAreListedAndOfNothingElse) {
  ASSERT_EQ(ask(true), "");
  ASSERT_TRUE(monitor.start());
  VirtualKeyboard keyboard("Keyboard"), keypad("Keypad", VirtualKeyboard::keypad),
      taken("Taken by a remapper"), remapped("The remapper's"), expander("The expander's"),
      media("Media keys", {KEY_MUTE, KEY_VOLUMEUP}), buttons("Buttons", VirtualKeyboard::none);
  const FileDescriptor remapper = FileDescriptor::open(taken.node().c_str(), O_RDONLY);
  ASSERT_EQ(ioctl(remapper.get(), EVIOCGRAB, 1), 0);
  const auto isListed = [](const VirtualKeyboard& device) {
    const auto nodes = KeyboardList().nodes("seat0");
    return std::count(nodes.begin(), nodes.end(), device.node()) == 1;
  };
  for (VirtualKeyboard* const device : {&keyboard, &keypad, &remapped, &expander}) {
    EXPECT_TRUE(eventually([&] {
      strike(*device, KEY_KP5);
      std::this_thread::sleep_for(milliseconds(20));
      return heard.await(0).find("+87 -87 ") != std::string::npos;
    })) << device->node();
    EXPECT_TRUE(isListed(*device));
  }
  monitor.holdBack({"expander"});
  strike(expander, KEY_KP5);
  strike(taken, KEY_KP5);  // what comes of it comes from the remapper
  strike(media, KEY_MUTE);
  strike(buttons, KEY_POWER);
  std::this_thread::sleep_for(milliseconds(200));
  EXPECT_EQ(heard.await(0), "");
  EXPECT_FALSE(isListed(media) || isListed(buttons));
}

class KeyBrokerByTheAdministratorsWish : public KeyBroker {
 protected:
  KeyBrokerByTheAdministratorsWish() : KeyBroker(" --also-when-locked") {}
};

TEST_F(KeyBrokerByTheAdministratorsWish, KeysComeWhileTheSessionIsLockedAndTheProgramKnows) {
  VirtualKeyboard keyboard("Keyboard");
  ASSERT_EQ(ask(true), "");
  ASSERT_TRUE(monitor.start());
  Session locked = mine(1);
  locked.isLocked = 1;
  system.change(locked, stranger(0));
  EXPECT_TRUE(isHeard(keyboard));
  EXPECT_TRUE(monitor.goesOnWhileLocked());
  EXPECT_EQ(monitor.pause(), KeyPause::none);
}

/// How long after the kernel's time stamp each of many keys arrives, in microseconds, in order.
std::vector<double> delays(KeySource& source, VirtualKeyboard& keyboard) {
  std::vector<double> result;
  if (!source.open()) return result;
  std::thread typist([&] {
    std::this_thread::sleep_for(milliseconds(300));
    for (int i = 0; i < 1000; ++i) {
      strike(keyboard, KEY_A);
      std::this_thread::sleep_for(milliseconds(5));
    }
    source.interrupt();
  });
  source.run([&](const KeySource::Event& event) {
    if (event.time) result.push_back(machDelta(machNow(), *event.time) * 1000);
  });
  typist.join();
  source.close();
  std::sort(result.begin(), result.end());
  return result;
}

TEST_F(KeyBroker, AKeyTakesLittleLongerThanRightFromItsDevice) {
  VirtualKeyboard keyboard("Keyboard");
  ASSERT_EQ(ask(true), "");
  EvdevKeySource direct;
  BrokerKeySource broker;
  const auto near = delays(direct, keyboard), far = delays(broker, keyboard);
  ASSERT_EQ(near.size(), 2000U);
  ASSERT_EQ(far.size(), 2000U);
  std::printf("key to program, us: direct p50 %.0f p99 %.0f, broker p50 %.0f p99 %.0f\n",
              near[1000], near[1980], far[1000], far[1980]);
  EXPECT_LT(far[1980], near[1980] + 200);
}

}  // namespace
}  // namespace tobrin
