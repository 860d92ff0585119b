#include "Caller.h"

#include <sys/stat.h>

#include "System/SystemBus.h"

namespace tobrin {
namespace {

bool runs(pid_t process, const std::string& program) {
  struct stat running {
  }, installed{};
  const std::string link = "/proc/" + std::to_string(process) + "/exe";
  return stat(link.c_str(), &running) == 0 && stat(program.c_str(), &installed) == 0 &&
         running.st_dev == installed.st_dev && running.st_ino == installed.st_ino;
}

}  // namespace

std::optional<uid_t> userOfProgram(sd_bus_message* call, const std::string& program) {
  sd_bus_creds* made = nullptr;
  const uint64_t wanted = SD_BUS_CREDS_PID | SD_BUS_CREDS_EUID;
  const int status = sd_bus_query_sender_creds(call, wanted, &made);
  const std::unique_ptr<sd_bus_creds, BusUnref> caller(made);
  pid_t process = 0;
  uid_t user = 0;
  if (status < 0 || sd_bus_creds_get_pid(made, &process) < 0 ||
      sd_bus_creds_get_euid(made, &user) < 0 || !runs(process, program))
    return {};
  return user;
}

}  // namespace tobrin
