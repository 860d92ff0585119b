/// The key combinations that the desktop itself uses, by its settings as they are now.
///
/// GNOME and its relatives keep them in GSettings. Its D-Bus service can only write them, the
/// desktop portal hides them, and the stored form is private. The `gsettings` program that comes
/// with those desktops prints them, and its library stays out of our memory. KDE keeps a readable
/// file. Thread: main.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "Desktop/SessionKind.h"
#include "Input/Accelerator.h"
#include "System/WakeEvent.h"

namespace tobrin {

class SystemShortcuts final {
 public:
  /// `changed` is called on this object's own thread when a slow reading has found others than
  /// `current` answered in the meantime.
  SystemShortcuts(Environment environment, std::function<void()> changed);
  /// When it returns, the last `changed` has ended.
  ~SystemShortcuts();
  SystemShortcuts(const SystemShortcuts&) = delete;
  SystemShortcuts& operator=(const SystemShortcuts&) = delete;

  /// Read now; empty where the desktop is another one or its settings cannot be read. Waits a
  /// moment for a slow reading, which then goes on by itself: the answer is then the one of the
  /// reading before.
  std::vector<Accelerator> current();

 private:
  [[nodiscard]] bool isDesktop(std::string_view name) const;
  void startReading(std::string_view schemas);
  void read(std::string_view schemas);
  [[nodiscard]] std::string settingsListing(std::string_view schemas) const;

  // fixed after construction
  const Environment environment_;
  const std::function<void()> changed_;

  std::thread reader_;
  WakeEvent stop_;

  std::mutex mutex_;  // a plain one, for the condition
  std::condition_variable ended_;
  // guarded by mutex_
  std::vector<Accelerator> accelerators_;  // as last read through gsettings
  bool isReading_ = false;
  bool isAwaited_ = false;  // by `current`, which will answer with what is found
  bool isStopping_ = false;
};

}  // namespace tobrin
