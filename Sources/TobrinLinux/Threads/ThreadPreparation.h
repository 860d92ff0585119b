/// What a thread of the program does first: take a name for debuggers and thread lists, and, where
/// it is one of those between a key and its sound, ask for real-time scheduling. Thread: any.
#pragma once

#include <string_view>

namespace tobrin {

/// Names the calling thread. Cut to the 15 bytes that the kernel keeps.
void nameThisThread(std::string_view name);

/// Asks for real-time scheduling of the calling thread alone, as far as the user's limits or
/// RealtimeKit grant it. Never waits: RealtimeKit's answer may arrive later. Goes on silently where
/// neither grants it.
void requestRealtimeScheduling();

/// Both.
void prepareTimelyThread(std::string_view name);

}  // namespace tobrin
