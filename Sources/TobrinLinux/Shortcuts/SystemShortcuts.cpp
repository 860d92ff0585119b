#include "Shortcuts/SystemShortcuts.h"

#include <algorithm>
#include <sstream>
#include <system_error>
#include <utility>

#include "Base/RegularFile.h"
#include "Base/UserFolders.h"
#include "Shortcuts/PortalShortcut.h"
#include "System/ChildOutput.h"
#include "Threads/ThreadPreparation.h"

namespace tobrin {
namespace {

/// That the main thread waits for settings that are slow to come.
constexpr std::chrono::milliseconds patience{150};
constexpr std::chrono::seconds readingLimit{10};
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

}  // namespace

SystemShortcuts::SystemShortcuts(Environment environment, std::function<void()> changed)
    : environment_(std::move(environment)), changed_(std::move(changed)) {}

SystemShortcuts::~SystemShortcuts() {
  {
    const std::scoped_lock lock(mutex_);
    isStopping_ = true;
  }
  stop_.raise();
  if (reader_.joinable()) reader_.join();
}

std::vector<Accelerator> SystemShortcuts::current() {
  if (isDesktop("KDE"))
    return acceleratorsInKGlobalShortcuts(textOf(configFolder(environment_) / "kglobalshortcutsrc"),
                                          PortalShortcut::id);
  const auto desktop = std::find_if(std::begin(gsettingsDesktops), std::end(gsettingsDesktops),
                                    [this](const auto& each) { return isDesktop(each.first); });
  if (desktop == std::end(gsettingsDesktops)) return {};
  std::unique_lock lock(mutex_);
  if (!isReading_) startReading(desktop->second);
  isAwaited_ = true;
  ended_.wait_for(lock, patience, [this] { return !isReading_; });
  isAwaited_ = false;
  return accelerators_;
}

void SystemShortcuts::startReading(std::string_view schemas) {
  if (reader_.joinable()) reader_.join();  // has ended its reading
  isReading_ = true;
  reader_ = std::thread([this, schemas] { read(schemas); });
}

void SystemShortcuts::read(std::string_view schemas) {
  nameThisThread("Tobrin.Settings");
  std::vector<Accelerator> found = acceleratorsInGsettings(settingsListing(schemas));
  bool isNews = false;
  {
    const std::scoped_lock lock(mutex_);
    isNews = !isAwaited_ && !isStopping_ && found != accelerators_;
    accelerators_ = std::move(found);
    isReading_ = false;
  }
  ended_.notify_all();
  if (isNews) changed_();
}

/// The lines that concern keys. Empty where the settings cannot be read.
std::string SystemShortcuts::settingsListing(std::string_view schemas) const {
  const auto deadline = std::chrono::steady_clock::now() + readingLimit;
  std::istringstream all(
      childOutput({"gsettings", "list-recursively"}, deadline, stop_).value_or(""));
  std::string result;
  for (std::string line; std::getline(all, line);) {
    if (!line.starts_with(schemas) || !concernsKeys(line)) continue;
    if (!line.starts_with(customBindings)) {
      result += line + '\n';
      continue;
    }
    for (const std::string& path : quotedPaths(line)) {
      const std::string schema =
          "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding:" + path;
      result += childOutput({"gsettings", "get", schema, "binding"}, deadline, stop_).value_or("");
    }
  }
  return result;
}

bool SystemShortcuts::isDesktop(std::string_view name) const {
  std::istringstream names(environment_("XDG_CURRENT_DESKTOP").value_or(""));
  for (std::string each; std::getline(names, each, ':');) {
    if (each == name) return true;
  }
  return false;
}

}  // namespace tobrin
