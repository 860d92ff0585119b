#include "Recording/NoiseRemoval.h"

#include <algorithm>
#include <cmath>

#include "Recording/NoiseGate.h"

namespace tobrin {
namespace {

constexpr double afterSound = 0.2;    // s until what rings on is not taken for noise
constexpr double beforeSound = 0.03;  // s that a sound may come before its expected moment
constexpr double neededBelowDb = 55;  // noise that far below the usual press is not heard
constexpr double leastLoweredDb = 6;
constexpr double mostChangeDb = 0.5;
constexpr double levelSeconds = 0.030;
constexpr double attackSeconds = 0.003;
constexpr double silence = 1e-12;

using Samples = std::span<const float>;

double decibels(double power) {
  return 10 * std::log10(power + silence);
}

double meanPower(Samples samples) {
  double sum = 0;
  for (const float x : samples)
    sum += static_cast<double>(x) * static_cast<double>(x);
  return samples.empty() ? 0 : sum / static_cast<double>(samples.size());
}

Samples partOf(Samples samples, std::size_t begin, double length) {
  const std::size_t first = std::min(begin, samples.size());
  return samples.subspan(first, std::min(static_cast<std::size_t>(length), samples.size() - first));
}

/// Where no key sounds.
std::vector<Pause> pausesOf(const KeyedRecording& recording, const ClockFit& fit) {
  std::vector<double> moments;
  moments.reserve(recording.keys.size() + 1);
  for (const RecordedKey& key : recording.keys)
    moments.push_back(fit.soundOf(key));
  moments.push_back(static_cast<double>(recording.samples.size()) / recording.rate);
  std::sort(moments.begin(), moments.end());
  std::vector<Pause> pauses;
  double begin = 0;
  for (const double moment : moments) {
    const double end = moment - beforeSound;
    if (end > begin) {
      pauses.push_back({static_cast<std::size_t>(begin * recording.rate),
                        static_cast<std::size_t>(end * recording.rate)});
    }
    begin = std::max(begin, moment + afterSound);
  }
  return pauses;
}

double noisePower(Samples samples, const std::vector<Pause>& pauses) {
  std::vector<float> powers;
  powers.reserve(pauses.size());
  for (const Pause& pause : pauses)
    powers.push_back(
        static_cast<float>(meanPower(samples.subspan(pause.begin, pause.end - pause.begin))));
  return static_cast<double>(percentile(std::move(powers), 0.5));
}

/// What the usual press is like: its level, and how much of that its beginning has. In dB.
struct PressShape {
  double level = 0;
  double attack = 0;
};

PressShape shapeOf(Samples samples, double rate, std::span<const KeyEventSound> sounds,
                   double noise) {
  std::vector<float> levels, attacks;
  for (const KeyEventSound& sound : sounds) {
    if (sound.fate != KeyFate::good || sound.hit.isRelease) continue;
    const auto power = [&](double seconds) {
      return decibels(
          std::max(meanPower(partOf(samples, sound.hit.onset, seconds * rate)) - noise, silence));
    };
    levels.push_back(static_cast<float>(power(levelSeconds)));
    attacks.push_back(static_cast<float>(power(attackSeconds)) - levels.back());
  }
  return {static_cast<double>(percentile(std::move(levels), 0.5)),
          static_cast<double>(percentile(std::move(attacks), 0.5))};
}

}  // namespace

NoiseRemoval removeNoise(const KeyedRecording& recording, std::span<const KeyEventSound> sounds,
                         const ClockFit& fit) {
  if (!fit.isKnown) return {};
  const auto pauses = pausesOf(recording, fit);
  const double noise = noisePower(recording.samples, pauses);
  const auto before = shapeOf(recording.samples, recording.rate, sounds, noise);
  if (pauses.empty() || before.level - decibels(noise) > neededBelowDb) return {};
  NoiseRemoval result{gateNoise(recording.samples, pauses), 0};
  if (result.samples.empty()) return {};
  const double left = noisePower(result.samples, pauses);
  result.loweredDb = decibels(noise) - decibels(left);
  const auto after = shapeOf(result.samples, recording.rate, sounds, left);
  const bool doesHarm = std::abs(after.level - before.level) > mostChangeDb ||
                        std::abs(after.attack - before.attack) > mostChangeDb;
  return result.loweredDb < leastLoweredDb || doesHarm ? NoiseRemoval() : result;
}

}  // namespace tobrin
