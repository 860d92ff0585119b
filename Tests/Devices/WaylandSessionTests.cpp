// The whole program in a Wayland session and real keyboards: as root in a virtual machine.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "Evdev/KeyRecord.h"
#include "Tools/Devices/AsNobody.h"
#include "Tools/Devices/SystemServices.h"
#include "Tools/Devices/VirtualKeyboard.h"

namespace tobrin {
namespace {

using testing::VirtualKeyboard;

/// Runs wayland_user.py as nobody; what it says is read line by line.
class User final {
 public:
  User() {
    if (pipe(ends_.data()) != 0 || pipe(words_.data()) != 0) std::abort();
    child_ = testing::startAsNobody([this] {
      dup2(words_[0], STDIN_FILENO);
      dup2(ends_[1], STDOUT_FILENO);
      setenv("TOBRIN_DESKTOP_TOOLS", TOBRIN_DESKTOP_TOOLS, 1);
      execl(TOBRIN_DESKTOP_SESSION, "desktop-session", "--wayland", "--screen", "400x1000x24",
            TOBRIN_WAYLAND_USER, TOBRIN_PROGRAM, TOBRIN_PACKS, nullptr);
      return 97;
    });
    close(ends_[1]);
    said_ = fdopen(ends_[0], "r");
  }
  ~User() { fclose(said_); }
  User(const User&) = delete;
  User& operator=(const User&) = delete;

  /// The next line without its end; empty once there are no more.
  std::string line() {
    std::array<char, 512> text{};
    if (fgets(text.data(), static_cast<int>(text.size()), said_) == nullptr) return {};
    const std::string all(text.data());
    return all.substr(0, all.find('\n'));
  }
  void say(const std::string& word) { dprintf(words_[1], "%s\n", word.c_str()); }
  int exitStatus() { return testing::exitStatus(child_); }

 private:
  std::array<int, 2> ends_{}, words_{};
  pid_t child_ = -1;
  FILE* said_ = nullptr;
};

void strike(VirtualKeyboard& keyboard, std::initializer_list<unsigned> keys) {
  for (const unsigned key : keys)
    keyboard.press({key});
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  for (const unsigned key : keys)
    keyboard.release({key});
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

TEST(WaylandSession, AUserAsksForAccessAndPlaysWithoutStartingAgain) {
  if (!VirtualKeyboard::isPossible()) GTEST_SKIP() << "no /dev/uinput";
  VirtualKeyboard keyboard("Keyboard");
  testing::SystemServices services(keyBrokerName, TOBRIN_KEYS " " TOBRIN_PROGRAM);
  ASSERT_TRUE(testing::showConsole(1));
  services.change({.user = 65534, .console = 1, .isActive = 1}, {});
  setenv("TOBRIN_SYSTEM_BUS", getenv("DBUS_SYSTEM_BUS_ADDRESS"), 1);
  User user;
  ASSERT_EQ(user.line(), "refused");
  services.agrees = true;
  user.say("again");
  ASSERT_EQ(user.line(), "types");
  for (int i = 0; i < 5; ++i)
    strike(keyboard, {KEY_A});
  strike(keyboard, {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_K});
  ASSERT_EQ(user.line(), "switched off");
  int sounds = 0;
  EXPECT_EQ(std::sscanf(user.line().c_str(), "played: %d", &sounds), 1);
  EXPECT_GE(sounds, 5);
  EXPECT_EQ(user.exitStatus(), 0);
  EXPECT_EQ(services.questions, 2);
}

}  // namespace
}  // namespace tobrin
