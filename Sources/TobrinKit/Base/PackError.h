/// The one error type of sound packs: a missing or invalid manifest, a file that cannot be decoded,
/// a pack without sound. Its text is shown to the user as it stands. Thread: any.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace tobrin {

class PackError final : public std::runtime_error {
 public:
  enum class Kind { missingManifest, invalidManifest, decode, empty };

  /// "No pack.json in " and the folder's full path.
  static PackError missingManifest(const std::filesystem::path& folder);
  /// "Invalid ", the path's last component, ": " and the detail.
  static PackError invalidManifest(const std::filesystem::path& path, const std::string& detail);
  /// "Can't read ", the file's last component, ": " and the detail.
  static PackError decode(const std::filesystem::path& file, const std::string& detail);
  /// "Pack ", the id, " has no usable sounds".
  static PackError empty(const std::string& packID);

  [[nodiscard]] Kind kind() const { return kind_; }

 private:
  PackError(Kind kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}
  Kind kind_;
};

}  // namespace tobrin
