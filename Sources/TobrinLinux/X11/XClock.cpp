#include "X11/XClock.h"

#include "Base/MachTime.h"
#include "X11/XConnection.h"

namespace tobrin {
namespace {

constexpr uint64_t ticksPerMs = 1'000'000;
constexpr int32_t toleranceMs = 50;  // servers may read a coarse clock

uint32_t serverMs(uint64_t ticks) {
  return static_cast<uint32_t>(ticks / ticksPerMs);
}

/// a - b where the counter may have wrapped in between.
int32_t wrappedDifference(uint32_t a, uint32_t b) {
  return static_cast<int32_t>(a - b);
}

/// The server's present time, from the notice of an empty change to a property of our window.
std::optional<uint32_t> serverTime(xcb_connection_t* connection) {
  const xcb_window_t window = xcb_generate_id(connection);
  const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_create_window(connection, 0, window, firstScreen(connection).root, 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
  xcb_change_property(connection, XCB_PROP_MODE_APPEND, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING,
                      8, 0, nullptr);
  xcb_destroy_window(connection, window);
  xcb_flush(connection);
  while (const XReply<xcb_generic_event_t> event{xcb_wait_for_event(connection)}) {
    if ((event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) continue;
    return reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->time;
  }
  return std::nullopt;
}

}  // namespace

XClock XClock::compare(xcb_connection_t* connection) {
  const uint32_t before = serverMs(machNow());
  const auto time = serverTime(connection);
  const uint32_t after = serverMs(machNow());
  return XClock(time && wrappedDifference(*time, before) >= -toleranceMs &&
                wrappedDifference(after, *time) >= -toleranceMs);
}

std::optional<uint64_t> XClock::ticks(uint32_t serverTime, uint64_t now) const {
  if (!sharesOurs_) return std::nullopt;
  const int32_t ageMs = wrappedDifference(serverMs(now), serverTime);
  if (ageMs < -toleranceMs) return std::nullopt;
  if (ageMs <= 0) return now;
  return (now / ticksPerMs - static_cast<uint64_t>(ageMs)) * ticksPerMs;
}

}  // namespace tobrin
