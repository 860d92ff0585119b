/// Owners of what the bus library gives out. Thread: any.
#pragma once

#include <systemd/sd-bus.h>

#include <memory>

namespace tobrin {

struct BusUnref {
  void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
  void operator()(sd_bus_creds* creds) const { sd_bus_creds_unref(creds); }
};

using SystemBus = std::unique_ptr<sd_bus, BusUnref>;
using BusMessage = std::unique_ptr<sd_bus_message, BusUnref>;

}  // namespace tobrin
