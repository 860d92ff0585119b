/// Says while a recording runs what it is good for so far: takes a group and tier, level, noise.
/// What is built in the end is found from the whole recording by `findKeyedTakes`.
/// Thread: any, one at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "Base/KeyEvent.h"
#include "Recording/KeyedRecording.h"

namespace tobrin {

/// What to tell the person who records.
enum class LiveVerdict : uint8_t {
  waiting,       ///< too few keys were typed to say
  nothingHeard,  ///< keys are typed, but the microphone does not hear them
  tooQuiet,
  tooLoud,  ///< or clipping
  tooNoisy,
  good
};

struct LiveState {
  /// Good presses by group and tier; the tiers shift as more is typed.
  std::array<std::array<std::size_t, tierCount>, allKeyGroups.size()> takes{};
  std::array<std::size_t, allKeyGroups.size()> releases{};  ///< good ones
  float peak = 0;                                           ///< of the last second, full scale at 1
  float rms = 0;                                            ///< of the last second
  float noiseFloor = 0;                                     ///< amplitude above 700 Hz
  LiveVerdict verdict = LiveVerdict::waiting;
};

class LiveTakes final {
 public:
  explicit LiveTakes(double rate);

  /// The next frames, mono, without a gap; a lost block is as many zeros.
  void addSound(std::span<const float> block);
  /// In order of time; may come before or after the sound of the same moment.
  void addKey(const RecordedKey& key);

  [[nodiscard]] LiveState state() const;
  /// All that was added; keeps at most ten minutes of sound.
  [[nodiscard]] const KeyedRecording& recording() const { return recording_; }

 private:
  KeyedRecording recording_;
};

}  // namespace tobrin
