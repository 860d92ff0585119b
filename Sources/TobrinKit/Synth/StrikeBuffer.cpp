#include "Synth/StrikeBuffer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "Synth/Sine.h"

namespace tobrin {
namespace {

constexpr double noiseGain = 2.2;  // makes up for what the band-pass takes away
constexpr double noiseRampSamples = 7.2;
constexpr double partialFadeSamples = 14.4;  // 0.3 ms

double decayFactor(double decay) {
  return std::exp(-1.0 / (decay * StrikeBuffer::sampleRate));
}

std::array<double, 8> makeNoiseRamp() {
  std::array<double, 8> ramp{};
  for (std::size_t n = 0; n < ramp.size(); ++n)
    ramp[n] = static_cast<double>(n) / noiseRampSamples;
  return ramp;
}

/// A raised cosine.
std::array<double, 15> makePartialFade() {
  std::array<double, 15> fade{};
  for (std::size_t n = 0; n < fade.size(); ++n)
    fade[n] = 0.5 - 0.5 * std::cos(static_cast<double>(n) * std::numbers::pi / partialFadeSamples);
  return fade;
}

}  // namespace

StrikeBuffer::Noise StrikeBuffer::noise(double center, double q, double decay, double amplitude) {
  return {.center = center,
          .q = q,
          .firstGain = amplitude * noiseGain,
          .gainFactor = decayFactor(decay)};
}

std::size_t StrikeBuffer::sampleCount(double seconds) {
  const double samples = seconds * sampleRate;
  constexpr double most = 1e9;  // far beyond any take, and safe to convert
  return samples > 0 ? static_cast<std::size_t>(std::min(samples, most)) : 0;
}

std::span<double> StrikeBuffer::at(Place place) {
  const std::size_t start = std::min(place.start, samples_.size());
  return std::span(samples_).subspan(start, std::min(place.length, samples_.size() - start));
}

void StrikeBuffer::addNoise(const Noise& noise, Place place, SplitMix64& rng) {
  static const auto ramp = makeNoiseRamp();
  Biquad band = Biquad::bandpass(noise.center, noise.q, sampleRate);
  double gain = noise.firstGain;
  std::size_t n = 0;
  for (double& sample : at(place)) {
    const double rise = n < ramp.size() ? ramp[n] : 1.0;
    sample += band.process(rise * gain * rng.signedUnit());
    gain *= noise.gainFactor;
    ++n;
  }
}

void StrikeBuffer::addPartial(const Partial& partial, Place place) {
  static const auto fade = makePartialFade();
  if (!(partial.frequency < highestFrequency)) return;
  const std::span<double> samples = at(place);
  const double angle = 2 * std::numbers::pi * partial.frequency;
  const double gainFactor = decayFactor(partial.decay);
  double gain = partial.amplitude;
  std::array<double, 128> gains{};
  for (std::size_t start = 0; start < samples.size(); start += gains.size()) {
    const std::size_t count = std::min(gains.size(), samples.size() - start);
    for (std::size_t i = 0; i < count; ++i) {
      gains[i] = gain;
      gain *= gainFactor;
    }
    const auto first = static_cast<double>(start);
    const auto value = [&](int i) {
      // The sine itself, not a recurrence: rounding must not add up over a long decay.
      return sine(partial.phase + angle * (first + i) / sampleRate) * gains.data()[i];
    };
    // The fade apart from the rest, and a signed count: that makes a loop in which compilers take
    // several samples at a time.
    double* const sum = samples.data() + start;
    const int faded = start == 0 ? static_cast<int>(std::min(fade.size(), count)) : 0;
    for (int i = 0; i < faded; ++i)
      sum[i] += value(i) * fade.data()[i];
    for (int i = faded; i < static_cast<int>(count); ++i)
      sum[i] += value(i);
  }
}

void StrikeBuffer::filter(Biquad first, Biquad second) {
  // In one pass, so that the processor works on both sections' recursions at a time.
  for (double& sample : samples_)
    sample = second.process(first.process(sample));
}

}  // namespace tobrin
