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

  /// A single sample, as where a recording is driven too hard.
  void click(double at, double level) {
    samples_[static_cast<std::size_t>(at * rate)] = static_cast<float>(level);
  }

  SlicedRecording slice(const SlicerOptions& options = {}) const {
    return sliceRecording(samples_, samples_, rate, options);
  }
  SplitMix64& rng() { return rng_; }
  [[nodiscard]] const std::vector<float>& samples() const { return samples_; }

 private:
  SplitMix64 rng_{7};
  std::vector<float> samples_;
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

std::string describe(const SlicedRecording& result) {
  constexpr const char* fates[] = {"press",       "bigPress", "release", "clipped",
                                   "overlapping", "faint",    "repeated"};
  const auto takes = [](const std::string& of, const std::vector<RecordedTake>& list) {
    std::string text;
    for (const auto& take : list) {
      const auto peak =
          std::ranges::max_element(take.left, {}, [](float x) { return std::abs(x); });
      text += of + line(": %zu frames, level %.4g, peak %.4g at %td\n", take.left.size(),
                        static_cast<double>(take.level), static_cast<double>(*peak),
                        peak - take.left.begin());
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
  std::string text;
  for (const double pace : {0.6, 3.0}) {
    std::vector<std::size_t> presses;
    const auto result = everything(pace, presses).slice();
    EXPECT_GE(shareOfPresses(result, presses), 0.9) << pace;
    text += describe(result);
  }
  std::vector<std::size_t> presses;
  const Composition piece = everything(1, presses);
  const auto result = piece.slice();
  EXPECT_GE(shareOfPresses(result, presses), 0.9);
  text += describe(result);
  const testing::TempFolder folder;
  const auto file = folder.write("typing.wav", testing::wavFloat({}, piece.samples()));
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
    double sum = 0, slopes = 0;
    for (std::size_t i = 1; i < sound->frames(); ++i) {
      const double x = static_cast<double>(sound->left()[i]);
      sum += x * x;
      slopes += std::abs(x - static_cast<double>(sound->left()[i - 1]));
    }
    text += line("%s: %zu frames, power %.4g, slopes %.4g\n", name.c_str(), sound->frames(), sum,
                 slopes);
  }
  testing::expectKeptText(text, "TobrinKit/Building/composed-recording.txt");
}

/// Keys of every size, so that measures lie on both sides of each limit, and near it.
TEST(RecordedPack, HitsNearTheLimitsAreJudgedAsTheyWere) {
  Composition piece(90);
  SplitMix64& rng = piece.rng();
  double at = 0.4;
  for (int i = 0; at < 88.5; ++i) {
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
      piece.click(at + 0.02 + 0.02 * rng.unit(), level);
    }
    piece.add(at + hold, 0.2 * press, 1.3, 0.6);
    if (i % 4 == 3) piece.swell(at + hold, 0.4 * press * rng.unit());
    at += hold + (i % 12 == 3 ? 0.022 : 0.1 + 0.2 * rng.unit());
  }
  testing::expectKeptText(describe(piece.slice()), "TobrinKit/Building/limits.txt");
}

TEST(RecordingSlicer, TouchesAndBouncesOfSlowStrokesAreNoPresses) {
  TypingCondition condition{.interval = 1.2, .hold = 0.12, .releaseDb = 0, .heard = 1, .seed = 7};
  condition.contacts = condition.bounces = condition.topBounces = 0.5;
  const ComposedTyping typing = composeTyping(condition, 60);
  const auto sliced = sliceRecording(typing.left, typing.right, typing.rate, {});
  std::size_t presses = 0, kept = 0, right = 0;
  for (const HitFate fate : sliced.fates)
    kept += fate == HitFate::press || fate == HitFate::bigPress ? 1u : 0u;
  for (const auto& stroke : typing.strokes) {
    if (stroke.sound != ComposedTyping::Sound::press) continue;
    ++presses;
    for (std::size_t i = 0; i < sliced.hits.size(); ++i) {
      const bool isKept = sliced.fates[i] == HitFate::press || sliced.fates[i] == HitFate::bigPress;
      const std::size_t onset = sliced.hits[i].onset;
      if (isKept && onset + 480 > stroke.onset && onset < stroke.onset + 480) ++right;
    }
  }
  EXPECT_GT(presses, 40u);
  EXPECT_GE(right, presses - 1);
  EXPECT_LE(kept, right + right / 8);
}

/// Expected is what looking through all nodes for every edge gave: none may be taken for another.
TEST(TypingLattice, TellsAllReadingsApart) {
  std::vector<TypedHit> hits;
  SplitMix64 rng(5);
  for (double time = 0; hits.size() < 200; time += 0.03 + 0.2 * rng.unit())
    hits.push_back({time, -14 * rng.unit()});
  EXPECT_NEAR(readTyping({}, hits).logLikelihood, -453.908303180815, 1e-9);
}

}  // namespace
}  // namespace tobrin
