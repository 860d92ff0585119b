// tobrin-keys: reads the keyboards for Tobrin and passes on which keys go down and up, with an
// administrator's consent and while the user's session is in front. Started by the message bus.
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include "Broker.h"
#include "EventLoop.h"
#include "Filter.h"
#include "System/SystemBus.h"

namespace tobrin {
namespace {

constexpr int wrongUsage = 2;

int complain(const char* what, const char* why, int status) {
  static_cast<void>(std::fprintf(stderr, "tobrin-keys: %s%s\n", what, why));
  return status;
}

/// An empty folder's name where the service manager made none.
const char* stateFolder() {
  const char* folder = std::getenv("STATE_DIRECTORY");  // NOLINT(concurrency-mt-unsafe): one thread
  return folder == nullptr ? "" : folder;
}

int run(Broker::Options options) {
  sd_event* loop = nullptr;
  sd_bus* connection = nullptr;
  if (sd_event_default(&loop) < 0) return complain("no event loop", "", EXIT_FAILURE);
  const EventLoop loopOwner(loop);
  if (sd_bus_open_system(&connection) < 0) return complain("no message bus", "", EXIT_FAILURE);
  const SystemBus bus(connection);
  sd_bus_attach_event(connection, loop, SD_EVENT_PRIORITY_NORMAL);
  sd_bus_set_exit_on_disconnect(connection, 1);
  if (const int error = giveUpWhatIsNotNeeded(); error != 0)
    return complain("cannot give up rights: ", std::generic_category().message(error).c_str(),
                    EXIT_FAILURE);
  const Broker broker(std::move(options), loop, connection);
  if (!broker.problem().empty()) return complain(broker.problem().c_str(), "", EXIT_FAILURE);
  return sd_event_loop(loop) < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}

}  // namespace
}  // namespace tobrin

int main(int count, char** words) {
  const bool alsoWhenLocked = count == 3 && std::string_view(words[2]) == "--also-when-locked";
  const std::string_view folder = tobrin::stateFolder();
  if ((count != 2 && !alsoWhenLocked) || folder.empty())
    return tobrin::complain(
        "usage, as the service manager starts it: STATE_DIRECTORY=DIR tobrin-keys ",
        "PROGRAM [--also-when-locked]", tobrin::wrongUsage);
  return tobrin::run({.program = words[1],
                      .consentFolder = std::string(folder),
                      .alsoWhenLocked = alsoWhenLocked});
}
