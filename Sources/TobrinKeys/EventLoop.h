/// Owners of what the event library gives out. Thread: main.
#pragma once

#include <systemd/sd-event.h>

#include <memory>

namespace tobrin {

struct EventUnref {
  void operator()(sd_event* loop) const { sd_event_unref(loop); }
  void operator()(sd_event_source* source) const { sd_event_source_disable_unref(source); }
};

using EventLoop = std::unique_ptr<sd_event, EventUnref>;
using EventSource = std::unique_ptr<sd_event_source, EventUnref>;

}  // namespace tobrin
