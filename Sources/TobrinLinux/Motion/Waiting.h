/// Waits on a device and on the event that ends the wait. Plain functions. Thread: any.
#pragma once

#include "Threads/WakeEvent.h"

namespace tobrin {

/// Waits until `device` has something to read or an error (true), or until `interrupt` is raised,
/// `timeoutMs` have passed, or a signal arrived (all false: look again). A negative `device` is
/// ignored; a negative time-out waits for ever.
[[nodiscard]] bool waitForDevice(int device, int timeoutMs, const WakeEvent& interrupt);

[[nodiscard]] bool isRaised(const WakeEvent& event);

}  // namespace tobrin
