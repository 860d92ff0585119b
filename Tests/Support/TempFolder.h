/// A folder for one test alone, removed with it, and what files hold.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>

namespace tobrin::testing {

/// All bytes of a file; none where it cannot be read.
inline std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// Every file below a folder by its relative path.
inline std::map<std::string, std::string> filesIn(const std::filesystem::path& folder) {
  std::map<std::string, std::string> files;
  if (!std::filesystem::exists(folder)) return files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) files[std::filesystem::relative(entry, folder)] = contentOf(entry);
  }
  return files;
}

/// How many entries a folder has.
inline std::ptrdiff_t entriesIn(const std::filesystem::path& folder) {
  return std::distance(std::filesystem::directory_iterator(folder),
                       std::filesystem::directory_iterator());
}

class TempFolder final {
 public:
  TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tobrin-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = pattern;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  /// Writes a text file below the folder, with its parents; returns its path.
  std::filesystem::path write(const std::string& relative, const std::string& text) const {
    auto file = path_ / relative;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
    return file;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace tobrin::testing
