/// Gives up what the program never needs, until it ends. Code that takes it over through a fault in
/// a library then has no socket to the network and gains no rights by starting a program. It still
/// has what every program of this user has: the user's files, and the session bus with its
/// services, which are not confined. What the system does not offer is logged, and the program goes
/// on. Thread: main.
#pragma once

namespace tobrin {

/// Leaves no core file after a crash, not even to a handler of the system: memory holds the last
/// keys.
void keepNoCore();

/// No new privileges by starting a program, for this thread and those it starts from now on.
void takeNoPrivileges();

/// From now on every thread's request for a socket other than a local one, or the one on which the
/// kernel names its devices, is refused with EACCES; so is io_uring, which could make one unseen.
/// Call `takeNoPrivileges` before.
void refuseNetwork();

}  // namespace tobrin
