#include "Application/PacksWatch.h"

#include <chrono>
#include <utility>

namespace tobrin {
namespace {

// A pack is prepared in a folder beside its place and then moved there, which takes less time.
constexpr std::chrono::milliseconds pause{300};

}  // namespace

PacksWatch::PacksWatch(std::filesystem::path folder, std::function<void()> changed)
    : folder_(std::move(folder)) {
  pause_.setSingleShot(true);
  QObject::connect(&pause_, &QTimer::timeout, &pause_, std::move(changed));
  QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_, [this] {
    watch();
    pause_.start(pause);
  });
  watch();
}

void PacksWatch::watch() {
  std::filesystem::path nearest = folder_;
  std::error_code ignored;
  while (!std::filesystem::is_directory(nearest, ignored) && nearest.has_relative_path())
    nearest = nearest.parent_path();
  const QString path = QString::fromStdString(nearest.string());
  if (watcher_.directories().contains(path)) return;
  if (!watcher_.directories().isEmpty()) watcher_.removePaths(watcher_.directories());
  watcher_.addPath(path);
}

}  // namespace tobrin
