/// What the broker gives up once it runs. Thread: main.
#pragma once

namespace tobrin {

/// From here on it starts no program, looks into no other process, makes no socket but local ones
/// and leaves no core file. Returns zero or an errno. The service's unit takes away far more; this
/// holds however the broker was started.
[[nodiscard]] int giveUpWhatIsNotNeeded();

}  // namespace tobrin
