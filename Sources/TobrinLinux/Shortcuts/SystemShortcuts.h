/// The key combinations the desktop itself uses, by its settings as they are now.
///
/// GNOME and its relatives keep them behind GSettings. Neither its D-Bus service (which only
/// writes) nor the desktop portal (which hides them) tells, and the stored form is private; the
/// `gsettings` program that comes with those desktops does, without a type system in our memory for
/// good. KDE keeps a readable file.
#pragma once

#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "Desktop/SessionKind.h"
#include "Input/Accelerator.h"
#include "Threads/WakeEvent.h"

namespace tobrin {

/// Thread: main.
class SystemShortcuts final {
 public:
  /// `changed` is called on a thread of this object's when a slow reading has found others than
  /// `current` answered in the meantime.
  SystemShortcuts(Environment environment, std::function<void()> changed);
  /// When it returns, the last `changed` has ended.
  ~SystemShortcuts();
  SystemShortcuts(const SystemShortcuts&) = delete;
  SystemShortcuts& operator=(const SystemShortcuts&) = delete;

  /// Read now; empty where the desktop is another one or its settings cannot be read. Waits a
  /// moment for a slow reading, which then goes on by itself: the answer is that of the one before.
  std::vector<Accelerator> current();

 private:
  [[nodiscard]] bool isDesktop(std::string_view name) const;
  [[nodiscard]] std::filesystem::path configFolder() const;
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
