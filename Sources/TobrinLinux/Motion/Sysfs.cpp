#include "Motion/Sysfs.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <system_error>

#include "Base/FileDescriptor.h"
#include "Base/RegularFile.h"

namespace tobrin {

namespace fs = std::filesystem;

std::string cannotOpen(const fs::path& path, int error) {
  std::string text = "cannot open " + path.string() + ": " + std::generic_category().message(error);
  if (error == EBUSY) text += "; another program uses it";
  if (error == EACCES || error == EPERM) text += "; a udev rule has to allow it";
  return text;
}

namespace sysfs {

std::vector<fs::path> entries(const fs::path& folder) {
  std::vector<fs::path> found;
  std::error_code error;
  for (fs::directory_iterator i(folder, error), end; !error && i != end; i.increment(error))
    found.push_back(i->path());
  std::sort(found.begin(), found.end(), [](const fs::path& a, const fs::path& b) {
    const std::string left = a.filename();
    const std::string right = b.filename();
    return left.size() != right.size() ? left.size() < right.size() : left < right;
  });
  return found;
}

std::optional<std::string> readBytes(const fs::path& file) {
  constexpr uint64_t longestAttribute = 64 << 10;  // the kernel's own are a page at most
  try {
    return RegularFile(file).readText(longestAttribute);
  } catch (const std::system_error&) {
    return std::nullopt;  // drivers answer with all kinds of errors, as while a sensor sleeps
  }
}

std::optional<std::string> read(const fs::path& file) {
  std::optional<std::string> text = readBytes(file);
  if (!text) return std::nullopt;
  constexpr const char* space = " \t\r\n";
  text->erase(0, std::min(text->find_first_not_of(space), text->size()));
  text->erase(text->find_last_not_of(space) + 1);
  return text;
}

std::optional<double> parseNumber(std::string_view text) {
  double number = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || stop != text.data() + text.size() || !std::isfinite(number))
    return std::nullopt;
  return number;
}

std::optional<double> readNumber(const fs::path& file) {
  const std::optional<std::string> text = read(file);
  return text ? parseNumber(*text) : std::nullopt;
}

int write(const fs::path& file, std::string_view text) {
  const FileDescriptor target = FileDescriptor::open(file.c_str(), O_WRONLY | O_TRUNC);
  if (!target) return errno;
  const ssize_t written = retried([&] { return ::write(target.get(), text.data(), text.size()); });
  if (written < 0) return errno;
  return static_cast<std::size_t>(written) == text.size() ? 0 : EIO;
}

}  // namespace sysfs

int AttributeChanges::set(const fs::path& file, std::string_view text) {
  const std::optional<std::string> before = sysfs::read(file);
  if (before == text) return 0;
  const int error = sysfs::write(file, text);
  if (error == 0 && before) changes_.push_back({file, *before, sysfs::read(file)});
  return error;
}

void AttributeChanges::restore() {
  for (; !changes_.empty(); changes_.pop_back()) {
    const Change& change = changes_.back();
    if (sysfs::read(change.file) != change.after) continue;
    // A device that is gone has no attributes left; nothing is left to restore.
    [[maybe_unused]] const int error = sysfs::write(change.file, change.before);
  }
}

}  // namespace tobrin
