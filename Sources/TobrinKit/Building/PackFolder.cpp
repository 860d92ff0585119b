#include "Building/PackFolder.h"

#include <stdlib.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "Packs/PackManifest.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

/// A folder that is no pack is somebody's own: it is not for us to replace.
void refuseForeignFolder(const fs::path& target) {
  if (!fs::exists(target)) return;
  const bool isOurs = fs::is_directory(target) &&
                      (fs::is_empty(target) || fs::exists(target / PackManifest::fileName));
  if (isOurs) return;
  throw std::runtime_error(target.string() + " exists and is no sound pack; it was left alone");
}

fs::path folderBeside(const fs::path& target) {
  refuseForeignFolder(target);
  fs::create_directories(target.parent_path());
  std::string hidden = target.filename().string();
  hidden.insert(0, 1, '.');
  std::string pattern = (target.parent_path() / (hidden += ".building-XXXXXX")).string();
  if (mkdtemp(pattern.data()) == nullptr) {
    throw fs::filesystem_error("can't make a folder", pattern,
                               std::error_code(errno, std::generic_category()));
  }
  fs::permissions(pattern, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                               fs::perms::others_read | fs::perms::others_exec);
  return pattern;
}

}  // namespace

PackFolder::PackFolder(fs::path target)
    : target_(fs::absolute(target.has_filename() ? target : target.parent_path())),
      aside_(folderBeside(target_)) {}

PackFolder::~PackFolder() {
  std::error_code ignored;
  fs::remove_all(aside_, ignored);
}

void PackFolder::moveIntoPlace() {
  fs::path old = aside_;
  old += ".old";
  const bool replaces = fs::exists(target_);
  if (replaces) fs::rename(target_, old);
  try {
    fs::rename(aside_, target_);
  } catch (...) {
    if (replaces) fs::rename(old, target_);
    throw;
  }
  std::error_code ignored;
  fs::remove_all(old, ignored);
}

}  // namespace tobrin
