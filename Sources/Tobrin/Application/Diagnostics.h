/// The diagnostics over the real parts of this machine. Each blocks until it is done and returns
/// the exit status. Thread: main.
#pragma once

namespace tobrin {

int runProbe(double seconds);
int runSelfTest();
int runMicWatch(double seconds);

}  // namespace tobrin
