#include "ComposedTyping.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <optional>
#include <tuple>

#include "Base/Biquad.h"
#include "Base/SplitMix64.h"
#include "Synth/KeySynth.h"

namespace tobrin {
namespace {

using Damage = TypingCondition::Damage;
using Sound = ComposedTyping::Sound;

constexpr double butterworthQ = 0.7071;

double amplitude(double db) {
  return std::pow(10, db / 20);
}

double norm(const std::vector<float>& samples) {
  double sum = 0;
  for (std::size_t i = 0; i < std::min<std::size_t>(samples.size(), 1440); ++i)
    sum += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
  return std::sqrt(sum / 1440) + 1e-9;
}

class Typist {
 public:
  Typist(const TypingCondition& condition, double seconds)
      : condition_(condition), random_(condition.seed) {
    const auto frames = static_cast<std::size_t>(seconds * condition.rate);
    result_.rate = condition.rate;
    result_.left.resize(frames);
    result_.right.resize(frames);
  }

  ComposedTyping typed() {
    const double end = static_cast<double>(result_.left.size()) / condition_.rate - 1;
    const double level = -22 - condition_.strengthSpread;
    double at = 0.5;
    while (at < end) {
      const double strength = level + condition_.strengthSpread * random_.signedUnit();
      const bool isWide = random_.unit() < condition_.wideShare;
      press(at, strength, isWide);
      at += interval();
    }
    at = 0.3;
    while (at < end && condition_.ticks > 0) {
      const uint64_t variant = random_.next() % 12;
      const double faint = -46 - 24 * random_.unit();
      add(at, faint, {KeyGroup::alpha, std::nullopt, variant}, Sound::knock, false);
      at += 2 * random_.unit() / condition_.ticks;
    }
    std::sort(result_.strokes.begin(), result_.strokes.end(),
              [](const auto& a, const auto& b) { return a.onset < b.onset; });
    return std::move(result_);
  }

 private:
  double normal() {
    const double u = 1 - random_.unit();
    return std::sqrt(-2 * std::log(u)) * std::cos(2 * std::numbers::pi * random_.unit());
  }

  /// Mostly steady, with a pause for thought now and then; no two presses closer than 45 ms.
  double interval() {
    const double pause = random_.unit() < 0.04 ? 0.8 * random_.unit() : 0;
    return std::max(0.045, condition_.interval * std::exp(0.28 * normal())) + pause;
  }

  void press(double at, double strength, bool isWide) {
    const KeyGroup group = isWide ? KeyGroup::space : KeyGroup::alpha;
    const double part =
        (strength + 22 + 2 * condition_.strengthSpread) / (2 * condition_.strengthSpread + 1e-9);
    const Tier tier = allTiers[std::min<std::size_t>(static_cast<std::size_t>(part * 4), 3)];
    const double wideDb = isWide ? 1.5 : 0;
    add(at, strength + wideDb, {group, tier, random_.next() % 12}, Sound::press, isWide);
    if (random_.unit() < condition_.bounces) knock(at, 0.022, {strength - 7, 2}, group);
    if (condition_.contacts > 0 && random_.unit() < condition_.contacts)
      knock(at, -0.032, {strength - 9, 3}, group);
    const double hold = std::clamp(condition_.hold * std::exp(0.22 * normal()), 0.03, 1.0);
    if (random_.unit() >= condition_.heard) return;
    // What a key gives on its way up depends on the finger less than the way down does.
    const double shared = 0.6 * (strength + 22 + condition_.strengthSpread);
    const double release =
        -22 - condition_.strengthSpread + shared + condition_.releaseDb + 2.2 * normal();
    add(at + hold, release, {group, std::nullopt, random_.next() % 12}, Sound::release, isWide);
    if (condition_.topBounces > 0 && random_.unit() < condition_.topBounces)
      knock(at + hold, 0.022, {release - 4, 2}, group);
  }

  struct Spread {
    double mean;
    double deviation;
  };

  /// 28 ms and up to `reach` after a sound, or before it where that is below zero. One draw a line:
  /// compilers differ in the order of a call's arguments.
  void knock(double at, double reach, const Spread& db, KeyGroup group) {
    const uint64_t variant = random_.next() % 12;
    const double level = db.mean + db.deviation * normal();
    const double apart = std::copysign(0.028, reach) + reach * random_.unit();
    add(at + apart, level, {group, std::nullopt, variant}, Sound::knock, group == KeyGroup::space);
  }

  struct Key {
    KeyGroup group;
    std::optional<Tier> tier;
    uint64_t variant;
    bool operator<(const Key& o) const {
      return std::tie(group, tier, variant) < std::tie(o.group, o.tier, o.variant);
    }
  };

  void add(double at, double db, const Key& key, Sound sound, bool isWide) {
    auto& cached = sounds_[key];
    if (cached.left.empty()) {
      cached = renderKey(key.group, key.tier, key.variant, *condition_.profile);
      const double scale = 1 / std::max(norm(cached.left), norm(cached.right));
      for (auto* channel : {&cached.left, &cached.right})
        for (float& x : *channel)
          x = static_cast<float>(static_cast<double>(x) * scale);
    }
    const auto start = static_cast<std::size_t>(at * condition_.rate);
    if (start >= result_.left.size()) return;
    const auto gain = static_cast<float>(amplitude(db));
    for (std::size_t i = 0; start + i < result_.left.size(); ++i) {
      // A sound made for 48 kHz, read by lines at another rate.
      const double place = static_cast<double>(i) * synthSampleRate / condition_.rate;
      const auto from = static_cast<std::size_t>(place);
      if (from + 1 >= cached.left.size()) break;
      const auto part = static_cast<float>(place - static_cast<double>(from));
      const auto read = [&](const std::vector<float>& x) {
        return gain * (x[from] + part * (x[from + 1] - x[from]));
      };
      result_.left[start + i] += read(cached.left);
      result_.right[start + i] += read(cached.right);
    }
    result_.strokes.push_back({start, sound, db, isWide});
  }

  const TypingCondition& condition_;
  SplitMix64 random_;
  ComposedTyping result_;
  std::map<Key, KeySound> sounds_;
};

void addNoise(std::vector<float>& samples, double db, SplitMix64& random) {
  const double level = amplitude(db) * std::numbers::sqrt3;  // of an even distribution
  for (float& x : samples)
    x += static_cast<float>(level * random.signedUnit());
}

void lowPass(std::vector<float>& samples, double hz, double rate, int times = 2) {
  for (int i = 0; i < times; ++i) {
    Biquad filter = Biquad::lowpass(hz, butterworthQ, rate);
    for (float& x : samples)
      x = static_cast<float>(filter.process(static_cast<double>(x)));
  }
}

/// Digital silence where the level stays low, as a voice call's gate leaves it.
void gate(std::vector<float>& samples, double rate) {
  const double threshold = amplitude(-52);
  const double fall = std::exp(-1 / (0.025 * rate));
  double level = 0, gain = 0;
  for (float& x : samples) {
    level = std::max(std::abs(static_cast<double>(x)), level * fall);
    gain += ((level > threshold ? 1 : 0) - gain) * (level > threshold ? 0.02 : 0.001);
    x = gain < 1e-3 ? 0.0f : static_cast<float>(static_cast<double>(x) * gain);
  }
}

/// Blocks in which faint content is rounded away, with a smear ahead of every onset.
void squeeze(std::vector<float>& samples, double rate, SplitMix64& random) {
  lowPass(samples, 9000, rate, 3);
  constexpr std::size_t block = 576;
  for (std::size_t begin = 0; begin + block <= samples.size(); begin += block) {
    double power = 0;
    for (std::size_t i = begin; i < begin + block; ++i)
      power += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
    const double rms = std::sqrt(power / block);
    for (std::size_t i = begin; i < begin + block; ++i) {
      samples[i] = rms < amplitude(-66)
                       ? 0.0f
                       : samples[i] + static_cast<float>(0.06 * rms * random.signedUnit());
    }
  }
}

/// Early reflections and a tail of 0.25 s, as of a small room with a distant microphone.
void addRoom(std::vector<float>& samples, double rate) {
  std::vector<float> wet(samples.size());
  for (const double seconds : {0.0297, 0.0371, 0.0411, 0.0437}) {
    const auto delay = static_cast<std::size_t>(seconds * rate);
    const double feedback = std::pow(10, -3 * seconds / 0.25);
    std::vector<float> line(samples.size());
    for (std::size_t i = delay; i < samples.size(); ++i) {
      line[i] = samples[i - delay] + static_cast<float>(feedback) * line[i - delay];
      wet[i] += line[i];
    }
  }
  lowPass(wet, 5000, rate, 1);
  for (std::size_t i = 0; i < samples.size(); ++i)
    samples[i] += 0.13f * wet[i];
}

void damage(std::vector<float>& samples, Damage kind, double rate, SplitMix64& random) {
  addNoise(samples, kind == Damage::noise ? -58 : kind == Damage::gated ? -70 : -76, random);
  if (kind == Damage::gated) gate(samples, rate);
  if (kind == Damage::muffled) lowPass(samples, 3500, rate);
  if (kind == Damage::codec) squeeze(samples, rate, random);
  if (kind == Damage::room) addRoom(samples, rate);
  if (kind == Damage::hum) {
    for (std::size_t i = 0; i < samples.size(); ++i) {
      const double turns = static_cast<double>(i) / rate * 2 * std::numbers::pi;
      samples[i] += static_cast<float>(amplitude(-44) * std::sin(50 * turns) +
                                       amplitude(-52) * std::sin(150 * turns));
    }
  }
}

}  // namespace

ComposedTyping composeTyping(const TypingCondition& condition, double seconds) {
  ComposedTyping result = Typist(condition, seconds).typed();
  SplitMix64 random(condition.seed + 1000);
  damage(result.left, condition.damage, condition.rate, random);
  damage(result.right, condition.damage, condition.rate, random);
  return result;
}

}  // namespace tobrin
