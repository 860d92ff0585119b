#include "Force/SampleClock.h"

#include <algorithm>

namespace tobrin {
namespace {

constexpr int64_t millisecond = 1'000'000;           // ticks
constexpr int64_t longestDelay = 250 * millisecond;  // from sample to reading
constexpr int64_t mostAhead = 2 * millisecond;       // rounding of stamps
constexpr std::size_t readsToJudge = 8;
constexpr int64_t spanToJudge = 100 * millisecond;
constexpr double drift = 0.0005;  // two cheap clocks against each other, ticks a tick

// Differences of unsigned times, exact through wrap-around and signed.
int64_t between(uint64_t later, uint64_t earlier) {
  return static_cast<int64_t>(later - earlier);
}
int64_t delayOf(int64_t stamp, uint64_t readTime) {
  return between(readTime, static_cast<uint64_t>(stamp));
}

bool isPlausible(int64_t delay) {
  return delay >= -mostAhead && delay <= longestDelay;
}

}  // namespace

uint64_t SampleClock::place(std::optional<int64_t> stamp, uint64_t readTime, std::size_t newer) {
  ++placedOfRead_;
  if (newer == 0) {
    if (stamp) judge(*stamp, readTime);
    followPace(readTime);
  }
  uint64_t time = readTime - static_cast<uint64_t>(static_cast<double>(newer) * interval_);
  if (stamp && origin_ == Origin::clock) time = static_cast<uint64_t>(*stamp);
  if (stamp && origin_ == Origin::counter)
    time = static_cast<uint64_t>(*stamp) + static_cast<uint64_t>(shift_);
  if (between(readTime, time) < 0) time = readTime;
  if (between(time, last_) < 0) time = last_;
  last_ = time;
  return time;
}

void SampleClock::judge(int64_t stamp, uint64_t readTime) {
  const int64_t delay = delayOf(stamp, readTime);
  if (reads_ == 0) {
    startOver(stamp, readTime);
    return;
  }
  ++reads_;
  if (isPlausible(delay)) ++onClock_;
  if (origin_ == Origin::reading)
    weighEvidence(stamp, readTime);
  else if (origin_ == Origin::counter)
    followCounter(delay, readTime);
  const bool contradicted = origin_ == Origin::clock
                                ? !isPlausible(delay)
                                : origin_ == Origin::counter && !isPlausible(delay - shift_);
  if (contradicted) startOver(stamp, readTime);
}

void SampleClock::startOver(int64_t stamp, uint64_t readTime) {
  origin_ = Origin::reading;
  reads_ = 1;
  shift_ = delayOf(stamp, readTime);
  onClock_ = isPlausible(shift_) ? 1 : 0;
  firstStamp_ = stamp;
  firstRead_ = shiftedAt_ = readTime;
}

void SampleClock::weighEvidence(int64_t stamp, uint64_t readTime) {
  shift_ = std::min(shift_, delayOf(stamp, readTime));
  const int64_t span = between(readTime, firstRead_);
  if (reads_ < readsToJudge || span < spanToJudge) return;
  const int64_t counted = between(static_cast<uint64_t>(stamp), static_cast<uint64_t>(firstStamp_));
  // Samples may be read late by a few milliseconds, so that a pace is known that well at best.
  const int64_t tolerance = span / 20 + 2 * millisecond;
  const bool keepsPace = counted >= span - tolerance && counted <= span + tolerance;
  if (!keepsPace)
    startOver(stamp, readTime);
  else
    origin_ = onClock_ == reads_ ? Origin::clock : Origin::counter;
  shiftedAt_ = readTime;
}

// The smallest delay seen is the nearest to the true shift; it may grow as fast as clocks drift.
void SampleClock::followCounter(int64_t delay, uint64_t readTime) {
  const auto grown =
      static_cast<int64_t>(drift * static_cast<double>(between(readTime, shiftedAt_)));
  if (isPlausible(delay - shift_)) shift_ = std::min(shift_ + grown, delay);
  shiftedAt_ = readTime;
}

void SampleClock::followPace(uint64_t readTime) {
  constexpr double share = 0.1;
  const auto count = static_cast<double>(placedOfRead_);
  const double pace = static_cast<double>(between(readTime, lastRead_)) / count;
  if (lastRead_ != 0 && pace >= 0 && pace < static_cast<double>(longestDelay))
    interval_ += interval_ == 0 ? pace : (pace - interval_) * share;
  lastRead_ = readTime;
  placedOfRead_ = 0;
}

}  // namespace tobrin
