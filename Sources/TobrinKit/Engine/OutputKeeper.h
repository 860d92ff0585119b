/// The output as the engine runs it: started when something is to sound, emptied of what comes too
/// late to be played, and paused only once what sounded has faded out. Made on any thread.
/// Thread: conductor.
#pragma once

#include <cstdint>
#include <memory>

#include "Base/SerialQueue.h"
#include "Engine/AudioOutput.h"

namespace tobrin {

class OutputKeeper final : public std::enable_shared_from_this<OutputKeeper> {
 public:
  /// Starts nothing yet.
  OutputKeeper(SerialQueue& queue, std::unique_ptr<AudioOutput> audio);

  /// Starts the output if it does not run; a pause that waits for a fade is cancelled. An output
  /// that failed to start a moment ago is not tried again at once: its answer may take longer than
  /// a key may wait.
  void start();

  /// To be called when something is about to sound. If the output then plays nothing for so long
  /// that the sounds would come too late, they are forgotten.
  void expectSound();

  /// Fades out and pauses once the fade has been played, without waiting for that. An output that
  /// plays nothing is paused after `fadePatience`.
  void rest();

  /// Pauses at once and lets go of all sounds.
  void pause();

  /// Restarts a running device.
  void restart();

  /// Has every sounding voice fade out; false where the ring is full.
  bool fadeOut();

  /// Whether nothing is rendered any more and no voice is left.
  [[nodiscard]] bool isPaused() const { return state_ == State::paused; }
  [[nodiscard]] AudioOutput& audio() { return *audio_; }
  [[nodiscard]] const AudioOutput& audio() const { return *audio_; }

 private:
  enum class State { playing, fading, paused };

  static constexpr SerialQueue::Duration fadePatience = std::chrono::milliseconds(400);

  struct Fade {
    uint64_t renderedAt;  ///< frames of the output by which it has been rendered
    uint64_t deadline;    ///< host ticks
    bool isRendered;      ///< and waits for the device to take it
  };

  void pauseAfter(const Fade& fade);
  void checkFade(const Fade& fade);
  void watchFlow(SerialQueue::Duration limit);
  void checkFlow(uint64_t renderedBefore);

  SerialQueue& queue_;                        // fixed after construction
  const std::unique_ptr<AudioOutput> audio_;  // fixed after construction
  State state_ = State::playing;
  uint64_t fadeNumber_ = 0;   // timers of earlier fades do nothing
  uint64_t retry_ = 0;        // host ticks; not asked again before
  bool isWatching_ = false;   // a look at the flow is due
  bool isExpecting_ = false;  // something was to sound since the last look
};

}  // namespace tobrin
