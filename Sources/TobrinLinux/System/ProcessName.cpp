#include "System/ProcessName.h"

#include <fstream>

namespace tobrin {

std::optional<std::string> processName(int32_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  if (!std::getline(file, name) || name.empty()) return std::nullopt;
  return name;
}

}  // namespace tobrin
