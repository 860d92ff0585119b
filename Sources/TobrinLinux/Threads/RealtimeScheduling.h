/// Real-time scheduling for the threads between a key and its sound, as far as the user's limits
/// or RealtimeKit grant it.
#pragma once

namespace tobrin {

/// Asks for the calling thread, and for no other. Never waits: RealtimeKit's answer may arrive
/// later. Goes without silently where neither grants it. Thread: any.
void requestRealtimeScheduling();

}  // namespace tobrin
