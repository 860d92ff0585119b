#include "Base/AtomicFile.h"

#include <atomic>
#include <cassert>
#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>
#include <utility>

namespace tobrin {
namespace {

namespace fs = std::filesystem;

/// The file beside the target; removed again unless it was renamed into place.
class AsideFile final {
 public:
  explicit AsideFile(const fs::path& target) : target_(target) { create(); }
  ~AsideFile() {
    if (file_ != nullptr) (void)std::fclose(file_);
    std::error_code ignored;
    if (!path_.empty()) fs::remove(path_, ignored);
  }
  AsideFile(const AsideFile&) = delete;
  AsideFile& operator=(const AsideFile&) = delete;

  /// Refuses any other kind of target: a replaced device would be gone for every program.
  void keepPermissionsOfTarget() {
    std::error_code error;
    const fs::file_status status = fs::status(target_, error);
    if (!fs::exists(status)) return;
    if (!fs::is_regular_file(status))
      throw fs::filesystem_error("not a regular file", target_,
                                 std::make_error_code(std::errc::invalid_argument));
    fs::permissions(path_, status.permissions(), error);
    if (error) fail(error);
  }

  void write(std::string_view content) {
    assert(file_ != nullptr);
    if (std::fwrite(content.data(), 1, content.size(), file_) != content.size()) failNow();
    // Some file systems report a failed write only here.
    if (std::fclose(std::exchange(file_, nullptr)) != 0) failNow();
  }

  void moveIntoPlace() {
    std::error_code error;
    fs::rename(path_, target_, error);
    if (error) fail(error);
    path_.clear();
  }

  [[nodiscard]] const fs::path& path() const { return path_; }

 private:
  void create() {
    static std::atomic<unsigned> counter{0};
    std::string prefix(1, '.');
    prefix.append(target_.filename().string(), 0, maxNameBytes).append(".");
    do {
      // Relaxed: only the number matters. Another process may have taken it: "x" asks for a new
      // file.
      path_ = target_.parent_path() /
              (prefix + std::to_string(counter.fetch_add(1, std::memory_order_relaxed)) + ".tmp");
      file_ = std::fopen(path_.string().c_str(), "wbx");
    } while (file_ == nullptr && (errno == EEXIST || errno == EINTR));
    if (file_ == nullptr) failNow();
  }

  [[noreturn]] void failNow() const { fail(std::error_code(errno, std::generic_category())); }
  [[noreturn]] void fail(std::error_code reason) const {
    throw fs::filesystem_error("can't write file", target_, reason);
  }

  static constexpr std::size_t maxNameBytes = 200;  // of the 255 that a file name may have

  fs::path target_;
  fs::path path_;
  std::FILE* file_ = nullptr;
};

/// Where a link points, so that the link stays; the path itself where it is none.
fs::path followed(const fs::path& path) {
  std::error_code error;
  if (!fs::is_symlink(fs::symlink_status(path, error))) return path;
  const fs::path pointee = fs::canonical(path, error);
  return error ? path : pointee;
}

}  // namespace

void writeFileAtomically(const fs::path& target, std::string_view content, const DiskFlush& flush) {
  const fs::path file = followed(target);
  AsideFile aside(file);
  aside.keepPermissionsOfTarget();
  aside.write(content);
  if (flush) flush(aside.path());
  aside.moveIntoPlace();
  if (flush) flush(file.parent_path());
}

}  // namespace tobrin
