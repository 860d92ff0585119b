#include "Recording/ClockFit.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "Building/RecordingSlicer.h"

namespace tobrin {
namespace {

// What the first search covers: sounds up to a quarter of a second before their event, where the
// keyboard is slower than the microphone, to half a second after it, as by radio.
constexpr double earliestDelay = -0.25;
constexpr double latestDelay = 0.5;
constexpr double binSeconds = 0.001;
constexpr std::size_t binCount = 750;
constexpr std::size_t reachBins = 3;  // to either side: keyboards are that uneven
constexpr std::size_t lagBins = 30;
constexpr double largestDrift = 500e-6;
constexpr double driftSmear = 0.002;     // s over the recording, from one drift tried to the next
constexpr std::size_t mostEvents = 800;  // of each action in the search; more do not change it
constexpr float sureEvidence = 14;       // weaker rises cost the search time, and say little
constexpr double enoughEvidence = 60;    // what is surer counts no more
constexpr double likelyDrift = 150e-6;   // of clocks of two devices; holds where little is known
constexpr double fewestPresses = 4;
constexpr double leastShare = 0.4;   // of presses that have a sound
constexpr double leastSurprise = 4;  // above what any delay finds, in its chance deviations
constexpr double leastSpread = 0.0007;

double secondsOf(const RecordedKey& key) {
  return static_cast<double>(key.time) * 1e-9;
}

/// The sounds that may belong to one event, by their distance from it.
struct Candidate {
  double event = 0;  // s
  double after = 0;  // s
  double weight = 0;
};

std::vector<double> timesOf(std::span<const RecordedKey> keys, KeyAction action) {
  std::vector<double> times;
  for (const RecordedKey& key : keys) {
    if (key.action == action) times.push_back(secondsOf(key));
  }
  return times;
}

std::vector<Candidate> candidatesOf(const std::vector<double>& events,
                                    std::span<const SoundRise> rises, double rate) {
  std::vector<Candidate> result;
  const std::size_t stride = events.size() / mostEvents + 1;
  for (std::size_t i = 0; i < events.size(); i += stride) {
    const auto from = static_cast<double>(events[i] + earliestDelay) * rate;
    auto rise = std::lower_bound(rises.begin(), rises.end(), from, [](const auto& each, double s) {
      return static_cast<double>(each.sample) < s;
    });
    for (; rise != rises.end(); ++rise) {
      const double after = static_cast<double>(rise->sample) / rate - events[i];
      if (after >= latestDelay) break;
      if (rise->evidence < sureEvidence) continue;
      result.push_back(
          {events[i], after, std::min(static_cast<double>(rise->evidence) / enoughEvidence, 1.0)});
    }
  }
  return result;
}

using Histogram = std::vector<double>;

/// How many events have a sound at each delay, give or take a few bins.
Histogram histogramOf(const std::vector<Candidate>& candidates, double drift) {
  Histogram counts(binCount + 2 * reachBins, 0.0);
  for (const Candidate& each : candidates) {
    const double bin = (each.after - drift * each.event - earliestDelay) / binSeconds;
    if (bin < 0 || bin >= static_cast<double>(binCount)) continue;
    counts[static_cast<std::size_t>(bin) + reachBins] += each.weight;
  }
  Histogram sums(binCount, 0.0);
  for (std::size_t bin = 0; bin < binCount; ++bin) {
    for (std::size_t near = bin; near <= bin + 2 * reachBins; ++near)
      sums[bin] += counts[near];
  }
  return sums;
}

struct Guess {
  double score = 0;
  double delay = 0;
  double drift = 0;
  double releaseLag = 0;
  double surprise = 0;  // by how many chance deviations more presses have a sound than at others
};

/// The best delay for one drift. Releases speak, too: a delay that takes them for presses has
/// no sounds where their own ought to be.
Guess guessAt(double drift, const std::vector<Candidate>& presses,
              const std::vector<Candidate>& releases) {
  const Histogram down = histogramOf(presses, drift);
  const Histogram up = histogramOf(releases, drift);
  Guess best;
  for (std::size_t bin = 0; bin < binCount; ++bin) {
    const auto begin = up.begin() + static_cast<std::ptrdiff_t>(bin > lagBins ? bin - lagBins : 0);
    const auto end =
        up.begin() + static_cast<std::ptrdiff_t>(std::min(bin + lagBins + 1, binCount));
    const auto release = std::max_element(begin, end);
    const double delay = earliestDelay + (static_cast<double>(bin) + 0.5) * binSeconds;
    // Of delays that are about as good, as in typing by a metronome, a short one is the likely one.
    const double score = (down[bin] + *release) * (1 - 0.1 * std::abs(delay));
    if (score <= best.score) continue;
    const auto lag = (release - up.begin()) - static_cast<std::ptrdiff_t>(bin);
    best = {score, delay, drift, *release > 0 ? static_cast<double>(lag) * binSeconds : 0.0,
            down[bin]};
  }
  const std::vector<float> counts(down.begin(), down.end());
  const auto usual = static_cast<double>(percentile(counts, 0.5));
  best.surprise = (best.surprise - usual) / std::sqrt(usual + 1);
  return best;
}

Guess search(std::span<const RecordedKey> keys, std::span<const SoundRise> rises, double rate) {
  const auto downs = timesOf(keys, KeyAction::down);
  const auto presses = candidatesOf(downs, rises, rate);
  const auto releases = candidatesOf(timesOf(keys, KeyAction::up), rises, rate);
  const double duration = downs.empty() ? 0 : std::max(downs.back(), 0.0);
  const auto steps = static_cast<int>(std::ceil(largestDrift * duration / driftSmear));
  Guess best;
  for (int step = -steps; step <= steps; ++step) {
    const double drift = steps > 0 ? largestDrift * step / steps : 0;
    const Guess guess = guessAt(drift, presses, releases);
    if (guess.score > best.score) best = guess;
  }
  return best;
}

/// A sound that belongs to an event, and how far it is from where the fit expects it.
struct Match {
  double event = 0;
  double error = 0;  // s
  double weight = 0;
  bool isRelease = false;
};

/// The best rise within `reach` of where the key's sound is expected.
std::optional<Match> matchOf(const RecordedKey& key, const ClockFit& fit,
                             std::span<const SoundRise> rises, double rate, double reach) {
  const double expected = fit.soundOf(key);
  auto rise = std::lower_bound(
      rises.begin(), rises.end(), (expected - reach) * rate,
      [](const auto& each, double s) { return static_cast<double>(each.sample) < s; });
  Match best{secondsOf(key), 0, 0, key.action == KeyAction::up};
  for (; rise != rises.end(); ++rise) {
    const double error = static_cast<double>(rise->sample) / rate - expected;
    if (error > reach) break;
    const double nearness = 1 - error * error / (reach * reach);
    const double weight =
        nearness * nearness * std::min(static_cast<double>(rise->evidence) / enoughEvidence, 1.0);
    if (weight > best.weight) best.error = error, best.weight = weight;
  }
  if (best.weight <= 0) return std::nullopt;
  return best;
}

std::vector<Match> matchesOf(std::span<const RecordedKey> keys, const ClockFit& fit,
                             std::span<const SoundRise> rises, double rate, double reach) {
  std::vector<Match> matches;
  for (const RecordedKey& key : keys) {
    if (const auto match = matchOf(key, fit, rises, rate, reach)) matches.push_back(*match);
  }
  return matches;
}

/// Moves the fit by the weighted least squares of its errors: a line through those of the presses
/// and of the releases, which may lie beside it by a lag.
void improve(ClockFit& fit, const std::vector<Match>& matches) {
  double weights = 0, lags = 0, lagWeights = 0;
  for (const Match& match : matches) {
    lags += match.isRelease ? match.weight * match.error : 0;
    lagWeights += match.isRelease ? match.weight : 0;
  }
  double mean = 0, error = 0;
  for (const Match& match : matches) {
    if (match.isRelease) continue;
    weights += match.weight;
    mean += match.weight * match.event;
    error += match.weight * match.error;
  }
  if (weights <= 0) return;
  mean /= weights;
  error /= weights;
  const double lag = lagWeights > 0 ? lags / lagWeights : 0;
  const double doubt = fit.spread * fit.spread / (likelyDrift * likelyDrift);
  double slope = -doubt * fit.drift, squares = doubt;
  for (const Match& match : matches) {
    const double away = match.event - mean;
    slope += match.weight * away * (match.error - (match.isRelease ? lag : error));
    squares += match.weight * away * away;
  }
  slope /= squares;
  fit.drift += slope;
  fit.delay += error - slope * mean;
  if (lagWeights > 0) fit.releaseLag += lag - error;
}

double spreadOf(const std::vector<Match>& matches) {
  constexpr double ofMedian = 1.4826;  // of an even bell
  std::vector<float> errors;
  errors.reserve(matches.size());
  for (const Match& match : matches)
    errors.push_back(static_cast<float>(std::abs(match.error)));
  return std::max(ofMedian * static_cast<double>(percentile(std::move(errors), 0.5)), leastSpread);
}

}  // namespace

double ClockFit::soundOf(const RecordedKey& key) const {
  const double time = secondsOf(key);
  return time + delay + drift * time + (key.action == KeyAction::up ? releaseLag : 0);
}

ClockFit fitClocks(std::span<const SoundRise> rises, std::span<const RecordedKey> keys,
                   double rate) {
  const Guess guess = search(keys, rises, rate);
  ClockFit fit{guess.delay, guess.drift, guess.releaseLag, 0.005, true};
  for (const double reach : {0.020, 0.015, 0.012, 0.012, 0.012}) {
    const auto matches = matchesOf(keys, fit, rises, rate, reach);
    improve(fit, matches);
    fit.spread = spreadOf(matches);
  }
  const auto matches = matchesOf(keys, fit, rises, rate, 4 * fit.spread);
  const auto found = std::count_if(matches.begin(), matches.end(),
                                   [](const Match& match) { return !match.isRelease; });
  const auto presses = static_cast<double>(timesOf(keys, KeyAction::down).size());
  const auto heard = static_cast<double>(found);
  const bool isSure =
      heard >= fewestPresses && heard >= leastShare * presses && guess.surprise >= leastSurprise;
  return isSure ? fit : ClockFit();
}

}  // namespace tobrin
