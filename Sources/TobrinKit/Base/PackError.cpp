#include "Base/PackError.h"

#include <system_error>

namespace tobrin {
namespace {

/// The path as an absolute one without "." and ".." and without a trailing separator.
std::filesystem::path fullPath(const std::filesystem::path& path) {
  std::error_code noWorkingFolder;
  std::filesystem::path full = std::filesystem::absolute(path, noWorkingFolder);
  if (noWorkingFolder) full = path;
  full = full.lexically_normal();
  return full.has_filename() ? full : full.parent_path();
}

std::string lastComponent(const std::filesystem::path& path) {
  const std::filesystem::path full = fullPath(path);
  return full.has_filename() ? full.filename().string() : full.string();
}

}  // namespace

PackError PackError::missingManifest(const std::filesystem::path& folder) {
  return {Kind::missingManifest, "No pack.json in " + fullPath(folder).string()};
}

PackError PackError::invalidManifest(const std::filesystem::path& path, const std::string& detail) {
  return {Kind::invalidManifest, "Invalid " + lastComponent(path) + ": " + detail};
}

PackError PackError::decode(const std::filesystem::path& file, const std::string& detail) {
  return {Kind::decode, "Can't read " + lastComponent(file) + ": " + detail};
}

PackError PackError::empty(const std::string& packID) {
  return {Kind::empty, "Pack " + packID + " has no usable sounds"};
}

}  // namespace tobrin
