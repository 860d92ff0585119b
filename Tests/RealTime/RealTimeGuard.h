/// Makes a thread prove that it is fit for real time.
#pragma once

#include <sys/types.h>

namespace tobrin::testing {

/// False where a sanitizer allocates and calls the kernel on every thread's behalf.
constexpr bool canForbidEverything =
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    false;
#else
    true;
#endif

/// From now on an allocation, a lock or a system call by the calling thread, contended or not, ends
/// the process by a signal; only `_exit` is left to it. Nothing takes this back.
void forbidEverything();

/// Page faults of a thread of this process so far, those that only mapped memory included.
long pageFaults(pid_t thread);

}  // namespace tobrin::testing
