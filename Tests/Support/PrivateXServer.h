/// An X server of the test's own, without a screen anyone sees, and a typist at its keyboard.
#pragma once

#include <fcntl.h>
#include <linux/input-event-codes.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <initializer_list>
#include <stdexcept>
#include <string>

#include "X11/XConnection.h"

namespace tobrin::testing {

class PrivateXServer final {
 public:
  /// Picks a free display, or takes the one given (":7") to come back on it.
  explicit PrivateXServer(const std::string& display = {}) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    process_ = fork();
    if (process_ == 0) {
      const std::string descriptor = std::to_string(ends[1]);
      const int silence = ::open("/dev/null", O_WRONLY);
      dup2(silence, STDERR_FILENO);
      if (display.empty()) {
        execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-noreset", "-nolisten", "tcp",
               nullptr);
      }
      execlp("Xvfb", "Xvfb", display.c_str(), "-displayfd", descriptor.c_str(), "-noreset",
             "-nolisten", "tcp", nullptr);
      _exit(127);
    }
    ::close(ends[1]);
    std::string number;
    for (char digit = 0; read(ends[0], &digit, 1) == 1 && digit != '\n';) {
      number += digit;
    }
    ::close(ends[0]);
    if (number.empty()) throw std::runtime_error("Xvfb did not start");
    display_ += number;
    connection_ = connectToX(display_);
  }
  ~PrivateXServer() {
    connection_.reset();
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
  }
  PrivateXServer(const PrivateXServer&) = delete;
  PrivateXServer& operator=(const PrivateXServer&) = delete;

  [[nodiscard]] const std::string& display() const { return display_; }

  /// Presses or releases keys by their kernel codes, and returns once the server has taken it.
  void press(std::initializer_list<uint8_t> keys) { type(XCB_KEY_PRESS, keys); }
  void release(std::initializer_list<uint8_t> keys) { type(XCB_KEY_RELEASE, keys); }

  /// Another program's connection. Owned by the server object.
  [[nodiscard]] xcb_connection_t* connection() const { return connection_.get(); }

 private:
  void type(uint8_t action, std::initializer_list<uint8_t> keys) {
    xcb_connection_t* typist = connection_.get();
    for (const uint8_t key : keys) {
      xcb_test_fake_input(typist, action, static_cast<uint8_t>(key + 8), 0, XCB_NONE, 0, 0, 0);
    }
    free(xcb_get_input_focus_reply(typist, xcb_get_input_focus(typist), nullptr));
  }

  pid_t process_ = -1;
  std::string display_ = ":";
  XConnection connection_;
};

}  // namespace tobrin::testing
