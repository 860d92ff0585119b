/// Notices packs that come, go or are replaced in one folder, even if that folder is made only
/// later. Thread: main.
#pragma once

#include <QFileSystemWatcher>
#include <QTimer>
#include <filesystem>
#include <functional>

namespace tobrin {

class PacksWatch final {
 public:
  /// `changed` is called once for what happens at about the same time.
  PacksWatch(std::filesystem::path folder, std::function<void()> changed);

 private:
  void watch();

  std::filesystem::path folder_;
  QFileSystemWatcher watcher_;  // of the folder, or of the nearest one above it that exists
  QTimer pause_;
};

}  // namespace tobrin
