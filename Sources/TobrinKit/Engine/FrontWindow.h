/// Which application has the keyboard focus, and whether it fills the screen. Implemented over what
/// each desktop tells. Thread: main.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace tobrin {

struct Front {
  enum class Knowledge : uint8_t {
    known,
    desktopDoesNotTell,
    windowManagerDoesNotTell  ///< there is none, or one that keeps it to itself
  };

  Knowledge knowledge = Knowledge::known;
  /// The name by which desktops know the application ("org.gnome.TextEditor"); empty where none has
  /// the focus, or one that has no such name.
  std::string app{};
  bool fillsScreen = false;

  bool operator==(const Front&) const = default;
};

/// How an application is shown to people.
struct AppDescription {
  std::string name;
  std::string icon;  ///< of the desktop's theme, or a file's path; may be empty
};

class FrontWindow {
 public:
  using Changed = std::function<void(const Front&)>;

  virtual ~FrontWindow() = default;

  /// Begins to follow the focus. `changed` gets what is in front now, and each change. It is called
  /// on a thread of the watcher. Not to be called twice without `stop`.
  virtual void start(Changed changed) = 0;

  /// When it returns, the last `changed` has ended and nothing is followed any more: no connection
  /// is left and nothing wakes up.
  virtual void stop() = 0;
};

}  // namespace tobrin
