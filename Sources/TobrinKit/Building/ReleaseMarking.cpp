#include "Building/ReleaseMarking.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "Building/TypingLattice.h"
#include "Building/TypingModel.h"

namespace tobrin {
namespace {

constexpr double neighbourhoodSeconds = 2.0;  // that the level of a hit is judged against
constexpr double pressPercentile = 0.75;      // among hits of which up to a half are releases
/// Share of all presses. One that is lost costs a pack more than a release that passes for one.
constexpr double bearableLoss = 0.003;
constexpr double evenOdds = 0.5;
constexpr std::size_t hitsToChooseBy = 400;
constexpr int firstRounds = 3;
constexpr int lastRounds = 6;
constexpr double slowSeconds = 0.35;  // from one hit to the next, where a stroke is over
constexpr double slowShare = 0.15;    // of hits; a stroke may have four and more
constexpr double besideSeconds = 0.06;
constexpr double touchDb = 4.5;  // by which a touch is weaker than the strike that follows
constexpr double bounceDb = 2;   // by which a bounce is weaker than what it follows
constexpr double quietest = 1e-9;

/// How fast somebody may type, and how long they hold keys then. In seconds.
struct Pace {
  double interval;
  double hold;
};
constexpr Pace paces[] = {{0.1, 0.08}, {0.18, 0.09}, {0.32, 0.1}, {0.7, 0.15}, {1.4, 0.35}};

/// The level that presses around hit `index` have, in dB.
double pressLevelAround(const std::vector<TypedHit>& hits, const std::vector<double>& levels,
                        std::size_t index) {
  constexpr std::size_t fewest = 6;  // to each side, however slow the typing
  const auto isNear = [&](std::size_t i) {
    const std::size_t apart = i > index ? i - index : index - i;
    return apart <= fewest || std::abs(hits[i].time - hits[index].time) <= neighbourhoodSeconds;
  };
  std::vector<float> around;
  for (std::size_t i = index; i < hits.size() && isNear(i); ++i) {
    around.push_back(static_cast<float>(levels[i]));
  }
  for (std::size_t i = index; i-- > 0 && isNear(i);)
    around.push_back(static_cast<float>(levels[i]));
  return static_cast<double>(percentile(std::move(around), pressPercentile));
}

/// Whether keys are struck one at a time: then a hit close to another is of the same key. In fast
/// typing it may be of another one.
bool isSlow(const std::vector<TypedHit>& hits) {
  std::size_t pauses = 0;
  for (std::size_t i = 1; i < hits.size(); ++i)
    pauses += hits[i].time - hits[i - 1].time > slowSeconds ? 1u : 0u;
  return static_cast<double>(pauses) > slowShare * static_cast<double>(hits.size());
}

/// Whether a hit comes just before a clearly louder one, or just after a louder one.
bool isBeside(const std::vector<TypedHit>& hits, const std::vector<double>& levels,
              std::size_t index) {
  for (std::size_t i = index + 1;
       i < hits.size() && hits[i].time - hits[index].time < besideSeconds; ++i)
    if (levels[i] > levels[index] + touchDb) return true;
  for (std::size_t i = index; i-- > 0 && hits[index].time - hits[i].time < besideSeconds;)
    if (levels[i] > levels[index] + bounceDb) return true;
  return false;
}

std::vector<TypedHit> typed(const std::vector<RecordedHit>& hits, double rate) {
  std::vector<TypedHit> result;
  std::vector<double> levels;
  for (const auto& hit : hits) {
    result.push_back({static_cast<double>(hit.onset) / rate, 0, false});
    levels.push_back(20 * std::log10(std::max(static_cast<double>(hit.energy), quietest)));
  }
  for (std::size_t i = 0; i < result.size(); ++i) {
    result[i].relativeDb = levels[i] - pressLevelAround(result, levels, i);
  }
  if (!isSlow(result)) return result;
  for (std::size_t i = 0; i < result.size(); ++i)
    result[i].isBeside = isBeside(result, levels, i);
  return result;
}

struct Fit {
  TypingModel model;
  TypingReading reading;
};

/// Expectation maximisation with hard assignments. Models are drawn towards `expected`.
void improve(Fit& fit, const TypingModel& expected, const std::vector<TypedHit>& hits, int rounds) {
  for (int round = 0; round < rounds; ++round) {
    fit.model = expected.fitted(hits, fit.reading.assignment);
    auto next = readTyping(fit.model, hits);
    const bool settled = next.assignment == fit.reading.assignment;
    fit.reading = std::move(next);
    if (settled) return;
  }
}

/// The best of the fits from several first guesses: from a wrong guess, fast typing with few
/// releases looks like slow typing. A minute or two from the middle are enough to choose.
Fit bestFit(const std::vector<TypedHit>& hits) {
  const std::size_t count = std::min(hits.size(), hitsToChooseBy);
  const auto begin = hits.begin() + static_cast<std::ptrdiff_t>((hits.size() - count) / 2);
  const std::vector<TypedHit> some(begin, begin + static_cast<std::ptrdiff_t>(count));
  Fit best;
  TypingModel expected;
  best.reading.logLikelihood = -std::numeric_limits<double>::infinity();
  for (const Pace& pace : paces) {
    for (const double releaseDb : {-6.0, -13.0}) {
      TypingModel guess;
      guess.logInterval.mean = std::log(pace.interval);
      guess.logHold.mean = std::log(pace.hold);
      guess.releaseDb.mean = releaseDb;
      Fit fit{guess, readTyping(guess, some)};
      improve(fit, guess, some, firstRounds);
      if (fit.reading.logLikelihood <= best.reading.logLikelihood) continue;
      best = std::move(fit);
      expected = guess;
    }
  }
  best.reading = readTyping(best.model, hits);
  improve(best, expected, hits, lastRounds);
  return best;
}

/// How much of the presses may be lost on the whole: hits are taken for releases, the surest first,
/// until the chance of a press among them adds up to that.
void markSurest(std::vector<RecordedHit>& hits, const std::vector<double>& pressChance) {
  std::vector<std::size_t> order(hits.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return pressChance[a] < pressChance[b]; });
  double allowance = bearableLoss * std::accumulate(pressChance.begin(), pressChance.end(), 0.0);
  for (const std::size_t i : order) {
    allowance -= pressChance[i];
    if (allowance < 0 || pressChance[i] > evenOdds) break;
    hits[i].isRelease = true;
  }
}

}  // namespace

void markReleases(std::vector<RecordedHit>& hits, double rate) {
  for (auto& hit : hits)
    hit.isRelease = false;
  if (hits.size() < 2) return;
  const auto typedHits = typed(hits, rate);
  markSurest(hits, bestFit(typedHits).reading.pressChance);
}

}  // namespace tobrin
