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

/// Gives the consent back; why that failed, empty where it is done.
std::string takeBack();

}  // namespace tobrin::broker
