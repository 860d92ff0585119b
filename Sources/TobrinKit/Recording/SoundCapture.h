/// A microphone, for a recording of one's own keyboard. Nothing is heard unless it was started.
/// Implemented once for each way to record. Thread: one at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tobrin {

class SoundCapture {
 public:
  static constexpr double rate = 48000;

  struct Input {
    std::string name;         ///< what `start` takes
    std::string description;  ///< for people
    bool isDefault = false;
    /// Its sound comes through a filter, such as noise suppression, which spoils the sound of keys.
    bool isProcessed = false;

    bool operator==(const Input&) const = default;
  };

  /// Frames that follow each other without a gap.
  struct Block {
    int64_t time =
        0;  ///< of the first frame, in `MachTime` ticks, as exact as the service knows it
    std::span<const float> interleaved;  ///< left and right; alike where the input has one channel
  };

  virtual ~SoundCapture() = default;

  /// The microphones that are there, those of the computer before filtered ones. Waits up to half a
  /// second.
  [[nodiscard]] virtual std::vector<Input> inputs() = 0;

  /// Starts to record from the input of that name; an empty one means the default microphone, and
  /// the one behind it where that is a filter. False leaves the reason in `problem`, and nothing
  /// running. Waits up to two seconds.
  virtual bool start(const std::string& input) = 0;
  virtual void stop() = 0;

  /// Hands over what was recorded since the last call, in order of time. To be called several times
  /// a second: what does not fit in some seconds of memory is lost, which shows as a gap in the
  /// times.
  virtual void take(const std::function<void(const Block&)>& receive) = 0;

  /// Why nothing is recorded, in words, while an input is gone and waited for or after `start` has
  /// failed; empty while all is well.
  [[nodiscard]] virtual std::string problem() const = 0;

  /// The input in use, for people; empty while there is none.
  [[nodiscard]] virtual std::string description() const = 0;
};

}  // namespace tobrin
