/// Gives up what the program never needs, for good. A fault in a decoder or a library then cannot
/// be used to send away what is typed. What the system does not offer is logged and left.
#pragma once

namespace tobrin {

struct Confinement {
  /// No core file, also none through a handler of the system's: memory holds the last keys.
  /// Thread: any; meant for the start.
  static void keepNoCore();

  /// No new privileges by starting a program, for this thread and those it starts from now on.
  static void takeNoPrivileges();

  /// From now on every thread's request for a socket other than a local one, or the one on which
  /// the kernel names its devices, is refused with EACCES; so is io_uring, which could make one
  /// unseen. Call `takeNoPrivileges` before.
  static void refuseNetwork();
};

}  // namespace tobrin
