#include "Desktop/XdgTrash.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <string>
#include <system_error>

#include "Base/FileDescriptor.h"
#include "Base/UserFolders.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

/// One thing in the trash: the thing itself, and the note that says where it was.
struct Place {
  fs::path file;
  fs::path note;
};

fs::path madeFolder(const fs::path& folder) {
  fs::create_directories(folder.parent_path());
  const int made = ::mkdir(folder.c_str(), S_IRWXU);  // closed to other users
  if (made != 0 && errno != EEXIST)
    throw fs::filesystem_error("can't make the trash", folder,
                               std::error_code(errno, std::generic_category()));
  return folder;
}

/// The path as the rules want it: all but plain letters as "%" and two digits.
std::string encoded(const fs::path& path) {
  constexpr const char* digits = "0123456789ABCDEF";
  constexpr std::string_view plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/-_.~";
  std::string text;
  for (const char c : path.string()) {
    const auto byte = static_cast<unsigned char>(c);
    if (plain.find(c) != std::string_view::npos)
      text += c;
    else
      text.append({'%', digits[byte / 16], digits[byte % 16]});
  }
  return text;
}

std::string timeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  std::array<char, 32> text{};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &local)};
}

/// A name that is free in the trash. The program that creates the note of that name has taken it.
Place takePlace(const fs::path& path, const fs::path& trash) {
  const fs::path files = madeFolder(trash / "files");
  const fs::path notes = madeFolder(trash / "info");
  for (int number = 1;; ++number) {
    fs::path name = path.filename();
    if (number > 1) name += "." + std::to_string(number);
    Place place{files / name, notes / (name.string() + ".trashinfo")};
    const int flags = O_WRONLY | O_CREAT | O_EXCL;
    const auto note = FileDescriptor::open(place.note.c_str(), flags, S_IRUSR | S_IWUSR);
    if (!note && errno == EEXIST) continue;
    const std::string text =
        "[Trash Info]\nPath=" + encoded(path) + "\nDeletionDate=" + timeNow() + "\n";
    if (!note || ::write(note.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
      throw fs::filesystem_error("can't write", place.note,
                                 std::error_code(errno, std::generic_category()));
    if (!fs::exists(fs::symlink_status(place.file))) return place;
    fs::remove(place.note);
  }
}

void bringBack(const Place& place, const fs::path& path) {
  if (fs::exists(fs::symlink_status(path)))
    throw fs::filesystem_error("something else is there", path,
                               std::make_error_code(std::errc::file_exists));
  fs::rename(place.file, path);
  std::error_code ignored;  // without the file, the note means nothing
  fs::remove(place.note, ignored);
}

}  // namespace

std::function<void()> moveToTrash(const fs::path& path, const Environment& environment) {
  const fs::path trash = dataFolder(environment) / "Trash";
  madeFolder(trash);
  const Place place = takePlace(path, trash);
  std::error_code error;
  fs::rename(path, place.file, error);
  if (error) {
    std::error_code ignored;
    fs::remove(place.note, ignored);
    throw fs::filesystem_error("can't move to the trash", path, error);
  }
  return [place, path] { bringBack(place, path); };
}

}  // namespace tobrin
