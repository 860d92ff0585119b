/// The application proper: one instance a login, until the user or the session ends it.
#pragma once

namespace tobrin {

struct Application {
  /// Tells a new instance that the one before it is about to end.
  static constexpr const char* relaunchedArgument = "--relaunched";

  /// Started by the desktop at login, not by the user's own hand.
  static constexpr const char* atLoginArgument = "--at-login";

  /// Runs until asked to end; returns the exit status. Thread: main, and no other exists yet.
  static int run(int argc, char** argv);
};

}  // namespace tobrin
