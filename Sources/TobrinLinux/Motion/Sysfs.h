/// Reads and writes the one-line text files by which the kernel shows its devices. Plain functions.
/// Thread: any.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tobrin {

/// "cannot open PATH: REASON", with what to do about it where that is known. `error` is an errno.
[[nodiscard]] std::string cannotOpen(const std::filesystem::path& path, int error);

namespace sysfs {

/// What a folder holds, sorted with device2 before device10; empty where it cannot be read.
[[nodiscard]] std::vector<std::filesystem::path> entries(const std::filesystem::path& folder);

/// What the file holds, or nothing where it cannot be read.
[[nodiscard]] std::optional<std::string> readBytes(const std::filesystem::path& file);

/// The file's text without the white space around it, or nothing where it cannot be read.
[[nodiscard]] std::optional<std::string> read(const std::filesystem::path& file);

/// The file's text as a finite number.
[[nodiscard]] std::optional<double> readNumber(const std::filesystem::path& file);

/// Returns 0, or the errno.
[[nodiscard]] int write(const std::filesystem::path& file, std::string_view text);

/// `text` as a finite number, the whole of it.
[[nodiscard]] std::optional<double> parseNumber(std::string_view text);

}  // namespace sysfs

/// Writes attributes and puts back what they held, last change first; an attribute that somebody
/// else has changed since is left alone. Thread: sensor.
class AttributeChanges final {
 public:
  AttributeChanges() = default;
  ~AttributeChanges() { restore(); }
  AttributeChanges(const AttributeChanges&) = delete;
  AttributeChanges& operator=(const AttributeChanges&) = delete;

  /// Returns 0, or the errno; what holds `text` already is left alone.
  [[nodiscard]] int set(const std::filesystem::path& file, std::string_view text);

  /// Attributes of a device that is gone are forgotten.
  void restore();

 private:
  struct Change {
    std::filesystem::path file;
    std::string before;
    std::optional<std::string> after;  // as the device words it
  };
  std::vector<Change> changes_;
};

}  // namespace tobrin
