#include "Recording/LiveTakes.h"

#include <algorithm>
#include <cmath>

namespace tobrin {
namespace {

constexpr double lookSeconds = 1;       // from one look to the next
constexpr double partSeconds = 6;       // that a look sees: enough to know what is usual
constexpr double settledSeconds = 0.6;  // from its beginning: a sound is over, its key has come
constexpr double fitSeconds = 5;        // from one fit to the next
constexpr std::size_t mostKeys = 60'000;
constexpr std::size_t recentPresses = 20;
constexpr std::size_t fewestPresses = 5;
constexpr double leastHeard = 0.3;   // of recent presses
constexpr double mostClipped = 0.1;  // of recent presses
constexpr float quietPeak = 0.01f;  // 40 dB below full scale: the microphone's steps begin to count
constexpr float loudPeak = 0.99f;
constexpr float leastAboveNoise = 8;  // times: 18 dB

}  // namespace

LiveTakes::LiveTakes(double rate, const SlicerOptions& options) : options_(options) {
  recording_.rate = rate;
  nextLook_ = samples(lookSeconds);
}

std::size_t LiveTakes::samples(double seconds) const {
  return static_cast<std::size_t>(seconds * recording_.rate);
}

void LiveTakes::addSound(std::span<const float> block) {
  auto& all = recording_.samples;
  const std::size_t room = samples(longestSeconds) - all.size();
  const auto kept = block.first(std::min(block.size(), room));
  all.insert(all.end(), kept.begin(), kept.end());
  if (all.size() < nextLook_) return;
  nextLook_ = all.size() + samples(lookSeconds);
  look();
}

void LiveTakes::addKey(const RecordedKey& key) {
  if (static_cast<double>(key.time) >= longestSeconds * 1e9 || recording_.keys.size() >= mostKeys)
    return;
  recording_.keys.push_back(key);
}

void LiveTakes::look() {
  const auto& all = recording_.samples;
  const std::size_t begin = all.size() - std::min(all.size(), samples(partSeconds));
  const auto part = std::span(all).subspan(begin);
  SoundRises rises = findRises(part, recording_.rate);
  noiseFloor_ = rises.floor;
  fit(rises, begin);
  if (fit_.isKnown) judge(part, rises, begin);
}

/// Adds the new rises, and fits keys to sounds: at each look until a fit is known, then now and
/// then.
void LiveTakes::fit(const SoundRises& rises, std::size_t begin) {
  // The newest rises may still change with what comes after them.
  const std::size_t end = recording_.samples.size() - samples(0.05);
  for (const SoundRise& rise : rises.rises) {
    const std::size_t sample = begin + rise.sample;
    const bool isNew = rises_.empty() || sample > rises_.back().sample + samples(0.001);
    if (isNew && sample < end) rises_.push_back({sample, rise.evidence, rise.levelDb});
  }
  if (fit_.isKnown && end < nextFit_) return;
  nextFit_ = end + samples(fitSeconds);
  const ClockFit found = fitClocks(rises_, recording_.keys, recording_.rate);
  if (found.isKnown) fit_ = found;
}

/// Judges the keys whose sound is over since the last time.
void LiveTakes::judge(std::span<const float> part, const SoundRises& rises, std::size_t begin) {
  const std::size_t end = begin + part.size() - std::min(part.size(), samples(settledSeconds));
  const double partTime = static_cast<double>(begin) / recording_.rate;
  ClockFit fit = fit_;
  fit.delay += fit.drift * partTime;
  std::vector<RecordedKey> keys;
  for (RecordedKey key : recording_.keys) {
    key.time -= std::llround(partTime * 1e9);
    if (fit.soundOf(key) >= 0) keys.push_back(key);
  }
  const auto sounds = findKeySounds(part, recording_.rate, rises, keys, fit, options_);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const auto at = begin + static_cast<std::size_t>(fit.soundOf(keys[i]) * recording_.rate);
    if (at >= judgedUntil_ && at < end) add(keys[i], sounds[i]);
  }
  judgedUntil_ = std::max(judgedUntil_, end);
}

void LiveTakes::add(const RecordedKey& key, const KeyEventSound& sound) {
  const bool isPress = key.action == KeyAction::down;
  if (isPress) recent_.push_back({sound.fate, sound.hit.peak, sound.hit.energy});
  if (recent_.size() > recentPresses) recent_.pop_front();
  if (sound.fate != KeyFate::good) return;
  if (isPress)
    presses_[index(key.group)].push_back({sound.hit, key.force});
  else
    releases_[index(key.group)] += 1;
}

LiveState LiveTakes::state() const {
  LiveState state;
  for (const KeyGroup group : allKeyGroups)
    state.takes[index(group)] = tierCounts(presses_[index(group)], variantsOf(group, options_));
  state.releases = releases_;
  const auto& all = recording_.samples;
  const auto last = std::span(all).last(std::min(all.size(), samples(1)));
  double sum = 0;
  for (const float x : last) {
    state.peak = std::max(state.peak, std::abs(x));
    sum += static_cast<double>(x) * static_cast<double>(x);
  }
  if (!last.empty())
    state.rms = static_cast<float>(std::sqrt(sum / static_cast<double>(last.size())));
  state.noiseFloor = noiseFloor_;
  state.verdict = state.peak >= loudPeak ? LiveVerdict::tooLoud : verdict();
  return state;
}

LiveVerdict LiveTakes::verdict() const {
  if (!fit_.isKnown) {
    const auto typed = static_cast<std::size_t>(
        std::count_if(recording_.keys.begin(), recording_.keys.end(), [this](const auto& key) {
          const double now = static_cast<double>(recording_.samples.size()) / recording_.rate;
          return key.action == KeyAction::down && static_cast<double>(key.time) * 1e-9 < now - 1;
        }));
    return typed < 2 * fewestPresses ? LiveVerdict::waiting : LiveVerdict::nothingHeard;
  }
  if (recent_.size() < fewestPresses) return LiveVerdict::waiting;
  std::vector<float> peaks, energies;
  for (const RecentPress& press : recent_) {
    if (press.peak <= 0) continue;
    peaks.push_back(press.peak);
    energies.push_back(press.energy);
  }
  const auto clipped = std::count_if(recent_.begin(), recent_.end(), [](const RecentPress& press) {
    return press.fate == KeyFate::clipped;
  });
  const auto typed = static_cast<double>(recent_.size());
  if (static_cast<double>(peaks.size()) < leastHeard * typed) return LiveVerdict::nothingHeard;
  if (static_cast<double>(clipped) >= mostClipped * typed) return LiveVerdict::tooLoud;
  if (percentile(peaks, 0.5) < quietPeak) return LiveVerdict::tooQuiet;
  return percentile(energies, 0.5) < leastAboveNoise * noiseFloor_ ? LiveVerdict::tooNoisy
                                                                   : LiveVerdict::good;
}

}  // namespace tobrin
