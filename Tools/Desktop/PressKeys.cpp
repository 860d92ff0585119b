// press-keys: presses and releases keys through the X server's test extension, as a user's hands
// would, and prints when: "press NS KEYCODE" and "release NS KEYCODE", one a line, NS on
// CLOCK_MONOTONIC.
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Clock.h"
#include "KeyScript.h"

namespace {

using tobrin::testing::KeyAction;

const char* const usage =
    "press-keys [--delay MS] --text TEXT [--interval MS] [--hold MS]\n"
    "press-keys [--delay MS] --random PRESSES [--gap MIN:MAX] [--rolls] [--seed N]\n"
    "press-keys [--delay MS] --script FILE       lines \"MS press|release KEYSYM\"\n"
    "Types after the delay (100 ms).\n";

class Keyboard final {
 public:
  Keyboard() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_) != 0) throw std::runtime_error("no X server");
    const xcb_query_extension_reply_t* extension =
        xcb_get_extension_data(connection_, &xcb_test_id);
    if (extension == nullptr || extension->present == 0)
      throw std::runtime_error("the X server has no XTEST");
    symbols_ = xcb_key_symbols_alloc(connection_);
  }
  ~Keyboard() {
    if (symbols_ != nullptr) xcb_key_symbols_free(symbols_);
    xcb_disconnect(connection_);
  }
  Keyboard(const Keyboard&) = delete;
  Keyboard& operator=(const Keyboard&) = delete;

  [[nodiscard]] xcb_keycode_t keycode(uint32_t keysym) const {
    xcb_keycode_t* codes = xcb_key_symbols_get_keycode(symbols_, keysym);
    const xcb_keycode_t code = codes == nullptr ? xcb_keycode_t{0} : codes[0];
    free(codes);
    if (code == 0) throw std::runtime_error("no key for keysym " + std::to_string(keysym));
    return code;
  }

  /// Returns the time just before the request leaves this process.
  int64_t move(xcb_keycode_t code, bool down) {
    xcb_test_fake_input(connection_, down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code, XCB_CURRENT_TIME,
                        XCB_NONE, 0, 0, 0);
    const int64_t now = tobrin::testing::monotonicNs();
    xcb_flush(connection_);
    return now;
  }

  /// Waits until the server has taken everything; throws when it is gone.
  void finish() {
    free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    if (xcb_connection_has_error(connection_) != 0)
      throw std::runtime_error("the X server went away");
  }

 private:
  xcb_connection_t* connection_;
  xcb_key_symbols_t* symbols_ = nullptr;
};

struct Arguments {
  double delayMs = 100;
  std::string text, scriptFile;
  tobrin::testing::TypingStyle style;
  tobrin::testing::RandomTyping random{.presses = 0};
};

void takeGap(const std::string& value, tobrin::testing::RandomTyping& random) {
  const size_t colon = value.find(':');
  if (colon == std::string::npos) throw std::invalid_argument("--gap wants MIN:MAX");
  random.minimumIntervalMs = std::stod(value);
  random.maximumIntervalMs = std::stod(value.substr(colon + 1));
}

Arguments parse(int count, char** words) {
  Arguments arguments;
  for (int i = 1; i < count; ++i) {
    const std::string option = words[i];
    if (option == "--rolls") {
      arguments.random.rolls = true;
      continue;
    }
    if (++i == count) throw std::invalid_argument(option + " wants a value");
    const std::string value = words[i];
    if (option == "--delay")
      arguments.delayMs = std::stod(value);
    else if (option == "--text")
      arguments.text = value;
    else if (option == "--interval")
      arguments.style.intervalMs = std::stod(value);
    else if (option == "--hold")
      arguments.style.holdMs = std::stod(value);
    else if (option == "--random")
      arguments.random.presses = std::stoi(value);
    else if (option == "--gap")
      takeGap(value, arguments.random);
    else if (option == "--seed")
      arguments.random.seed = static_cast<uint32_t>(std::stoul(value));
    else if (option == "--script")
      arguments.scriptFile = value;
    else
      throw std::invalid_argument("unknown option " + option);
  }
  return arguments;
}

std::vector<KeyAction> actionsFor(const Arguments& arguments) {
  if (!arguments.text.empty()) return typedText(arguments.text, arguments.style);
  if (arguments.random.presses > 0) return randomTyping(arguments.random);
  std::ifstream file(arguments.scriptFile);
  if (!file) throw std::invalid_argument("nothing to type, or no such script");
  return tobrin::testing::parseKeyScript(file);
}

void type(const std::vector<KeyAction>& actions, double delayMs) {
  Keyboard keyboard;
  std::vector<xcb_keycode_t> codes;
  codes.reserve(actions.size());
  for (const KeyAction& action : actions)
    codes.push_back(keyboard.keycode(action.keysym));
  tobrin::testing::tryRealTime(50);
  const double startNs = static_cast<double>(tobrin::testing::monotonicNs()) + delayMs * 1e6;
  for (size_t i = 0; i < actions.size(); ++i) {
    tobrin::testing::sleepUntilNs(static_cast<int64_t>(startNs + actions[i].atMs * 1e6));
    const int64_t atNs = keyboard.move(codes[i], actions[i].down);
    std::printf("%s %lld %d\n", actions[i].down ? "press" : "release", static_cast<long long>(atNs),
                codes[i]);
  }
  keyboard.finish();
}

}  // namespace

int main(int count, char** words) {
  try {
    const Arguments arguments = parse(count, words);
    type(actionsFor(arguments), arguments.delayMs);
  } catch (const std::logic_error& error) {
    std::cerr << "press-keys: " << error.what() << "\n" << usage;
    return 2;
  } catch (const std::exception& error) {
    std::cerr << "press-keys: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
