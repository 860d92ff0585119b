#include "Front/XFrontFeed.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace tobrin {
namespace {

constexpr std::array<std::string_view, 5> atomNames = {"_NET_ACTIVE_WINDOW", "_NET_SUPPORTED",
                                                       "_NET_SUPPORTING_WM_CHECK", "_NET_WM_STATE",
                                                       "_NET_WM_STATE_FULLSCREEN"};

}  // namespace

XFrontFeed::XFrontFeed(const std::string& display) : connection_(connectToX(display)) {
  static_assert(atomNames.size() == atomCount);
  if (!connection_) return;
  root_ = firstScreen(connection_.get()).root;
  findAtoms();
  watch(root_, XCB_EVENT_MASK_PROPERTY_CHANGE);
}

void XFrontFeed::findAtoms() {
  std::array<xcb_intern_atom_cookie_t, atomCount> questions{};
  for (std::size_t i = 0; i < atomCount; ++i)
    questions[i] = xcb_intern_atom(connection_.get(), 0, static_cast<uint16_t>(atomNames[i].size()),
                                   atomNames[i].data());
  for (std::size_t i = 0; i < atomCount; ++i) {
    const XReply<xcb_intern_atom_reply_t> answer(
        xcb_intern_atom_reply(connection_.get(), questions[i], nullptr));
    if (answer) atoms_[i] = answer->atom;
  }
}

int XFrontFeed::descriptor() const {
  return connection_ ? xcb_get_file_descriptor(connection_.get()) : -1;
}

bool XFrontFeed::process(const Report& report) {
  while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())})
    isStale_ |= isAboutFront(*event);
  // Events that came in with the answers to our own questions are not announced again.
  while (isStale_) {
    look();
    while (const XReply<xcb_generic_event_t> event{xcb_poll_for_queued_event(connection_.get())})
      isStale_ |= isAboutFront(*event);
  }
  report(front_);
  return xcb_connection_has_error(connection_.get()) == 0;
}

bool XFrontFeed::isAboutFront(const xcb_generic_event_t& event) const {
  if ((event.response_type & 0x7F) != XCB_PROPERTY_NOTIFY) return false;
  const auto& notice = reinterpret_cast<const xcb_property_notify_event_t&>(event);
  if (notice.window == root_)
    return notice.atom == atoms_[activeWindow] || notice.atom == atoms_[supported] ||
           notice.atom == atoms_[managerCheck];
  return notice.atom == atoms_[state] || notice.atom == XCB_ATOM_WM_CLASS;
}

void XFrontFeed::look() {
  isStale_ = false;
  front_ = {};
  if (!managerTells()) {
    front_.knowledge = Front::Knowledge::windowManagerDoesNotTell;
    return;
  }
  const xcb_window_t window = number(root_, atoms_[activeWindow]);
  if (window != window_) {
    if (window_ != XCB_NONE && window_ != root_) watch(window_, XCB_EVENT_MASK_NO_EVENT);
    window_ = window;
    if (window_ != XCB_NONE) watch(window_, XCB_EVENT_MASK_PROPERTY_CHANGE);
  }
  if (window_ == XCB_NONE) return;
  front_.app = applicationOf(window_);
  const auto states = numbers(window_, atoms_[state]);
  front_.fillsScreen = std::find(states.begin(), states.end(), atoms_[fullScreen]) != states.end();
}

/// A window that has gone meanwhile makes an error, which is dropped with the other events.
void XFrontFeed::watch(xcb_window_t window, uint32_t events) const {
  xcb_change_window_attributes(connection_.get(), window, XCB_CW_EVENT_MASK, &events);
  xcb_flush(connection_.get());
}

/// Whether a window manager runs that keeps the active window up to date. What one that has ended
/// left at the root window does not count: its own window, which names itself, is gone with it.
bool XFrontFeed::managerTells() const {
  const xcb_window_t manager = number(root_, atoms_[managerCheck]);
  if (manager == XCB_NONE || number(manager, atoms_[managerCheck]) != manager) return false;
  const auto features = numbers(root_, atoms_[supported]);
  return std::find(features.begin(), features.end(), atoms_[activeWindow]) != features.end();
}

/// The class of the window, else the instance: two texts that each end with a zero, the instance
/// first.
std::string XFrontFeed::applicationOf(xcb_window_t window) const {
  const auto bytes = property(window, XCB_ATOM_WM_CLASS);
  const auto end = std::find(bytes.begin(), bytes.end(), 0);
  std::string instance(bytes.begin(), end);
  if (end == bytes.end()) return instance;
  std::string className(end + 1, std::find(end + 1, bytes.end(), 0));
  return className.empty() ? instance : className;
}

std::vector<uint8_t> XFrontFeed::property(xcb_window_t window, xcb_atom_t name) const {
  constexpr uint32_t most =
      1024;  // in words of four bytes; window managers list some hundred atoms
  const XReply<xcb_get_property_reply_t> answer(xcb_get_property_reply(
      connection_.get(),
      xcb_get_property(connection_.get(), 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, most),
      nullptr));
  if (!answer) return {};
  const auto* const bytes = static_cast<const uint8_t*>(xcb_get_property_value(answer.get()));
  return {bytes, bytes + xcb_get_property_value_length(answer.get())};
}

std::vector<uint32_t> XFrontFeed::numbers(xcb_window_t window, xcb_atom_t name) const {
  const auto bytes = property(window, name);
  std::vector<uint32_t> result(bytes.size() / sizeof(uint32_t));
  if (!result.empty()) std::memcpy(result.data(), bytes.data(), result.size() * sizeof(uint32_t));
  return result;
}

uint32_t XFrontFeed::number(xcb_window_t window, xcb_atom_t name) const {
  const auto all = numbers(window, name);
  return all.empty() ? 0 : all.front();
}

}  // namespace tobrin
