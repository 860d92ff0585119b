/// Decides by the first argument whether the process is a diagnostic tool or the application.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tobrin {

struct CLI {
  /// Runs the diagnostic that the arguments (without the program's name) ask for and returns the
  /// exit status; nothing where the application is to start.
  static std::optional<int> run(const std::vector<std::string>& arguments);

  /// A duration in seconds as people type it, from none to a year; text that is no finite number
  /// gives `fallback`.
  static double seconds(const std::optional<std::string>& text, double fallback);

  static const char* usage();
};

}  // namespace tobrin
