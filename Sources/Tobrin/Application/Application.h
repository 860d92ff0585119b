/// The application proper: one instance a login, until the user or the session ends it.
/// Thread: main.
#pragma once

namespace tobrin {

/// Tells a new instance that the one before it is about to end.
inline constexpr const char* relaunchedArgument = "--relaunched";

/// Started by the desktop at login, not by the user.
inline constexpr const char* atLoginArgument = "--at-login";

/// Started again by the desktop's session manager, which gives the session's id with it; the
/// toolkit tells such managers of every program.
inline constexpr const char* restoredArgument = "-session";

/// Runs until asked to end; returns the exit status. No other thread may exist yet.
int runApplication(int argc, char** argv);

}  // namespace tobrin
