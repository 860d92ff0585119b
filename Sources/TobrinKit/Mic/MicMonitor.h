/// Tells whether some other application uses a microphone: at once when one is taken, and only
/// after a second without use when it is free again, so that short gaps in a call do not start
/// sounds. Also tells, at once, whether one records what is played. All state belongs to the queue
/// "app.tobrin.mic"; operations post to it. Thread: any.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "Base/SerialQueue.h"
#include "Mic/MicActivity.h"
#include "Mic/MicSource.h"

namespace tobrin {

class MicMonitor final {
 public:
  static constexpr const char* queueName = "app.tobrin.mic";

  using OnChange = std::function<void(bool inUse)>;

  /// The queues outlive the monitor; `main` is where `onChange` is called.
  MicMonitor(SerialQueue& queue, SerialQueue& main, std::unique_ptr<MicSource> source);
  /// Stops; must not run on the queue.
  ~MicMonitor();
  MicMonitor(const MicMonitor&) = delete;
  MicMonitor& operator=(const MicMonitor&) = delete;

  /// Called on the main queue. Set before `start`.
  void setOnChange(OnChange onChange);
  /// The same for what is played. Set before `start`.
  void setOnOutputRecorded(std::function<void(bool recorded)> onChange);
  /// How long a microphone must be free before that is reported. Set before `start`.
  void setReleaseDelay(std::chrono::duration<double> delay);

  /// Starts watching and reports the present state once. Does not wait.
  void start();
  /// Ends watching without a report. Does not wait.
  void stop();
  /// Reads everything again. Does not wait.
  void refresh();

  /// The present state, read now. Waits for the queue, so it is not to be called there.
  [[nodiscard]] MicActivity current();

 private:
  class Core;
  SerialQueue& queue_;
  std::shared_ptr<Core> core_;  // shared with the tasks waiting on the queues
};

}  // namespace tobrin
