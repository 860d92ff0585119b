#include "Building/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <string>
#include <utility>

namespace tobrin {
namespace {

namespace fs = std::filesystem;

template <typename Call>
auto retried(Call call) {
  for (;;) {
    const auto result = call();
    if (result >= 0 || errno != EINTR) return result;
  }
}

/// The file beside the target; removed again unless it was renamed into place.
class AsideFile final {
 public:
  explicit AsideFile(const fs::path& target) : target_(target) { create(); }
  ~AsideFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
    if (!path_.empty()) ::unlink(path_.c_str());
  }
  AsideFile(const AsideFile&) = delete;
  AsideFile& operator=(const AsideFile&) = delete;

  /// What is no regular file stays: a device would be gone for every program.
  void keepPermissionsOfTarget() {
    struct stat status {};
    if (::stat(target_.c_str(), &status) != 0) return;
    if (!S_ISREG(status.st_mode))
      throw fs::filesystem_error("not a regular file", target_,
                                 std::make_error_code(std::errc::invalid_argument));
    check(::fchmod(descriptor_, status.st_mode & 07777));
  }

  void write(std::string_view content) {
    while (!content.empty()) {
      const ssize_t count =
          retried([&] { return ::write(descriptor_, content.data(), content.size()); });
      check(count);
      content.remove_prefix(static_cast<std::size_t>(count));
    }
  }

  void flushToDisk() {
    check(retried([&] { return ::fsync(descriptor_); }));
  }

  void moveIntoPlace() {
    // Some file systems report a failed write only here.
    check(::close(std::exchange(descriptor_, -1)));
    check(::rename(path_.c_str(), target_.c_str()));
    path_.clear();
  }

 private:
  void create() {
    static std::atomic<unsigned> counter{0};
    std::string prefix(1, '.');
    prefix.append(target_.filename().native(), 0, maxNameBytes);
    prefix.append(".").append(std::to_string(::getpid())).append(".");
    do {
      // Relaxed: only the number matters.
      path_ = target_.parent_path() /
              (prefix + std::to_string(counter.fetch_add(1, std::memory_order_relaxed)) + ".tmp");
      descriptor_ = retried(
          [&] { return ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666); });
    } while (descriptor_ < 0 && errno == EEXIST);
    if (descriptor_ < 0) path_.clear();
    check(descriptor_);
  }

  void check(ssize_t result) const {
    if (result >= 0) return;
    throw fs::filesystem_error("can't write file", target_,
                               std::error_code(errno, std::generic_category()));
  }

  static constexpr std::size_t maxNameBytes = 200;  // of the 255 that a file name may have

  fs::path target_;
  fs::path path_;
  int descriptor_ = -1;
};

/// Where a link points, so that the link stays; the path itself where it is none.
fs::path followed(const fs::path& path) {
  std::error_code error;
  if (!fs::is_symlink(fs::symlink_status(path, error))) return path;
  const fs::path pointee = fs::canonical(path, error);
  return error ? path : pointee;
}

/// A rename lives in the folder; where a file system cannot flush folders, the file alone is safe.
void flushFolder(const fs::path& folder) {
  const int descriptor = retried([&] {
    return ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  });
  if (descriptor < 0) return;
  ::fsync(descriptor);
  ::close(descriptor);
}

}  // namespace

void writeFileAtomically(const fs::path& target, std::string_view content, Durability durability) {
  const fs::path file = followed(target);
  AsideFile aside(file);
  aside.keepPermissionsOfTarget();
  aside.write(content);
  if (durability == Durability::onDisk) aside.flushToDisk();
  aside.moveIntoPlace();
  if (durability == Durability::onDisk) flushFolder(file.parent_path());
}

}  // namespace tobrin
