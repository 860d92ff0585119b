#include "X11/XKeySource.h"

#include <linux/input-event-codes.h>
#include <poll.h>
#include <xcb/xinput.h>

#include <array>
#include <cerrno>
#include <utility>

#include "Base/LowerCase.h"
#include "Base/MachTime.h"
#include "Base/MouseButton.h"
#include "Evdev/KeyCodes.h"
#include "X11/XDeviceNames.h"

namespace tobrin {
namespace {

/// The kernel's code of a mouse button, by the server's number of it; 0 for none.
uint32_t kernelButtonOf(uint32_t number) {
  constexpr std::array<uint32_t, 11> codes = {0, BTN_LEFT, BTN_MIDDLE, BTN_RIGHT, 0,       0,
                                              0, 0,        BTN_SIDE,   BTN_EXTRA, BTN_TASK};
  return number < codes.size() ? codes[number] : 0;
}

struct EventMask {
  xcb_input_event_mask_t head;
  uint32_t mask;
};

/// Two fingers on a touchpad turn a wheel, too, without a notch that anybody feels.
bool isTouchpad(const std::string& name) {
  const std::string lower = lowerCase(name);
  return lower.find("touchpad") != std::string::npos || lower.find("trackpad") != std::string::npos;
}

}  // namespace

XKeySource::XKeySource(std::string display) : display_(std::move(display)) {}

bool XKeySource::open() {
  connection_ = connectToX(display_);
  if (!connection_) return fail("the X server cannot be reached");
  if (!hasRawEvents()) return fail("the X server has no XInput 2.1");
  clock_ = XClock::compare(connection_.get());
  if (!selectEvents()) return fail("the X server does not tell of raw key events");
  learnKeyboards();
  const MutexLock lock(mutex_);
  problem_.clear();
  return true;
}

bool XKeySource::fail(const std::string& reason) {
  connection_.reset();
  const MutexLock lock(mutex_);
  problem_ = reason;
  return false;
}

bool XKeySource::hasRawEvents() const {
  const auto* extension = xcb_get_extension_data(connection_.get(), &xcb_input_id);
  if (extension == nullptr || extension->present == 0) return false;
  // Before 2.1 raw events stop while another program has grabbed the keyboard.
  const XReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
      connection_.get(), xcb_input_xi_query_version(connection_.get(), 2, 2), nullptr));
  return version && (version->major_version > 2 ||
                     (version->major_version == 2 && version->minor_version >= 1));
}

bool XKeySource::selectEvents() const {
  // From the master devices only: with all devices each key would come twice.
  uint32_t wanted = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
  if (mouse_.hearing() != MouseHearing::nothing)
    wanted |= XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE;
  const std::array<EventMask, 2> masks = {
      {{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, wanted},
       {{XCB_INPUT_DEVICE_ALL, 1}, XCB_INPUT_XI_EVENT_MASK_HIERARCHY}}};
  const auto cookie = xcb_input_xi_select_events_checked(
      connection_.get(), firstScreen(connection_.get()).root, masks.size(), &masks[0].head);
  return XReply<xcb_generic_error_t>(xcb_request_check(connection_.get(), cookie)) == nullptr;
}

/// Keeps those that are known, with what is held on them.
void XKeySource::learnKeyboards() {
  for (auto& [id, name] : deviceNames(connection_.get()))
    keyboards_.try_emplace(id, std::move(name));
}

void XKeySource::run(const Sink& sink) {
  inputExtension_ = xcb_get_extension_data(connection_.get(), &xcb_input_id)->major_opcode;
  std::array<pollfd, 3> waits = {{{wake_.fd(), POLLIN, 0},
                                  {mouse_.fd(), POLLIN, 0},
                                  {xcb_get_file_descriptor(connection_.get()), POLLIN, 0}}};
  for (;;) {
    takeAll(sink);  // also what came in with the replies to our own requests
    if (xcb_connection_has_error(connection_.get()) != 0) break;
    if (retried([&] { return poll(waits.data(), waits.size(), -1); }) < 0) break;
    if (waits[0].revents != 0) return;
    if (waits[1].revents == 0) continue;
    mouse_.clear();
    if (!selectEvents()) break;
  }
  for (auto& [id, keyboard] : keyboards_)
    keyboard.releaseAll(std::nullopt, sink);
  fail("the X server has gone");
}

void XKeySource::takeAll(const Sink& sink) {
  while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
    take(*event, sink);
  }
}

void XKeySource::take(const xcb_generic_event_t& event, const Sink& sink) {
  if ((event.response_type & 0x7F) != XCB_GE_GENERIC) return;
  const auto& input = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
  if (input.extension != inputExtension_) return;
  switch (input.event_type) {
    case XCB_INPUT_RAW_KEY_PRESS:
      takeKey(event, HeldKeys::Change::press, sink);
      break;
    case XCB_INPUT_RAW_KEY_RELEASE:
      takeKey(event, HeldKeys::Change::release, sink);
      break;
    case XCB_INPUT_RAW_BUTTON_PRESS:
      takeButton(event, HeldKeys::Change::press, sink);
      break;
    case XCB_INPUT_RAW_BUTTON_RELEASE:
      takeButton(event, HeldKeys::Change::release, sink);
      break;
    case XCB_INPUT_HIERARCHY:
      takeKeyboardsChanged(event, sink);
      break;
    default:
      break;
  }
}

void XKeySource::takeKey(const xcb_generic_event_t& event, HeldKeys::Change change,
                         const Sink& sink) {
  const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
  if (raw.detail < xKeyCodeOffset) return;
  const uint32_t kernelCode = raw.detail - xKeyCodeOffset;
  HeldKeys& keyboard = keyboards_[raw.sourceid];
  const bool repeats = (raw.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0;
  if (change == HeldKeys::Change::press && (repeats || keyboard.isHeld(kernelCode))) {
    change = HeldKeys::Change::repeat;
  }
  if (const auto told = keyboard.take(kernelCode, change, clock_.ticks(raw.time, machNow()))) {
    sink(*told);
  }
}

/// A wheel comes as four more buttons, pressed and released at each notch.
void XKeySource::takeButton(const xcb_generic_event_t& event, HeldKeys::Change change,
                            const Sink& sink) {
  constexpr uint32_t firstWheel = 4, lastWheel = 7;
  const auto& raw = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
  const auto time = clock_.ticks(raw.time, machNow());
  HeldKeys& mouse = keyboards_[raw.sourceid];
  if (raw.detail < firstWheel || raw.detail > lastWheel) {
    if (const auto told = mouse.take(kernelButtonOf(raw.detail), change, time)) sink(*told);
    return;
  }
  const bool isHeard = mouse_.hearing() == MouseHearing::buttonsAndWheel;
  if (change == HeldKeys::Change::press && isHeard && !isTouchpad(mouse.name()))
    sink({.code = codeOf(MouseButton::wheel), .time = time, .keyboard = mouse.name()});
}

/// A keyboard that vanishes or is switched off releases nothing by itself.
void XKeySource::takeKeyboardsChanged(const xcb_generic_event_t& event, const Sink& sink) {
  constexpr uint32_t gone =
      XCB_INPUT_HIERARCHY_MASK_SLAVE_REMOVED | XCB_INPUT_HIERARCHY_MASK_DEVICE_DISABLED;
  const auto& hierarchy = reinterpret_cast<const xcb_input_hierarchy_event_t&>(event);
  auto infos = xcb_input_hierarchy_infos_iterator(&hierarchy);
  for (; infos.rem > 0; xcb_input_hierarchy_info_next(&infos)) {
    if ((infos.data->flags & gone) == 0) continue;
    const auto found = keyboards_.find(infos.data->deviceid);
    if (found == keyboards_.end()) continue;
    found->second.releaseAll(clock_.ticks(hierarchy.time, machNow()), sink);
    keyboards_.erase(found);
  }
  learnKeyboards();
}

void XKeySource::close() {
  connection_.reset();
  keyboards_.clear();
  wake_.clear();
}

void XKeySource::interrupt() {
  wake_.raise();
}

std::string XKeySource::problem() const {
  const MutexLock lock(mutex_);
  return problem_;
}

std::string XKeySource::description() const {
  return display_.empty() ? "X server" : "X server " + display_;
}

}  // namespace tobrin
