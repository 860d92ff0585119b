/// Checks packs, key capture, the sound engine and the sensor through the real parts, muted, and
/// prints a line for each. Blocks until it is done. Thread: main.
#pragma once

#include <chrono>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "Base/SerialQueue.h"
#include "Engine/AudioDevice.h"
#include "Engine/AudioOutput.h"
#include "Force/ForceSensor.h"
#include "Input/KeyMonitor.h"
#include "Input/KeyTyper.h"
#include "Input/PlatformWords.h"
#include "Packs/LoadedPack.h"

namespace tobrin {

class SelfTest final {
 public:
  /// What is checked; queue and callables outlive the test.
  struct Parts {
    std::function<std::vector<PackInfo>()> discoverPacks;
    std::function<std::shared_ptr<const LoadedPack>(const PackInfo&)> loadPack;  ///< throws
    SerialQueue& conductorQueue;
    std::unique_ptr<AudioDevice> audioDevice;
    std::unique_ptr<ForceSensor> sensor;  ///< null where there is none
    std::function<std::unique_ptr<KeyMonitor>(KeyMonitor::Handler)> listen;
    std::unique_ptr<KeyTyper> typer;
    std::function<void(std::chrono::milliseconds)> sleep;
    const PlatformWords& words;
  };

  SelfTest(Parts parts, std::ostream& out) : parts_(std::move(parts)), out_(out) {}

  /// Returns the exit status: 0, or 1 where a check failed.
  int run();

 private:
  std::shared_ptr<const LoadedPack> checkPacks();
  void checkEngine(std::shared_ptr<const LoadedPack> pack);
  void checkDevice(const AudioOutput& audio);
  void checkSound(const AudioOutput& audio);
  void checkSensor(const ForceSensor* sensor);
  void checkKeys(bool isListening, const std::function<int()>& heard);
  /// `advice` follows a check that failed: what to try.
  void check(bool passed, const std::string& text, std::string_view advice);
  void skip(const std::string& text);

  Parts parts_;
  std::ostream& out_;
  int failures_ = 0;
};

}  // namespace tobrin
