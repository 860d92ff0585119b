#include "Building/PackFolder.h"

#include <stdexcept>
#include <string>
#include <system_error>

#include "Packs/PackManifest.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void leaveAlone(const fs::path& target, const char* reason) {
  throw std::runtime_error(target.string() + " " + reason + "; it was left alone");
}

/// Whether this process works in the folder or below it: it would stand in a folder that is gone,
/// and so would the shell that it was started from.
bool isUnderfoot(const fs::path& folder) {
  std::error_code gone;
  const fs::path here = fs::current_path(gone);
  return !gone && *here.lexically_relative(folder).begin() != "..";
}

fs::path folderBeside(const fs::path& target) {
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

fs::path PackFolder::replaceable(const fs::path& wanted) {
  fs::path target = fs::weakly_canonical(fs::absolute(wanted));
  if (!target.has_filename()) target = target.parent_path();
  if (fs::is_symlink(target)) leaveAlone(target, "is a link that leads nowhere");
  if (!fs::exists(target)) return target;
  // A folder that is no pack is somebody's own.
  const bool isOurs = fs::is_directory(target) &&
                      (fs::is_empty(target) || fs::exists(target / PackManifest::fileName));
  if (!isOurs) leaveAlone(target, "exists and is no sound pack");
  if (isUnderfoot(target)) leaveAlone(target, "is the folder this command runs in, or above it");
  return target;
}

PackFolder::PackFolder(const fs::path& target)
    : target_(replaceable(target)), aside_(folderBeside(target_)) {}

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
