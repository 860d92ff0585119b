#include "CommandLine/CLI.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "Application/Application.h"
#include "Application/Diagnostics.h"
#include "Application/Snapshot.h"
#include "Base/PrintableText.h"
#include "CommandLine/InstallFiles.h"

namespace tobrin {
namespace {

constexpr double probeSeconds = 20;
constexpr double micWatchSeconds = 60;

std::optional<std::string> argument(const std::vector<std::string>& arguments, std::size_t index) {
  if (index >= arguments.size()) return std::nullopt;
  return arguments[index];
}

const char* usage() {
  return "Tobrin, velocity-sensitive keyboard sounds.\n"
         "  (no arguments)   run the menu-bar app\n"
         "  --probe [secs]   measure how your keystrokes register on the motion sensor\n"
         "  --selftest       check key capture, audio engine and sensor (muted)\n"
         "  --micwatch [secs] show when apps take and release the microphone (\"Quiet during "
         "calls\")";
}

int printLine(const char* text) {
  std::puts(text);
  return 0;
}

/// What the program, the desktop's autostart and session managers give to a new instance.
bool isOurOwn(std::string_view word) {
  return word == relaunchedArgument || word == atLoginArgument || word == restoredArgument;
}

}  // namespace

std::optional<int> runDiagnostic(const std::vector<std::string>& arguments) {
  const auto first = argument(arguments, 0);
  if (first == "--version") return printLine(TOBRIN_VERSION);
  if (first == "--help" || first == "-h") return printLine(usage());
  if (first == "--probe") {
    return runProbe(parseSeconds(argument(arguments, 1), probeSeconds));
  }
  if (first == "--micwatch") {
    return runMicWatch(parseSeconds(argument(arguments, 1), micWatchSeconds));
  }
  if (first == "--selftest") return runSelfTest();
  if (first == "--snapshot") return drawSnapshot({arguments.begin() + 1, arguments.end()});
  if (first && first->starts_with('-')) {
    if (!isOurOwn(*first))
      std::fprintf(stderr, "tobrin: there is no option %s (see --help); starting without it.\n",
                   printable(*first).c_str());
    return std::nullopt;
  }
  const std::vector<std::string> files = filesAmong(arguments);
  return files.empty() || installFiles(files) ? std::nullopt : std::optional(1);
}

double parseSeconds(const std::optional<std::string>& text, double fallback) {
  constexpr double year = 365.0 * 24 * 3600;
  if (!text) return fallback;
  double value = 0;
  const char* end = text->data() + text->size();
  const auto [parsedTo, error] = std::from_chars(text->data(), end, value);
  const bool isNumber = error == std::errc() && parsedTo == end && std::isfinite(value);
  return isNumber ? std::clamp(value, 0.0, year) : fallback;
}

}  // namespace tobrin
