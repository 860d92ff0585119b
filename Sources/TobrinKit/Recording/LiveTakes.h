/// Says while a recording runs what it is good for so far: takes a group and tier, level, noise.
/// The finished pack is cut from the whole recording by `findKeyedTakes`. Thread: any, one at a
/// time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

#include "Base/KeyEvent.h"
#include "Recording/ClockFit.h"
#include "Recording/KeySounds.h"
#include "Recording/KeyedRecording.h"
#include "Recording/TierCounts.h"

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

/// Works once for each second of added sound, in the call that completes the second, for 10 to 20
/// ms.
class LiveTakes final {
 public:
  static constexpr double longestSeconds = 600;  ///< what comes later is left out

  explicit LiveTakes(double rate, const SlicerOptions& options = {});

  /// The next frames, mono, without a gap; a lost block is as many zeros.
  void addSound(std::span<const float> block);
  /// In order of time; may come up to half a second after the sound of the same moment.
  void addKey(const RecordedKey& key);

  [[nodiscard]] LiveState state() const;
  /// All that was added, up to `longestSeconds`.
  [[nodiscard]] const KeyedRecording& recording() const { return recording_; }

 private:
  /// A press that was judged a moment ago.
  struct RecentPress {
    KeyFate fate = KeyFate::unheard;
    float peak = 0;
    float energy = 0;
  };

  void look();
  void fit(const SoundRises& rises, std::size_t begin);
  void judge(std::span<const float> part, const SoundRises& rises, std::size_t begin);
  void add(const RecordedKey& key, const KeyEventSound& sound);
  [[nodiscard]] LiveVerdict verdict() const;
  [[nodiscard]] std::size_t samples(double seconds) const;

  SlicerOptions options_;
  KeyedRecording recording_;
  std::size_t nextLook_;          // sample at which enough has come
  std::vector<SoundRise> rises_;  // of the recording so far
  ClockFit fit_;
  std::size_t nextFit_ = 0;      // sample
  std::size_t judgedUntil_ = 0;  // sample before which every key's sound was judged
  float noiseFloor_ = 0;
  std::array<std::vector<GoodPress>, allKeyGroups.size()> presses_;
  std::array<std::size_t, allKeyGroups.size()> releases_{};
  std::deque<RecentPress> recent_;
};

}  // namespace tobrin
