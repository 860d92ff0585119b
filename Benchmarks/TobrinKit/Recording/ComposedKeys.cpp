#include "ComposedKeys.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <tuple>

#include "Base/Biquad.h"
#include "Base/SplitMix64.h"
#include "Synth/KeySynth.h"

namespace tobrin {
namespace {

constexpr double typicalDb = -30;  // of a press: 30 ms of it
constexpr double separateSeconds = 0.025;
constexpr std::size_t levelFrames = 1440;    // 30 ms
constexpr std::size_t spokenFrames = 76800;  // 1.6 s
constexpr uint32_t keyCount = 30;

double amplitude(double db) {
  return std::pow(10, db / 20);
}

double rms(const std::vector<float>& samples, std::size_t begin, std::size_t count) {
  double sum = 0;
  for (std::size_t i = begin; i < std::min(begin + count, samples.size()); ++i)
    sum += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
  return std::sqrt(sum / static_cast<double>(count));
}

/// Letters, and one key of each other kind.
KeyGroup groupOf(uint32_t key) {
  return key < 4 ? allKeyGroups[key + 1] : KeyGroup::alpha;
}

class KeyTypist {
 public:
  explicit KeyTypist(const KeyedCondition& condition)
      : condition_(condition),
        random_(condition.seed * 7919),
        noise_(amplitude(typicalDb - condition.signalDb)) {
    result_.recording.samples.resize(static_cast<std::size_t>(condition.seconds * synthSampleRate));
    free_.resize(keyCount);
  }

  ComposedKeys typed() {
    const double end = condition_.seconds - 1;
    double at = 0.6;
    while (at < end) {
      stroke(at);
      at += interval();
    }
    at = 0.9;
    while (condition_.knocks > 0 && at < end) {
      knock(at);
      at += 2 * random_.unit() / condition_.knocks;
    }
    speak();
    for (float& x : result_.recording.samples)
      x += static_cast<float>(noise_ * std::numbers::sqrt3 * random_.signedUnit());
    finish();
    return std::move(result_);
  }

 private:
  struct Sound {
    std::size_t start = 0;
    const std::vector<float>* take = nullptr;
    double gain = 0;
  };

  struct Event {
    RecordedKey key;
    std::size_t place = 0;  // sample where its sound is, or would be
    std::optional<Sound> sound;
  };

  double normal() {
    const double u = 1 - random_.unit();
    return std::sqrt(-2 * std::log(u)) * std::cos(2 * std::numbers::pi * random_.unit());
  }

  double interval() {
    const double pause = random_.unit() < 0.03 ? 0.8 * random_.unit() : 0;
    return std::max(0.035, condition_.interval * std::exp(0.28 * normal())) + pause;
  }

  /// A key that is up by then; space more often than others.
  uint32_t keyAt(double at) {
    for (;;) {
      const auto key = random_.unit() < 0.15 ? 0 : static_cast<uint32_t>(random_.next() % keyCount);
      if (free_[key] < at) return key;
    }
  }

  void stroke(double at) {
    const uint32_t key = keyAt(at);
    const double strength = condition_.strengthSpread * random_.signedUnit();
    const double part = 0.5 + strength / (2 * condition_.strengthSpread + 1e-9);
    const Tier tier = allTiers[std::min<std::size_t>(static_cast<std::size_t>(part * 4), 3)];
    const double hold = std::clamp(condition_.hold * std::exp(0.25 * normal()), 0.03, 1.0);
    free_[key] = at + hold + 0.03;
    event(at, KeyAction::down, key, tier, typicalDb + strength);
    event(at + hold, KeyAction::up, key, std::nullopt,
          typicalDb + 0.6 * strength + condition_.releaseDb + 2 * normal());
  }

  /// The sound at `at`, and when the keyboard reports it.
  void event(double at, KeyAction action, uint32_t key, std::optional<Tier> tier, double db) {
    const double lag = action == KeyAction::up ? 0.004 : 0;
    const double early = (at - condition_.delay - lag) / (1 + condition_.drift) +
                         condition_.unevenness * random_.signedUnit();
    Event made{{static_cast<int64_t>(early * 1e9), action, groupOf(key), key, std::nullopt},
               static_cast<std::size_t>(at * synthSampleRate),
               std::nullopt};
    const bool isHeard = random_.unit() >= condition_.unheard;
    if (isHeard) made.sound = sound(at, groupOf(key), tier, db);
    events_.push_back(made);
  }

  Sound sound(double at, KeyGroup group, std::optional<Tier> tier, double db) {
    const auto& take = takeOf(group, tier, random_.next() % 12);
    const double gain = amplitude(db) / rms(take, 0, levelFrames);
    const auto start = static_cast<std::size_t>(at * synthSampleRate);
    auto& samples = result_.recording.samples;
    for (std::size_t i = 0; i < take.size() && start + i < samples.size(); ++i)
      samples[start + i] += static_cast<float>(gain * static_cast<double>(take[i]));
    return {start, &take, gain};
  }

  /// Whether the sound is as loud in its first 30 ms as all else that sounds there.
  bool standsOut(const Sound& sound) const {
    double own = 0, rest = 0;
    for (std::size_t i = 0; i < std::min(levelFrames, sound.take->size()); ++i) {
      const double x = sound.gain * static_cast<double>((*sound.take)[i]);
      const double y = static_cast<double>(result_.recording.samples[sound.start + i]) - x;
      own += x * x;
      rest += y * y;
    }
    return own >= rest;
  }

  void knock(double at) {
    (void)sound(at, KeyGroup::enter, Tier::hard, typicalDb + 3 * normal());
    result_.knocks.push_back(static_cast<std::size_t>(at * synthSampleRate));
  }

  /// Syllables: a buzz of harmonics that swells and fades.
  void speak() {
    const double end = condition_.seconds - 2;
    double at = 1;
    while (condition_.speech > 0 && at < end) {
      if (random_.unit() < condition_.speech) say(at, 100 + 60 * random_.unit());
      at += 2;
    }
  }

  void say(double at, double pitch) {
    const auto start = static_cast<std::size_t>(at * synthSampleRate);
    result_.speech.push_back(start);
    for (std::size_t i = 0; i < spokenFrames; ++i) {
      const double time = static_cast<double>(i) / synthSampleRate;
      const double swell = std::pow(std::sin(time * 4 * std::numbers::pi), 2);
      double wave = 0;
      for (int harmonic = 1; harmonic < 16; ++harmonic)
        wave += std::sin(2 * std::numbers::pi * pitch * harmonic * time) / harmonic;
      result_.recording.samples[start + i] +=
          static_cast<float>(amplitude(typicalDb) * swell * wave);
    }
  }

  const std::vector<float>& takeOf(KeyGroup group, std::optional<Tier> tier, uint64_t variant) {
    auto& take = takes_[{group, tier, variant}];
    if (take.empty()) take = renderKey(group, tier, variant, *condition_.profile).left;
    return take;
  }

  bool isSeparable(const Event& event, const std::vector<std::size_t>& onsets) const {
    if (!event.sound || !standsOut(*event.sound)) return false;
    const auto distance = static_cast<std::size_t>(separateSeconds * synthSampleRate);
    const auto first = std::lower_bound(onsets.begin(), onsets.end(), event.place - distance);
    const auto last = std::upper_bound(onsets.begin(), onsets.end(), event.place + distance);
    return last - first == 1;
  }

  void finish() {
    std::vector<std::size_t> onsets = result_.knocks;
    for (const Event& each : events_)
      onsets.push_back(each.place);
    std::sort(onsets.begin(), onsets.end());
    std::stable_sort(events_.begin(), events_.end(),
                     [](const Event& a, const Event& b) { return a.key.time < b.key.time; });
    std::map<uint32_t, uint32_t> numbers;
    for (Event& each : events_) {
      each.key.number =
          numbers.emplace(each.key.number, static_cast<uint32_t>(numbers.size())).first->second;
      result_.recording.keys.push_back(each.key);
      const auto onset = each.sound ? std::optional(each.sound->start) : std::nullopt;
      result_.truths.push_back({onset, isSeparable(each, onsets)});
    }
  }

  const KeyedCondition& condition_;
  SplitMix64 random_;
  double noise_;
  ComposedKeys result_;
  std::vector<Event> events_;
  std::vector<double> free_;  // s from which each key may go down again
  std::map<std::tuple<KeyGroup, std::optional<Tier>, uint64_t>, std::vector<float>> takes_;
};

}  // namespace

bool ComposedKeys::isSpokenOver(std::size_t key) const {
  const auto onset = truths[key].onset;
  return onset && std::any_of(speech.begin(), speech.end(), [&](std::size_t begin) {
           return *onset + levelFrames > begin && *onset < begin + spokenFrames;
         });
}

ComposedKeys composeKeys(const KeyedCondition& condition) {
  return KeyTypist(condition).typed();
}

}  // namespace tobrin
