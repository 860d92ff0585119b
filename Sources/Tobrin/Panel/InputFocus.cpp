#include "Panel/InputFocus.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <cstdlib>
#include <memory>

namespace tobrin {

bool keepsInputFocus(const QWindow& window) {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  xcb_connection_t* server = x11 != nullptr ? x11->connection() : nullptr;
  if (server == nullptr) return false;
  const auto asked = xcb_get_input_focus(server);
  const std::unique_ptr<xcb_get_input_focus_reply_t, decltype(&std::free)> focus(
      xcb_get_input_focus_reply(server, asked, nullptr), std::free);
  return focus != nullptr && focus->focus == window.winId();
}

}  // namespace tobrin
