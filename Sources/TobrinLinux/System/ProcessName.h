/// What a process is called, for people. Thread: any.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tobrin {

/// The name that the kernel keeps of it (15 bytes at most); nothing where there is no such process
/// or it is hidden.
std::optional<std::string> processName(int32_t process);

}  // namespace tobrin
