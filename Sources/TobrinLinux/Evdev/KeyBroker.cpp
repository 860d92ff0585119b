#include "Evdev/KeyBroker.h"

#include <fcntl.h>
#include <systemd/sd-bus.h>

#include <cstring>

#include "Base/SystemFolders.h"
#include "Evdev/KeyRecord.h"
#include "System/SystemBus.h"

namespace tobrin::broker {
namespace {

constexpr uint64_t patienceUs = 2'000'000;  // the bus may have to start the broker first

/// A method's answer, and what it came through.
struct Answer {
  SystemBus bus;
  BusMessage message;  // null where it failed
  std::string problem;
};

Answer call(const char* method) {
  Answer answer;
  sd_bus* bus = nullptr;
  if (sd_bus_open_system(&bus) < 0) {
    answer.problem = "there is no system message bus";
    return answer;
  }
  answer.bus.reset(bus);
  sd_bus_set_method_call_timeout(bus, patienceUs);
  sd_bus_error error = SD_BUS_ERROR_NULL;
  sd_bus_message* message = nullptr;
  sd_bus_call_method(bus, keyBrokerName, keyBrokerPath, keyBrokerName, method, &error, &message,
                     nullptr);
  answer.message.reset(message);
  if (message == nullptr) answer.problem = refusal(error.name, error.message);
  sd_bus_error_free(&error);
  return answer;
}

}  // namespace

std::string refusal(const char* name, const char* text) {
  const bool isForeign = name != nullptr && std::strcmp(name, keyBrokerNotTobrin) == 0;
  if (isForeign && isThisProgramReplaced()) return "Tobrin was updated: start it again";
  return text == nullptr ? "" : text;
}

bool isAllowed() {
  const Answer answer = call("IsAllowed");
  int allowed = 0;
  return answer.message && sd_bus_message_read(answer.message.get(), "b", &allowed) >= 0 &&
         allowed != 0;
}

FileDescriptor open(std::string& problem) {
  const Answer answer = call("Open");
  int file = -1;  // belongs to the message
  if (answer.message && sd_bus_message_read(answer.message.get(), "h", &file) >= 0)
    return FileDescriptor(fcntl(file, F_DUPFD_CLOEXEC, 0));
  problem = answer.problem;
  return {};
}

std::string takeBack() {
  return call("TakeBack").problem;
}

}  // namespace tobrin::broker
