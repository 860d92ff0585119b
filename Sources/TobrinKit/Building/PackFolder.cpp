#include "Building/PackFolder.h"

#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

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

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// Removes what interrupted builds left, but not what running builds still need.
void removeLeftovers(const fs::path& target) {
  const std::string before = beginning(target);
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(target.parent_path(), ignored)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with(before) || !isNumber(name.substr(before.size()))) continue;
    if (const FolderLock lock(entry.path()); lock.isHeld()) fs::remove_all(entry.path(), ignored);
  }
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

PackFolder::PackFolder(const fs::path& target) : target_(replaceable(target)) {
  fs::create_directories(target_.parent_path());
  removeLeftovers(target_);
  for (unsigned number = 1; aside_.empty(); ++number) {
    fs::path folder = target_.parent_path() / (beginning(target_) + std::to_string(number));
    if (!fs::create_directory(folder)) continue;  // another build is at work
    // That may take it for a leftover at this moment.
    lock_.emplace(folder);
    if (!lock_->isTaken() && fs::exists(folder)) aside_ = std::move(folder);
  }
}

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
