#include "Building/RecordingSlicer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Base/SplitMix64.h"
#include "Building/RecordedPackBuilder.h"
#include "Building/TypingLattice.h"
#include "ComposedTyping.h"
#include "Packs/SampleBuffer.h"
#include "Support/AudioFiles.h"
#include "Support/KeptText.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

using testing::line;

constexpr double rate = 48000;

/// A recording composed of decaying sounds at known places, over a little noise.
class Composition {
 public:
  explicit Composition(double seconds) : samples_(static_cast<std::size_t>(seconds * rate)) {
    for (float& x : samples_)
      x = static_cast<float>(1e-4 * rng_.signedUnit());
  }

  void add(double at, double amplitude, double pitch = 1, double length = 1) {
    const auto start = static_cast<std::size_t>(at * rate);
    for (const auto& [hz, decay] : {std::pair{400.0, 0.012}, {1300.0, 0.007}, {3100.0, 0.004}}) {
      const double phase = rng_.unit() * 2 * std::numbers::pi;
      for (std::size_t n = 0; start + n < samples_.size() && n < 9600; ++n) {
        const double t = static_cast<double>(n) / rate;
        samples_[start + n] +=
            static_cast<float>(amplitude * std::exp(-t / (decay * length)) *
                               std::sin(phase + 2 * std::numbers::pi * hz * pitch * t));
      }
    }
  }

  /// Something that grows for 0.3 s, too slowly for a hit, and dies away in the last 9 ms.
  void swell(double until, double amplitude) {
    for (double t = 0; t < 0.309; t += 1 / rate) {
      const double shape = t < 0.3 ? std::pow(10, 10 * (t - 0.3)) : (0.309 - t) / 0.009;
      samples_[static_cast<std::size_t>((until - 0.31 + t) * rate)] +=
          static_cast<float>(amplitude * shape * std::sin(9000 * t));
    }
  }

  /// A single sample, as where one channel of a recording is driven too hard.
  void click(double at, double level, bool isRight) {
    auto& place = isRight ? rightClicks_.emplace_back() : leftClicks_.emplace_back();
    place = {static_cast<std::size_t>(at * rate), static_cast<float>(level)};
  }

  [[nodiscard]] std::vector<float> left() const { return withClicks(samples_, leftClicks_); }

  /// From a microphone a little further away.
  [[nodiscard]] std::vector<float> right() const {
    constexpr std::size_t later = 14;  // 0.3 ms
    std::vector<float> right(samples_.size());
    for (std::size_t i = later; i < right.size(); ++i)
      right[i] = 0.8f * samples_[i - later];
    return withClicks(std::move(right), rightClicks_);
  }

  SlicedRecording slice(const SlicerOptions& options = {}) const {
    return sliceRecording(left(), right(), rate, options);
  }
  SplitMix64& rng() { return rng_; }

 private:
  using Clicks = std::vector<std::pair<std::size_t, float>>;

  static std::vector<float> withClicks(std::vector<float> samples, const Clicks& clicks) {
    for (const auto& [place, level] : clicks)
      samples[place] = level;
    return samples;
  }

  SplitMix64 rng_{7};
  std::vector<float> samples_;
  Clicks leftClicks_, rightClicks_;
};

/// Presses and releases of ordinary and wide keys, and what else may happen while somebody types.
Composition everything(double pace, std::vector<std::size_t>& presses) {
  Composition piece(40 * pace);
  SplitMix64& rng = piece.rng();
  double at = 0.4;
  for (int i = 0; at < 40 * pace - 1.5; ++i) {
    const bool wide = i % 7 == 3;
    const double press = 0.09 * std::pow(10, 9 * rng.signedUnit() / 20);
    const double hold = i % 9 == 5 ? 0.046 : wide ? 0.45 : pace * (0.12 + 0.2 * rng.unit());
    piece.add(at, i % 13 == 6 ? 1.5 : press, wide ? 0.5 : 1, wide ? 2 : 1);
    if (i % 11 == 4) piece.add(at + 0.03, 1.4 * press);
    if (i % 10 == 8) piece.add(at - 0.08, i % 20 == 8 ? 0.0007 : 0.0003);
    if (i % 10 == 9) piece.add(at - (i % 20 == 9 ? 0.014 : 0.0124), 0.06 * press, 1.2, 0.3);
    if (i % 12 == 7) piece.swell(at, 0.8 * press);
    if (i % 12 == 9) piece.swell(at + hold, 0.3 * press);
    if (i % 4 != 2) piece.add(at + hold, 0.2 * press, 1.3, 0.6);
    presses.push_back(static_cast<std::size_t>(at * rate));
    at += hold + pace * (0.09 + 0.12 * rng.unit());
  }
  return piece;
}

/// How many of the composed presses are found as presses, in spite of all that disturbs them.
double shareOfPresses(const SlicedRecording& result, const std::vector<std::size_t>& presses) {
  const auto found = std::ranges::count_if(presses, [&](std::size_t onset) {
    return std::ranges::any_of(result.hits, [&](const auto& hit) {
      return !hit.isRelease && hit.onset + 96 > onset && hit.onset < onset + 96;  // 2 ms
    });
  });
  return static_cast<double>(found) / static_cast<double>(presses.size());
}

/// Recordings are what the converter would make of them.
struct NoConverter final : ProcessRunner {
  int run(const std::filesystem::path&, const std::vector<std::string>& arguments) const override {
    const auto from = std::ranges::find(arguments, "-i");
    return std::filesystem::copy_file(*(from + 1), arguments.back()) ? 0 : 1;
  }
};

double sumOf(const std::vector<float>& samples, std::size_t begin, std::size_t end) {
  double sum = 0;
  for (std::size_t i = begin; i < end; ++i)
    sum += static_cast<double>(std::abs(samples[i]));
  return sum;
}

std::string describe(const SlicedRecording& result) {
  constexpr const char* fates[] = {"press",       "bigPress", "release", "clipped",
                                   "overlapping", "faint",    "repeated"};
  const auto takes = [](const std::string& of, const std::vector<RecordedTake>& list) {
    std::string text;
    for (const auto& take : list) {
      const auto peak =
          std::ranges::max_element(take.left, {}, [](float x) { return std::abs(x); });
      const std::size_t end = take.left.size();
      text += of + line(": %zu frames, level %.4g, peak %.4g at %td", end,
                        static_cast<double>(take.level), static_cast<double>(*peak),
                        peak - take.left.begin());
      text += line(", sums %.4g %.4g %.4g %.4g\n", sumOf(take.left, 0, 60),
                   sumOf(take.left, end - 480, end), sumOf(take.right, 0, 60),
                   sumOf(take.right, end - 480, end));
    }
    return text;
  };
  std::string text = result.report + "\n";
  for (std::size_t i = 0; i < result.hits.size(); ++i) {
    const auto& hit = result.hits[i];
    text += line("%zu %s: peak %.4g, energy %.4g, brightness %.3g, %.4g ms, before %.3g, gap %zu\n",
                 hit.onset, fates[static_cast<std::size_t>(result.fates[i])],
                 static_cast<double>(hit.peak), static_cast<double>(hit.energy),
                 static_cast<double>(hit.brightness), hit.decayMs,
                 static_cast<double>(hit.preActivity), hit.gapAfter);
  }
  for (const auto& [group, tiers] : result.down)
    for (const auto& [tier, list] : tiers)
      text += takes(std::string(rawValue(group)) + " " + std::string(name(tier)), list);
  return text + takes("up", result.up);
}

TEST(RecordedPack, EveryHitTakeAndWordOfAComposedRecordingIsAsItWas) {
  const SlicerOptions unusual{.preRollMs = 4,
                              .maxPressMs = 150,
                              .maxBigPressMs = 250,
                              .maxReleaseMs = 60,
                              .minPressMs = 100,
                              .mergeWithinMs = 60,
                              .alphaVariants = 2,
                              .bigVariants = 7,
                              .releaseVariants = 3,
                              .bigKeyShare = 0.3,
                              .highPassHz = 0,
                              .gainDb = -6};
  std::string text;
  for (const auto& [pace, options] : {std::pair{0.6, SlicerOptions()}, {3.0, unusual}}) {
    std::vector<std::size_t> presses;
    const auto result = everything(pace, presses).slice(options);
    EXPECT_GE(shareOfPresses(result, presses), 0.9) << pace;
    text += describe(result);
  }
  std::vector<std::size_t> presses;
  const Composition piece = everything(1, presses);
  const auto result = piece.slice();
  EXPECT_GE(shareOfPresses(result, presses), 0.9);
  text += describe(result);
  const testing::TempFolder folder;
  const std::vector<float> left = piece.left(), right = piece.right();
  std::vector<float> both;
  for (std::size_t i = 0; i < left.size(); ++i)
    both.insert(both.end(), {left[i], right[i]});
  const auto file = folder.write("typing.wav", testing::wavFloat({.channels = 2}, both));
  const auto source = [&](int64_t number, const char* user, double start, double end) {
    return PackRecipe::Source{number, user, "Keys", "CC0", file.string(), start, end};
  };
  const PackRecipe recipe{"own",
                          "Own",
                          "Tactile",
                          "Sums up",
                          {source(1, "zoe", 0, 30), source(1, "ann", 12, 40)},
                          {{source(2, "me", 2.3, 9)}},
                          {}};
  const auto pack = folder.path() / "own";
  buildRecordedPack(
      recipe, folder.path() / "cache", pack,
      [&](const std::string& logged) { text += logged + "\n"; }, NoConverter());
  for (const auto& [name, content] : testing::filesIn(pack)) {
    if (name == "pack.json") {
      text += content + "\n";
      continue;
    }
    const auto sound = SampleBuffer::load(pack / name, rate);
    text += line("%s: %zu frames", name.c_str(), sound->frames());
    for (const float* channel : {sound->left(), sound->right()}) {
      double sum = 0, slopes = 0;
      for (std::size_t i = 1; i < sound->frames(); ++i) {
        const double x = static_cast<double>(channel[i]);
        sum += x * x;
        slopes += std::abs(x - static_cast<double>(channel[i - 1]));
      }
      text += line(", power %.4g, slopes %.4g", sum, slopes);
    }
    text += "\n";
  }
  testing::expectKeptText(text, "TobrinKit/Building/composed-recording.txt");
}

/// Keys of every size, so that measures lie on both sides of each limit, and near it.
TEST(RecordedPack, HitsNearTheLimitsAreJudgedAsTheyWere) {
  Composition piece(48);
  SplitMix64& rng = piece.rng();
  double at = 0.4;
  for (int i = 0; at < 46.5; ++i) {
    const double press = 0.1 * std::pow(10, 6 * rng.signedUnit() / 20);
    const double hold = 0.1 + 0.15 * rng.unit();
    // One draw a line: compilers differ in the order of a call's arguments.
    const double length = 0.4 + 2 * rng.unit();
    const double pitch = 0.15 + rng.unit();
    piece.add(at, press, pitch, length);
    if (i % 3 == 0) piece.add(at + 0.005 + 0.04 * rng.unit(), 0.4 * press, 0.2, 3);
    if (i % 4 == 1) piece.swell(at, press * rng.unit());
    if (i % 5 == 2) piece.add(at - 0.08, 0.0002 + 0.0008 * rng.unit());
    if (i % 10 == 6) {
      const double level = 0.98 + 0.02 * rng.unit();
      piece.click(at + 0.02 + 0.02 * rng.unit(), level, i % 20 == 6);
    }
    piece.add(at + hold, 0.2 * press, 1.3, 0.6);
    if (i % 4 == 3) piece.swell(at + hold, 0.4 * press * rng.unit());
    at += hold + (i % 12 == 3 ? 0.022 : 0.1 + 0.2 * rng.unit());
  }
  testing::expectKeptText(describe(piece.slice()), "TobrinKit/Building/limits.txt");
  Composition one(3);
  one.add(1, 0.1);
  EXPECT_EQ(one.slice().down.size(), 1u);
  EXPECT_TRUE(one.slice({.maxPressMs = 0, .maxBigPressMs = 0, .minPressMs = 0}).down.empty());
}

std::string describe(const TypingModel& model) {
  std::string text;
  for (const Bell& bell : {model.pressDb, model.releaseDb, model.strayDb, model.partDb,
                           model.logHold, model.logInterval})
    text += line("%.7f %.7f, ", bell.mean, bell.deviation);
  return text + line("heard %.7f, strays %.7f, beside %.7f\n", model.heardReleases,
                     model.straysASecond, model.partsBeside);
}

/// Hits in a hurry, with pauses; every sixth is beside a louder one where any is.
std::vector<TypedHit> hurriedHits(std::size_t count, bool anyBeside) {
  std::vector<TypedHit> hits;
  SplitMix64 rng(5);
  for (double time = 0; hits.size() < count; time += 0.01 + 0.16 * rng.unit()) {
    const std::size_t i = hits.size();
    if (i % 50 == 49) time += i % 100 == 49 ? 1.9 : 0.7;
    hits.push_back({time, -14 * rng.unit(), anyBeside && i % 6 == 5});
  }
  return hits;
}

/// What is most likely among thousands of readings, and what is learned from it; then models of
/// recordings that hold one kind of sound alone.
TEST(TypingLattice, ReadsAndLearnsAsItDid) {
  std::string text;
  for (const bool anyBeside : {false, true}) {
    const auto hits = hurriedHits(300, anyBeside);
    TypingModel model;
    for (int round = 0; round < 2; ++round) {
      const TypingReading reading = readTyping(model, hits);
      text += line("%.7f:", reading.logLikelihood);
      for (std::size_t i = 0; i < hits.size(); ++i)
        text += line(" %d %.3f", reading.assignment[i], reading.pressChance[i]);
      model = TypingModel().fitted(hits, reading.assignment);
      text += "\n" + describe(model);
    }
    for (const int first : {TypingModel::isPress, TypingModel::isStray}) {
      std::vector<int> assignment(hits.size(), first);
      text += describe(TypingModel().fitted(hits, assignment));
      for (std::size_t i = 1; i < hits.size() && first == TypingModel::isPress; i += 2)
        assignment[i] = static_cast<int>(i) - 1;
      text += describe(TypingModel().fitted(hits, assignment));
    }
  }
  testing::expectKeptText(text + describe(TypingModel().fitted({}, {})),
                          "TobrinKit/Building/typing-models.txt");
}

/// What each hit is taken for, a letter each: (p)ress, (B)ig press, (r)elease or a part of a
/// stroke, and what is wrong: x for no press, (l)ost press.
TEST(RecordingSlicer, TypingOfEveryKindIsReadAsItWas) {
  using Damage = TypingCondition::Damage;
  const TypingCondition conditions[] = {
      {.name = "hurried", .interval = 0.1, .hold = 0.08},
      {.name = "loud releases", .releaseDb = -3, .damage = Damage::room},
      {.name = "seldom heard", .interval = 0.45, .heard = 0.4, .damage = Damage::noise},
      {.name = "touches and bounces of slow strokes",
       .interval = 1.2,
       .hold = 0.12,
       .releaseDb = 0,
       .heard = 1,
       .bounces = 0.5,
       .contacts = 0.5,
       .topBounces = 0.5,
       .seed = 7}};
  std::string text;
  for (const TypingCondition& condition : conditions) {
    const ComposedTyping typing = composeTyping(condition, 60);
    text += condition.name + ": ";
    for (const auto& hit : detectHits(typing.left, typing.right, rate, {}).hits) {
      const bool isPress = std::ranges::any_of(typing.strokes, [&](const auto& stroke) {
        return stroke.sound == ComposedTyping::Sound::press && hit.onset + 480 > stroke.onset &&
               hit.onset < stroke.onset + 480;
      });
      text += hit.isRelease ? (isPress ? 'l' : 'r') : !isPress ? 'x' : hit.isBig ? 'B' : 'p';
    }
    text += "\n";
  }
  testing::expectKeptText(text, "TobrinKit/Building/typing-read.txt");
}

}  // namespace
}  // namespace tobrin
