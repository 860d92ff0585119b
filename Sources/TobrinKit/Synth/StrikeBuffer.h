/// The mono buffer in which a key sound is put together from noise bursts and ringing partials.
/// Every component adds to what is there and is cut at the buffer's end. The order of operations
/// and of random draws is part of the sound: other orders give other bits. One thread at a time.
/// Thread: any.
#pragma once

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "Base/Biquad.h"
#include "Base/SplitMix64.h"

namespace tobrin {

class StrikeBuffer final {
 public:
  static constexpr double sampleRate = 48000;
  /// Partials at or above this many Hz are left out; filters are clamped to it.
  static constexpr double highestFrequency = 21600;

  /// Where a component stands, in samples.
  struct Place {
    std::size_t start = 0;
    std::size_t length = 0;
  };

  /// Band-passed white noise with an exponential decay.
  struct Noise {
    double center = 0;      ///< Hz
    double q = 0;           ///< quality of the band-pass
    double firstGain = 0;   ///< linear, of the noise before the filter
    double gainFactor = 0;  ///< from one sample to the next
  };
  /// `decay` is the time constant in seconds; `amplitude` is linear, about that of the result.
  static Noise noise(double center, double q, double decay, double amplitude);

  /// A sinusoid with an exponential decay.
  struct Partial {
    double frequency = 0;  ///< Hz
    double decay = 0;      ///< time constant, s
    double amplitude = 0;  ///< linear
    double phase = 0;      ///< at its first sample, radians
  };

  explicit StrikeBuffer(std::size_t frames) : samples_(frames, 0.0) {}

  /// Samples in that time, the fraction dropped.
  static std::size_t sampleCount(double seconds);

  /// Draws one number a sample.
  void addNoise(const Noise& noise, Place place, SplitMix64& rng);
  /// Adds nothing where the frequency is not below the highest.
  void addPartial(const Partial& partial, Place place);
  /// Filters all that is there through one section, then the other.
  void filter(Biquad first, Biquad second);

  [[nodiscard]] std::size_t frames() const { return samples_.size(); }
  /// All that was put together; the buffer is empty afterwards.
  std::vector<double> takeSamples() { return std::exchange(samples_, {}); }

 private:
  std::span<double> at(Place place);

  std::vector<double> samples_;
};

}  // namespace tobrin
