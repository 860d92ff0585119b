/// What the application asks of the desktop it runs in, besides keys, sound and shortcuts.
/// Thread: main.
#pragma once

#include <functional>
#include <string>

namespace tobrin {

/// Whether the program starts with the session.
class LoginItem {
 public:
  virtual ~LoginItem() = default;
  [[nodiscard]] virtual bool isEnabled() const = 0;
  /// Returns why it failed, in words; empty on success.
  virtual std::string setEnabled(bool on) = 0;
};

/// The session's notices and actions. The notices come on the main thread.
class Workspace {
 public:
  virtual ~Workspace() = default;
  /// Called after the machine woke from sleep.
  virtual void setOnWake(std::function<void()> onWake) = 0;
  /// Called when the screen is locked or unlocked, and at once if it is locked already.
  virtual void setOnLock(std::function<void(bool isLocked)> onLock) = 0;
  /// Called when the session or the user ends the program.
  virtual void setOnTerminate(std::function<void()> onTerminate) = 0;
  /// Shows the user's packs in the file manager, making their folder if it is missing; returns why
  /// it failed.
  virtual std::string openPacksFolder() = 0;
  /// Gets why something failed, or an empty text; not called once the workspace is gone.
  using OnEnd = std::function<void(const std::string& problem)>;
  /// Offers the user the one-time grant of access to keys.
  virtual void openKeyAccessSettings(OnEnd onEnd) = 0;
  /// Whether an older grant, which lets other programs have the keys too, can be replaced by one
  /// for this program alone.
  virtual bool canNarrowKeyAccess() = 0;
  /// Replaces it. If the user does not agree, nothing changes.
  virtual void narrowKeyAccess(OnEnd onEnd) = 0;
  /// Gives up the access to keys.
  virtual void giveBackKeyAccess(OnEnd onEnd) = 0;
  /// Whether another version of the program has been installed while this one runs.
  [[nodiscard]] virtual bool isUpdated() const = 0;
  /// Starts a new instance of the program, which waits for this one to end; returns why it failed.
  virtual std::string relaunch() = 0;
  /// Ends this instance.
  virtual void terminate() = 0;
};

}  // namespace tobrin
