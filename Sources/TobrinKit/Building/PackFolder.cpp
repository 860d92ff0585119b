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

/// Whether this process works in the folder or below it: its working directory would be gone, and
/// with it that of the shell that started it.
bool isUnderfoot(const fs::path& folder) {
  std::error_code gone;
  const fs::path here = fs::current_path(gone);
  return !gone && *here.lexically_relative(folder).begin() != "..";
}

/// The start of the names of folders that packs are built in; a number follows.
std::string beginning(const fs::path& target) {
  return "." + target.filename().string() + ".building-";
}

fs::path madeParent(const fs::path& target) {
  fs::create_directories(target.parent_path());
  return target.parent_path();
}

}  // namespace

fs::path PackFolder::replaceable(const fs::path& wanted) {
  fs::path target = fs::weakly_canonical(fs::absolute(wanted));
  if (!target.has_filename()) target = target.parent_path();
  if (fs::is_symlink(target)) leaveAlone(target, "is a link that leads nowhere");
  if (!fs::exists(target)) return target;
  // A folder that is no pack belongs to the user.
  const bool isOurs = fs::is_directory(target) &&
                      (fs::is_empty(target) || fs::exists(target / PackManifest::fileName));
  if (!isOurs) leaveAlone(target, "exists and is no sound pack");
  if (isUnderfoot(target)) leaveAlone(target, "is the folder this command runs in, or above it");
  return target;
}

PackFolder::PackFolder(const fs::path& target)
    : target_(replaceable(target)), work_(madeParent(target_), beginning(target_)) {}

void PackFolder::moveIntoPlace(const FolderExchange& exchange) {
  // The old pack lies aside then, and goes with this object.
  if (exchange && fs::exists(target_) && exchange(aside(), target_)) return;
  fs::path old = aside();
  old += ".old";
  const bool replaces = fs::exists(target_);
  if (replaces) fs::rename(target_, old);
  try {
    fs::rename(aside(), target_);
  } catch (...) {
    if (replaces) fs::rename(old, target_);
    throw;
  }
  std::error_code ignored;
  fs::remove_all(old, ignored);
}

}  // namespace tobrin
