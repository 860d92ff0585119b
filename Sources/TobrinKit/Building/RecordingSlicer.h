/// Cuts a long recording of somebody typing into single key sounds, sorts them into groups and
/// force tiers, and levels them. Works on whole recordings in memory. Thread: any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "Base/KeyEvent.h"
#include "Building/SlicerOptions.h"

namespace tobrin {

/// One detected key sound. Positions and lengths in samples.
struct RecordedHit {
  std::size_t onset = 0;
  float peak = 0;         ///< largest absolute value of the mono mix within 15 ms
  float energy = 0;       ///< root mean square of the mono mix over 30 ms, cut off at the next hit
  float brightness = 0;   ///< share of the energy above 2 kHz, 0 to 1
  double decayMs = 0;     ///< until the level has fallen by 20 dB, at most 400
  float preActivity = 0;  ///< loudest of the 12 ms before, above 700 Hz, relative to the hit
  bool clipped = false;   ///< a channel reaches 0.995 within 30 ms
  std::size_t gapAfter = 0;  ///< until the next onset or the end
  bool isRelease = false;    ///< a release, or a knock that belongs to no press
  bool isBig = false;        ///< a wide key, by its sound

  bool operator==(const RecordedHit&) const = default;
};

/// One cut sound; both channels of equal length.
struct RecordedTake {
  std::vector<float> left;
  std::vector<float> right;
  float level = 0;  ///< root mean square of its first 30 ms, both channels together
};

/// Takes of one group, by tier.
using RecordedTiers = std::map<Tier, std::vector<RecordedTake>>;

/// What `detectHits` finds.
struct HitDetection {
  std::vector<RecordedHit> hits;  ///< in time order
  float floor = 0;                ///< amplitude of the recording's noise floor above 700 Hz
};

/// What becomes of a hit: only presses and releases may be cut.
enum class HitFate : uint8_t {
  press,
  bigPress,
  release,
  clipped,
  overlapping,  ///< begun while something else sounded
  faint,        ///< residue far below any key, as a noise gate leaves it
  repeated      ///< within the merge distance of a stronger neighbour
};

/// What `sliceRecording` makes of a recording.
struct SlicedRecording {
  std::vector<RecordedHit> hits;
  std::vector<HitFate> fates;  ///< of `hits`, in the same order
  /// Takes of ordinary keys under `alpha`, of wide keys under `space`; a group without usable
  /// presses is absent.
  std::map<KeyGroup, RecordedTiers> down;
  std::vector<RecordedTake> up;
  float noiseFloor = 0;
  std::string report;  ///< one line for the builder's log
};

/// Finds all hits and measures them. `right` is at least as long as `left`; `rate` in samples a
/// second.
[[nodiscard]] HitDetection detectHits(std::span<const float> left, std::span<const float> right,
                                      double rate, const SlicerOptions& options);

/// Detects hits and cuts takes from them; the arguments are those of `detectHits`.
[[nodiscard]] SlicedRecording sliceRecording(std::span<const float> left,
                                             std::span<const float> right, double rate,
                                             const SlicerOptions& options);

/// The entry at index p x (count - 1), fraction dropped and clamped, of the values in ascending
/// order; 0 for an empty list.
[[nodiscard]] float percentile(std::vector<float> values, double p);

}  // namespace tobrin
