#include "Desktop/DesktopEntries.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>
#include <vector>

#include "Base/LowerCase.h"
#include "Base/UserFolders.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

/// The user's own first.
std::vector<fs::path> entryFolders(const Environment& environment) {
  std::vector<fs::path> folders = {dataFolder(environment)};
  std::string rest = environment("XDG_DATA_DIRS").value_or("");
  if (rest.empty()) rest = "/usr/local/share:/usr/share";
  for (std::size_t end = 0; end != std::string::npos; rest.erase(0, end + 1)) {
    end = rest.find(':');
    folders.emplace_back(rest.substr(0, end));
    if (end == std::string::npos) break;
  }
  std::erase_if(folders, [](const fs::path& folder) { return !folder.is_absolute(); });
  for (fs::path& folder : folders)
    folder /= "applications";
  return folders;
}

/// "de_DE" and "de" of "de_DE.UTF-8", the better one first.
std::vector<std::string> languages(const Environment& environment) {
  std::string locale;
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
    if (locale.empty()) locale = environment(name).value_or("");
  locale.resize(std::min(locale.size(), locale.find_first_of(".@")));
  return {locale, locale.substr(0, locale.find('_'))};
}

struct Entry {
  AppDescription description;
  std::string windowClass;
};

/// Nothing where the file is no entry that can be read.
std::optional<Entry> readEntry(const fs::path& path, const Environment& environment) {
  const std::vector<std::string> wanted = languages(environment);
  std::ifstream file(path);
  Entry entry;
  std::size_t nameRank = wanted.size() + 1;  // of the languages, the lower the better
  bool isInGroup = false;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('[')) isInGroup = line == "[Desktop Entry]";
    const std::size_t equals = line.find('=');
    if (!isInGroup || equals == std::string::npos) continue;
    const std::string key = line.substr(0, equals), value = line.substr(equals + 1);
    if (key == "Icon") entry.description.icon = value;
    if (key == "StartupWMClass") entry.windowClass = value;
    std::size_t rank = 0;
    while (rank < wanted.size() && key != "Name[" + wanted[rank] + "]")
      ++rank;
    if ((rank < wanted.size() || key == "Name") && rank < nameRank) {
      entry.description.name = value;
      nameRank = rank;
    }
  }
  return entry.description.name.empty() ? std::nullopt : std::optional(entry);
}

/// "gedit" of "org.gnome.gedit.desktop".
std::string lastPart(const fs::path& file) {
  const std::string stem = file.stem();
  return lowerCase(stem.substr(stem.rfind('.') + 1));
}

std::optional<Entry> claimingEntry(const fs::path& folder, const std::string& id,
                                   const Environment& environment) {
  std::error_code error;
  for (const fs::directory_entry& file : fs::directory_iterator(folder, error)) {
    if (file.path().extension() != ".desktop") continue;
    auto entry = readEntry(file.path(), environment);
    if (entry && (lowerCase(entry->windowClass) == id || lastPart(file.path()) == id)) return entry;
  }
  return std::nullopt;
}

}  // namespace

AppDescription describeApp(const std::string& id, const Environment& environment) {
  AppDescription unknown{.name = id, .icon = ""};
  if (id.empty() || id.find('/') != std::string::npos) return unknown;
  const std::string small = lowerCase(id);
  const std::vector<fs::path> folders = entryFolders(environment);
  for (const fs::path& folder : folders)
    for (const std::string& name : {id, small})
      if (const auto entry = readEntry(folder / (name + ".desktop"), environment))
        return entry->description;
  for (const fs::path& folder : folders)
    if (const auto entry = claimingEntry(folder, small, environment)) return entry->description;
  return unknown;
}

}  // namespace tobrin
