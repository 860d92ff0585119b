/// The variables that the process was started with. Thread: any.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tobrin {

/// The value of a variable; nothing where it is not set. Tests hand in their own.
using Environment = std::function<std::optional<std::string>(const char* name)>;

/// The environment of this process.
std::optional<std::string> processEnvironment(const char* name);

/// The same, with an empty text for a variable that is not set: for callers that treat both alike.
std::string processVariable(const char* name);

}  // namespace tobrin
