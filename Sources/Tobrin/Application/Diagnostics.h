/// The diagnostics over the real parts of this machine. Thread: main; each blocks until it is done
/// and returns the exit status.
#pragma once

namespace tobrin {

struct Diagnostics {
  static int probe(double seconds);
  static int selfTest();
  static int micWatch(double seconds);
};

}  // namespace tobrin
