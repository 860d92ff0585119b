/// A private X server for one test, with a screen that is not shown, and a typist at its keyboard.
/// Thread: main.
#pragma once

#include <linux/input-event-codes.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "Tools/Desktop/ChildProcess.h"
#include "X11/XConnection.h"

namespace tobrin::testing {

class PrivateXServer final {
 public:
  /// Takes a display of this process's own, or the one given (":7") to come back on it.
  explicit PrivateXServer(const std::string& display = ownDisplay())
      : server_(command(display), ChildProcess::Output::announced),
        display_(server_.firstLine().insert(0, 1, ':')),
        connection_(connectToX(display_)) {}

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

  static std::vector<std::string> command(const std::string& display) {
    return {"Xvfb", "-displayfd", "1", "-noreset", "-nolisten", "tcp", display};
  }

  // Far from the low numbers, which servers that pick for themselves take, also one that was left
  // for a moment to come back to.
  static std::string ownDisplay() {
    static int made = 0;
    return std::string(":").append(std::to_string(1000 + (getpid() * 8 + made++) % 50000));
  }

  ChildProcess server_;
  std::string display_;
  XConnection connection_;
};

}  // namespace tobrin::testing
