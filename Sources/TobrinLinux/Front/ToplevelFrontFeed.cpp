#include "Front/ToplevelFrontFeed.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <span>
#include <string_view>

#include "Front/ToplevelProtocol.h"

namespace tobrin {

void ToplevelFrontFeed::Toplevel::takeStates(const wl_array& states) {
  const std::span all(static_cast<const uint32_t*>(states.data), states.size / sizeof(uint32_t));
  const auto has = [&](toplevel::State state) {
    return std::find(all.begin(), all.end(), state) != all.end();
  };
  willBeActive = has(toplevel::activated);
  next.fillsScreen = has(toplevel::fullScreen);
}

struct ToplevelFrontFeed::Events {
  template <typename... Arguments>
  static void ignore(void*, wl_proxy*, Arguments...) {}

  static void appeared(void* self, wl_proxy*, wl_proxy* handle) {
    auto& feed = *static_cast<ToplevelFrontFeed*>(self);
    Toplevel& added = feed.toplevels_.emplace_back(Toplevel{.feed = &feed, .handle = handle});
    listen(handle, ofHandle, &added);
  }

  static void named(void* self, wl_proxy*, const char* id) {
    static_cast<Toplevel*>(self)->next.app = id;
  }

  static void changed(void* self, wl_proxy*, wl_array* states) {
    static_cast<Toplevel*>(self)->takeStates(*states);
  }

  static void done(void* self, wl_proxy*) {
    auto& window = *static_cast<Toplevel*>(self);
    window.current = window.next;
    window.isActive = window.willBeActive;
  }

  static void closed(void* self, wl_proxy* handle) {
    auto& feed = *static_cast<Toplevel*>(self)->feed;
    wl_proxy_marshal_flags(handle, toplevel::destroyRequest, nullptr, wl_proxy_get_version(handle),
                           WL_MARSHAL_FLAG_DESTROY);
    feed.toplevels_.remove_if([&](const Toplevel& each) { return each.handle == handle; });
  }

  static void offered(void* self, wl_registry* registry, uint32_t name, const char* interface,
                      uint32_t version) {
    auto& feed = *static_cast<ToplevelFrontFeed*>(self);
    if (feed.manager_ != nullptr || version < toplevel::version ||
        std::string_view(interface) != toplevel::manager.name)
      return;
    feed.manager_ = static_cast<wl_proxy*>(
        wl_registry_bind(registry, name, &toplevel::manager, toplevel::version));
    listen(feed.manager_, ofManager, &feed);
  }

  static void withdrawn(void*, wl_registry*, uint32_t) {}

  /// The library takes a table of functions as a list of pointers to any.
  template <typename Table>
  static void listen(wl_proxy* proxy, const Table& table, void* self) {
    using Listed = void (**)();
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): the library only reads it
    wl_proxy_add_listener(proxy, reinterpret_cast<Listed>(const_cast<Table*>(&table)), self);
  }

  static constexpr toplevel::ManagerEvents ofManager = {.toplevel = &appeared, .finished = &ignore};
  static constexpr toplevel::HandleEvents ofHandle = {.title = &ignore,
                                                      .appId = &named,
                                                      .outputEnter = &ignore,
                                                      .outputLeave = &ignore,
                                                      .state = &changed,
                                                      .done = &done,
                                                      .closed = &closed};
  static constexpr wl_registry_listener ofRegistry = {.global = &offered,
                                                      .global_remove = &withdrawn};
};

ToplevelFrontFeed::ToplevelFrontFeed() : display_(wl_display_connect(nullptr)) {
  if (display_ == nullptr) return;
  wl_registry* const registry = wl_display_get_registry(display_);
  registry_ = reinterpret_cast<wl_proxy*>(registry);
  wl_registry_add_listener(registry, &Events::ofRegistry, this);
  wl_display_roundtrip(display_);                           // what there is
  if (manager_ != nullptr) wl_display_roundtrip(display_);  // its windows
}

ToplevelFrontFeed::~ToplevelFrontFeed() {
  for (const Toplevel& each : toplevels_)
    wl_proxy_destroy(each.handle);
  if (manager_ != nullptr) wl_proxy_destroy(manager_);
  if (registry_ != nullptr) wl_proxy_destroy(registry_);
  if (display_ != nullptr) wl_display_disconnect(display_);
}

int ToplevelFrontFeed::descriptor() const {
  return manager_ != nullptr ? wl_display_get_fd(display_) : -1;
}

bool ToplevelFrontFeed::process(const Report& report) {
  while (wl_display_prepare_read(display_) != 0)
    wl_display_dispatch_pending(display_);
  wl_display_flush(display_);
  pollfd wait{descriptor(), POLLIN, 0};
  if (poll(&wait, 1, 0) > 0) {
    wl_display_read_events(display_);
  } else {
    wl_display_cancel_read(display_);
  }
  wl_display_dispatch_pending(display_);
  wl_display_flush(display_);
  report(front());
  return wl_display_get_error(display_) == 0;
}

Front ToplevelFrontFeed::front() const {
  const auto active = std::find_if(toplevels_.begin(), toplevels_.end(),
                                   [](const Toplevel& each) { return each.isActive; });
  return active == toplevels_.end() ? Front{} : active->current;
}

}  // namespace tobrin
