/// Waits on devices and on the event that ends the wait. Plain functions. Thread: any.
#pragma once

#include <initializer_list>

#include "System/WakeEvent.h"

namespace tobrin {

/// Waits until one of `files` has something to read or an error, a signal arrives, or `timeoutMs`
/// have passed; without limit where that is negative. Negative files are ignored. At most four.
void waitForAny(std::initializer_list<int> files, int timeoutMs);

[[nodiscard]] bool isRaised(const WakeEvent& event);

}  // namespace tobrin
