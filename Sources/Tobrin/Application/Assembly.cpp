#include "Application/Assembly.h"

#include <malloc.h>

#include <chrono>
#include <filesystem>

#include "Application/PackInstaller.h"
#include "Base/SystemFolders.h"
#include "Base/UserFolders.h"
#include "Desktop/DesktopEntries.h"
#include "Desktop/LinuxWords.h"
#include "Desktop/SessionKeys.h"
#include "Desktop/SessionSound.h"
#include "Desktop/XdgTrash.h"
#include "Evdev/KeyCodes.h"
#include "Front/SessionFront.h"
#include "Motion/FindMotionSource.h"
#include "Packs/PackLibrary.h"
#include "Packs/PackLoader.h"
#include "PipeWire/PipeWireLoop.h"
#include "Shortcuts/DesktopShortcuts.h"
#include "Threads/ThreadPreparation.h"

namespace tobrin {
namespace {

// After this time the replaced pack is freed, and what decoding and starting needed.
constexpr std::chrono::seconds settleTime{3};

/// A user without a home has no settings to keep: the root folder refuses them.
std::filesystem::path settingsFolder() {
  const std::filesystem::path folder = configFolder();
  return folder.empty() ? "/.config" : folder;
}

/// None for a preview: even to read a broken file would rename it.
std::filesystem::path settingsFile(bool isPreview) {
  return isPreview ? std::filesystem::path() : settingsFolder() / "Tobrin" / "settings.json";
}

/// What the portal of this desktop answered; other desktops may answer differently.
DesktopShortcuts::Memory portalMemory(SettingsStore& settings, SerialQueue& main) {
  const std::string key = "portalShortcut." + processVariable("XDG_CURRENT_DESKTOP");
  return {.read = [&settings, key] { return settings.readText(key).value_or(""); },
          .write =
              [&settings, &main, key](const std::string& text) {
                main.async([&settings, key, text] { settings.writeText(key, text); });
              }};
}

}  // namespace

Assembly::Assembly(const Launcher& launcher, std::optional<AppModel::Preview> preview)
    : settings_(settingsFile(preview.has_value())),
      loginItem_(settingsFolder(), thisProgram()),
      workspace_(launcher),
      main_("main"),
      loader_("app.tobrin.load"),
      adding_("app.tobrin.add"),
      conductorQueue_(Conductor::queueName, requestRealtimeScheduling),
      micQueue_(MicMonitor::queueName) {
  // One connection's loop serves output and microphone watch.
  const auto soundServer = makePipeWireLoop();
  AppServices services{
      .main = main_,
      .loader = loader_,
      .adding = adding_,
      .conductorQueue = conductorQueue_,
      .micQueue = micQueue_,
      .settings = settings_,
      .loginItem = loginItem_,
      .workspace = workspace_,
      .words = linuxWords,
      .audioDevice = makeAudioDevice(soundServer),
      .motionSource = findMotionSource(),
      .keySource = makeKeySource(),
      .shortcutService = std::make_unique<DesktopShortcuts>(portalMemory(settings_, main_)),
      .micSource = makeMicSource(soundServer),
      .frontWindow = makeFrontWindow(),
      .describeApp = [](const std::string& id) { return describeApp(id); },
      .makeSoundCapture = makeSoundCapture,
      .onThreadStart = prepareTimelyThread,
      .keyOfScanCode = [](uint32_t code) { return virtualCodeOf(code - xKeyCodeOffset); },
      .findPacks = [] { return findPacks(); },
      .loadPack =
          [this](const PackInfo& info) {
            main_.after(settleTime, [] { malloc_trim(0); });  // free heap goes back to the system
            return loadPack(info, AudioOutput::sampleRate);
          },
      .addPack = addByWorkshop,
      .discardPack = [](const PackInfo& pack) { return moveToTrash(pack.directory); },
  };
  const bool isPreview = preview.has_value();
  model_ = std::make_unique<AppModel>(std::move(services), std::move(preview));
  if (!isPreview && !dataFolder().empty())
    packsWatch_ =
        std::make_unique<PacksWatch>(userPacksDirectory(), [this] { model_->lookForPacks(); });
}

}  // namespace tobrin
