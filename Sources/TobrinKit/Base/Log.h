/// The program's diagnostics: one line each, prefixed "Tobrin: ". Never key codes. Thread: any but
/// the render thread.
#pragma once

#include <functional>
#include <string>

namespace tobrin {

struct Log {
  using Sink = std::function<void(const std::string& line)>;

  /// Writes "Tobrin: " and `text` as one line to the sink, standard error by default.
  static void line(const std::string& text);

  /// Replaces where lines go; null restores the default. The sink is called with the log locked and
  /// must not log itself.
  static void setSink(Sink sink);
};

}  // namespace tobrin
