#include "Desktop/SleepWatch.h"

#include <systemd/sd-bus.h>

namespace tobrin {

struct SleepWatch::Bus {
  std::function<void()> onWake;
  sd_bus* connection = nullptr;

  ~Bus() { sd_bus_flush_close_unref(connection); }

  static int prepareForSleep(sd_bus_message* message, void* self, sd_bus_error*) {
    int goingToSleep = 0;
    if (sd_bus_message_read(message, "b", &goingToSleep) >= 0 && goingToSleep == 0) {
      static_cast<Bus*>(self)->onWake();
    }
    return 0;
  }
};

SleepWatch::SleepWatch(std::function<void()> onWake) : bus_(std::make_unique<Bus>()) {
  bus_->onWake = std::move(onWake);
  if (sd_bus_open_system(&bus_->connection) < 0) return;
  // Asynchronous, so that a slow bus does not hold up the start.
  const int matched =
      sd_bus_match_signal_async(bus_->connection, nullptr, "org.freedesktop.login1",
                                "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                                "PrepareForSleep", &Bus::prepareForSleep, nullptr, bus_.get());
  if (matched < 0) return;
  process();
}

SleepWatch::~SleepWatch() = default;

int SleepWatch::descriptor() const {
  return bus_->connection != nullptr ? sd_bus_get_fd(bus_->connection) : -1;
}

bool SleepWatch::process() {
  if (bus_->connection == nullptr) return false;
  int result = 0;
  while ((result = sd_bus_process(bus_->connection, nullptr)) > 0) {
  }
  sd_bus_flush(bus_->connection);
  return result >= 0;
}

}  // namespace tobrin
