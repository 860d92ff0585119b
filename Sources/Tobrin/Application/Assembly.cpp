#include "Application/Assembly.h"

#include <chrono>
#include <filesystem>

#include "Application/TimelyThread.h"
#include "Base/SystemFolders.h"
#include "Desktop/LinuxWords.h"
#include "Desktop/MakeAudioDevice.h"
#include "Desktop/MakeKeySource.h"
#include "Desktop/MakeMicSource.h"
#include "Desktop/XdgFolders.h"
#include "Evdev/KeyCodes.h"
#include "Memory/UnusedMemory.h"
#include "Motion/FindMotionSource.h"
#include "Packs/PackLibrary.h"
#include "PipeWire/PipeWireLoop.h"
#include "Shortcuts/DesktopShortcuts.h"
#include "Threads/RealtimeScheduling.h"

namespace tobrin {
namespace {

// By then the replaced pack is gone, and what decoding and starting needed besides.
constexpr std::chrono::seconds settleTime{3};

/// For each desktop: each has its own answer.
DesktopShortcuts::Memory portalMemory(SettingsStore& settings, SerialQueue& main) {
  const std::string key = "portalShortcut." + processEnvironment("XDG_CURRENT_DESKTOP");
  return {.read = [&settings, key] { return settings.readText(key).value_or(""); },
          .write =
              [&settings, &main, key](const std::string& text) {
                main.async([&settings, key, text] { settings.writeText(key, text); });
              }};
}

}  // namespace

Assembly::Assembly(const Launcher& launcher, std::optional<AppModel::Preview> preview)
    : settings_(XdgFolders::config() / "Tobrin" / "settings.json"),
      loginItem_(XdgFolders::config(), thisProgram()),
      workspace_(launcher),
      main_("main"),
      loader_("app.tobrin.load"),
      conductorQueue_(Conductor::queueName, requestRealtimeScheduling),
      micQueue_(MicMonitor::queueName) {
  // One connection's loop serves output and microphone watch.
  const auto soundServer = makePipeWireLoop();
  AppServices services{
      .main = main_,
      .loader = loader_,
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
      .onThreadStart = prepareTimelyThread,
      .keyOfScanCode =
          [](uint32_t code) { return KeyCodes::virtualCode(code - KeyCodes::xOffset); },
      .discoverPacks = [] { return PackLibrary::discover(); },
      .loadPack =
          [this](const PackInfo& info) {
            main_.after(settleTime, giveBackUnusedMemory);
            return LoadedPack::load(info, AudioOutput::sampleRate);
          },
  };
  model_ = std::make_unique<AppModel>(std::move(services), std::move(preview));
}

}  // namespace tobrin
