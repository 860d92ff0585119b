#include "Base/WorkFolder.h"

#include <string>
#include <system_error>
#include <utility>

namespace tobrin {
namespace {

namespace fs = std::filesystem;

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// Removes what ended work left, but not what running work still needs.
void removeLeft(const fs::path& parent, std::string_view beginning) {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(parent, ignored)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with(beginning) || !isNumber(name.substr(beginning.size()))) continue;
    if (const FolderLock lock(entry.path()); lock.isHeld()) fs::remove_all(entry.path(), ignored);
  }
}

}  // namespace

WorkFolder::WorkFolder(const fs::path& parent, std::string_view beginning) {
  removeLeft(parent, beginning);
  for (unsigned number = 1; path_.empty(); ++number) {
    fs::path folder = parent / (std::string(beginning) + std::to_string(number));
    if (!fs::create_directory(folder)) continue;  // other work uses it
    // Other work that starts at this moment may take it for a leftover.
    lock_.emplace(folder);
    if (!lock_->isTaken() && fs::exists(folder)) path_ = std::move(folder);
  }
}

WorkFolder::~WorkFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace tobrin
