/// Prints when other programs take and release the microphone. Thread: main.
#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>

#include "Base/SerialQueue.h"
#include "Input/PlatformWords.h"
#include "Mic/MicMonitor.h"

namespace tobrin {

/// Changes are printed from the monitor's main queue.
class MicWatch final {
 public:
  struct Surroundings {
    /// A program's name by its process, where it is known. Thread: any.
    std::function<std::optional<std::string>(int32_t process)> processName{};
    std::function<std::time_t()> now = [] { return std::time(nullptr); };
    std::function<void(std::chrono::duration<double>)> sleep{};
    const PlatformWords& words;
  };
  /// Real time; `processName` is left to the caller.
  static Surroundings realTime(const PlatformWords& words);

  /// `monitor` reports on `main`, which is not the caller's own thread; neither is in use
  /// elsewhere.
  MicWatch(MicMonitor& monitor, SerialQueue& main, std::ostream& out, Surroundings surroundings);

  /// Watches for `seconds` and returns the exit status, 0.
  int run(double seconds);

  /// One line on what the sound system says.
  [[nodiscard]] std::string describe(const MicActivity& activity) const;

 private:
  void changed(bool inUse);
  [[nodiscard]] std::string recorders(const MicActivity& activity) const;
  [[nodiscard]] std::string timeOfDay() const;

  MicMonitor& monitor_;
  SerialQueue& main_;
  std::ostream& out_;
  const Surroundings surroundings_;
  bool printed_ = false;  // the state last printed
};

}  // namespace tobrin
