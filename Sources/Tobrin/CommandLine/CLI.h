/// Decides by the first argument whether the process is a diagnostic tool or the application.
/// Thread: main.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tobrin {

/// Runs the diagnostic that the arguments (without the program's name) ask for and returns the exit
/// status; nothing where the application is to start.
std::optional<int> runDiagnostic(const std::vector<std::string>& arguments);

/// A duration in seconds as people type it, from none to a year; text that is no finite number
/// gives `fallback`.
double parseSeconds(const std::optional<std::string>& text, double fallback);

}  // namespace tobrin
