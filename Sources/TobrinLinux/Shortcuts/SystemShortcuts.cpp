#include "Shortcuts/SystemShortcuts.h"

#include <algorithm>
#include <sstream>
#include <system_error>
#include <utility>

#include "Base/RegularFile.h"
#include "Shortcuts/ChildOutput.h"

namespace tobrin {
namespace {

constexpr std::chrono::milliseconds programLimit{2000};
constexpr const char* customBindings =
    "org.gnome.settings-daemon.plugins.media-keys custom-keybindings ";

/// The desktops that keep their settings in GSettings, and the names their schemas begin with.
constexpr std::pair<std::string_view, std::string_view> gsettingsDesktops[] = {
    {"GNOME", "org.gnome."},    {"Unity", "org.gnome."},         {"Budgie", "org.gnome."},
    {"Pantheon", "org.gnome."}, {"X-Cinnamon", "org.cinnamon."}, {"MATE", "org.mate."}};

bool concernsKeys(std::string_view line) {
  const std::string_view schema = line.substr(0, line.find(' '));
  return schema.find("keybindings") != std::string_view::npos ||
         schema.find("media-keys") != std::string_view::npos;
}

/// The paths in a value like "['/a/', '/b/']".
std::vector<std::string> quotedPaths(const std::string& value) {
  std::vector<std::string> result;
  std::istringstream pieces(value);
  for (std::string piece; std::getline(pieces, piece, '\'');) {
    if (piece.starts_with('/')) result.push_back(piece);
  }
  return result;
}

/// Empty where the file cannot be read: then the desktop has no shortcuts that we know of.
std::string textOf(const std::filesystem::path& file) {
  constexpr uint64_t longestFile = 4 << 20;
  try {
    return RegularFile(file).readText(longestFile);
  } catch (const std::system_error&) {
    return {};
  }
}

std::filesystem::file_time_type versionOf(const std::filesystem::path& file) {
  std::error_code failure;
  const auto time = std::filesystem::last_write_time(file, failure);
  return failure ? std::filesystem::file_time_type::min() : time;
}

}  // namespace

const std::vector<Accelerator>& SystemShortcuts::current() {
  const bool isKde = isDesktop("KDE");
  const auto file = configFolder() / (isKde ? "kglobalshortcutsrc" : "dconf/user");
  const auto version = versionOf(file);
  if (file == readFrom_ && version == readVersion_) return accelerators_;
  readFrom_ = file;
  readVersion_ = version;
  if (isKde) {
    accelerators_ = acceleratorsInKGlobalShortcuts(textOf(file));
  } else {
    accelerators_ = acceleratorsInGsettings(settingsListing());
  }
  return accelerators_;
}

std::string SystemShortcuts::settingsListing() const {
  const auto desktop = std::find_if(std::begin(gsettingsDesktops), std::end(gsettingsDesktops),
                                    [this](const auto& each) { return isDesktop(each.first); });
  if (desktop == std::end(gsettingsDesktops)) return {};
  std::istringstream all(childOutput({"gsettings", "list-recursively"}, programLimit));
  std::string result;
  for (std::string line; std::getline(all, line);) {
    if (!line.starts_with(desktop->second) || !concernsKeys(line)) continue;
    if (!line.starts_with(customBindings)) {
      result += line + '\n';
      continue;
    }
    for (const std::string& path : quotedPaths(line)) {
      result += childOutput(
          {"gsettings", "get",
           "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding:" + path, "binding"},
          programLimit);
    }
  }
  return result;
}

bool SystemShortcuts::isDesktop(std::string_view name) const {
  std::istringstream names(environment_("XDG_CURRENT_DESKTOP"));
  for (std::string each; std::getline(names, each, ':');) {
    if (each == name) return true;
  }
  return false;
}

std::filesystem::path SystemShortcuts::configFolder() const {
  const std::string folder = environment_("XDG_CONFIG_HOME");
  if (!folder.empty()) return folder;
  return std::filesystem::path(environment_("HOME")) / ".config";
}

}  // namespace tobrin
