// What the slicer makes of composed recordings of many kinds, judged by the truth about them.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <string_view>
#include <vector>

#include "Base/SplitMix64.h"
#include "Building/RecordingSlicer.h"
#include "ComposedTyping.h"
#include "Support/Report.h"

namespace tobrin {
namespace {

using Fate = HitFate;
using Sound = ComposedTyping::Sound;

constexpr double seconds = 60;

struct Score {
  double detected = 0;   ///< share of presses that are hits at all
  double kept = 0;       ///< share of those that stay presses
  double precision = 0;  ///< share of kept hits that are presses
  double unmarked = 0;   ///< the same if nothing were taken for a release
  double rank = 0;       ///< Spearman's correlation of energy and strength of kept presses
  double wide = 0;       ///< share of kept presses on wide keys that are found
  double lostAsRelease = 0, lostAsBusy = 0, lostOtherwise = 0;
};

std::vector<double> ranks(const std::vector<double>& values) {
  std::vector<std::size_t> order(values.size());
  for (std::size_t i = 0; i < order.size(); ++i)
    order[i] = i;
  std::sort(order.begin(), order.end(),
            [&](std::size_t a, std::size_t b) { return values[a] < values[b]; });
  std::vector<double> result(values.size());
  for (std::size_t i = 0; i < order.size(); ++i)
    result[order[i]] = static_cast<double>(i);
  return result;
}

double rankCorrelation(const std::vector<double>& a, const std::vector<double>& b) {
  const auto first = ranks(a);
  const auto second = ranks(b);
  const auto n = static_cast<double>(a.size());
  double squares = 0;
  for (std::size_t i = 0; i < first.size(); ++i)
    squares += (first[i] - second[i]) * (first[i] - second[i]);
  return n < 2 ? 1 : 1 - 6 * squares / (n * (n * n - 1));
}

/// The stroke of each hit, -1 for none. The loudest stroke chooses first and takes the loudest hit
/// around it: a touch may come before the strike itself, and a hit may begin with a release that
/// another key's press follows.
std::vector<int> strokesOf(const ComposedTyping& typing, const std::vector<RecordedHit>& hits) {
  constexpr double early = 0.025;  // s
  constexpr double late = 0.030;
  std::vector<std::size_t> order(typing.strokes.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return typing.strokes[a].strengthDb > typing.strokes[b].strengthDb;
  });
  std::vector<int> result(hits.size(), -1);
  for (const std::size_t s : order) {
    std::size_t best = hits.size();
    for (std::size_t h = 0; h < hits.size(); ++h) {
      const double after =
          (static_cast<double>(hits[h].onset) - static_cast<double>(typing.strokes[s].onset)) /
          typing.rate;
      if (after < -early || after > late || result[h] >= 0) continue;
      if (best == hits.size() || hits[h].energy > hits[best].energy) best = h;
    }
    if (best < hits.size()) result[best] = static_cast<int>(s);
  }
  return result;
}

Score judge(const ComposedTyping& typing) {
  const auto result = sliceRecording(typing.left, typing.right, typing.rate, {});
  const auto owners = strokesOf(typing, result.hits);
  Score score;
  double presses = 0, found = 0, kept = 0, keptPresses = 0, unmarked = 0, wide = 0, wideFound = 0;
  std::vector<double> energies, strengths;
  for (const auto& stroke : typing.strokes)
    presses += stroke.sound == Sound::press ? 1 : 0;
  for (std::size_t h = 0; h < result.hits.size(); ++h) {
    const auto* stroke =
        owners[h] < 0 ? nullptr : &typing.strokes[static_cast<std::size_t>(owners[h])];
    const bool isPress = stroke != nullptr && stroke->sound == Sound::press;
    const Fate fate = result.fates[h];
    const bool isKept = fate == Fate::press || fate == Fate::bigPress;
    found += isPress ? 1 : 0;
    unmarked += isKept || result.hits[h].isRelease ? 1 : 0;
    kept += isKept ? 1 : 0;
    if (!isPress) continue;
    if (isKept) {
      ++keptPresses;
      energies.push_back(static_cast<double>(result.hits[h].energy));
      strengths.push_back(stroke->strengthDb);
      wide += stroke->isWide ? 1 : 0;
      wideFound += stroke->isWide && fate == Fate::bigPress ? 1 : 0;
    } else {
      (result.hits[h].isRelease    ? score.lostAsRelease
       : fate == Fate::overlapping ? score.lostAsBusy
                                   : score.lostOtherwise) += 1;
    }
  }
  score.detected = found / presses;
  score.kept = keptPresses / std::max(found, 1.0);
  score.precision = keptPresses / std::max(kept, 1.0);
  score.unmarked = found / std::max(unmarked, 1.0);
  score.rank = rankCorrelation(energies, strengths);
  score.wide = wide > 0 ? wideFound / wide : 1;
  for (double* lost : {&score.lostAsRelease, &score.lostAsBusy, &score.lostOtherwise})
    *lost /= std::max(found, 1.0);
  return score;
}

// NOLINTNEXTLINE(readability-function-size): a table
std::vector<TypingCondition> conditions() {
  using Damage = TypingCondition::Damage;
  std::vector<TypingCondition> list;
  const auto add = [&](const char* name, auto change) {
    TypingCondition condition{.name = name, .seed = list.size() + 1};
    change(condition);
    list.push_back(condition);
  };
  add("cream", [](auto&) {});
  add("click", [](auto& c) { c.profile = &SynthProfile::click(); });
  add("panda", [](auto& c) { c.profile = &SynthProfile::panda(); });
  add("dome", [](auto& c) { c.profile = &SynthProfile::dome(); });
  add("typewriter", [](auto& c) { c.profile = &SynthProfile::typewriter(); });
  add("every 90 ms", [](auto& c) { c.interval = 0.09; });
  add("every 130 ms", [](auto& c) { c.interval = 0.13; });
  add("every 170 ms", [](auto& c) { c.interval = 0.17; });
  add("every 280 ms", [](auto& c) { c.interval = 0.28; });
  add("every 400 ms", [](auto& c) { c.interval = 0.4; });
  add("one by one", [](auto& c) { c.interval = 0.7, c.hold = 0.16; });
  add("demonstrated", [](auto& c) { c.interval = 1.3, c.hold = 0.3, c.releaseDb = -6; });
  add("held long", [](auto& c) { c.interval = 1.5, c.hold = 0.5, c.releaseDb = -6; });
  add("ticks", [](auto& c) { c.ticks = 2; });
  add("ticks after a gate", [](auto& c) {
    c.ticks = 3;
    c.interval = 0.35;
    c.damage = Damage::gated;
  });
  add("release -3 dB", [](auto& c) { c.releaseDb = -3; });
  add("release -6 dB", [](auto& c) { c.releaseDb = -6; });
  add("release -9 dB", [](auto& c) { c.releaseDb = -9; });
  add("release -16 dB", [](auto& c) { c.releaseDb = -16; });
  add("release -20 dB", [](auto& c) { c.releaseDb = -20; });
  add("release +2 dB", [](auto& c) { c.releaseDb = 2; });
  add("hold 60 ms", [](auto& c) { c.hold = 0.06; });
  add("hold 140 ms", [](auto& c) { c.hold = 0.14; });
  add("releases half heard", [](auto& c) { c.heard = 0.5; });
  add("no releases", [](auto& c) { c.heard = 0; });
  add("bounces", [](auto& c) { c.bounces = 0.25; });
  add("even strength", [](auto& c) { c.strengthSpread = 3; });
  add("noise", [](auto& c) { c.damage = Damage::noise; });
  add("gated", [](auto& c) { c.damage = Damage::gated; });
  add("muffled", [](auto& c) { c.damage = Damage::muffled; });
  add("codec", [](auto& c) { c.damage = Damage::codec; });
  add("room", [](auto& c) { c.damage = Damage::room; });
  add("hum", [](auto& c) { c.damage = Damage::hum; });
  add("44.1 kHz", [](auto& c) { c.rate = 44100; });
  SplitMix64 random(99);
  for (int i = 0; i < 30; ++i) {
    add("mixed", [&](TypingCondition& c) {
      const auto between = [&](double low, double high) {
        return low + (high - low) * random.unit();
      };
      c.name = "mixed " + std::to_string(i + 1);
      c.profile = &SynthProfile::starterPacks()[random.next() % 5];
      c.interval = 0.1 * std::pow(4, random.unit());
      c.hold = between(0.06, 0.14);
      c.releaseDb = between(-18, -5);
      c.strengthSpread = between(3, 9);
      c.heard = between(0.5, 1);
      c.bounces = random.unit() < 0.3 ? 0.1 : 0;
      c.damage = static_cast<Damage>(random.next() % 7);
      c.rate = random.unit() < 0.3 ? 44100 : 48000;
    });
  }
  for (const double releaseDb : {-6.0, 0.0}) {
    add("touches, bounces", [&](TypingCondition& c) {
      c.interval = 1.2, c.hold = 0.12, c.releaseDb = releaseDb;
      c.contacts = 0.6, c.topBounces = 0.4, c.bounces = 0.3;
    });
  }
  return list;
}

struct Column {
  const char* heading;
  double Score::*value;
};

constexpr Column columns[] = {{"found", &Score::detected},
                              {"kept", &Score::kept},
                              {"precise", &Score::precision},
                              {"unmarked", &Score::unmarked},
                              {"rank", &Score::rank},
                              {"wide", &Score::wide},
                              {"released", &Score::lostAsRelease},
                              {"busy", &Score::lostAsBusy},
                              {"other", &Score::lostOtherwise}};

void printRow(const std::string& name, const Score& score) {
  std::printf("%-20s", name.c_str());
  for (const Column& column : columns)
    std::printf("%9.1f", 100 * (score.*column.value));
  std::printf("\n");
}

void printHeading() {
  std::printf("%-20s", "in %");
  for (const Column& column : columns)
    std::printf("%9s", column.heading);
  std::printf("\n");
}

Score judgeAll(bool showsEach) {
  Score mean;
  if (showsEach) printHeading();
  const auto all = conditions();
  for (const TypingCondition& condition : all) {
    const Score score = judge(composeTyping(condition, seconds));
    for (const Column& column : columns)
      mean.*column.value += score.*column.value / static_cast<double>(all.size());
    if (showsEach) printRow(condition.name, score);
  }
  return mean;
}

}  // namespace
}  // namespace tobrin

/// With --conditions, one row for every kind of recording.
int main(int argc, char** argv) {
  using tobrin::Figure;
  const bool showsEach = argc == 2 && std::string_view(argv[1]) == "--conditions";
  const tobrin::Score mean = tobrin::judgeAll(showsEach);
  if (showsEach) {
    tobrin::printRow("mean", mean);
    return 0;
  }
  tobrin::Report report(argc, argv);
  report.add(Figure::over("slicing: presses kept as presses", 100 * mean.kept, "%", 98, 0));
  report.add(Figure::over("slicing: presses among those", 100 * mean.precision, "%", 87, 0));
  report.add(Figure::over("slicing: rank by strength", 100 * mean.rank, "%", 96, 0));
  report.add(Figure::over("slicing: wide keys found", 100 * mean.wide, "%", 90, 0));
  return 0;
}
