// The whole program in a Wayland session and real keyboards: as root in a virtual machine.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "Tools/Devices/AsNobody.h"
#include "Tools/Devices/Seat.h"
#include "Tools/Devices/VirtualKeyboard.h"

namespace tobrin {
namespace {

using testing::VirtualKeyboard;

/// Runs wayland_user.py as nobody; what it says is read line by line.
class User final {
 public:
  User() {
    if (pipe(ends_.data()) != 0) std::abort();
    child_ = testing::startAsNobody([this] {
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
  int exitStatus() { return testing::exitStatus(child_); }

 private:
  std::array<int, 2> ends_{};
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
  User user;
  // In place of pkexec, which asks who may: does as root what the program asked it for.
  const std::string asked = user.line();
  ASSERT_EQ(asked, TOBRIN_KEY_ACCESS " grant");
  ASSERT_EQ(std::system(asked.c_str()), 0);
  ASSERT_TRUE(testing::letSomebodyIn(keyboard.node()));
  ASSERT_EQ(user.line(), "types");
  for (int i = 0; i < 5; ++i)
    strike(keyboard, {KEY_A});
  strike(keyboard, {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_K});
  ASSERT_EQ(user.line(), "switched off");
  int sounds = 0;
  EXPECT_EQ(std::sscanf(user.line().c_str(), "played: %d", &sounds), 1);
  EXPECT_GE(sounds, 5);
  EXPECT_EQ(user.exitStatus(), 0);
  EXPECT_EQ(std::system(TOBRIN_KEY_ACCESS " --remove"), 0);
}

}  // namespace
}  // namespace tobrin
