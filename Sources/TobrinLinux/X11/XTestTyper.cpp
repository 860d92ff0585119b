#include "X11/XTestTyper.h"

#include <xcb/xtest.h>

#include "Evdev/KeyCodes.h"

namespace tobrin {

bool XTestTyper::open() {
  connection_ = connectToX("");
  if (!connection_) {
    problem_ = "no X server answers";
    return false;
  }
  const xcb_query_extension_reply_t* extension =
      xcb_get_extension_data(connection_.get(), &xcb_test_id);
  if (extension != nullptr && extension->present != 0) return true;
  problem_ = "the X server has no test extension";
  return false;
}

bool XTestTyper::send(uint16_t code, KeyAction action) {
  const auto kernelCodes = kernelCodesOf(code);
  if (kernelCodes.empty()) return false;
  const auto detail = static_cast<uint8_t>(kernelCodes.front() + xKeyCodeOffset);
  const uint8_t type = action == KeyAction::down ? XCB_KEY_PRESS : XCB_KEY_RELEASE;
  xcb_test_fake_input(connection_.get(), type, detail, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
  return xcb_flush(connection_.get()) > 0;
}

}  // namespace tobrin
