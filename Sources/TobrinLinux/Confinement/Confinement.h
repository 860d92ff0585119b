/// Gives up what the program never needs, until it ends. Code that takes it over through a fault in
/// a library then has no socket to the network and gains no rights by starting a program. It still
/// has what every program of this user has: the user's files, and the session bus, whose services
/// are not confined. What the system does not offer is logged and left.
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
