/// One file in the device manager's rules folder: there whole, or not at all. Thread: main.
#pragma once

#include <string>
#include <string_view>

namespace tobrin {

class RuleFile final {
 public:
  /// `root` is "" or the folder that stands for "/".
  explicit RuleFile(const std::string& root);

  [[nodiscard]] const std::string& path() const { return path_; }

  /// Writes the rule to a file next to its place and renames it; makes the folder if it is missing.
  /// Throws std::system_error, and then leaves what was there.
  void install(std::string_view rule) const;

  /// Returns false where there was none. Throws std::system_error.
  [[nodiscard]] bool remove() const;

 private:
  std::string folder_, path_;
};

}  // namespace tobrin
