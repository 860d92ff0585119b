#include "System/SpawningProcessRunner.h"

#include <cerrno>
#include <system_error>

#include "System/Spawn.h"

namespace tobrin {

int SpawningProcessRunner::run(const std::filesystem::path& program,
                               const std::vector<std::string>& arguments) const {
  std::vector<std::string> command = {program.string()};
  command.insert(command.end(), arguments.begin(), arguments.end());
  constexpr int nowhere = SpawnOptions::nowhere;
  const Spawned started =
      spawn(std::move(command), {.input = nowhere, .output = nowhere, .errors = nowhere});
  const int status = started.error == 0 ? waitForEnd(started.child) : -1;
  if (status >= 0) return status;
  throw std::system_error(started.error != 0 ? started.error : errno, std::generic_category(),
                          program.string());
}

}  // namespace tobrin
