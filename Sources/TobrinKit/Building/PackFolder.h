/// A pack folder under construction: written aside, then moved into place whole.
#pragma once

#include <filesystem>

namespace tobrin {

class PackFolder final {
 public:
  /// Makes an empty folder beside `target`. Throws `std::filesystem::filesystem_error`.
  explicit PackFolder(const std::filesystem::path& target);

  /// Removes what was not moved into place.
  ~PackFolder();
  PackFolder(const PackFolder&) = delete;
  PackFolder& operator=(const PackFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& aside() const { return aside_; }

  /// Replaces the target by the new folder; the old one goes only once the new one is there.
  void moveIntoPlace();

 private:
  std::filesystem::path target_;
  std::filesystem::path aside_;  // hidden, so that no library lists it
};

}  // namespace tobrin
