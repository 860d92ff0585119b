#include "Building/PackFolder.h"

#include <stdexcept>
#include <string>
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
  std::string prefix(1, '.');
  prefix.append(target.filename().string()).append(".building-");
  for (unsigned number = 1;; ++number) {
    fs::path folder = target.parent_path() / (prefix + std::to_string(number));
    // False where it is there already: another build is at work, or was interrupted.
    if (fs::create_directory(folder)) return folder;
  }
}

}  // namespace

PackFolder::PackFolder(const fs::path& target)
    : target_(fs::absolute(target.has_filename() ? target : target.parent_path())),
      aside_(folderBeside(target_)) {}

PackFolder::~PackFolder() {
  std::error_code ignored;
  fs::remove_all(aside_, ignored);
}

void PackFolder::moveIntoPlace(const FolderExchange& exchange) {
  // The old pack lies aside then, and goes with this object.
  if (exchange && fs::exists(target_) && exchange(aside_, target_)) return;
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
