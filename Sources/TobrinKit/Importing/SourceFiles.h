/// The files to import, by the names they have in their folder or archive. A name is only used to
/// find a file, never to choose where something is written. Immutable; thread: any.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Importing/ImportNotes.h"

namespace tobrin {

class SourceFiles final {
 public:
  /// At least ten times the largest packs seen.
  static constexpr std::size_t mostFiles = 10'000;
  static constexpr uint64_t mostBytes = uint64_t{128} << 20;

  struct File {
    std::string name;            ///< with "/" between folders, relative to the source
    std::filesystem::path path;  ///< where its bytes are
    uint64_t bytes = 0;
  };

  SourceFiles() = default;
  explicit SourceFiles(std::vector<File> files);

  /// The files below a folder, by name. Links that leave the folder are left out. Throws
  /// `ImportError`.
  static SourceFiles ofFolder(const std::filesystem::path& folder, ImportNotes& notes);

  /// A name with "/" between folders and without "." and ".."; nothing where it leads out of the
  /// source or is absolute.
  static std::optional<std::string> cleanName(std::string_view name);

  /// Whether it is a file that file managers leave behind, and no part of a pack.
  static bool isClutter(std::string_view cleanName);

  /// The file that a pack in `folder` means by `name`: under this name, in other letter case, or in
  /// another encoding where only one file can be meant. Null where there is none.
  [[nodiscard]] const File* find(std::string_view folder, std::string_view name) const;

  [[nodiscard]] const std::vector<File>& all() const { return files_; }

  /// A file's bytes. Throws `ImportError` where it has more than `longest` bytes or cannot be read.
  static std::string read(const File& file, uint64_t longest);

 private:
  struct Keys {
    std::string folded;   // in lower case
    std::string letters;  // the same, with every run of bytes beyond ASCII as one "?"
  };
  static Keys keysOf(std::string_view name);
  [[nodiscard]] const File* findOnly(std::string Keys::*key, const std::string& wanted) const;

  std::vector<File> files_;
  std::vector<Keys> keys_;  // of `files_`, in the same order
};

/// The part of a name before its last "/"; empty without one.
std::string_view folderOf(std::string_view name);
/// The part after it.
std::string_view fileOf(std::string_view name);

}  // namespace tobrin
