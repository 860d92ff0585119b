#include "Base/Environment.h"

#include <cstdlib>

namespace tobrin {

std::optional<std::string> processEnvironment(const char* name) {
  const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): never written to
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::string processVariable(const char* name) {
  return processEnvironment(name).value_or("");
}

}  // namespace tobrin
