/// A private message bus, and services on it that replace the real ones. Thread: main.
#pragma once

#include <poll.h>
#include <systemd/sd-bus.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

#include "Tools/Desktop/ChildProcess.h"

namespace tobrin::testing {

/// While it lives, its address is in an environment variable of this process.
class PrivateBus final {
 public:
  explicit PrivateBus(const char* variable) : variable_(variable) {
    setenv(variable_, daemon_.firstLine().c_str(), 1);
  }
  ~PrivateBus() { unsetenv(variable_); }

 private:
  const char* variable_;
  ChildProcess daemon_{
      {"dbus-daemon", "--session", "--nofork", "--address=unix:tmpdir=/tmp", "--print-address"},
      ChildProcess::Output::announced};
};

/// One object on a bus, served by its own thread.
class BusService final {
 public:
  /// `open` connects to the bus, `self` is handed to the methods of `table`; `turn` runs on the
  /// service's thread every few milliseconds.
  BusService(
      int (*open)(sd_bus**), const char* name, const char* path, const char* interface,
      const sd_bus_vtable* table, void* self, std::function<void(sd_bus*)> turn = [](sd_bus*) {}) {
    if (open(&bus_) < 0 ||
        sd_bus_add_object_vtable(bus_, nullptr, path, interface, table, self) < 0 ||
        sd_bus_request_name(bus_, name, 0) < 0)
      throw std::runtime_error("no service on the bus");
    thread_ = std::thread([this, turn = std::move(turn)] {
      while (!ending_) {
        while (sd_bus_process(bus_, nullptr) > 0) {
        }
        turn(bus_);
        pollfd wait{sd_bus_get_fd(bus_), POLLIN, 0};
        poll(&wait, 1, 5);
      }
    });
  }
  ~BusService() {
    ending_ = true;
    thread_.join();
    sd_bus_flush_close_unref(bus_);
  }
  BusService(const BusService&) = delete;
  BusService& operator=(const BusService&) = delete;

 private:
  sd_bus* bus_ = nullptr;
  std::atomic<bool> ending_{false};
  std::thread thread_;
};

}  // namespace tobrin::testing
