/// Measures how the user's keystrokes register on the motion sensor: listens for a while, prints a
/// summary and writes two CSV files. Blocks until it is done. Thread: main.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <vector>

#include "Base/Mutex.h"
#include "Diagnostics/ProbeReport.h"
#include "Force/ForceSensor.h"
#include "Input/KeyMonitor.h"
#include "Input/PlatformWords.h"

namespace tobrin::probe {

class Probe final {
 public:
  struct Devices {
    /// Null where the machine has no motion sensor.
    std::unique_ptr<ForceSensor> sensor;
    /// Makes the key monitor that calls the handler.
    std::function<std::unique_ptr<KeyMonitor>(KeyMonitor::Handler)> listen;
    const PlatformWords& words;
  };

  /// What the probe measures time by; both on the clock of keys and sensor.
  struct Time {
    std::function<uint64_t()> now = &machNow;
    std::function<void(std::chrono::milliseconds)> sleep;
  };
  static Time realTime();

  /// Prints to `out` and writes into `folder`.
  Probe(Devices devices, std::ostream& out, std::filesystem::path folder, Time time = realTime());

  /// Listens for `seconds`. Returns the exit status: 0, or 1 where something is missing, which has
  /// then been printed.
  int run(double seconds);

 private:
  struct KeyDown {
    uint16_t code = 0;
    uint64_t time = 0;
  };

  bool startDevices();
  void listenFor(double seconds);
  void collect(uint64_t until);
  std::size_t keyCount();
  int finish(const Summary& summary);
  bool save(const std::filesystem::path& file, const std::string& text);

  Devices devices_;
  std::ostream& out_;
  std::filesystem::path folder_;
  Time time_;
  std::unique_ptr<KeyMonitor> monitor_;

  Mutex keysLock_;
  std::vector<KeyDown> keys_ TOBRIN_GUARDED_BY(keysLock_);  // written by the monitor's thread
  std::size_t collected_ = 0;                               // of keys_
  std::vector<Hit> hits_;
};

}  // namespace tobrin::probe
