/// What is asked of the key broker over the system's message bus. Each call has a connection of its
/// own and waits for the answer, for two seconds at most. Thread: any.
#pragma once

#include <string>

#include "Base/FileDescriptor.h"

namespace tobrin::broker {

/// Whether an administrator has let this user's Tobrin hear the keyboards. False, too, where there
/// is no broker.
[[nodiscard]] bool isAllowed();

/// The socket that `KeyRecord`s come through; none, with the reason, where it is not allowed.
[[nodiscard]] FileDescriptor open(std::string& problem);

/// Why the broker refused, for people. `name` and `text` are its error's and may be null.
[[nodiscard]] std::string refusal(const char* name, const char* text);

/// Gives the consent back; returns why that failed, empty on success.
std::string takeBack();

}  // namespace tobrin::broker
