/// Everything that the application model needs of the system it runs on. Queues, stores and desktop
/// services outlive the model; the model takes over the devices. Thread: main.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "Base/SerialQueue.h"
#include "Engine/AudioDevice.h"
#include "Engine/DesktopServices.h"
#include "Engine/FrontWindow.h"
#include "Engine/SettingsStore.h"
#include "Force/MotionSource.h"
#include "Input/KeySource.h"
#include "Input/PlatformWords.h"
#include "Input/ShortcutService.h"
#include "Mic/MicSource.h"
#include "Model/PackShelf.h"
#include "Packs/LoadedPack.h"
#include "Packs/PackLibrary.h"
#include "Packs/PackManifest.h"
#include "Recording/SoundCapture.h"

namespace tobrin {

struct AppServices {
  SerialQueue& main;            ///< the model's own thread
  SerialQueue& loader;          ///< where packs are decoded
  SerialQueue& adding;          ///< where packs are read that the user adds
  SerialQueue& conductorQueue;  ///< "app.tobrin.conductor"
  SerialQueue& micQueue;        ///< "app.tobrin.mic"
  SettingsStore& settings;
  LoginItem& loginItem;
  Workspace& workspace;
  const PlatformWords& words;

  std::unique_ptr<AudioDevice> audioDevice;
  std::unique_ptr<MotionSource> motionSource;  ///< null where the machine has no motion sensor
  std::unique_ptr<KeySource> keySource;
  std::unique_ptr<ShortcutService> shortcutService;
  std::unique_ptr<MicSource> micSource;
  std::unique_ptr<FrontWindow> frontWindow;
  std::function<AppDescription(const std::string& id)> describeApp;  ///< what people call it
  std::function<std::unique_ptr<SoundCapture>()> makeSoundCapture;   ///< throws
  /// Names the calling thread and asks for its scheduling; may be null.
  std::function<void(std::string_view threadName)> onThreadStart;

  /// The virtual key code of what the toolkit calls a key's scan code; nothing for keys that are
  /// not part of typing.
  std::function<std::optional<uint16_t>(uint32_t scanCode)> keyOfScanCode;

  std::function<FoundPacks()> findPacks;
  std::function<std::shared_ptr<const LoadedPack>(const PackInfo&)> loadPack;  ///< throws
  PackShelf::Add addPack;
  PackShelf::Discard discardPack;
};

}  // namespace tobrin
