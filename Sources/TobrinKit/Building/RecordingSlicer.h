/// Cuts a long recording of somebody typing into single key sounds, sorts them into groups and
/// force tiers, and levels them. Works offline on whole buffers. Pure functions; thread: any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "Base/KeyEvent.h"

namespace tobrin {

struct RecordingSlicer {
  /// Settings of one recording or recipe. Times in milliseconds.
  struct Options {
    double preRollMs = 1.5;      ///< kept before the onset of a cut take
    double maxPressMs = 230;     ///< longest press take of ordinary keys
    double maxBigPressMs = 380;  ///< longest press take of wide keys
    double maxReleaseMs = 120;   ///< longest release take
    double minPressMs = 45;      ///< a press with less room before the next hit is not cut
    double mergeWithinMs = 25;   ///< onsets closer than this are one hit
    int64_t alphaVariants = 6;   ///< takes per tier for ordinary keys
    int64_t bigVariants = 4;     ///< takes per tier for wide keys
    int64_t releaseVariants = 6;
    double bigKeyShare =
        0.14;  ///< share of presses on wide keys; 1.6 times as many are taken for them
    double highPassHz = 45;   ///< removes rumble from cut takes
    double gainDb = 0;        ///< applied to cut takes
    bool noReleases = false;  ///< do not look for releases

    bool operator==(const Options&) const = default;
  };

  /// One detected key sound. Positions and lengths in samples.
  struct Hit {
    std::size_t onset = 0;
    float peak = 0;        ///< largest absolute value of the mono mix within 15 ms
    float energy = 0;      ///< root mean square of the mono mix over 30 ms, cut off at the next hit
    float brightness = 0;  ///< share of the energy above 2 kHz, 0 to 1
    double decayMs = 0;    ///< until the level has fallen by 20 dB, at most 400
    float preActivity = 0;     ///< loudest of the 12 ms before, above 700 Hz, relative to the hit
    bool clipped = false;      ///< a channel reaches 0.995 within 30 ms
    std::size_t gapAfter = 0;  ///< until the next onset or the end
    bool isRelease = false;    ///< no press: a release, or a knock that goes with none
    bool isBig = false;        ///< a wide key, by its sound

    bool operator==(const Hit&) const = default;
  };

  /// One cut sound; both channels of equal length.
  struct Take {
    std::vector<float> left;
    std::vector<float> right;
    float level = 0;  ///< root mean square of its first 30 ms, both channels together
  };

  using TierTakes = std::map<Tier, std::vector<Take>>;

  struct Detection {
    std::vector<Hit> hits;  ///< in time order
    float floor = 0;        ///< amplitude of the recording's noise floor above 700 Hz
  };

  /// What becomes of a hit: only presses and releases may be cut.
  enum class Fate : uint8_t {
    press,
    bigPress,
    release,
    clipped,
    overlapping,  ///< begun while something else sounded
    faint,        ///< residue far below any key, as a noise gate leaves it
    repeated      ///< within the merge distance of a stronger neighbour
  };

  struct Result {
    std::vector<Hit> hits;
    std::vector<Fate> fates;  ///< of `hits`, in the same order
    /// Takes of ordinary keys under `alpha`, of wide keys under `space`; a group without usable
    /// presses is absent.
    std::map<KeyGroup, TierTakes> down;
    std::vector<Take> up;
    float noiseFloor = 0;
    std::string report;  ///< one line for the builder's log
  };

  /// Finds all hits and measures them. `right` is at least as long as `left`; `rate` in samples a
  /// second.
  static Detection detect(std::span<const float> left, std::span<const float> right, double rate,
                          const Options& options);

  static Result slice(std::span<const float> left, std::span<const float> right, double rate,
                      const Options& options);

  /// The entry at index p x (count - 1), fraction dropped and clamped, of the values in ascending
  /// order; 0 for an empty list.
  static float percentile(std::vector<float> values, double p);
};

}  // namespace tobrin
