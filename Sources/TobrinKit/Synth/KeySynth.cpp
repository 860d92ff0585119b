#include "Synth/KeySynth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>

#include "Base/SplitMix64.h"
#include "Synth/StereoRoom.h"
#include "Synth/StrikeBuffer.h"
#include "Synth/TakeSeed.h"

namespace tobrin {
namespace {

constexpr double releaseStrength = 0.6;
constexpr std::size_t earlyStart = 14;      // samples
constexpr double strikeDelay = 0.0003;      // s
constexpr double noiseTimeConstants = 10;   // after which a burst ends
constexpr double partialTimeConstants = 9;  // after which a partial ends
constexpr double butterworthQ = 0.7071;

std::size_t burstLength(double decay) {
  return StrikeBuffer::sampleCount(decay * noiseTimeConstants);
}
std::size_t partialLength(double decay) {
  return StrikeBuffer::sampleCount(decay * partialTimeConstants);
}

/// Puts one take together. The steps run once, in the order in which they stand here: each takes
/// its draws from where the one before left the two streams.
class TakeRenderer {
 public:
  TakeRenderer(KeyGroup group, std::optional<Tier> tier, uint64_t variant,
               const SynthProfile& profile)
      : profile_(profile),
        shape_(groupShape(group)),
        tier_(tier),
        hasBell_(profile.bellOnEnter && group == KeyGroup::enter),
        strength_(strikeStrength(tier)),
        shapeRng_(takeSeed({profile.id, rawValue(group), "key", std::to_string(variant)})),
        noiseRng_(takeSeed(
            {profile.id, rawValue(group), tier ? name(*tier) : "up", std::to_string(variant)})),
        buffer_(frameCount()) {}

  StereoTake render() {
    if (profile_.early) addEarly(*profile_.early);
    placeStrike();
    addImpact();
    addModes();
    if (!isRelease()) addThump();
    if (tier_ == Tier::slam) addBottomOut();
    if (!isRelease() && profile_.ping) addPing(*profile_.ping);
    if (shape_.rattle > 0) addRattle();
    if (!isRelease() && hasBell_) addCarriageAndBell();
    applyTone();
    StereoTake take = withRoom(buffer_.takeSamples(), profile_.room);
    trim(take);
    return take;
  }

 private:
  [[nodiscard]] bool isRelease() const { return !tier_; }

  /// 1 give or take `amount`.
  double jitter(double amount) { return 1 + amount * shapeRng_.signedUnit(); }
  double phase() { return 2 * std::numbers::pi * noiseRng_.unit(); }

  [[nodiscard]] std::size_t frameCount() const {
    constexpr double bellSeconds = 0.9;
    constexpr double maxSeconds = 1.6;
    double longest = profile_.modes.empty() ? 0.03 : profile_.modes.front().decay;
    for (const auto& mode : profile_.modes)
      longest = std::max(longest, mode.decay);
    double seconds = longest * shape_.decay * partialTimeConstants + 0.05;
    if (hasBell_) seconds += bellSeconds;  // also on the release, which has no bell
    return StrikeBuffer::sampleCount(std::min(seconds, maxSeconds));
  }

  /// The click or bump ahead of the strike, which it puts off.
  void addEarly(const SynthProfile::Early& early) {
    const double level = isRelease() ? early.onRelease : 1.0;
    if (isRelease() && !(level > 0)) return;
    if (!isRelease()) strikeTime_ = early.leadMilliseconds / 1000 + strikeDelay;
    const double pitch = jitter(0.03);
    const auto& burst = early.burst;
    buffer_.addNoise(StrikeBuffer::noise(pitch * burst.center, burst.q, burst.decay,
                                         burst.amplitude * (0.25 * strength_ + 0.75) * level),
                     {earlyStart, burstLength(burst.decay)}, noiseRng_);
    if (!early.tone) return;
    buffer_.addPartial({.frequency = pitch * early.tone->frequency,
                        .decay = early.tone->decay,
                        .amplitude = early.tone->amplitude * level},
                       {earlyStart, partialLength(early.tone->decay)});
  }

  void placeStrike() {
    strikeStart_ = StrikeBuffer::sampleCount(strikeTime_);
    frequency_ = shape_.frequency;
    if (isRelease()) {
      frequency_ *= profile_.releasePitch;
      decay_ = 0.6;
      level_ = shape_.level * profile_.releaseLevel;
      return;
    }
    if (tier_ == Tier::slam) frequency_ *= 0.97;  // the case gives way
    decay_ = 0.85 + 0.2 * strength_;
    level_ = shape_.level * std::pow(strength_, 1.25);
  }

  void addImpact() {
    const auto& impact = profile_.impact;
    const double decay = (0.3 * strength_ + 0.8) * impact.decay;
    buffer_.addNoise(StrikeBuffer::noise(frequency_ * impact.center * jitter(0.05), impact.q, decay,
                                         impact.amplitude * level_),
                     {strikeStart_, burstLength(decay)}, noiseRng_);
  }

  /// The higher a mode, the more it grows with force: harder strikes are brighter.
  void addModes() {
    const std::size_t count = profile_.modes.size();
    const auto divisor = static_cast<double>(count >= 3 ? count - 1 : 1);
    for (std::size_t i = 0; i < count; ++i) {
      const auto& mode = profile_.modes[i];
      const double frequencyJitter = jitter(0.045);
      const double amplitudeJitter = jitter(0.18);
      const double decayJitter = jitter(0.1);
      const double decay = decay_ * shape_.decay * mode.decay * decayJitter;
      const double brightness = std::pow(strength_, 0.9 * static_cast<double>(i) / divisor);
      buffer_.addPartial({.frequency = frequencyJitter * frequency_ * mode.frequency,
                          .decay = decay,
                          .amplitude = amplitudeJitter * level_ * mode.amplitude * brightness,
                          .phase = phase()},
                         {strikeStart_, partialLength(decay)});
    }
  }

  void addThump() {
    const auto& thump = profile_.thump;
    const double decay = shape_.decay * thump.decay;
    buffer_.addPartial({.frequency = jitter(0.05) * thump.frequency,
                        .decay = decay,
                        .amplitude = strength_ * strength_ * thump.amplitude * shape_.level},
                       {strikeStart_, partialLength(decay)});
  }

  void addBottomOut() {
    const auto& impact = profile_.impact;
    buffer_.addNoise(StrikeBuffer::noise(0.8 * impact.center, impact.q, impact.decay,
                                         0.32 * level_ * impact.amplitude),
                     {StrikeBuffer::sampleCount(strikeTime_ + 0.0022), burstLength(impact.decay)},
                     noiseRng_);
  }

  void addPing(const SynthProfile::Mode& ping) {
    const double frequency = jitter(0.02) * ping.frequency;
    if (!(frequency < StrikeBuffer::highestFrequency)) return;  // and draws no phase
    buffer_.addPartial({.frequency = frequency,
                        .decay = ping.decay,
                        .amplitude = ping.amplitude * strength_,
                        .phase = phase()},
                       {strikeStart_, partialLength(ping.decay)});
  }

  /// The stabiliser's wire strikes twice after the key.
  void addRattle() {
    struct Hit {
      double delay;  // s
      double level;
    };
    constexpr Hit hits[] = {{0.0034, 0.55}, {0.0071, 0.3}};
    const auto& impact = profile_.impact;
    for (const Hit& hit : hits) {
      const double late = hit.delay * (1 + 0.2 * shapeRng_.signedUnit());
      const std::size_t start = StrikeBuffer::sampleCount(strikeTime_ + late);
      if (start >= buffer_.frames()) continue;
      const double center = 0.7 * impact.center * jitter(0.1);
      buffer_.addNoise({.center = center,
                        .q = 1.1,
                        .firstGain = impact.amplitude * level_ * shape_.rattle * hit.level * 2.2,
                        .gainFactor = 0.9812388294607182},  // a decay of 1.1 ms
                       {start, 528}, noiseRng_);
    }
  }

  /// A typewriter's Return: the carriage's ratchet, then the bell; no force changes either.
  void addCarriageAndBell() {
    constexpr int clacks = 7;
    for (int clack = 0; clack < clacks; ++clack) {
      const std::size_t start = StrikeBuffer::sampleCount(strikeTime_ + 0.012 + clack * 0.011);
      if (start >= buffer_.frames()) continue;
      buffer_.addNoise({.center = 3800 * jitter(0.05),
                        .q = 2,
                        .firstGain = 0.33,
                        .gainFactor = 0.9658736772410497},  // a decay of 0.6 ms
                       {start, 288}, noiseRng_);
    }
    constexpr double bellHz = 2093;
    constexpr SynthProfile::Mode partials[] = {// frequencies relative to the bell's
                                               {1.0, 0.38, 0.22},
                                               {2.76, 0.22, 0.09},
                                               {5.4, 0.12, 0.05}};
    const std::size_t start = StrikeBuffer::sampleCount(strikeTime_ + 0.095);
    for (const auto& partial : partials)
      buffer_.addPartial({.frequency = partial.frequency * bellHz,
                          .decay = partial.decay,
                          .amplitude = partial.amplitude},
                         {start, partialLength(partial.decay)});
  }

  void applyTone() {
    constexpr double rumbleHz = 55;
    const double force = isRelease() ? 1.1 : 0.5 + 0.5 * strength_;
    const double corner = profile_.brightness * force;
    buffer_.filter(Biquad::lowpass(corner, butterworthQ, synthSampleRate),
                   Biquad::highpass(rumbleHz, butterworthQ, synthSampleRate));
  }

  const SynthProfile& profile_;
  GroupShape shape_;
  std::optional<Tier> tier_;
  bool hasBell_;
  double strength_;
  SplitMix64 shapeRng_;  // every variation of the key, the same at every force
  SplitMix64 noiseRng_;  // noise and start phases
  StrikeBuffer buffer_;
  double strikeTime_ = strikeDelay;  // s
  std::size_t strikeStart_ = 0;      // samples
  double frequency_ = 1;             // factors on the profile's values
  double decay_ = 1;
  double level_ = 1;
};

std::vector<float> asFloats(const std::vector<double>& samples) {
  std::vector<float> result(samples.size());
  std::transform(samples.begin(), samples.end(), result.begin(),
                 [](double sample) { return static_cast<float>(sample); });
  return result;
}

}  // namespace

GroupShape groupShape(KeyGroup group) {
  static constexpr std::array<GroupShape, allPackGroups.size()> shapes = {{
      {.frequency = 1.0, .decay = 1.0, .level = 1.0, .rattle = 0.0},     // alpha
      {.frequency = 0.72, .decay = 1.7, .level = 1.15, .rattle = 1.0},   // space
      {.frequency = 0.86, .decay = 1.35, .level = 1.08, .rattle = 0.5},  // enter
      {.frequency = 0.9, .decay = 1.25, .level = 1.05, .rattle = 0.4},   // backspace
      {.frequency = 0.94, .decay = 1.1, .level = 0.95, .rattle = 0.2},   // modifier
      {.frequency = 1.7, .decay = 0.45, .level = 0.5, .rattle = 0.0},    // mouse
  }};
  return shapes[index(group)];
}

double strikeStrength(std::optional<Tier> tier) {
  static constexpr std::array<double, tierCount> strengths = {0.45, 0.72, 1.0, 1.4};
  return tier ? strengths[index(*tier)] : releaseStrength;
}

KeySound renderKey(KeyGroup group, std::optional<Tier> tier, uint64_t variant,
                   const SynthProfile& profile) {
  const StereoTake take = TakeRenderer(group, tier, variant, profile).render();
  return {.left = asFloats(take.left), .right = asFloats(take.right)};
}

}  // namespace tobrin
