#include "Recording/NoiseGate.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>

#include "Building/RecordingSlicer.h"

namespace tobrin {
namespace {

constexpr std::size_t window = 512;  // samples
constexpr std::size_t hop = window / 2;
constexpr std::size_t bins = window / 2 + 1;
constexpr std::size_t fewestWindows = 20;
constexpr float leastGain = 0.25f;       // 12 dB: the noise that is left hides the gate's work
constexpr float noiseFactor = 2.5f;      // noise is that often above its mean
constexpr float slowestFall = 0.75f;     // of a gain from hop to hop, so that sounds die away whole
constexpr std::size_t neighbours = 2;    // bins to each side that share a gain
constexpr float meanOfMedian = 1.4427f;  // of the power of noise in one bin

using Spectrum = std::array<std::complex<float>, window>;
using Gains = std::array<float, bins>;

/// The library's own product checks for infinite values, which costs more than all the rest.
std::complex<float> product(std::complex<float> a, float real, float imaginary) {
  return {a.real() * real - a.imag() * imaginary, a.real() * imaginary + a.imag() * real};
}

/// The discrete Fourier transform in place, by halves; `direction` is -1, or 1 for its inverse
/// times the length.
class Transform {
 public:
  Transform() {
    for (std::size_t i = 0; i < window / 2; ++i) {
      const double angle = 2 * std::numbers::pi * static_cast<double>(i) / window;
      turns_[i] = {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))};
    }
    for (std::size_t i = 0; i < window; ++i) {
      for (std::size_t bit = 1, mirrored = window / 2; bit < window; bit *= 2, mirrored /= 2)
        if ((i & bit) != 0) places_[i] += mirrored;
    }
  }

  void run(Spectrum& values, int direction) const {
    for (std::size_t i = 0; i < window; ++i)
      if (i < places_[i]) std::swap(values[i], values[places_[i]]);
    for (std::size_t half = 1; half < window; half *= 2) {
      for (std::size_t begin = 0; begin < window; begin += 2 * half) {
        for (std::size_t i = 0; i < half; ++i) {
          const auto turn = turns_[i * (window / 2 / half)];
          const auto odd = product(values[begin + half + i], turn.real(),
                                   static_cast<float>(direction) * turn.imag());
          values[begin + half + i] = values[begin + i] - odd;
          values[begin + i] += odd;
        }
      }
    }
  }

 private:
  std::array<std::complex<float>, window / 2> turns_;
  std::array<std::size_t, window> places_{};  // where each value starts
};

class Gate {
 public:
  explicit Gate(std::span<const float> mono) : mono_(mono) {
    for (std::size_t i = 0; i < window; ++i) {
      const double phase = std::numbers::pi * (static_cast<double>(i) + 0.5) / window;
      shape_[i] = static_cast<float>(std::sin(phase));
    }
    gains_.fill(leastGain);
  }

  /// False where the pauses are too short.
  bool learn(std::span<const Pause> pauses) {
    std::array<std::vector<float>, bins> powers;
    for (const Pause& pause : pauses) {
      for (std::size_t at = pause.begin; at + window <= pause.end; at += window) {
        const Spectrum spectrum = spectrumAt(at);
        for (std::size_t bin = 0; bin < bins; ++bin)
          powers[bin].push_back(std::norm(spectrum[bin]));
      }
    }
    if (powers[0].size() < fewestWindows) return false;
    // The median, so that a sound which was not expected there does no harm.
    for (std::size_t bin = 0; bin < bins; ++bin)
      noise_[bin] = meanOfMedian * percentile(std::move(powers[bin]), 0.5);
    return true;
  }

  std::vector<float> gated() {
    std::vector<float> result(mono_.size() + window);
    for (std::size_t at = 0; at < mono_.size(); at += hop) {
      Spectrum spectrum = spectrumAt(at);
      follow(spectrum);
      for (std::size_t bin = 0; bin < window; ++bin)
        spectrum[bin] *= gains_[std::min(bin, window - bin)];
      transform_.run(spectrum, 1);
      for (std::size_t i = 0; i < window; ++i)
        result[at + i] += spectrum[i].real() * shape_[i] / static_cast<float>(window);
    }
    result.resize(mono_.size());
    return result;
  }

 private:
  Spectrum spectrumAt(std::size_t at) const {
    Spectrum spectrum{};
    for (std::size_t i = 0; i < std::min(window, mono_.size() - at); ++i)
      spectrum[i] = mono_[at + i] * shape_[i];
    transform_.run(spectrum, -1);
    return spectrum;
  }

  /// Gains open at once and close slowly.
  void follow(const Spectrum& spectrum) {
    for (std::size_t bin = 0; bin < bins; ++bin) {
      float power = 0, noise = 0;
      for (std::size_t i = bin - std::min(bin, neighbours);
           i <= std::min(bin + neighbours, bins - 1); ++i) {
        power += std::norm(spectrum[i]);
        noise += noise_[i];
      }
      const float kept = 1 - noiseFactor * noise / std::max(power, noise);
      const float wanted = std::sqrt(std::max(kept, leastGain * leastGain));
      gains_[bin] = std::max(wanted, std::max(gains_[bin] * slowestFall, leastGain));
    }
  }

  std::span<const float> mono_;
  Transform transform_;
  std::array<float, window> shape_{};
  std::array<float, bins> noise_{};  // power
  Gains gains_{};
};

}  // namespace

std::vector<float> gateNoise(std::span<const float> mono, std::span<const Pause> pauses) {
  Gate gate(mono);
  if (!gate.learn(pauses)) return {};
  return gate.gated();
}

}  // namespace tobrin
